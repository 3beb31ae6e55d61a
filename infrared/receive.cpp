#include <algorithm>
#include <memory>
#include <new>

#include "app/uiservices.h"
#include "infrared/beaming.h"
#include "infrared/transfer.h"
#include "platform/shell.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "store/databaseexists.h"
#include "store/databasename.h"
#include "store/dbhandle.h"

namespace {

enum class Target { Chosen, Cancelled, Stuck };

struct Receiver {
    explicit Receiver(HWND mainWindow)
        : transfer(mainWindow, IDS_RECEIVING_DATABASE, u""), database(transfer.window) {}

    bool FindSender();
    bool ReceiveHeader();
    Target ChooseTarget();
    bool CreateTarget();
    bool ReceiveRecords();
    void Abandon();

    bool Acknowledge() { return transfer.channel.SendCode(kAcknowledge, false); }
    // Tells the sender that it is over.
    bool GiveUp();
    bool Receive(void* buffer, DWORD length);
    bool ReceiveRecord(DWORD number);
    bool MakeRoom(DWORD announced, DWORD size);
    bool ReceiveData(DWORD size);
    bool StoreRecord();

    Transfer transfer;
    DbHandle database;
    CEDBASEINFO header = {};
    WCHAR target[kNameCapacity] = {};
    bool created = false;
    RecordBuffer record;
};

bool Receiver::GiveUp() {
    transfer.channel.SendCode(kCancel, false);
    return false;
}

bool Receiver::FindSender() {
    if (!transfer.channel.Listen())
        return false;
    transfer.SetStatus(IDS_LOOKING_FOR_SENDER);
    return transfer.WaitReadable(true) && transfer.channel.Accept();
}

bool Receiver::Receive(void* buffer, DWORD length) {
    return transfer.WaitReadable(false) &&
           transfer.channel.ReceiveBytes(buffer, static_cast<int>(length)) == static_cast<int>(length);
}

bool Receiver::ReceiveHeader() {
    if (!Receive(&header, sizeof(header)))
        return GiveUp();
    header.szDbaseName[CEDB_MAXDBASENAMELEN - 1] = 0;
    CopyText(target, header.szDbaseName);
    transfer.SetStatus(IDS_RECEIVING_HEADER);
    transfer.ShowBar();
    return true;
}

Target Receiver::ChooseTarget() {
    {
        const QuietReports quiet(database);
        if (database.Open(target, 0, 0) == INVALID_HANDLE_VALUE)
            return Target::Chosen;
        database.Close();
    }
    const int answer = AskDatabaseExists(transfer.window, target);
    if (answer == IDC_EXISTS_OVERWRITE)
        return database.DeleteDatabase(target) ? Target::Chosen : Target::Stuck;
    const WCHAR* newName = answer == IDOK ? AskNewDatabaseName(transfer.window, target) : nullptr;
    if (!newName) {
        GiveUp();
        return Target::Cancelled;
    }
    CopyText(target, newName);
    return Target::Chosen;
}

bool Receiver::CreateTarget() {
    transfer.SetTitle(IDS_RECEIVING_DATABASE, target);
    if (database.Create(target, header, CEDB_UNFINISHED) == INVALID_HANDLE_VALUE)
        return GiveUp();
    created = true;
    transfer.SetSteps(header.wNumRecords + 1U);
    transfer.Step();
    return Acknowledge();
}

bool Receiver::ReceiveRecords() {
    for (DWORD number = 1;;) {
        if (!transfer.WaitReadable(false))
            return GiveUp();
        switch (transfer.channel.ReceiveCode(false)) {
        case kAcknowledge:
            break;
        case kRecordFollows:
            if (!ReceiveRecord(number++))
                return false;
            break;
        case kEndOfTransfer:
            return database.Finish();
        case kCancel:
            if (transfer.stopped)
                return GiveUp();
            Abandon(); // before anybody is told
            transfer.Show(IDS_CANCELLED_BY_HOST, kFailureBox);
            return false;
        default:
            transfer.Show(IDS_INVALID_INFRARED_DATA, kFailureBox);
            return false;
        }
    }
}

bool Receiver::ReceiveRecord(DWORD number) {
    RecordDescriptor descriptor = {};
    if (!Acknowledge())
        return false;
    if (!Receive(&descriptor, sizeof(descriptor)))
        return GiveUp();
    transfer.SetStatus(IDS_RECEIVING_RECORD, number, header.wNumRecords);
    record.propCount = descriptor.propCount;
    record.size = descriptor.size;
    if (!MakeRoom(descriptor.size, 0))
        return GiveUp();
    return Acknowledge() && ReceiveData(descriptor.size) && StoreRecord();
}

// Memory grows with what has arrived, not with what was announced, and is told when there is none.
bool Receiver::MakeRoom(DWORD announced, DWORD size) {
    constexpr std::size_t kFirstRoom = 16 * kBlockSize;
    constexpr std::size_t kSpare = 10; // behind the record
    const std::size_t have = record.data ? LocalSize(record.data) : 0;
    if (have >= size + kSpare)
        return true;
    const std::size_t wanted =
        std::min<std::size_t>(announced, std::max<std::size_t>(2 * std::size_t{size}, kFirstRoom)) + kSpare;
    void* grown = record.data ? LocalReAlloc(record.data, wanted, LMEM_MOVEABLE | LMEM_ZEROINIT)
                              : LocalAlloc(LMEM_ZEROINIT, wanted);
    if (!grown) {
        SHShowOutOfMemory(transfer.window, 0);
        return false;
    }
    record.data = static_cast<BYTE*>(grown);
    return true;
}

bool Receiver::ReceiveData(DWORD size) {
    for (DWORD done = 0; done < size;) {
        const DWORD piece = std::min(size - done, kBlockSize);
        if (!MakeRoom(size, done + piece) || !Receive(record.data + done, piece))
            return GiveUp();
        if (!Acknowledge())
            return false;
        done += piece;
    }
    return true;
}

bool Receiver::StoreRecord() {
    if (!record.data) {
        transfer.Show(IDS_RECORD_INCORRECT, kFailureBox);
        return GiveUp();
    }
    const bool stored = database.WriteRecordFromStorage(0, &record) != 0;
    LocalFree(record.data);
    record.data = nullptr;
    transfer.Step();
    return stored ? Acknowledge() : GiveUp();
}

// No partial database remains.
void Receiver::Abandon() {
    database.Close();
    if (created)
        database.DeleteDatabase(target);
    created = false;
}

} // namespace

bool ReceiveDatabase(HWND mainWindow) {
    std::unique_ptr<Receiver> receiver(new (std::nothrow) Receiver(mainWindow));
    if (!receiver || !receiver->transfer.Shown()) {
        SHShowOutOfMemory(mainWindow, 0);
        return false;
    }
    bool received = false;
    if (receiver->FindSender() && receiver->ReceiveHeader()) {
        const Target target = receiver->ChooseTarget();
        if (target == Target::Stuck) {
            // Quirk: a database that cannot be deleted ends the command with everything left as it is: the
            // dialog open, the main window disabled, and the sender without an answer.
            static Receiver* left = nullptr;
            left = receiver.release();
            return left == nullptr;
        }
        received = target == Target::Chosen && receiver->CreateTarget() && receiver->ReceiveRecords();
    }
    if (!received)
        receiver->Abandon();
    receiver.reset();
    if (received)
        MessageFromString(mainWindow, IDS_TRANSFER_COMPLETE, kInformationBox);
    return true;
}
