// A session in an air of its own.
#pragma once

#include <string>

#include "platform/irda/air.h"
#include "platform/irda/link.h"
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

    std::string air = device.folder + "/air";
};
