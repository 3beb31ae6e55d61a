// Cancel, in every state of either side.
#include "app/application.h"
#include "platform/objectstore.h"
#include "platform/ui/core/windowcore.h"
#include "resources/resource.h"
#include "tests/infrared/beambytes.h"
#include "tests/infrared/beaming.h"
#include "tests/support/sampledatabases.h"

namespace {

class Cancelling : public Beaming {
protected:
    // No, and then Yes: the transfer goes on in between.
    void Cancel() {
        InWindow(IDD_TRANSFER);
        ExpectMessage(kSure, IDNO);
        Tap(IDCANCEL);
        ExpectMessage(kSure, IDYES);
        if (sending)
            ExpectMessage(kByHost); // of the user's own cancelling, too
        Tap(IDCANCEL);
    }
    // What the peer heard.
    std::string CancelBeside(const Steps& steps) {
        Peer peer(sending ? Peer::IsCalled : Peer::Calls, air, steps + Steps{kIsSilent});
        Press(sending ? Qt::Key_S : Qt::Key_G, Qt::ControlModifier);
        WaitFor([&] { return peer.silent.load(); }, "the state");
        Cancel();
        AwaitEnd(peer);
        return peer.heard;
    }

    bool sending = false;
};

TEST_F(Cancelling, TheReceiverTellsTheSenderAndKeepsNothing) {
    const Steps states[] = {
        {},
        {Says(Header(kNotes).substr(0, 60))},
        kToHeader,
        kToHeader + Steps{Says(kRecord.substr(0, 2))},
        kToDescriptor,
        kToDescriptor + Steps{Says(kHiDescriptor.substr(0, 5))},
        kToData,
        kToData + Steps{Says(kHi.substr(0, 9))},
        kToStored,
    };
    RunProgram([&] {
        for (const Steps& state : states) {
            SCOPED_TRACE(&state - states);
            EXPECT_EQ(CancelBeside(state), kStop);
            EXPECT_EQ(Contents(u"Notes"), u"missing");
        }
    });
}

TEST_F(Cancelling, TheSenderGoes) {
    sending = true;
    MakeDatabase(u"Notes", {{TextValue(1, u"Hi")}});
    RunProgram([&] {
        SelectRow(10001, u"Notes");
        for (const Steps& state : {Steps{}, Steps{Says(kAck.substr(0, 2))}})
            EXPECT_EQ(CancelBeside(state).size(), sizeof(CEDBASEINFO));
        EXPECT_EQ(CancelBeside({Says(kAck)}).substr(sizeof(CEDBASEINFO)), kRecord);
        EXPECT_EQ(CancelBeside({Says(kAck + kAck)}).substr(sizeof(CEDBASEINFO), 4), kRecord);
    });
}

TEST_F(Cancelling, TheReceiverGoesWhileTheSenderWaits) {
    sending = true;
    MakeDatabase(u"Notes", {{TextValue(1, u"Hi")}});
    const PeerStep header = {PeerStep::Skip, std::string(sizeof(CEDBASEINFO), ' ')};
    const Steps toRecord = {header, Says(kAck), Hears(kRecord)};
    const Steps toDescriptor = toRecord + Steps{Says(kAck), {PeerStep::Skip, kHiDescriptor}};
    const Steps toStored = toDescriptor + Steps{Says(kAck), Hears(kHi), Says(kAck)};
    RunProgram([&] {
        SelectRow(10001, u"Notes");
        for (const Steps& state : {Steps{header}, toRecord, toDescriptor, toStored}) {
            ExpectMessage(kLost);
            ExpectMessage(kByHost);
            Peer peer(Peer::IsCalled, air, state + Steps{kCloses});
            Press(Qt::Key_S, Qt::ControlModifier);
            AwaitEnd(peer);
        }
    });
}

TEST_F(Cancelling, NobodyIsThere) {
    MakeDatabase(u"Notes", {{TextValue(1, u"Hi")}});
    MakeDatabase(u"Void", {});
    RunProgram([&] {
        SelectRow(10001, u"Void");
        ExpectMessage(u"Database 'Void' is empty. Please choose another database to send!");
        Press(Qt::Key_S, Qt::ControlModifier);
        SelectRow(10001, u"Notes");
        for (const auto& [key, status] : {std::pair(Qt::Key_S, u"Looking for device that is receiving..."),
                                          std::pair(Qt::Key_G, u"Looking for device that is sending...")}) {
            Press(key, Qt::ControlModifier);
            InWindow(IDD_TRANSFER);
            WaitFor([&] { return Text(IDC_TRANSFER_STATUS) == status; }, "the search");
            EXPECT_FALSE(Control(IDC_TRANSFER_BAR)->widget->isVisible()) << "it is for later";
            Cancel();
            AwaitEnd();
        }
    });
}

} // namespace
