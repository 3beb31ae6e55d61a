#include "platform/storage/recordform.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <unordered_map>

namespace storage {

namespace {

constexpr std::size_t kEntryBytes = sizeof(CEPROPVAL);
constexpr std::size_t kValueOffset = offsetof(CEPROPVAL, val);
constexpr std::size_t kBlobPointer = offsetof(CEBLOB, lpb);
constexpr std::string_view kEmptyString("\0\0", sizeof(char16_t));

DWORD ReadWord(const BYTE* at) {
    DWORD word;
    std::memcpy(&word, at, sizeof(word));
    return word;
}

void WriteWord(BYTE* at, DWORD word) {
    std::memcpy(at, &word, sizeof(word));
}

// How many of a value's eight bytes mean something. The others are not kept, for they may be left over from
// anything.
std::size_t MeaningfulBytes(WORD type) {
    switch (type) {
    case CEVT_I2:
    case CEVT_UI2:
        return 2;
    case CEVT_I4:
    case CEVT_UI4:
    case CEVT_BOOL:
    case CEVT_LPWSTR:
        return 4;
    default:
        return 8;
    }
}

// The bytes of a string with its terminator, of at most `room` bytes; 0 when it has no end there.
std::size_t StringBytes(const char* at, std::size_t room) {
    constexpr std::uint64_t kOnes = 0x0001'0001'0001'0001, kTops = 0x8000'8000'8000'8000;
    std::size_t unit = 0;
    for (std::uint64_t four = 0; unit + sizeof(four) <= room; unit += sizeof(four)) {
        std::memcpy(&four, at + unit, sizeof(four));
        if (((four - kOnes) & ~four & kTops) != 0) // one of them is 0
            break;
    }
    for (; unit + sizeof(char16_t) <= room; unit += sizeof(char16_t))
        if (at[unit] == 0 && at[unit + 1] == 0)
            return unit + sizeof(char16_t);
    return 0;
}

// Finds what lies outside a stored entry. `value` holds an offset.
bool FindOutside(WORD type, const BYTE* value, std::size_t entriesBytes, std::string_view form,
                 std::string_view& outside, bool& present) {
    outside = {};
    present = false;
    if (type != CEVT_LPWSTR && type != CEVT_BLOB)
        return true;
    const std::size_t offset = ReadWord(type == CEVT_LPWSTR ? value : value + kBlobPointer);
    const std::size_t blobBytes = type == CEVT_BLOB ? ReadWord(value) : 0;
    if (offset == 0)
        return blobBytes == 0;
    if (offset < entriesBytes || offset > form.size())
        return false;
    const std::size_t room = form.size() - offset;
    const std::size_t bytes = type == CEVT_BLOB ? blobBytes : StringBytes(form.data() + offset, room);
    const bool misplaced = type == CEVT_LPWSTR && (bytes == 0 || offset % sizeof(char16_t) != 0);
    if (misplaced || bytes > room)
        return false;
    outside = form.substr(offset, bytes);
    present = true;
    return true;
}

// Finds properties by identifier, also in records that are too long to search from the front every time.
class PropertyIndex {
public:
    explicit PropertyIndex(const std::vector<Property>& properties) : properties(properties) {}

    // Its index, or one past the end.
    std::size_t Find(CEPROPID id) {
        constexpr std::size_t kFewProperties = 32;
        if (properties.size() <= kFewProperties) {
            const auto found = std::find_if(properties.begin(), properties.end(),
                                            [id](const Property& property) { return property.id == id; });
            return static_cast<std::size_t>(found - properties.begin());
        }
        for (; indexed < properties.size(); ++indexed)
            indices.emplace(properties[indexed].id, indexed);
        const auto found = indices.find(id);
        return found == indices.end() ? properties.size() : found->second;
    }

private:
    const std::vector<Property>& properties;
    std::unordered_map<CEPROPID, std::size_t> indices;
    std::size_t indexed = 0;
};

bool Overlap(std::string_view one, std::string_view other) {
    const std::less<const char*> before;
    return before(one.data(), other.data() + other.size()) && before(other.data(), one.data() + one.size());
}

// Takes over one value of a caller. False when its pointer does not lie in a live block with all that it
// stands for, or lies among the `entries`.
bool ReadValue(const CEPROPVAL& value, std::string_view entries, Property& property) {
    const WORD type = TypeFromPropID(value.propid);
    property.id = value.propid;
    std::memcpy(property.value, &value.val, MeaningfulBytes(type));
    if (type != CEVT_LPWSTR && type != CEVT_BLOB)
        return true;
    const std::size_t blobBytes = type == CEVT_BLOB ? value.val.blob.dwCount : 0;
    const DWORD address = type == CEVT_BLOB ? value.val.blob.lpb.Address() : value.val.lpwstr.Address();
    if (address == 0 || (type == CEVT_BLOB && blobBytes == 0))
        return blobBytes == 0;
    const std::size_t room = LiveBytesAt(address);
    const char* at = static_cast<const char*>(ArenaPointer(address));
    const std::size_t bytes = type == CEVT_BLOB ? blobBytes : StringBytes(at, room);
    if (bytes == 0 || bytes > room || Overlap({at, bytes}, entries))
        return false;
    property.outside = {at, bytes};
    property.present = true;
    return true;
}

} // namespace

bool ParseRecord(WORD count, std::string_view form, std::vector<Property>& properties) {
    const std::size_t entriesBytes = count * kEntryBytes;
    if (entriesBytes > form.size())
        return false;
    properties.assign(count, Property());
    for (std::size_t entry = 0; entry < count; ++entry) {
        const BYTE* at = reinterpret_cast<const BYTE*>(form.data()) + entry * kEntryBytes;
        Property& property = properties[entry];
        property.id = ReadWord(at);
        std::memcpy(property.value, at + kValueOffset, sizeof(property.value));
        if (!FindOutside(TypeFromPropID(property.id), property.value, entriesBytes, form, property.outside,
                         property.present))
            return false;
    }
    return true;
}

bool ApplyValues(WORD count, const CEPROPVAL* values, std::vector<Property>& properties) {
    PropertyIndex index(properties);
    const std::string_view entries(reinterpret_cast<const char*>(values), count * kEntryBytes);
    for (std::size_t at = 0; at < count; ++at) {
        const std::size_t found = index.Find(values[at].propid);
        Property property;
        if ((values[at].wFlags & CEDB_PROPDELETE) != 0) {
            property.id = values[at].propid;
            property.removed = true;
        } else if (!ReadValue(values[at], entries, property)) {
            return false;
        }
        if (found < properties.size())
            properties[found] = property;
        else if (!property.removed)
            properties.push_back(property);
    }
    return true;
}

bool BuildRecord(const std::vector<Property>& properties, WORD& count, std::string& form) {
    constexpr std::size_t kMostExtra = 1 + kEmptyString.size(); // to start a string evenly, and an absent one
    std::size_t entries = 0;
    std::size_t bytes = 0;
    for (const Property& property : properties) {
        entries += property.removed ? 0 : 1;
        bytes += property.removed ? 0 : kEntryBytes + property.outside.size() + kMostExtra;
    }
    if (entries > 0xFFFF || bytes > kLargestRecord)
        return false;
    count = static_cast<WORD>(entries);
    form.assign(entries * kEntryBytes, 0);
    form.reserve(bytes);
    std::size_t entry = 0;
    for (const Property& property : properties) {
        if (property.removed)
            continue;
        const WORD type = TypeFromPropID(property.id);
        BYTE value[sizeof(property.value)];
        std::memcpy(value, property.value, sizeof(value));
        if (type == CEVT_LPWSTR) {
            // An absent string is kept as an empty one: offset 0 lies inside the entries.
            form.append(form.size() % sizeof(char16_t), '\0');
            WriteWord(value, static_cast<DWORD>(form.size()));
            form.append(property.present ? property.outside : kEmptyString);
        } else if (type == CEVT_BLOB) {
            WriteWord(value + kBlobPointer, property.present ? static_cast<DWORD>(form.size()) : 0);
            form.append(property.outside);
        }
        BYTE* at = reinterpret_cast<BYTE*>(form.data()) + entry++ * kEntryBytes;
        WriteWord(at, property.id);
        std::memcpy(at + kValueOffset, value, sizeof(value));
    }
    return true;
}

bool RelocateRecord(WORD count, DWORD size, BYTE* block) {
    const std::size_t entriesBytes = count * kEntryBytes;
    if (entriesBytes > size)
        return false;
    const std::string_view form(reinterpret_cast<const char*>(block), size);
    const DWORD address = ArenaAddress(block);
    for (BYTE* entry = block; entry < block + entriesBytes; entry += kEntryBytes) {
        const WORD type = TypeFromPropID(ReadWord(entry));
        BYTE* value = entry + kValueOffset;
        std::string_view outside;
        bool present = false;
        if (!FindOutside(type, value, entriesBytes, form, outside, present))
            return false;
        if (present) {
            BYTE* pointer = type == CEVT_LPWSTR ? value : value + kBlobPointer;
            WriteWord(pointer, ReadWord(pointer) + address);
        }
    }
    return true;
}

} // namespace storage
