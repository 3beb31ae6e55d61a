// A run of a part of the program on a fresh device, without its windows.
#pragma once

#include <deque>
#include <gtest/gtest.h>
#include <string>

#include "app/settings.h"
#include "platform/window.h"
#include "tests/support/testdevice.h"

// No dialogs and no progress. Message boxes come in the order expected; any other fails the test.
class QuietTest : public testing::Test {
protected:
    QuietTest();
    ~QuietTest() override;
    // 0 is the answer where nobody can be asked.
    void ExpectMessage(const std::u16string& text, int answer = IDOK);

    TestDevice device;
    Settings settings;

private:
    struct Message {
        std::u16string text;
        int answer;
    };
    std::deque<Message> expected;
};
