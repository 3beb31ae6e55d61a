#include "regbackup/registrybackup.h"

#include <new>

#include "app/application.h"
#include "platform/errors.h"
#include "platform/shell.h"
#include "platform/text.h"
#include "regbackup/keyhandle.h"
#include "resources/resource.h"

namespace {

constexpr const WCHAR* kPattern = u"*.rbk";

} // namespace

bool BackupRegistry(HWND owner, const WCHAR* fileName) {
    RegistryBackup backup(owner, fileName);
    if (!ShowMainKeys(owner, &backup))
        return false;
    if (!backup.fileName[0] && !PickFile(owner, backup.fileName, false, IDS_FILTER_REGISTRY, kPattern))
        return false;
    return backup.Save();
}

bool RestoreRegistry(HWND owner, const WCHAR* fileName) {
    RegistryBackup backup(owner, fileName);
    if (!backup.fileName[0] && !PickFile(owner, backup.fileName, true, IDS_FILTER_REGISTRY, kPattern))
        return false;
    return backup.Open() && ShowMainKeys(owner, &backup) && backup.Restore();
}

RegistryBackup::RegistryBackup(HWND owner, const WCHAR* name)
    : valueBuffer(new (std::nothrow) BYTE[kValueRoom + 1]), owner(owner) {
    CopyText(fileName, name);
}

RegistryBackup::~RegistryBackup() {
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
}

void RegistryBackup::ReportFailure(UINT stringId) const {
    MessageFromString(progress.MessageOwner(owner), stringId, kFailureBox);
}

void RegistryBackup::ReportOutOfMemory() const {
    SHShowOutOfMemory(progress.MessageOwner(owner), 0);
}

bool RegistryBackup::BeginProgress() {
    if (progress.Begin(owner, IDS_CONFIRM_CANCEL_REGISTRY, IDS_REGISTRY_BACKUP))
        return true;
    ReportOutOfMemory();
    return false;
}

bool RegistryBackup::Save() {
    constexpr int kSteps = 5; // the header, the main keys, the end
    if (!BeginProgress())
        return false;
    if (progress.dialog)
        progress.dialog->SetRange(kSteps);
    WCHAR chosenPath[MAX_PATH];
    file = CreateFileForWriting(progress.MessageOwner(owner), fileName, chosenPath, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        progress.End();
        return false;
    }
    CopyText(fileName, chosenPath);
    const std::unique_ptr<RecordWriter> writer(new (std::nothrow) RecordWriter(file));
    if (!writer)
        ReportOutOfMemory();
    const bool saved = CloseSaved(writer && WriteHeader() && SaveMainKeys(*writer) && WriteHeader());
    if (progress.dialog)
        progress.dialog->Step();
    progress.End();
    return saved;
}

bool RegistryBackup::WriteHeader() {
    CompleteHeader(&header);
    header.password = password;
    header.mainKeys = (saveClassesRoot ? kClassesRootSaved : 0) | (saveCurrentUser ? kCurrentUserSaved : 0) |
                      (saveLocalMachine ? kLocalMachineSaved : 0);
    header.keyCount = keyCount;
    DWORD written = 0;
    if (SetFilePointer(file, 0, nullptr, FILE_BEGIN) == 0 &&
        WriteFile(file, &header, sizeof header, &written, nullptr) && written == sizeof header)
        return true;
    ReportFailure(IDS_UNABLE_TO_WRITE_REGISTRY_FILE);
    return false;
}

bool RegistryBackup::SaveMainKeys(RecordWriter& writer) {
    // While a key is open the platform reads ahead.
    KeyHandle reading;
    reading.Open(HKEY_CLASSES_ROOT, nullptr);
    bool whole = true;
    if (progress.dialog)
        progress.dialog->Step();
    for (const HKEY mainKey : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        currentMainKey = mainKey;
        whole = whole && (!IsChosen(mainKey) || Walk(mainKey, u"", writer));
        if (progress.dialog)
            progress.dialog->Step();
    }
    if (!whole || writer.Flush())
        return whole;
    ReportFailure(IDS_UNABLE_TO_WRITE_REGISTRY_FILE);
    return false;
}

// Closes the file, which is on the disk then, or deletes it when it is not whole.
bool RegistryBackup::CloseSaved(bool whole) {
    const bool synced = whole && FlushFileBuffers(file);
    const bool closed = CloseHandle(file);
    file = INVALID_HANDLE_VALUE;
    if (synced && closed)
        return true;
    if (whole)
        ReportFailure(IDS_UNABLE_TO_WRITE_REGISTRY_FILE);
    if (closed) // otherwise an older file still stands under the name
        DeleteFileW(fileName);
    return false;
}

bool RegistryBackup::IsChosen(HKEY mainKey) const {
    switch (mainKey) {
    case HKEY_CLASSES_ROOT:
        return saveClassesRoot;
    case HKEY_CURRENT_USER:
        return saveCurrentUser;
    case HKEY_LOCAL_MACHINE:
        return saveLocalMachine;
    }
    return false;
}

// Saves what is below a key, each subkey before its own subkeys.
bool RegistryBackup::Walk(HKEY key, const WCHAR* path, RecordWriter& writer) {
    WCHAR fullPath[MAX_PATH];
    WCHAR keyClass[MAX_PATH];
    if (!valueBuffer) {
        ReportOutOfMemory();
        return false;
    }
    int length = CopyText(fullPath, path);
    if (length)
        length += CopyText(fullPath + length, static_cast<std::size_t>(MAX_PATH - length), u"\\");
    for (DWORD index = 0;; ++index) {
        // The platform keeps paths short enough to be taken whole.
        DWORD nameLength = static_cast<DWORD>(MAX_PATH - length);
        DWORD classLength = MAX_PATH;
        const LONG result = RegEnumKeyExW(key, index, fullPath + length, &nameLength, nullptr, keyClass,
                                          &classLength, nullptr);
        if (result == ERROR_NO_MORE_ITEMS)
            return true;
        if (result != ERROR_SUCCESS) {
            ReportFailure(IDS_UNABLE_TO_READ_REGISTRY);
            return false;
        }
        if (!ShowKey(fullPath))
            return false;
        HKEY subkey = 0;
        if (RegOpenKeyExW(key, fullPath + length, 0, KEY_ALL_ACCESS, &subkey) != ERROR_SUCCESS)
            continue; // it may be gone since
        const bool saved = SaveKey(subkey, fullPath, keyClass, writer) && Walk(subkey, fullPath, writer);
        RegCloseKey(subkey);
        if (!saved)
            return false;
    }
}

// False once the user has cancelled.
bool RegistryBackup::ShowKey(const WCHAR* path) {
    if (!progress.dialog)
        return true;
    progress.dialog->SetLine(path);
    return progress.dialog->Pump();
}

bool RegistryBackup::SaveKey(HKEY key, const WCHAR* path, const WCHAR* keyClass, RecordWriter& writer) {
    saving.Initialise(path, currentMainKey, keyClass);
    if (!ReadValues(key, &saving))
        return false;
    if (!saving.Write(writer)) {
        ReportFailure(IDS_UNABLE_TO_WRITE_REGISTRY_FILE);
        return false;
    }
    if (!saving.values.empty())
        ++keyCount;
    return true;
}

bool RegistryBackup::ReadValues(HKEY key, RegKeyRecord* record) {
    for (DWORD index = 0;; ++index) {
        WCHAR name[MAX_PATH];
        DWORD nameLength = MAX_PATH;
        DWORD type = 0;
        DWORD size = kValueRoom;
        const LONG result =
            RegEnumValueW(key, index, name, &nameLength, nullptr, &type, valueBuffer.get(), &size);
        if (result == ERROR_NO_MORE_ITEMS)
            return true;
        if (result != ERROR_SUCCESS) { // a value that is longer, too
            ReportFailure(IDS_UNABLE_TO_READ_REGISTRY);
            return false;
        }
        RegValueRecord* const value = record->Append();
        if (!value || !value->Set(name, type, valueBuffer.get(), size)) {
            ReportOutOfMemory();
            return false;
        }
    }
}
