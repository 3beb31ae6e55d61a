// A session in an air of its own.
#pragma once

#include <string>

#include "app/application.h"
#include "platform/irda/air.h"
#include "platform/irda/link.h"
#include "tests/infrared/peer.h"
#include "tests/support/session.h"

constexpr const WCHAR* kComplete = u"Database transfer successfully completed!";
constexpr const WCHAR* kByHost = u"Transfer has been cancelled by host machine.";
constexpr const WCHAR* kLost = u"Unable to read data from Infrared port. Error Code: recv[10054].";
constexpr const WCHAR* kSure = u"Cancel database transfer. Are you sure?";

class Beaming : public Session {
protected:
    Beaming() {
        UseAir(air);
        EXPECT_TRUE(OpenAir().Valid());
    }
    ~Beaming() override { SetLinkPatience(40000); }

    // The transfer has ended, and the main window is there again.
    void AwaitEnd() {
        WaitFor([] { return App().idle != 0; }, "the transfer to end");
        InMainWindow();
        Window();
    }
    // And the peer has heard what it should.
    void AwaitEnd(const Peer& peer) {
        WaitFor([&] { return peer.done.load(); }, "the peer's last step");
        AwaitEnd();
        EXPECT_EQ(peer.complaint, "");
    }

    std::string air = device.folder + "/air";
};
