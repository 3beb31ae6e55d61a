#include "backup/autobackup.h"

#include <algorithm>

#include "app/application.h"
#include "backup/backup.h"
#include "platform/files.h"
#include "platform/text.h"
#include "resources/resource.h"

namespace {

template <typename T>
bool WriteStruct(HANDLE file, const T& data) {
    DWORD written = 0;
    return WriteFile(file, &data, sizeof data, &written, nullptr) && written == sizeof data;
}

template <typename T>
bool ReadStruct(HANDLE file, T* data) {
    DWORD read = 0;
    return ReadFile(file, data, sizeof *data, &read, nullptr) && read == sizeof *data;
}

bool GoTo(HANDLE file, LONG offset) {
    return SetFilePointer(file, offset, nullptr, FILE_BEGIN) != INVALID_SET_FILE_POINTER;
}

void ReportScript(HWND owner, UINT stringId, const WCHAR* path) {
    if (MayShowFailure())
        MessageFromString(owner, stringId, path, kFailureBox);
}

} // namespace

ScriptWriter::~ScriptWriter() {
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
}

void ScriptWriter::GiveUp(HWND owner) {
    ReportScript(owner, IDS_SCRIPT_NOT_CREATED, path);
    if (CloseHandle(file)) // otherwise an older script still stands under the name
        DeleteFileW(path);
    file = INVALID_HANDLE_VALUE;
}

void ScriptWriter::Create(HWND owner, const WCHAR* archivePath, bool compressed,
                          const PasswordBlock* password) {
    CopyText(path, App().settings->scriptName);
    file =
        CreateFileW(path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, 0);
    if (file == INVALID_HANDLE_VALUE) {
        ReportScript(owner, IDS_SCRIPT_NOT_CREATED, path);
        return;
    }
    ScriptHeader header = {};
    header.headerSize = sizeof header;
    header.mark = kScriptMark;
    header.compressed = compressed;
    CopyText(header.archivePath, archivePath);
    if (password)
        header.password = *password;
    if (!WriteStruct(file, header))
        GiveUp(owner);
}

void ScriptWriter::Append(HWND owner, const WCHAR* databaseName) {
    if (file == INVALID_HANDLE_VALUE)
        return;
    ScriptEntry entry = {};
    CopyText(entry.databaseName, databaseName);
    if (!WriteStruct(file, entry))
        GiveUp(owner);
}

void ScriptWriter::Complete(HWND owner, DWORD databaseCount, bool complete) {
    if (file == INVALID_HANDLE_VALUE)
        return;
    ScriptHeader header;
    bool written = GoTo(file, 0) && ReadStruct(file, &header);
    if (written) {
        header.databaseCount = databaseCount;
        written = GoTo(file, 0) && WriteStruct(file, header) && (!complete || FlushFileBuffers(file));
    }
    if (!written) {
        GiveUp(owner);
        return;
    }
    if (!CloseHandle(file))
        ReportScript(owner, IDS_SCRIPT_NOT_CREATED, path);
    file = INVALID_HANDLE_VALUE;
}

namespace {

bool ReadScriptHeader(HANDLE script, ScriptHeader* header) {
    if (!ReadStruct(script, header) || header->mark != kScriptMark)
        return false;
    const WCHAR* const end = std::end(header->archivePath);
    header->password.text[kPasswordCapacity - 1] = 0;
    return std::find(std::cbegin(header->archivePath), end, WCHAR(0)) != end;
}

bool WriteListedDatabases(HANDLE script, const WCHAR* path, DWORD count, BackupEngine* engine) {
    for (DWORD i = 0; i < count; ++i) {
        ScriptEntry entry;
        if (!ReadStruct(script, &entry)) {
            ReportScript(engine->MessageOwner(), IDS_SCRIPT_MISSING, path);
            return false;
        }
        entry.databaseName[CEDB_MAXDBASENAMELEN - 1] = 0;
        if (!engine->WriteDatabase(entry.databaseName))
            return false;
    }
    return true;
}

bool Replay(HWND owner, HANDLE script, const WCHAR* path, const ScriptHeader& header) {
    BackupEngine engine;
    if (header.password.text[0]) {
        engine.passwordFlag = true;
        engine.password = header.password;
    }
    bool ok = engine.BeginBackup(owner, false, header.archivePath);
    if (ok) {
        ok = WriteListedDatabases(script, path, header.databaseCount, &engine);
        engine.complete = engine.complete && ok;
        ok = engine.Finish() && ok;
    }
    // No failure leaves an archive behind, not even an older one that the user did not want to be replaced: a
    // script's archive is either the script's last good backup or missing. Where nobody said so, one that was
    // never opened stays.
    if (engine.refused)
        DeleteFileW(header.archivePath);
    else if (!ok && engine.leftPartial)
        DeleteFileW(engine.archivePath);
    else if (ok && engine.complete && RunsInteractively())
        MessageFromString(owner, IDS_BACKUP_COMPLETE, engine.archivePath, kInformationBox);
    return ok;
}

} // namespace

bool RunAutobackup(HWND owner) {
    WCHAR path[MAX_PATH]; // the settings may be gone before the backup is over
    CopyText(path, App().settings->scriptName);
    const HANDLE script =
        CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, 0);
    ScriptHeader header;
    const bool readable = script != INVALID_HANDLE_VALUE && ReadScriptHeader(script, &header);
    if (!readable)
        ReportScript(owner, IDS_SCRIPT_MISSING, path);
    const bool ok = readable && Replay(owner, script, path, header);
    if (script != INVALID_HANDLE_VALUE)
        CloseHandle(script);
    return ok;
}
