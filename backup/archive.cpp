#include "backup/archive.h"

#include <new>

#include "app/application.h"
#include "backup/compressor.h"
#include "platform/shell.h"

Archive::Archive() = default;
Archive::~Archive() = default;

HWND Archive::MessageOwner() const {
    return progress.MessageOwner(owner);
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

void Archive::BeginProgressOn(UINT formatString, const CEDBASEINFO& database) {
    if (!progress.dialog)
        return;
    progress.dialog->SetRange(database.wNumRecords + 1);
    progress.dialog->SetText(formatString, 0, database.szDbaseName);
    BeforeStep(database.dwSize);
}

bool Archive::ProgressStep(UINT formatString, const CEDBASEINFO& database) {
    if (!progress.dialog)
        return true;
    progress.dialog->SetText(formatString, -1, database.szDbaseName);
    return progress.dialog->Pump();
}

void Archive::BeforeStep(DWORD bytes) {
    if (progress.dialog && bytes >= kLongStep)
        progress.dialog->ShowWaitingText();
}

bool Archive::Stopped() const {
    return !App().settings || (progress.dialog && progress.dialog->cancelled);
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
