// A database arrives whose name is taken.
#include "app/application.h"
#include "platform/objectstore.h"
#include "resources/resource.h"
#include "tests/infrared/beambytes.h"
#include "tests/infrared/beaming.h"
#include "tests/support/sampledatabases.h"

namespace {

const Steps kWhole = kToStored + Steps{Says(kEnd), kHearsEnd};
const Steps kRefused = {Says(Header(kNotes)), Hears(kStop), kHearsEnd};

class TakenName : public Beaming {
protected:
    // Up to the question.
    void Ask() {
        Press(Qt::Key_G, Qt::ControlModifier);
        InWindow(IDD_DATABASE_EXISTS);
        Window();
    }
};

TEST_F(TakenName, TheUserDecides) {
    MakeDatabase(u"Notes", {{TextValue(1, u"Kept")}});
    RunProgram([&] {
        {
            Peer peer(Peer::Calls, air, kRefused);
            Ask();
            Tap(IDCANCEL);
            AwaitEnd(peer);
        }
        {
            Peer peer(Peer::Calls, air, kRefused);
            Ask();
            Tap(IDOK);
            InWindow(IDD_NEW_NAME);
            Tap(IDCANCEL);
            AwaitEnd(peer);
        }
        EXPECT_EQ(DatabaseNames().size(), 1U);
        {
            Peer peer(Peer::Calls, air, kWhole);
            Ask();
            Tap(IDOK);
            InWindow(IDD_NEW_NAME);
            TypeInto(IDC_NEW_NAME_TO, u"Others");
            ExpectMessage(kComplete);
            Tap(IDOK);
            AwaitEnd(peer);
        }
        EXPECT_EQ(Contents(u"Others"), u"1=Hi\n");
        EXPECT_EQ(Contents(u"Notes"), u"1=Kept\n");
        Peer peer(Peer::Calls, air, kWhole);
        Ask();
        ExpectMessage(kComplete);
        Tap(IDC_EXISTS_OVERWRITE);
        AwaitEnd(peer);
        EXPECT_EQ(Contents(u"Notes"), u"1=Hi\n");
    });
}

TEST_F(TakenName, TheSenderGoesMeanwhile) {
    MakeDatabase(u"Notes", {{TextValue(1, u"Kept")}});
    RunProgram([&] {
        Peer peer(Peer::Calls, air, {Says(Header(kNotes)), kCloses});
        Ask();
        WaitFor([&] { return peer.done.load(); }, "the sender to go");
        ExpectMessage(u"Unable to send data to Infrared port. Error Code: send[10054].");
        Tap(IDCANCEL);
        AwaitEnd(peer);
        EXPECT_EQ(Contents(u"Notes"), u"1=Kept\n");
    });
}

} // namespace
