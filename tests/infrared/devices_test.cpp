// Databases between devices that are two processes.
#include <QTest>
#include <filesystem>

#include "app/application.h"
#include "platform/objectstore.h"
#include "resources/resource.h"
#include "tests/infrared/beambytes.h"
#include "tests/infrared/beaming.h"
#include "tests/infrared/otherdevice.h"
#include "tests/infrared/relay.h"
#include "tests/support/sampledatabases.h"

namespace {

constexpr int kLongest = 15000; // milliseconds that anything may take

class Devices : public Beaming {
protected:
    void AwaitInAir(std::ptrdiff_t count) const {
        const auto there = [&] {
            return std::distance(std::filesystem::directory_iterator(air), {}) == count;
        };
        EXPECT_TRUE(QTest::qWaitFor(there, kLongest)) << "devices in the air";
    }
    // What another device holds; this process is that device from here on.
    std::u16string ContentsOf(const TestDevice& other) {
        device.Restart();
        UseDevice(other.folder);
        return Contents(u"Notes");
    }
    void FillOther(const std::vector<std::vector<SampleValue>>& records) {
        UseDevice(theirs.folder);
        MakeDatabase(u"Notes", records, {{CEPROPID(1) << 16 | CEVT_LPWSTR, CEDB_SORT_DESCENDING}});
        theirs.Restart();
        UseDevice(device.folder);
    }
    void Receive() { Press(Qt::Key_G, Qt::ControlModifier); }

    TestDevice theirs;
};

const std::vector<std::vector<SampleValue>> kSizes = {
    {TextValue(1, std::u16string(2030, u'x'))}, // 4,078 bytes
    {TextValue(1, std::u16string(2039, u'y'))}, // 4,096: one block
    {TextValue(1, std::u16string(2040, u'z'))}, // 4,098: two blocks
    {TextValue(1, std::u16string(64 * 1024, u'w')), NumberValue(2, CEVT_I4, 5)}};

TEST_F(Devices, RecordsOfAllSizesTakeThePlaceOfADatabase) {
    FillOther(kSizes);
    MakeDatabase(u"Notes", {{TextValue(1, u"Kept")}});
    OtherDevice other(theirs.folder, air, "Notes");
    RunProgram([&] {
        ExpectMessage(kComplete);
        Receive();
        InWindow(IDD_DATABASE_EXISTS);
        Tap(IDC_EXISTS_OVERWRITE);
        AwaitEnd();
    });
    EXPECT_TRUE(other.Await());
    const std::u16string here = Contents(u"Notes");
    EXPECT_GT(here.size(), 70000U);
    EXPECT_EQ(here, ContentsOf(theirs));
}

TEST_F(Devices, ARelayJoinsTwoAirs) {
    const std::string farAir = theirs.folder + "/air";
    std::filesystem::create_directory(farAir);
    FillOther(kSizes);
    RunProgram([&] {
        Receive();
        InWindow(IDD_TRANSFER);
        WaitFor([&] { return !std::filesystem::is_empty(air); }, "this device to listen");
        const std::string self = std::filesystem::directory_iterator(air)->path().filename();
        const Relay relay(farAir + '/' + self, air + '/' + self);
        OtherDevice other(theirs.folder, farAir, "Notes");
        ExpectMessage(kComplete);
        AwaitEnd();
        EXPECT_TRUE(other.Await());
    });
    const std::u16string here = Contents(u"Notes");
    EXPECT_EQ(here, ContentsOf(theirs));
}

TEST_F(Devices, AKilledSenderLeavesNoPartOfADatabase) {
    FillOther({{TextValue(1, std::u16string(64 * 1024, u'w'))}});
    OtherDevice other(theirs.folder, air, "Notes");
    RunProgram([&] {
        Receive();
        InWindow(IDD_TRANSFER);
        WaitFor([&] { return Text(IDC_TRANSFER_STATUS) == u"Receiving record 1 of 1..."; }, "a record");
        ExpectMessage(kLost);
        other.Kill();
        AwaitEnd();
    });
    EXPECT_EQ(Contents(u"Notes"), u"missing");
}

TEST_F(Devices, AKilledReceiverLeavesNoPartOfADatabase) {
    OtherDevice other(theirs.folder, air, "");
    Peer peer(Peer::Calls, air, kToStored + Steps{kIsSilent});
    UseDevice(theirs.folder);
    EXPECT_TRUE(QTest::qWaitFor([] { return Contents(u"Notes") == u"1=Hi\n"; }, kLongest));
    theirs.Restart();
    EXPECT_EQ(Contents(u"Notes"), u"1=Hi\n") << "it is still being received";
    theirs.Restart();
    other.Kill();
    EXPECT_EQ(Contents(u"Notes"), u"missing");
}

TEST_F(Devices, OfTwoReceiversTheOneThatListensLongerReceives) {
    TestDevice later;
    UseDevice(device.folder);
    MakeDatabase(u"Notes", {{TextValue(1, u"Hi")}});
    OtherDevice first(theirs.folder, air, "");
    AwaitInAir(1);
    OtherDevice second(later.folder, air, "");
    AwaitInAir(2);
    RunProgram([&] {
        SelectRow(10001, u"Notes");
        ExpectMessage(kComplete);
        Press(Qt::Key_S, Qt::ControlModifier);
        AwaitEnd();
    });
    EXPECT_TRUE(first.Await());
    EXPECT_EQ(ContentsOf(theirs), u"1=Hi\n");
    EXPECT_EQ(ContentsOf(later), u"missing");
}

} // namespace
