// Databases between devices: against bytes written by hand, and between two processes.
#include <algorithm>

#include "app/application.h"
#include "infrared/beaming.h"
#include "platform/irda/air.h"
#include "platform/irda/link.h"
#include "platform/objectstore.h"
#include "resources/resource.h"
#include "store/dbhandle.h"
#include "tests/infrared/peer.h"
#include "tests/platform/otherprocess.h"
#include "tests/support/sampledatabases.h"
#include "tests/support/session.h"

namespace {

using namespace std::string_literals;
using Steps = std::vector<PeerStep>;

constexpr const WCHAR* kComplete = u"Database transfer successfully completed!";
constexpr const WCHAR* kByHost = u"Transfer has been cancelled by host machine.";
constexpr const WCHAR* kLost = u"Unable to read data from Infrared port. Error Code: recv[10054].";
constexpr const WCHAR* kInvalid =
    u"The data received from Infrared Port is invalid. Please make sure that you use the same version of "
    u"Pocket Strandview on both devices.";
constexpr const WCHAR* kBadRecord =
    u"Couldn't create a new record in \"Notes\" database: The parameter is incorrect";
constexpr const WCHAR* kSure = u"Cancel database transfer. Are you sure?";

const std::string kAck = "\x02\x11\0\0"s;
const std::string kRecord = "\x04\x11\0\0"s;
const std::string kEnd = "\x07\x11\0\0"s;
const std::string kStop = "\x08\x11\0\0"s;

// The database "Notes" of type 7 with one record and no sort orders; sizes and time do not matter.
std::string Header(char sortOrders = 0) {
    return "\x0F\0\0\0N\0o\0t\0e\0s\0"s + std::string(54, '\0') + "\x07\0\0\0\x01\0"s + sortOrders +
           std::string(45, '\0');
}
// One property, 1 of type 31, with its text "Hi" behind it.
const std::string kHi = "\x1F\0\x01\0\0\0\0\0\x10\0\0\0\0\0\0\0H\0i\0\0\0"s;
const std::string kHiDescriptor = "\x01\0\0\0\0\0\0\0\x16\0\0\0\0\0\0\0"s;

PeerStep Says(const std::string& bytes) {
    return {PeerStep::Send, bytes};
}
PeerStep Hears(const std::string& bytes) {
    return {PeerStep::Expect, bytes};
}
const PeerStep kCloses = {PeerStep::Close};
const PeerStep kHearsEnd = {PeerStep::AwaitEnd};

Steps operator+(Steps steps, const Steps& more) {
    steps.insert(steps.end(), more.begin(), more.end());
    return steps;
}

const Steps kToHeader = {Says(Header()), Hears(kAck)};
const Steps kToDescriptor = kToHeader + Steps{Says(kRecord), Hears(kAck)};
const Steps kToData = kToDescriptor + Steps{Says(kHiDescriptor), Hears(kAck)};
const Steps kToStored = kToData + Steps{Says(kHi), Hears(kAck), Hears(kAck)};

class Beaming : public Session {
protected:
    Beaming() { UseAir(device.folder + "/air"); }
    ~Beaming() override { SetLinkPatience(40000); }
    std::string air = device.folder + "/air";
};

struct PeerCase {
    const char* name;
    Steps steps;
    std::vector<const WCHAR*> seen;
    std::u16string remains;
};

TEST_F(Beaming, ReceivesWholeDatabasesOrNone) {
    SetLinkPatience(300);
    const std::string tooLarge = "\xFF\xFF\0\0\0\0\0\0\x16\0\0\0\0\0\0\0"s;
    const std::string outside = "\x1F\0\x01\0\0\0\0\0\x16\0\0\0\0\0\0\0H\0i\0\0\0"s;
    const std::string huge = "\x01\0\0\0\0\0\0\0\xFF\xFF\xFF\xFF\0\0\0\0"s;
    const PeerCase cases[] = {
        {"whole", kToStored + Steps{Says(kAck), Says(kEnd), kHearsEnd}, {kComplete}, u"1=Hi\n"},
        {"leaves before its header", {kCloses}, {kLost}, u"missing"},
        {"half a header", {Says(Header().substr(0, 60)), kCloses}, {kLost}, u"missing"},
        {"half a header and silence", {Says(Header().substr(0, 60)), kHearsEnd}, {kLost}, u"missing"},
        {"garbage for a header",
         {Says(Header(9)), Hears(kStop), kHearsEnd},
         {u"Couldn't create \"Notes\" database: The parameter is incorrect"},
         u"missing"},
        {"cancels", kToStored + Steps{Says(kStop), kHearsEnd}, {kByHost}, u"missing"},
        {"leaves between records", kToStored + Steps{kCloses}, {kLost, kByHost}, u"missing"},
        {"leaves in a descriptor", kToDescriptor + Steps{Says("\x01\0"s), kCloses}, {kLost}, u"missing"},
        {"leaves in a record", kToData + Steps{Says(kHi.substr(0, 9)), kCloses}, {kLost}, u"missing"},
        {"leaves after announcing 4 GiB",
         kToDescriptor + Steps{Says(huge), Hears(kAck), kCloses},
         {kLost},
         u"missing"},
        {"another code", kToHeader + Steps{Says("\x05\x11\0\0"s), kHearsEnd}, {kInvalid}, u"missing"},
        {"more properties than bytes",
         kToDescriptor + Steps{Says(tooLarge), Hears(kAck), Says(kHi), Hears(kAck), Hears(kStop)},
         {kBadRecord},
         u"missing"},
        {"a text outside its record",
         kToData + Steps{Says(outside), Hears(kAck), Hears(kStop)},
         {kBadRecord},
         u"missing"},
    };
    RunProgram([&] {
        for (const PeerCase& each : cases) {
            SCOPED_TRACE(each.name);
            for (const WCHAR* text : each.seen)
                ExpectMessage(text);
            Peer peer(Peer::Calls, air, each.steps);
            Press(Qt::Key_G, Qt::ControlModifier);
            WaitFor([&] { return peer.done.load() && App().idle; }, "the transfer to end");
            InMainWindow();
            Window();
            EXPECT_EQ(peer.complaint, "");
            EXPECT_EQ(Contents(u"Notes"), each.remains);
            DbHandle database(nullptr);
            const QuietReports quiet(database);
            database.DeleteDatabase(u"Notes");
        }
    });
}

TEST_F(Beaming, SendsByteByByteAndCancelsOnEitherSide) {
    MakeDatabase(u"Notes", {{TextValue(1, u"Hi")}});
    CEOIDINFO info = {};
    const HANDLE enumeration = CeFindFirstDatabase(0);
    ASSERT_TRUE(CeOidGetInfo(CeFindNextDatabase(enumeration), &info));
    CloseHandle(enumeration);
    const std::string header(reinterpret_cast<const char*>(&info.infDatabase), sizeof(CEDBASEINFO));
    const Steps toHeader = {Hears(header), Says(kAck), Hears(kRecord)};
    // An address follows that only the sender knows.
    const Steps whole =
        toHeader + Steps{Says("\x05\x11\0\0"s), Says(kAck), Hears(kHiDescriptor.substr(0, 12))};
    RunProgram([&] {
        SelectRow(10001, u"Notes");
        ExpectMessage(kByHost);
        {
            Peer peer(Peer::IsCalled, air, toHeader + Steps{Says(kStop), kHearsEnd});
            Press(Qt::Key_S, Qt::ControlModifier);
            WaitFor([&] { return peer.done.load() && App().idle; }, "the refusal");
            EXPECT_EQ(peer.complaint, "");
        }
        // The address, and then nothing until the sender is gone.
        Peer peer(Peer::IsCalled, air, whole + Steps{{PeerStep::Expect, std::string(5, '?')}});
        Press(Qt::Key_S, Qt::ControlModifier);
        InWindow(IDD_TRANSFER);
        WaitFor([&] { return Text(IDC_TRANSFER_STATUS) == u"Sending record 1 of 1..."; }, "a record");
        ExpectMessage(kSure, IDNO);
        Tap(IDCANCEL);
        ExpectMessage(kSure, IDYES);
        ExpectMessage(kByHost); // the user's own cancelling, too
        Tap(IDCANCEL);
        WaitFor([] { return App().idle != 0; }, "the command to end");
        InMainWindow();
    });
}

TEST_F(Beaming, ADatabaseInUseLeavesEverythingAsItIs) {
    MakeDatabase(u"Notes", {{TextValue(1, u"Kept")}});
    RunProgram([&] {
        CEOID oid = 0;
        const HANDLE held = CeOpenDatabase(&oid, u"Notes", 0, 0, nullptr);
        Peer peer(Peer::Calls, air, {Says(Header()), {PeerStep::Expect, std::string(1, '?')}});
        Press(Qt::Key_G, Qt::ControlModifier);
        InWindow(IDD_DATABASE_EXISTS);
        ExpectMessage(u"Couldn't delete \"Notes\" database: The process cannot access the file because it is "
                      u"being used by another process");
        Tap(IDC_EXISTS_OVERWRITE);
        WaitFor([] { return App().idle != 0; }, "the command to end");
        EXPECT_FALSE(IsWindowEnabled(App().mainWindow));
        EXPECT_EQ(Contents(u"Notes"), u"1=Kept\n");
        InWindow(IDD_TRANSFER);
        DestroyWindow(Window());
        EnableWindow(App().mainWindow, TRUE);
        CloseHandle(held);
    });
}

TEST_F(Beaming, AKilledReceiverLeavesNoPartOfADatabase) {
    OtherProcess other({[] { return ReceiveDatabase(nullptr); }});
    Peer peer(Peer::Calls, air, kToStored + Steps{{PeerStep::Expect, std::string(1, '?')}});
    other.Start(0);
    while (Contents(u"Notes") != u"1=Hi\n")
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    device.Restart();
    EXPECT_EQ(Contents(u"Notes"), u"1=Hi\n") << "it is still being received";
    device.Restart();
    other.Kill();
    EXPECT_EQ(Contents(u"Notes"), u"missing");
}

TEST_F(Beaming, ADatabaseGoesFromProcessToProcess) {
    TestDevice theirs;
    const auto send = [&] {
        MakeDatabase(u"Notes",
                     {{TextValue(1, std::u16string(2030, u'x'))}, // 4,078 bytes
                      {TextValue(1, std::u16string(2039, u'y'))}, // 4,096: one block
                      {TextValue(1, std::u16string(2040, u'z'))}, // 4,098: two blocks
                      {TextValue(1, std::u16string(64 * 1024, u'w')), NumberValue(2, CEVT_I4, 5)}},
                     {{CEPROPID(1) << 16 | CEVT_LPWSTR, CEDB_SORT_DESCENDING}});
        return SendDatabase(nullptr, u"Notes");
    };
    OtherProcess other({send});
    UseDevice(device.folder);
    other.Start(0);
    RunProgram([&] {
        ExpectMessage(kComplete);
        Press(Qt::Key_G, Qt::ControlModifier);
        WaitFor([&] { return App().idle != 0; }, "the transfer to end");
        InMainWindow();
    });
    EXPECT_TRUE(other.Await());
    const std::u16string here = Contents(u"Notes");
    UseDevice(theirs.folder);
    device.Restart();
    EXPECT_EQ(here, Contents(u"Notes"));
    EXPECT_GT(here.size(), 70000U);
}

} // namespace
