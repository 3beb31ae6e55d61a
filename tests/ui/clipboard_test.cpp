// The clipboard: whose it is, what it takes over and what it hands out.
#include <QMimeData>
#include <cstring>

#include "platform/clipboard.h"
#include "platform/heap.h"
#include "tests/ui/windowfixture.h"

namespace {

const QString kForeignType = QStringLiteral("application/x-pocket-strandview.Test_Format");

class ClipboardTest : public WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        format = RegisterClipboardFormatW(u"Test_Format");
        ASSERT_NE(format, 0u);
    }
    void TearDown() override {
        CloseClipboard();
        QGuiApplication::clipboard()->clear();
        WindowTest::TearDown();
    }
    static void* Block(const std::string& bytes) {
        void* block = LocalAlloc(LMEM_FIXED, bytes.size());
        std::memcpy(block, bytes.data(), bytes.size());
        return block;
    }
    static std::string Bytes(UINT format) {
        const void* block = GetClipboardData(format);
        return block ? std::string(static_cast<const char*>(block), LocalSize(block)) : "(none)";
    }
    static void PutForeign(const QByteArray& bytes) {
        auto* data = new QMimeData;
        data->setData(kForeignType, bytes);
        QGuiApplication::clipboard()->setMimeData(data);
    }

    UINT format = 0;
};

} // namespace

TEST_F(ClipboardTest, OneWindowAtATime) {
    const HWND other = Top(u"Other");
    EXPECT_FALSE(OpenClipboard(nullptr));
    EXPECT_FALSE(CloseClipboard());
    EXPECT_TRUE(OpenClipboard(main));
    EXPECT_TRUE(OpenClipboard(main));
    EXPECT_FALSE(OpenClipboard(other));
    EXPECT_TRUE(CloseClipboard());
    EXPECT_TRUE(OpenClipboard(other));
    DestroyWindow(other); // and leaves it open
    EXPECT_TRUE(OpenClipboard(main));
}

TEST_F(ClipboardTest, BlocksGoThroughWhole) {
    const UINT second = RegisterClipboardFormatW(u"Another/format \u00E9");
    EXPECT_EQ(RegisterClipboardFormatW(u"Test_Format"), format);
    EXPECT_NE(second, format);
    const std::string bytes("\0\1text\xFF\0", 8);
    void* block = Block(bytes);
    EXPECT_EQ(SetClipboardData(format, block), nullptr); // not open
    ASSERT_TRUE(OpenClipboard(main));
    EXPECT_EQ(SetClipboardData(format, block), nullptr); // not emptied
    ASSERT_TRUE(EmptyClipboard());
    EXPECT_EQ(SetClipboardData(0xFFFF, block), nullptr);
    EXPECT_EQ(SetClipboardData(format, nullptr), nullptr);
    EXPECT_EQ(SetClipboardData(format, block), block);
    void* none = Block("");
    EXPECT_EQ(SetClipboardData(second, none), none);
    EXPECT_EQ(Bytes(format), bytes);
    EXPECT_EQ(Bytes(second), "");
    CloseClipboard();

    EXPECT_TRUE(IsClipboardFormatAvailable(format));
    EXPECT_FALSE(IsClipboardFormatAvailable(CF_UNICODETEXT));
    EXPECT_EQ(GetClipboardData(format), nullptr); // not open
    OpenClipboard(main);
    EXPECT_EQ(Bytes(format), bytes);
    EmptyClipboard();
    EXPECT_FALSE(IsClipboardFormatAvailable(format));
    EXPECT_EQ(Bytes(format), "(none)");
}

TEST_F(ClipboardTest, OtherProgramsDataKeepsItsLengthUpToALimit) {
    OpenClipboard(main);
    PutForeign("abc");
    EXPECT_EQ(Bytes(format), "abc");
    CloseClipboard();
    PutForeign(QByteArray(16 * 1024 * 1024 + 1, 'x'));
    OpenClipboard(main);
    EXPECT_TRUE(IsClipboardFormatAvailable(format));
    EXPECT_EQ(Bytes(format), "(none)");
}

TEST_F(ClipboardTest, TextIsTheHostsText) {
    QGuiApplication::clipboard()->setText(QStringLiteral("caf\u00E9"));
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_UNICODETEXT));
    EXPECT_FALSE(IsClipboardFormatAvailable(format));
    OpenClipboard(main);
    const auto* text = static_cast<const WCHAR*>(GetClipboardData(CF_UNICODETEXT));
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(LocalSize(text), 10u);
    EXPECT_EQ(std::u16string(text), u"caf\u00E9");
    EmptyClipboard();
    const std::u16string unended = u"ab";
    EXPECT_NE(SetClipboardData(CF_UNICODETEXT,
                               Block(std::string(reinterpret_cast<const char*>(unended.data()), 5))),
              nullptr);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("ab"));
}
