#include <QAction>
#include <QApplication>
#include <QDir>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

#include "platform/help/helppages.h"
#include "platform/help/helpwindow.h"
#include "tests/platform/hostsupport.h"

namespace {

class Help : public testing::Test {
protected:
    void SetUp() override {
        if (!qApp) {
            static int count = 1;
            static char name[] = "test";
            static char* arguments[] = {name, nullptr};
            new QApplication(count, arguments); // the other tests use it too
        }
        QDir(folder.path()).mkdir("help");
        Write("help/tarnwickscope.htm", "<h1>First</h1>" + QByteArray("<p>filler</p>").repeated(200) +
                                            "<h2><a name=\"options\"></a>Options</h2>" +
                                            QByteArray("<p>filler</p>").repeated(200));
    }

    void Write(const char* name, const QByteArray& content) {
        WriteHostFile(folder.filePath(name).toStdString(), content.toStdString());
    }

    std::unique_ptr<HelpWindow> Open(const char* topic) {
        auto window = std::make_unique<HelpWindow>(folder.filePath("help"), QString(topic));
        window->show();
        return window;
    }

    QTemporaryDir folder;
};

TEST_F(Help, OpensAtTheAnchor) {
    const auto window = Open("tarnwickscope.htm#options");
    EXPECT_EQ(window->windowTitle(), "Help");
    EXPECT_TRUE(QTest::qWaitFor([&] {
        // Where the heading stands, not merely somewhere below the top.
        return window->pages->cursorForPosition({20, 20}).block().text() == "Options" ||
               window->pages->cursorForPosition({20, 45}).block().text() == "Options";
    }));
    EXPECT_GT(window->pages->verticalScrollBar()->value(), 0);
}

TEST_F(Help, APageThatIsNotThereSaysSoAndLeadsToTheContents) {
    const auto window = Open("none.htm#x");
    EXPECT_TRUE(window->pages->toPlainText().contains("no page \"none.htm\""));
    const auto actions = window->findChildren<QAction*>();
    const auto named = [&](const char* text) {
        return *std::find_if(actions.begin(), actions.end(), [&](QAction* it) { return it->text() == text; });
    };
    named("Contents")->trigger();
    EXPECT_TRUE(window->pages->toPlainText().startsWith("First"));
    EXPECT_TRUE(named("Back")->isEnabled());
    named("Back")->trigger();
    EXPECT_TRUE(window->pages->toPlainText().contains("none.htm"));
}

TEST_F(Help, ShowsNothingFromOutsideItsFolder) {
    Write("outside.htm", "private");
    for (const char* topic : {"../outside.htm", "/etc/passwd", "..", "http://example.org/x.htm"}) {
        const auto window = Open(topic);
        EXPECT_TRUE(window->pages->toPlainText().contains("has no page")) << topic;
    }
}

} // namespace
