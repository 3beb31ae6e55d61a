#include "regbackup/registryfile.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/errors.h"
#include "platform/text.h"

namespace {

constexpr BYTE kMagic[] = {'1', '0', 'W', 'R'};

} // namespace

void CompleteHeader(RegistryBackupHeader* header) {
    std::copy_n(kMagic, sizeof kMagic, header->magic);
    header->headerSize = sizeof *header;
    header->dataOffset = sizeof *header;
    SYSTEMTIME now;
    GetLocalTime(&now);
    SystemTimeToFileTime(&now, &header->time);
}

bool IsRegistryBackup(const RegistryBackupHeader& header) {
    return std::equal(kMagic, kMagic + sizeof kMagic, header.magic) && header.headerSize == sizeof header;
}

bool RegValueRecord::Set(const WCHAR* newName, DWORD newType, const BYTE* newData, DWORD newLength) {
    Clear();
    const DWORD bytes = newData ? newLength : 0;
    if (!Allocate(newName, bytes))
        return false;
    if (bytes)
        std::memcpy(data.get(), newData, bytes);
    type = newType;
    length = newLength;
    return true;
}

bool RegValueRecord::Allocate(const WCHAR* newName, DWORD bytes) {
    try {
        name = newName ? newName : u"";
        data.reset(bytes ? new BYTE[static_cast<std::size_t>(bytes) + 1] : nullptr);
        return true;
    } catch (const std::bad_alloc&) {
        Clear();
        return false;
    }
}

void RegValueRecord::Clear() {
    data.reset();
    name.clear();
    type = 0;
    length = 0;
}

bool RegValueRecord::Equals(const RegValueRecord& other) const {
    return type == other.type && length == other.length && name == other.name &&
           (!data || (other.data && std::memcmp(data.get(), other.data.get(), length) == 0));
}

bool RegValueRecord::Write(RecordWriter& file) const {
    return file.WriteText(name.c_str()) && file.WriteNumber(type) && file.WriteNumber(length) &&
           (!data || file.Write(data.get(), length));
}

bool RegValueRecord::Read(RecordReader& file) {
    Clear();
    WCHAR newName[MAX_PATH];
    DWORD bytes = 0;
    if (!file.ReadText(newName) || !file.ReadNumber(&type) || !file.ReadNumber(&bytes) ||
        bytes > file.BytesLeft() || !Allocate(newName, bytes))
        return false;
    length = bytes;
    return file.Read(data.get(), bytes);
}

bool RegValueRecord::Apply(HKEY key) const {
    return RegSetValueExW(key, name.c_str(), 0, type, data.get(), length) == ERROR_SUCCESS;
}

void RegKeyRecord::Reset() {
    path[0] = 0;
    keyClass[0] = 0;
    valueCount = 0;
    mainKey = HKEY_CLASSES_ROOT;
    values.clear();
}

void RegKeyRecord::Initialise(const WCHAR* newPath, HKEY newMainKey, const WCHAR* newClass) {
    Reset();
    CopyText(path, newPath);
    CopyText(keyClass, newClass);
    mainKey = newMainKey;
}

bool RegKeyRecord::Write(RecordWriter& file) const {
    if (values.empty())
        return true;
    if (!file.WriteNumber(static_cast<DWORD>(values.size())) || !file.WriteNumber(mainKey) ||
        !file.WriteText(path) || !file.WriteText(keyClass))
        return false;
    return std::all_of(values.begin(), values.end(), [&](const auto& value) { return value->Write(file); });
}

bool RegKeyRecord::Read(RecordReader& file) {
    Reset();
    if (ReadWhole(file))
        return true;
    Reset();
    return false;
}

// The count is believed only as far as values follow.
bool RegKeyRecord::ReadWhole(RecordReader& file) {
    DWORD count = 0;
    if (!file.ReadNumber(&count) || !file.ReadNumber(&mainKey) || !file.ReadText(path) ||
        !file.ReadText(keyClass))
        return false;
    valueCount = static_cast<LONG>(count);
    if (valueCount < 1 || mainKey < HKEY_CLASSES_ROOT || mainKey > HKEY_LOCAL_MACHINE)
        return false;
    for (LONG index = 0; index < valueCount; ++index) {
        RegValueRecord* const value = Append();
        if (!value || !value->Read(file))
            return false;
    }
    return true;
}

RegValueRecord* RegKeyRecord::Append() {
    try {
        values.push_back(std::make_unique<RegValueRecord>());
        return values.back().get();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
