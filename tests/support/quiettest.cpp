#include "tests/support/quiettest.h"

#include "app/application.h"
#include "platform/ui/core/testhooks.h"

QuietTest::QuietTest() {
    App().settings = &settings;
    settings.interactive = 0;
    settings.noProgress = 1;
    ui::TestHooks().dialog = [this](const ui::DialogSeen&) { EXPECT_FALSE(settings.noProgress); };
    ui::TestHooks().messageBox = [this](const ui::MessageBoxSeen& box) {
        const Message next = expected.empty() ? Message{u"no message", IDOK} : expected.front();
        EXPECT_EQ(next.text, box.text);
        if (!expected.empty())
            expected.pop_front();
        ui::AnswerMessageBox(next.answer);
    };
}

QuietTest::~QuietTest() {
    EXPECT_TRUE(expected.empty()) << "a message was expected in vain";
    ui::TestHooks() = {};
    App().settings = nullptr;
}

void QuietTest::ExpectMessage(const std::u16string& text, int answer) {
    expected.push_back({text, answer});
}
