// The compiled resources: a row of entries, each a header and its bytes, both on multiples of four bytes.
#include "platform/resources.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <tuple>
#include <vector>

extern "C" const unsigned char strandviewResources[];
extern "C" const unsigned int strandviewResourcesSize;

struct ResourceEntry {
    WORD type;
    WORD id;
    DWORD size; // bytes
    const std::byte* bytes;
};

namespace {

constexpr WORD kStringType = 6;
constexpr unsigned kTextsPerTable = 16;
constexpr WORD kNumberMark = 0xFFFF; // before a type or a name that is a number

template <typename Number>
Number NumberAt(const std::byte* bytes) {
    Number number;
    std::memcpy(&number, bytes, sizeof(number));
    return number;
}

// Passes over a type or a name, a number or a text; false when it does not end within the header. `number`
// becomes 0 for a text.
bool PassName(const std::byte*& at, const std::byte* end, WORD& number) {
    number = 0;
    if (end - at < 4)
        return false;
    if (NumberAt<WORD>(at) == kNumberMark) {
        number = NumberAt<WORD>(at + 2);
        at += 4;
        return true;
    }
    while (end - at >= 2) {
        const WORD character = NumberAt<WORD>(at);
        at += 2;
        if (character == 0)
            return true;
    }
    return false;
}

std::size_t RoundUp(std::size_t size) {
    return (size + 3) & ~std::size_t{3};
}

// The number carried in the pointer; 0 for a name of text, of which the program has none.
WORD NumberOf(const WCHAR* name) {
    const auto value = reinterpret_cast<std::uintptr_t>(name);
    return value <= 0xFFFF ? static_cast<WORD>(value) : 0;
}

auto OrderOf(const ResourceEntry& entry) {
    return std::tuple(entry.type, entry.id);
}

// Every entry whose type and name are numbers, in the order of the file; what follows an entry that does not
// fit in `size` is left out. The entries point into `file`.
std::vector<ResourceEntry> IndexResources(const std::byte* file, std::size_t size) {
    std::vector<ResourceEntry> entries;
    std::size_t offset = 0;
    while (size - offset >= 2 * sizeof(DWORD)) {
        const std::size_t dataSize = NumberAt<DWORD>(file + offset);
        const std::size_t headerSize = NumberAt<DWORD>(file + offset + sizeof(DWORD));
        const std::size_t room = size - offset;
        if (headerSize < 2 * sizeof(DWORD) || RoundUp(headerSize) > room ||
            dataSize > room - RoundUp(headerSize))
            break;
        const std::byte* at = file + offset + 2 * sizeof(DWORD);
        const std::byte* const headerEnd = file + offset + headerSize;
        WORD type = 0;
        WORD id = 0;
        // The first entry is empty and only marks the format: its type and name are 0.
        if (PassName(at, headerEnd, type) && PassName(at, headerEnd, id) && type != 0 && id != 0)
            entries.push_back({type, id, static_cast<DWORD>(dataSize), file + offset + RoundUp(headerSize)});
        offset += std::min(RoundUp(headerSize) + RoundUp(dataSize), room);
    }
    return entries;
}

// Sorted by type and id, once for the run.
const std::vector<ResourceEntry>& ProgramResources() {
    static const std::vector<ResourceEntry> entries = [] {
        auto found =
            IndexResources(reinterpret_cast<const std::byte*>(strandviewResources), strandviewResourcesSize);
        std::stable_sort(found.begin(), found.end(),
                         [](const auto& left, const auto& right) { return OrderOf(left) < OrderOf(right); });
        return found;
    }();
    return entries;
}

HRSRC FindEntry(WORD type, WORD id) {
    const auto& entries = ProgramResources();
    const auto found = std::lower_bound(
        entries.begin(), entries.end(), std::tuple(type, id),
        [](const ResourceEntry& entry, const auto& wanted) { return OrderOf(entry) < wanted; });
    return found != entries.end() && OrderOf(*found) == std::tuple(type, id) ? &*found : nullptr;
}

// The text with that number within a table of sixteen counted texts; null when it is absent or cut short.
// `length` receives its characters; the text has no terminator and need not be aligned.
const std::byte* FindTableText(const ResourceEntry& table, unsigned number, std::size_t& length) {
    std::size_t offset = 0;
    for (unsigned passed = 0; table.size - offset >= sizeof(WORD); ++passed) {
        length = NumberAt<WORD>(table.bytes + offset);
        offset += sizeof(WORD);
        if (length > (table.size - offset) / sizeof(WCHAR))
            return nullptr;
        if (passed == number)
            return table.bytes + offset;
        offset += length * sizeof(WCHAR);
    }
    return nullptr;
}

} // namespace

HRSRC FindResourceW(HINSTANCE, const WCHAR* name, const WCHAR* type) {
    return FindEntry(NumberOf(type), NumberOf(name));
}

HGLOBAL LoadResource(HINSTANCE, HRSRC resource) {
    return resource ? resource->bytes : nullptr;
}

DWORD SizeofResource(HINSTANCE, HRSRC resource) {
    return resource ? resource->size : 0;
}

int LoadStringW(HINSTANCE, UINT id, WCHAR* text, int capacity) {
    if (!text || capacity <= 0)
        return 0;
    text[0] = u'\0';
    const HRSRC table =
        id <= 0xFFFF ? FindEntry(kStringType, static_cast<WORD>(id / kTextsPerTable + 1)) : nullptr;
    std::size_t length = 0;
    const std::byte* const found = table ? FindTableText(*table, id % kTextsPerTable, length) : nullptr;
    if (!found)
        return 0;
    length = std::min(length, static_cast<std::size_t>(capacity) - 1);
    std::memcpy(text, found, length * sizeof(WCHAR));
    text[length] = u'\0';
    return static_cast<int>(length);
}
