#include <algorithm>
#include <cstring>

#include "app/uiservices.h"
#include "infrared/beaming.h"
#include "infrared/transfer.h"
#include "platform/datetime.h"
#include "platform/heap.h"
#include "platform/shell.h"
#include "resources/resource.h"
#include "store/dbhandle.h"

namespace {

// A block while it is being sent, with a little room to spare.
struct WorkBuffer {
    WorkBuffer() : data(static_cast<BYTE*>(LocalAlloc(LMEM_FIXED, kBlockSize + 10))) {}
    ~WorkBuffer() { LocalFree(data); }
    WorkBuffer(const WorkBuffer&) = delete;
    WorkBuffer& operator=(const WorkBuffer&) = delete;

    BYTE* data;
};

struct Sender {
    Sender(HWND mainWindow, DbHandle& source, const CEDBASEINFO& info, const WorkBuffer& buffer)
        : transfer(mainWindow, IDS_SENDING_DATABASE, info.szDbaseName), database(source), header(info),
          work(buffer) {}

    bool FindReceiver();
    bool SendHeader();
    bool SendRecords();
    bool SendRecord(DWORD number);
    bool SendData();
    bool SendEnd() { return transfer.PumpAndPause() && transfer.channel.SendCode(kEndOfTransfer, true); }
    bool Answered() { return transfer.AwaitAnswer() == kAcknowledge; }

    Transfer transfer;
    DbHandle& database;
    const CEDBASEINFO& header;
    const WorkBuffer& work;
    RecordBuffer record;
};

// Only the user ends the search.
bool Sender::FindReceiver() {
    constexpr DWORD kBetweenTries = 50; // milliseconds
    if (!transfer.channel.CreateClient())
        return false;
    transfer.SetStatus(IDS_LOOKING_FOR_RECEIVER);
    while (transfer.Pump()) {
        const IrChannel::ConnectResult result = transfer.channel.Connect();
        if (result != IrChannel::kTryAgain)
            return result == IrChannel::kConnected;
        Sleep(kBetweenTries);
    }
    return false;
}

bool Sender::SendHeader() {
    transfer.SetStatus(IDS_SENDING_HEADER);
    transfer.SetSteps(header.wNumRecords + 1U);
    transfer.ShowBar();
    if (transfer.channel.SendBytes(&header, sizeof(header)) != sizeof(header) || !Answered())
        return false;
    transfer.Step();
    return true;
}

// A record that cannot be read is left out, and its number with it. A walk that breaks off is a failure: the
// other device is not to take what arrived for the whole.
bool Sender::SendRecords() {
    DWORD index = 0;
    DWORD number = 0;
    for (bool found = WalkToFirst(database, &index); found; found = WalkToNext(database, &index)) {
        ++number;
        const QuietReports quiet(database);
        if (database.ReadRecordForStorage(&record) && !SendRecord(number))
            return false;
    }
    return database.WalkEnded();
}

bool Sender::SendRecord(DWORD number) {
    IrChannel& channel = transfer.channel;
    transfer.SetStatus(IDS_SENDING_RECORD, number, header.wNumRecords);
    if (!transfer.PumpAndPause() || !channel.SendCode(kRecordFollows, true) || !Answered())
        return false;
    const RecordDescriptor descriptor = {record.propCount, 0, record.reserved, record.size,
                                         ArenaAddress(record.data)};
    if (!transfer.PumpAndPause() ||
        channel.SendBytes(&descriptor, sizeof(descriptor)) != sizeof(descriptor) || !Answered() ||
        !SendData())
        return false;
    transfer.Step();
    return Answered(); // the record is stored
}

bool Sender::SendData() {
    DWORD done = 0;
    while (done < record.size) {
        const DWORD piece = std::min(record.size - done, kBlockSize);
        std::memcpy(work.data, record.data + done, piece);
        const int sent =
            transfer.PumpAndPause() ? transfer.channel.SendBytes(work.data, static_cast<int>(piece)) : -1;
        if (sent < 0 || !Answered())
            return false;
        done += static_cast<DWORD>(sent);
    }
    return true;
}

} // namespace

bool SendDatabase(HWND mainWindow, const WCHAR* name) {
    DbHandle database(mainWindow);
    CEDBASEINFO header;
    if (database.Open(name, 0, 0) == INVALID_HANDLE_VALUE || !database.GetInfo(&header))
        return false;
    if (header.wNumRecords == 0) {
        MessageFromString(mainWindow, IDS_DATABASE_EMPTY_TO_SEND, name, kFailureBox);
        return false;
    }
    const WorkBuffer work;
    if (!work.data) {
        SHShowOutOfMemory(mainWindow, 0);
        return false;
    }
    bool sent = false;
    {
        Sender sender(mainWindow, database, header, work);
        if (!sender.transfer.Shown()) {
            SHShowOutOfMemory(mainWindow, 0);
            return false;
        }
        // A box over the main window would give it back to the user.
        database.ownerWindow = sender.transfer.window;
        sent = sender.FindReceiver() && sender.SendHeader() && sender.SendRecords() && sender.SendEnd();
    }
    database.ownerWindow = mainWindow;
    if (sent)
        MessageFromString(mainWindow, IDS_TRANSFER_COMPLETE, kInformationBox);
    return true;
}
