#include "app/start/commandline.h"

#include <memory>
#include <new>

#include "app/application.h"
#include "app/uiservices.h"
#include "backup/autobackup.h"
#include "backup/backup.h"
#include "backup/restore.h"
#include "dblist/databaselist.h"
#include "platform/errors.h"
#include "platform/objectstore.h"
#include "platform/process.h"
#include "platform/shell.h"
#include "platform/text.h"
#include "resources/resource.h"

namespace {

constexpr int kExitCode = -1;
constexpr WCHAR kCaseBit = 0x20; // between a small and a capital letter

enum class Job { None, Backup, Script, Restore };

struct CommandLine {
    Job job = Job::None;
    WCHAR path[MAX_PATH] = {}; // of the archive or the script
    bool quietDialogs = false; // D
    bool unattended = false;   // I
    bool noProgress = false;   // P
    bool systemToo = false;    // S
};

// Cuts a command line into tokens: blanks separate them, and a double quote at a token's start takes
// everything up to the next one, blanks included. There is no escape character.
class Tokenizer {
public:
    explicit Tokenizer(const WCHAR* line) : rest(line) {}

    // False at the end of the line. A token that does not fit is cut.
    bool Next(WCHAR (&token)[MAX_PATH]) {
        cut = false;
        while (*rest && IsSpaceCharacter(*rest))
            ++rest;
        if (!*rest)
            return false;
        const bool quoted = *rest == u'"';
        if (quoted)
            ++rest;
        int length = 0;
        while (*rest && (quoted ? *rest != u'"' : !IsSpaceCharacter(*rest))) {
            if (length < MAX_PATH - 1)
                token[length++] = *rest;
            else
                cut = true;
            ++rest;
        }
        token[length] = 0;
        if (quoted && *rest)
            ++rest;
        return true;
    }

    bool cut = false; // the last token was

private:
    const WCHAR* rest;
};

bool IsSwitch(const WCHAR* token) {
    return token[0] == u'-' || token[0] == u'/';
}

// The next token, unless it is a switch. A path that had to be cut would name another file, and a backup
// would replace that one.
bool TakeArgument(Tokenizer& tokens, WCHAR (&path)[MAX_PATH]) {
    return tokens.Next(path) && !tokens.cut && !IsSwitch(path);
}

// False when the switch makes the whole line invalid.
bool ApplySwitch(WCHAR letter, Tokenizer& tokens, CommandLine* parsed) {
    switch (letter & ~kCaseBit) {
    case u'A':
        // A script cannot follow another job; an archive replaces one.
        if (parsed->job != Job::None)
            return false;
        parsed->job = Job::Script;
        return TakeArgument(tokens, parsed->path);
    case u'B':
        parsed->job = Job::Backup;
        return TakeArgument(tokens, parsed->path);
    case u'R':
        parsed->job = Job::Restore;
        return TakeArgument(tokens, parsed->path);
    case u'D':
        parsed->quietDialogs = true;
        return true;
    case u'I':
        parsed->unattended = true;
        return true;
    case u'P':
        parsed->noProgress = true;
        return true;
    case u'S':
        parsed->systemToo = true;
        return true;
    }
    return false;
}

bool IsLetter(WCHAR character) {
    return (character >= u'A' && character <= u'Z') || (character >= u'a' && character <= u'z');
}

CommandLine Parse(const WCHAR* line) {
    CommandLine parsed;
    Tokenizer tokens(line);
    WCHAR token[MAX_PATH];
    while (tokens.Next(token)) {
        if (!IsSwitch(token))
            continue;
        if (!IsLetter(token[1]) || !ApplySwitch(token[1], tokens, &parsed)) {
            parsed.job = Job::None;
            break;
        }
    }
    return parsed;
}

// Up to one that the engine refuses. False, with the last error, when the store fails before their end.
bool AddAllDatabases(HANDLE databases, BackupEngine& engine) {
    while (const CEOID oid = CeFindNextDatabase(databases)) {
        CEOIDINFO info = {};
        if (!CeOidGetInfo(oid, &info)) {
            if (GetLastError() != ERROR_FILE_NOT_FOUND)
                return false;
            continue; // deleted meanwhile
        }
        const WCHAR* name = info.infDatabase.szDbaseName;
        const bool leftOut = info.wObjType != OBJTYPE_DATABASE ||
                             (IsSystemDatabase(name) && !App().settings->includeSystemDatabases);
        if (!leftOut && !engine.WriteDatabase(name))
            return true;
    }
    return GetLastError() == ERROR_NO_MORE_ITEMS;
}

void WriteAllDatabases(BackupEngine& engine, HANDLE databases, const WCHAR* path) {
    if (!engine.BeginBackup(nullptr, false, path))
        return;
    if (!AddAllDatabases(databases, engine)) {
        engine.complete = false;
        DbHandle::ReportStoreFailure(engine.MessageOwner());
    }
    engine.Finish();
}

void BackUpAllDatabases(const WCHAR* path) {
    const std::unique_ptr<BackupEngine> engine(new (std::nothrow) BackupEngine);
    if (!engine) {
        if (MayShowFailure())
            SHShowOutOfMemory(nullptr, 0);
        return;
    }
    // Before an archive is touched, for the sake of the one that may be there.
    const HANDLE databases = CeFindFirstDatabase(0);
    if (databases == INVALID_HANDLE_VALUE) {
        DbHandle::ReportStoreFailure(nullptr);
        return;
    }
    WriteAllDatabases(*engine, databases, path);
    CloseHandle(databases);
}

void RunJob(const CommandLine& parsed) {
    switch (parsed.job) {
    case Job::Backup:
        BackUpAllDatabases(parsed.path);
        break;
    case Job::Script:
        CopyText(App().settings->scriptName, parsed.path);
        RunAutobackup(nullptr);
        break;
    case Job::Restore:
        if (RestoreCommand(nullptr, parsed.path))
            RebuildDatabaseList();
        break;
    case Job::None:
        MessageFromString(nullptr, IDS_INVALID_COMMAND_LINE, kFailureBox);
        break;
    }
}

} // namespace

int RunCommandLine(const WCHAR* commandLine) {
    const CommandLine parsed = Parse(commandLine);
    Settings* settings = new (std::nothrow) Settings;
    if (!settings) {
        NoteFailure();
        return kExitCode;
    }
    App().settings = settings;
    settings->interactive = !parsed.quietDialogs;
    settings->unattended = parsed.unattended;
    settings->noProgress = parsed.noProgress;
    settings->includeSystemDatabases = parsed.systemToo;
    RunJob(parsed);
    App().settings = nullptr;
    delete settings; // saves; after a script its path is the one remembered
    return kExitCode;
}
