// Buttons, edit boxes and progress bars.
#include "tests/ui/windowfixture.h"

namespace {

constexpr UINT kFirst = 101;
constexpr UINT kSecond = 102;
constexpr UINT kThird = 103;

class ButtonTest : public WindowTest {
protected:
    std::optional<LRESULT> Handle(HWND, UINT message, WPARAM, LPARAM lParam) override {
        if (message == WM_DRAWITEM)
            drawn.push_back(*reinterpret_cast<DRAWITEMSTRUCT*>(lParam));
        return std::nullopt;
    }

    std::vector<DRAWITEMSTRUCT> drawn;
};

using EditTest = WindowTest;
using StaticTest = WindowTest;
using ProgressTest = WindowTest;

TEST_F(ButtonTest, RadioButtonsExcludeOthersOfTheirGroupOnly) {
    const HWND first = Add(u"BUTTON", u"1", BS_AUTORADIOBUTTON | WS_GROUP, kFirst, {10, 10, 210, 40});
    const HWND second = Add(u"BUTTON", u"2", BS_AUTORADIOBUTTON, kSecond, {10, 50, 210, 80});
    const HWND other = Add(u"BUTTON", u"3", BS_AUTORADIOBUTTON | WS_GROUP, kThird, {10, 90, 210, 120});
    Send(other, BM_SETCHECK, BST_CHECKED);
    Send(first, BM_SETCHECK, BST_CHECKED);
    stylus.Tap(second, {10, 15});
    EXPECT_EQ(Send(first, BM_GETCHECK), BST_UNCHECKED);
    EXPECT_EQ(Send(second, BM_GETCHECK), BST_CHECKED);
    EXPECT_EQ(Send(other, BM_GETCHECK), BST_CHECKED);
}

// Neither a word that is too long nor half a line is cut off.
TEST_F(StaticTest, LongPathsTakeTheWholeLinesThatThereAre) {
    const HWND path = Add(u"STATIC", std::u16string(100, u'W').c_str(), SS_NOPREFIX, kFirst, {0, 0, 100, 10});
    const int line = path->widget->fontMetrics().height();
    for (const int lines : {1, 3}) {
        MoveWindow(path, 0, 0, 100, lines * line + line / 2, TRUE);
        const QImage picture = path->widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
        int last = 0; // row with something on it
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                last = picture.pixel(x, y) != picture.pixel(0, picture.height() - 1) ? y : last;
        EXPECT_GT(last, (lines - 1) * line);
        EXPECT_LE(last, lines * line);
    }
}

TEST_F(ButtonTest, CheckBoxesToggleThemselves) {
    const HWND box = Add(u"BUTTON", u"&Auto", BS_AUTOCHECKBOX, kFirst, {10, 10, 210, 40});
    stylus.Tap(box, {10, 15});
    EXPECT_EQ(Send(box, BM_GETCHECK), BST_CHECKED);
    EXPECT_EQ(commands, (std::vector<Command>{{kFirst, BN_CLICKED}}));
    EXPECT_EQ(GetFocus(), box);
    // Keys do the same; checking by message tells nobody.
    stylus.Key(Qt::Key_Space);
    EXPECT_EQ(Send(box, BM_GETCHECK), BST_UNCHECKED);
    Send(box, BM_SETCHECK, BST_CHECKED);
    EXPECT_EQ(Send(box, BM_GETCHECK), BST_CHECKED);
    EXPECT_EQ(commands.size(), 2u);
    EXPECT_EQ(TextOf(box), u"&Auto");
}

TEST_F(ButtonTest, TheOwnerDrawsWithThePressedState) {
    const HWND button = Add(u"BUTTON", u"", BS_OWNERDRAW, kFirst, {10, 10, 70, 40});
    const auto isDrawn = [this](UINT state) {
        return stylus.WaitFor([&] { return !drawn.empty() && drawn.back().itemState == state; }, "drawing");
    };
    ASSERT_TRUE(isDrawn(0));
    EXPECT_EQ(drawn.back().CtlID, kFirst);
    EXPECT_EQ(drawn.back().CtlType, ODT_BUTTON);
    EXPECT_EQ(drawn.back().rcItem.right, 60);
    EXPECT_NE(drawn.back().hDC, nullptr);
    QTest::mousePress(button->widget, Qt::LeftButton, {}, {5, 5});
    EXPECT_TRUE(isDrawn(ODS_SELECTED));
    QTest::mouseRelease(button->widget, Qt::LeftButton, {}, {5, 5});
    EXPECT_TRUE(isDrawn(0));
    EXPECT_EQ(commands, (std::vector<Command>{{kFirst, BN_CLICKED}}));
}

// What is set reads back as it was, whatever it is made of; the boxes differ in what the host would mend.
TEST_F(EditTest, TextThatIsNotEditedIsKeptExactly) {
    const std::u16string odd = u"\xFEFF"
                               u"a\r\nb\nc\rd\u00A0\u2029\t\xD83D\xDE00 \xDC00 end\r\n";
    const std::u16string lengthy(70000, u'x');
    for (DWORD style : {DWORD{ES_AUTOHSCROLL}, DWORD{ES_MULTILINE | ES_WANTRETURN}}) {
        const HWND box = Add(u"EDIT", u"", style, kFirst, {10, 10, 300, 90});
        Send(box, EM_SETLIMITTEXT, 5);
        for (const std::u16string& text : {odd, lengthy, std::u16string()}) {
            commands.clear();
            SetWindowTextW(box, text.c_str());
            EXPECT_EQ(TextOf(box), text) << style;
            EXPECT_EQ(commands, (std::vector<Command>{{kFirst, EN_CHANGE}}));
        }
        WCHAR cut[3];
        SetWindowTextW(box, u"abcdef");
        EXPECT_EQ(GetWindowTextW(box, cut, 3), 2);
        EXPECT_EQ(std::u16string(cut), u"ab");
        DestroyWindow(box);
    }
}

TEST_F(EditTest, AnEditKeepsTheLineEndsBesideIt) {
    const HWND box = Add(u"EDIT", u"", ES_MULTILINE | ES_WANTRETURN, kFirst, {10, 10, 300, 90});
    SetWindowTextW(box, u"one\ntwo\r\nthree\u00A0");
    Send(box, EM_SETSEL, 3, 3);
    Type(box, u"X");
    EXPECT_EQ(TextOf(box), u"oneX\ntwo\r\nthree\u00A0");
    // A new line ends like the first one of the text.
    stylus.Key(Qt::Key_Return);
    EXPECT_EQ(TextOf(box), u"oneX\n\ntwo\r\nthree\u00A0");
    SetWindowTextW(box, u"single");
    Send(box, EM_SETSEL, 6, 6);
    stylus.Key(Qt::Key_Return);
    EXPECT_EQ(TextOf(box), u"single\r\n");
}

TEST_F(EditTest, TypingIsToldAndUndoTakesItBack) {
    for (DWORD style : {DWORD{ES_AUTOHSCROLL}, DWORD{ES_MULTILINE}}) {
        const HWND box = Add(u"EDIT", u"old", style, kFirst, {10, 10, 300, 90});
        commands.clear();
        Send(box, EM_SETSEL, 0, -1);
        Type(box, u"n");
        EXPECT_EQ(TextOf(box), u"n");
        EXPECT_TRUE(Send(box, EM_CANUNDO));
        EXPECT_FALSE(commands.empty());
        Send(box, WM_UNDO);
        EXPECT_EQ(TextOf(box), u"old");
        Type(box, u"m");
        Send(box, EM_EMPTYUNDOBUFFER);
        EXPECT_FALSE(Send(box, EM_CANUNDO));
        DestroyWindow(box);
    }
}

TEST_F(EditTest, SelectionCountsAsTheTextDoes) {
    const HWND box = Add(u"EDIT", u"", ES_MULTILINE, kFirst, {10, 10, 300, 90});
    SetWindowTextW(box, u"ab\r\ncd\nef");
    for (auto [start, end] : {std::pair<int, int>{0, 9}, {4, 5}, {7, 9}, {2, 4}}) {
        Send(box, EM_SETSEL, static_cast<WPARAM>(start), end);
        DWORD first = 99, last = 99;
        const LRESULT packed = Send(box, EM_GETSEL, reinterpret_cast<WPARAM>(&first), &last);
        EXPECT_EQ(first, static_cast<DWORD>(start));
        EXPECT_EQ(last, static_cast<DWORD>(end));
        EXPECT_EQ(packed, start | end << 16);
    }
    Send(box, EM_SETSEL, 0, -1);
    EXPECT_EQ(HIWORD(static_cast<std::uintptr_t>(Send(box, EM_GETSEL))), 9);
    Send(box, EM_SETSEL, static_cast<WPARAM>(-1), 0);
    const LRESULT none = Send(box, EM_GETSEL);
    EXPECT_EQ(LOWORD(static_cast<std::uintptr_t>(none)), HIWORD(static_cast<std::uintptr_t>(none)));
}

TEST_F(EditTest, ClipboardKeysAndLimits) {
    const HWND box = Add(u"EDIT", u"text", ES_AUTOHSCROLL, kFirst);
    Send(box, EM_SETSEL, 0, 2);
    Send(box, WM_CUT);
    EXPECT_EQ(TextOf(box), u"xt");
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("te"));
    const HWND fixed = Add(u"EDIT", u"fixed", ES_AUTOHSCROLL | ES_READONLY, kSecond, {10, 50, 210, 80});
    Send(fixed, EM_SETSEL, 0, -1);
    Send(fixed, WM_CUT);
    Send(fixed, WM_PASTE);
    Type(fixed, u"z");
    EXPECT_EQ(TextOf(fixed), u"fixed");
    const HWND secret = Add(u"EDIT", u"", ES_AUTOHSCROLL | ES_PASSWORD, kThird, {10, 90, 210, 120});
    Send(secret, EM_SETLIMITTEXT, 4);
    Type(secret, u"secret");
    EXPECT_EQ(TextOf(secret), u"secr");
    Send(secret, EM_SETSEL, 0, -1);
    Send(secret, WM_COPY);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("te"));
}

TEST_F(ProgressTest, CountsBeyondSixteenBitsAndStartsAgain) {
    const HWND bar = Add(u"msctls_progress32", u"", 0, kFirst);
    Send(bar, PBM_SETRANGE32, 0, 65536);
    Send(bar, PBM_SETPOS, 65535);
    Send(bar, PBM_SETSTEP, 1);
    Send(bar, PBM_STEPIT);
    EXPECT_EQ(Send(bar, PBM_SETPOS, 65536), 65536); // answers with the one before
    Send(bar, PBM_STEPIT);
    EXPECT_EQ(Send(bar, PBM_SETPOS, 40), 0);
    Send(bar, PBM_SETRANGE32, 10, 30);
    EXPECT_EQ(Send(bar, PBM_SETPOS, 30), 30);
}

} // namespace
