// Writing the registry back from a file.
#include <algorithm>
#include <climits>
#include <new>

#include "platform/errors.h"
#include "platform/text.h"
#include "regbackup/keyhandle.h"
#include "regbackup/registrybackup.h"
#include "resources/resource.h"

bool RegistryBackup::Open() {
    file = CreateFileW(fileName, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, 0);
    if (file == INVALID_HANDLE_VALUE) {
        MessageFromString(owner, IDS_UNABLE_TO_OPEN_REGISTRY_FILE, fileName, kFailureBox);
        return false;
    }
    if (!ReadHeader())
        return false;
    if (password.text[0]) {
        PasswordBlock expected = password;
        ScramblePassword(&expected);
        if (!AskPassword(expected, owner))
            return false;
    }
    saveClassesRoot = header.mainKeys & kClassesRootSaved;
    saveCurrentUser = header.mainKeys & kCurrentUserSaved;
    saveLocalMachine = header.mainKeys & kLocalMachineSaved;
    restoreMode = true;
    return true;
}

bool RegistryBackup::ReadHeader() {
    DWORD read = 0;
    if (SetFilePointer(file, 0, nullptr, FILE_BEGIN) != 0 ||
        !ReadFile(file, &header, sizeof header, &read, nullptr) || read != sizeof header ||
        !IsRegistryBackup(header)) {
        ReportFailure(IDS_UNABLE_TO_READ_REGISTRY_FILE);
        return false;
    }
    password = header.password;
    password.text[kPasswordCapacity - 1] = 0;
    keyCount = header.keyCount;
    return true;
}

bool RegistryBackup::Restore() {
    if (!BeginProgress())
        return false;
    if (progress.dialog) {
        progress.dialog->SetRange(static_cast<int>(std::min<DWORD>(keyCount, INT_MAX)));
        progress.dialog->DisableCancel();
    }
    const bool restored = RestoreKeys();
    progress.End();
    CloseHandle(file);
    file = INVALID_HANDLE_VALUE;
    if (!restored || !keyCount)
        return false;
    MessageFromString(owner, IDS_SOFT_RESET, kFailureBox);
    return true;
}

bool RegistryBackup::RestoreKeys() {
    const std::unique_ptr<RecordReader> reader(new (std::nothrow) RecordReader(file, header.dataOffset));
    if (!reader || !valueBuffer) {
        ReportOutOfMemory();
        return false;
    }
    // While a key is open, the others need not be on the disk when they are closed; all are at the end.
    KeyHandle whole;
    whole.Open(HKEY_CLASSES_ROOT, nullptr);
    try {
        if (!RestoreRecords(*reader))
            return false;
    } catch (const std::bad_alloc&) {
        ReportOutOfMemory();
        return false;
    }
    return whole.Close() || AskAfterFailure() == IDIGNORE;
}

bool RegistryBackup::RestoreRecords(RecordReader& reader) {
    RegKeyRecord record;
    for (DWORD index = 0; index < keyCount; ++index) {
        if (!record.Read(reader)) {
            ReportFailure(IDS_UNABLE_TO_READ_REGISTRY_FILE);
            return false;
        }
        if (progress.dialog)
            progress.dialog->SetLine(record.path);
        if (IsChosen(record.mainKey) && !RestoreKey(record))
            return false;
        if (progress.dialog) {
            progress.dialog->Step();
            progress.dialog->Pump(); // whatever it says: a restore cannot be cancelled
        }
    }
    return true;
}

// False when the user wants to go no further.
bool RegistryBackup::RestoreKey(const RegKeyRecord& record) {
    int answer = IDRETRY;
    while (answer == IDRETRY) {
        const Difference difference = Compare(record);
        if (!difference.differs || WriteKey(record, difference))
            return true;
        answer = AskAfterFailure();
    }
    return answer != IDABORT;
}

RegistryBackup::Difference RegistryBackup::Compare(const RegKeyRecord& record) {
    Difference difference;
    KeyHandle present;
    if (!present.Open(record.mainKey, record.path)) {
        difference.differs = true;
        return difference;
    }
    difference.differs = !std::all_of(record.values.begin(), record.values.end(),
                                      [&](const auto& value) { return ValueMatches(present.key, *value); });
    if (!difference.differs)
        FindAdded(present.key, record, &difference);
    return difference;
}

bool RegistryBackup::ValueMatches(HKEY key, const RegValueRecord& value) {
    DWORD type = 0;
    DWORD size = kValueRoom;
    return RegQueryValueExW(key, value.name.c_str(), nullptr, &type, valueBuffer.get(), &size) ==
               ERROR_SUCCESS &&
           present.Set(value.name.c_str(), type, valueBuffer.get(), size) && present.Equals(value);
}

// Looks for values that the file does not have.
// Quirk: the value behind one that is to be deleted moves into its place and is not looked at, so it stays
// until the next restore.
void RegistryBackup::FindAdded(HKEY key, const RegKeyRecord& record, Difference* difference) {
    std::vector<std::u16string_view> known;
    for (const auto& value : record.values)
        known.emplace_back(value->name);
    std::sort(known.begin(), known.end());
    WCHAR name[MAX_PATH];
    for (DWORD index = 0;; ++index) {
        DWORD length = MAX_PATH;
        if (RegEnumValueW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        if (!std::binary_search(known.begin(), known.end(), std::u16string_view(name))) {
            difference->added.emplace_back(name);
            ++index;
        }
    }
    difference->differs = !difference->added.empty();
}

// All through one handle, so that the key changes in one step: deletions too.
bool RegistryBackup::WriteKey(const RegKeyRecord& record, const Difference& difference) {
    KeyHandle mainKey;
    KeyHandle key;
    if (!mainKey.Open(record.mainKey, u"") || !key.Create(mainKey.key, record.path, record.keyClass))
        return false;
    for (const std::u16string& name : difference.added)
        RegDeleteValueW(key.key, name.c_str());
    const bool set = std::all_of(record.values.rbegin(), record.values.rend(),
                                 [&](const auto& value) { return value->Apply(key.key); });
    const DWORD cause = GetLastError();
    const bool written = key.Close();
    if (!set)
        SetLastError(cause);
    return set && written;
}

int RegistryBackup::AskAfterFailure() const {
    constexpr UINT kStyle = MB_ABORTRETRYIGNORE | MB_ICONEXCLAMATION;
    const DWORD error = GetLastError();
    WCHAR code[32];
    wsprintfW(code, u"[0x%x (%d)]", error, error);
    return MessageFromString(progress.MessageOwner(owner), IDS_UNABLE_TO_STORE_KEY, code, kStyle);
}
