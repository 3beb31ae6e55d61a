// Databases between devices, against bytes written by hand.
#include <algorithm>

#include "app/application.h"
#include "platform/irda/link.h"
#include "platform/objectstore.h"
#include "resources/resource.h"
#include "store/dbhandle.h"
#include "tests/infrared/beambytes.h"
#include "tests/infrared/beaming.h"
#include "tests/support/sampledatabases.h"

namespace {

constexpr const WCHAR* kInvalid =
    u"The data received from Infrared Port is invalid. Please make sure that you use the same version of "
    u"Pocket Strandview on both devices.";
constexpr const WCHAR* kUnnamed = u"Couldn't create \"\" database: The parameter is incorrect";
constexpr const WCHAR* kBadRecord =
    u"Couldn't create a new record in \"Notes\" database: The parameter is incorrect";

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
    // The value, then 2,041 characters: a block of 4,096 bytes and one of 2.
    std::string longRecord = kHi.substr(0, 16);
    for (int place = 0; place < 2040; ++place)
        longRecord += "z\0"s;
    longRecord += "\0\0"s;
    const std::string longDescriptor = "\x01\0\0\0\0\0\0\0\x02\x10\0\0\0\0\0\0"s;
    const PeerCase cases[] = {
        {"two blocks",
         kToDescriptor + Steps{Says(longDescriptor), Hears(kAck), Says(longRecord.substr(0, 4096)),
                               Hears(kAck), Says(longRecord.substr(4096)), Hears(kAck), Hears(kAck),
                               Says(kEnd), kHearsEnd},
         {kComplete},
         u"1=" + std::u16string(2040, u'z') + u"\n"},
        {"whole", kToStored + Steps{Says(kAck), Says(kEnd), kHearsEnd}, {kComplete}, u"1=Hi\n"},
        {"leaves before its header", {kCloses}, {kLost}, u"missing"},
        {"half a header", {Says(Header(kNotes).substr(0, 60)), kCloses}, {kLost}, u"missing"},
        {"half a header and silence", {Says(Header(kNotes).substr(0, 60)), kHearsEnd}, {kLost}, u"missing"},
        {"garbage for a header",
         {Says(Header(kNotes, 9)), Hears(kStop), kHearsEnd},
         {u"Couldn't create \"Notes\" database: The parameter is incorrect"},
         u"missing"},
        {"no name", {Says(Header("")), Hears(kStop), kHearsEnd}, {kUnnamed}, u"missing"},
        {"a name without an end",
         {Says(Header(std::string(64, 'a'))), Hears(kAck), Says(kEnd), kHearsEnd},
         {kComplete},
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
            AwaitEnd(peer);
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
            AwaitEnd(peer);
        }
        Peer peer(Peer::IsCalled, air, whole + Steps{kIsSilent});
        Press(Qt::Key_S, Qt::ControlModifier);
        InWindow(IDD_TRANSFER);
        WaitFor([&] { return Text(IDC_TRANSFER_STATUS) == u"Sending record 1 of 1..."; }, "a record");
        ExpectMessage(kSure, IDNO);
        Tap(IDCANCEL);
        ExpectMessage(kSure, IDYES);
        ExpectMessage(kByHost); // the user's own cancelling, too
        Tap(IDCANCEL);
        AwaitEnd();
    });
}

TEST_F(Beaming, ADatabaseInUseLeavesEverythingAsItIs) {
    MakeDatabase(u"Notes", {{TextValue(1, u"Kept")}});
    RunProgram([&] {
        CEOID oid = 0;
        const HANDLE held = CeOpenDatabase(&oid, u"Notes", 0, 0, nullptr);
        Peer peer(Peer::Calls, air, {Says(Header(kNotes)), kIsSilent});
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

} // namespace
