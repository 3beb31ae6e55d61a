#include "backup/archive.h"

#include <algorithm>
#include <new>

#include "app/application.h"
#include "backup/compressor.h"
#include "platform/shell.h"

void ScramblePassword(PasswordBlock* password) {
    constexpr WCHAR kMask = 0x5C3A;
    WCHAR* const end = password->text + kPasswordCapacity;
    WCHAR* character = password->text;
    // A character that becomes 0 ends the password: stored ones are compared in this shortened form too.
    while (character < end - 1 && *character && (*character ^= kMask) != 0)
        ++character;
    std::fill(character, end, WCHAR(0));
}

Archive::Archive() = default;
Archive::~Archive() = default;

HWND Archive::MessageOwner() const {
    return progress ? progress->window : owner;
}

void Archive::ReportFailure(UINT stringId) const {
    if (MayShowFailure())
        MessageFromString(MessageOwner(), stringId, kFailureBox);
}

void Archive::ReportFailure(UINT stringId, const WCHAR* argument) const {
    if (MayShowFailure())
        MessageFromString(MessageOwner(), stringId, argument, kFailureBox);
}

void Archive::ReportOutOfMemory() const {
    if (MayShowFailure())
        SHShowOutOfMemory(MessageOwner(), 0);
}

void Archive::BeginProgress(UINT confirmString, UINT titleString) {
    constexpr int kInitialRange = 100;
    if (App().settings && App().settings->noProgress) {
        waitCursor.reset(new (std::nothrow) WaitCursor);
        return;
    }
    progress.reset(new (std::nothrow) ProgressDialog(confirmString, titleString, kInitialRange));
    if (progress && !progress->Create(owner))
        progress.reset();
}

void Archive::BeginProgressOn(UINT formatString, const CEDBASEINFO& database) {
    if (!progress)
        return;
    progress->SetRange(database.wNumRecords + 1);
    progress->SetText(formatString, 0, database.szDbaseName);
    BeforeStep(database.dwSize);
}

bool Archive::ProgressStep(UINT formatString, const CEDBASEINFO& database) {
    if (!progress)
        return true;
    progress->SetText(formatString, -1, database.szDbaseName);
    return progress->Pump();
}

void Archive::BeforeStep(DWORD bytes) {
    if (progress && bytes >= kLongStep)
        progress->ShowWaitingText();
}

void Archive::EndProgress() {
    progress.reset();
    waitCursor.reset();
}

bool Archive::Stopped() const {
    return !App().settings || (progress && progress->cancelled);
}

Archive::CodecResult Archive::MakeCodec() {
    codec.reset(new (std::nothrow) Compressor);
    if (!codec)
        return CodecResult::NoCodec;
    if (codec->AllocateTables())
        return CodecResult::Ready;
    codec.reset();
    return CodecResult::NoTables;
}
