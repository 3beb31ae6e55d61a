// Databases between devices that are two processes.
#include <QTest>

#include "resources/resource.h"
#include "tests/infrared/beambytes.h"
#include "tests/infrared/beaming.h"
#include "tests/infrared/otherdevice.h"
#include "tests/support/sampledatabases.h"

namespace {

TEST_F(Beaming, RecordsOfAllSizesTakeThePlaceOfADatabase) {
    TestDevice theirs; // where this process is first
    MakeDatabase(u"Notes",
                 {{TextValue(1, std::u16string(2030, u'x'))}, // 4,078 bytes
                  {TextValue(1, std::u16string(2039, u'y'))}, // 4,096: one block
                  {TextValue(1, std::u16string(2040, u'z'))}, // 4,098: two blocks
                  {TextValue(1, std::u16string(64 * 1024, u'w')), NumberValue(2, CEVT_I4, 5)}},
                 {{CEPROPID(1) << 16 | CEVT_LPWSTR, CEDB_SORT_DESCENDING}});
    const std::u16string sent = Contents(u"Notes");
    theirs.Restart();
    UseDevice(device.folder);
    MakeDatabase(u"Notes", {{TextValue(1, u"Kept")}});
    OtherDevice other(theirs.folder, air, "Notes");
    RunProgram([&] {
        ExpectMessage(kComplete);
        Press(Qt::Key_G, Qt::ControlModifier);
        InWindow(IDD_DATABASE_EXISTS);
        Tap(IDC_EXISTS_OVERWRITE);
        AwaitEnd();
    });
    EXPECT_TRUE(other.Await());
    EXPECT_EQ(Contents(u"Notes"), sent);
}

TEST_F(Beaming, AKilledReceiverLeavesNoPartOfADatabase) {
    TestDevice theirs;
    OtherDevice other(theirs.folder, air, "");
    Peer peer(Peer::Calls, air, kToStored + Steps{kIsSilent});
    UseDevice(theirs.folder);
    EXPECT_TRUE(QTest::qWaitFor([] { return Contents(u"Notes") == u"1=Hi\n"; }, 15000));
    theirs.Restart();
    EXPECT_EQ(Contents(u"Notes"), u"1=Hi\n") << "it is still being received";
    theirs.Restart();
    other.Kill();
    EXPECT_EQ(Contents(u"Notes"), u"missing");
}

} // namespace
