#include "platform/storage/sortkey.h"

#include <algorithm>
#include <cstring>

#include "platform/storage/fold.h"

namespace storage {

namespace {

constexpr std::size_t kMostUnits = 256;
constexpr char kUnknownFirst = 0;
constexpr char kKnown = 1;
constexpr char kUnknownLast = 2;

template <typename Value>
Value ReadValue(const char* at) {
    Value value;
    std::memcpy(&value, at, sizeof(value));
    return value;
}

void AppendBigEndian(std::uint64_t value, int bytes, std::string& key) {
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        key += static_cast<char>(value >> shift);
}

// Stays within `rest`, even when a damaged form holds a string without an end.
void AppendText(std::string_view rest, bool fold, std::string& key) {
    std::u16string text;
    for (std::size_t at = 0; at + 1 < rest.size() && text.size() < kMostUnits; at += sizeof(char16_t)) {
        const char16_t unit = ReadValue<char16_t>(rest.data() + at);
        if (unit == 0)
            break;
        text += unit;
    }
    for (const char16_t unit : fold ? Fold(text) : text)
        AppendBigEndian(unit, 2, key);
    AppendBigEndian(0, 2, key);
}

void AppendFloat(const char* at, std::string& key) {
    const std::uint64_t bits = ReadValue<std::uint64_t>(at);
    constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
    AppendBigEndian((bits & kSign) != 0 ? ~bits : bits | kSign, 8, key);
}

std::string_view Rest(std::string_view form, DWORD offset) {
    return offset != 0 && offset <= form.size() ? form.substr(offset) : std::string_view();
}

void AppendValue(const SORTORDERSPEC& spec, const char* value, std::string_view form, std::string& key) {
    switch (TypeFromPropID(spec.propid)) {
    case CEVT_I2:
        return AppendBigEndian(ReadValue<WORD>(value) ^ 0x8000U, 2, key);
    case CEVT_UI2:
        return AppendBigEndian(ReadValue<WORD>(value), 2, key);
    case CEVT_I4:
        return AppendBigEndian(ReadValue<DWORD>(value) ^ 0x80000000U, 4, key);
    case CEVT_UI4:
        return AppendBigEndian(ReadValue<DWORD>(value), 4, key);
    case CEVT_BOOL:
        return AppendBigEndian(ReadValue<DWORD>(value) != 0, 1, key);
    case CEVT_R8:
        return AppendFloat(value, key);
    case CEVT_LPWSTR:
        return AppendText(Rest(form, ReadValue<DWORD>(value)),
                          (spec.dwFlags & CEDB_SORT_CASEINSENSITIVE) != 0, key);
    case CEVT_BLOB: {
        const DWORD bytes = ReadValue<DWORD>(value);
        AppendBigEndian(bytes, 4, key);
        key += Rest(form, ReadValue<DWORD>(value + 4)).substr(0, std::min<std::size_t>(bytes, kMostUnits));
        return;
    }
    default: // times, and types that nobody knows
        return AppendBigEndian(ReadValue<std::uint64_t>(value), 8, key);
    }
}

} // namespace

std::string SortKey(const SORTORDERSPEC& spec, WORD count, std::string_view form) {
    for (std::size_t entry = 0; entry < count && (entry + 1) * sizeof(CEPROPVAL) <= form.size(); ++entry) {
        const char* at = form.data() + entry * sizeof(CEPROPVAL);
        if (ReadValue<CEPROPID>(at) != spec.propid)
            continue;
        std::string key(1, kKnown);
        AppendValue(spec, at + offsetof(CEPROPVAL, val), form, key);
        if ((spec.dwFlags & CEDB_SORT_DESCENDING) != 0) {
            std::transform(
                key.begin() + 1, key.end(), key.begin() + 1,
                [](char byte) { return static_cast<char>(~byte); });
        }
        return key;
    }
    return std::string(1, (spec.dwFlags & CEDB_SORT_UNKNOWNFIRST) != 0 ? kUnknownFirst : kUnknownLast);
}

} // namespace storage
