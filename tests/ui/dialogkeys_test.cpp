// The keys of dialogs.
#include <QPushButton>
#include <gtest/gtest.h>

#include "platform/controls.h"
#include "platform/ui/core/windowcore.h"
#include "tests/support/stylus.h"
#include "tests/ui/templatebuilder.h"

namespace {

enum Id : WORD { kName = 20, kNotes, kFirst, kSecond, kThird, kCheck, kApply, kLabel, kGroup, kHidden };

std::vector<UINT> commands;

LONG_PTR Procedure(HWND, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED)
        commands.push_back(LOWORD(wParam));
    return message == WM_INITDIALOG || message == WM_COMMAND;
}

class DialogKeys : public testing::Test {
protected:
    void SetUp() override {
        TemplateBuilder builder(u"Keys");
        builder.Add(u"STATIC", u"&Name:", 0, kLabel)
            .Add(u"EDIT", u"abc", WS_TABSTOP, kName)
            .Add(u"EDIT", u"hidden", WS_TABSTOP, kHidden)
            .Add(u"EDIT", u"", WS_TABSTOP | ES_MULTILINE | ES_WANTRETURN, kNotes, 7, 30, 100, 40)
            .Add(u"BUTTON", u"&Kind", BS_GROUPBOX, kGroup)
            .Add(u"BUTTON", u"Fi&rst", BS_AUTORADIOBUTTON | WS_TABSTOP | WS_GROUP, kFirst, 7, 80)
            .Add(u"BUTTON", u"Second", BS_AUTORADIOBUTTON | WS_TABSTOP, kSecond, 70, 80)
            .Add(u"BUTTON", u"Third", BS_AUTORADIOBUTTON | WS_TABSTOP, kThird, 130, 80)
            .Add(u"BUTTON", u"Chec&k", BS_AUTOCHECKBOX | WS_TABSTOP | WS_GROUP, kCheck, 7, 100)
            .Add(u"BUTTON", u"&Apply", BS_PUSHBUTTON | WS_TABSTOP | WS_GROUP, kApply, 7, 120)
            .Add(u"BUTTON", u"OK", BS_DEFPUSHBUTTON | WS_TABSTOP, IDOK, 70, 120)
            .Add(u"BUTTON", u"Cancel", BS_PUSHBUTTON | WS_TABSTOP, IDCANCEL, 130, 120);
        ui::TestHooks().dialog = nullptr;
        dialog = CreateDialogIndirectParamW(nullptr, builder.Get(), nullptr, Procedure, 0);
        ASSERT_TRUE(dialog);
        ShowWindow(GetDlgItem(dialog, kHidden), SW_HIDE);
        EnableWindow(GetDlgItem(dialog, kThird), FALSE);
        CheckRadioButton(dialog, kFirst, kThird, kSecond);
        ShowWindow(dialog, SW_SHOW);
        stylus.Settle();
        commands.clear();
    }
    void TearDown() override {
        DestroyWindow(dialog);
        stylus.Settle();
    }
    UINT FocusId() const { return GetFocus() ? GetFocus()->id : 0; }
    // The buttons that look like the default one.
    std::vector<UINT> Marked() const {
        std::vector<UINT> marked;
        for (const HWND child : dialog->children)
            if (const auto* button = qobject_cast<const QPushButton*>(child->widget);
                button && button->isDefault())
                marked.push_back(child->id);
        return marked;
    }
    std::vector<UINT> Stops(Qt::KeyboardModifiers modifiers) {
        std::vector<UINT> stops;
        do {
            stops.push_back(FocusId());
            stylus.Key(Qt::Key_Tab, modifiers);
        } while (FocusId() != stops.front() && stops.size() < 20);
        return stops;
    }

    Stylus stylus;
    HWND dialog = nullptr;
};

TEST_F(DialogKeys, TabStopsAtWhatCanBeReachedAndOnceInAGroup) {
    EXPECT_EQ(Stops(Qt::NoModifier),
              (std::vector<UINT>{kName, kNotes, kSecond, kCheck, kApply, IDOK, IDCANCEL}));
    EXPECT_EQ(Stops(Qt::ShiftModifier),
              (std::vector<UINT>{kName, IDCANCEL, IDOK, kApply, kCheck, kSecond, kNotes}));
    SendDlgItemMessageW(dialog, kName, EM_SETSEL, 1, 1);
    Stops(Qt::NoModifier);
    EXPECT_EQ(SendDlgItemMessageW(dialog, kName, EM_GETSEL, 0, 0), static_cast<LRESULT>(MAKELONG(0, 3)));
}

TEST_F(DialogKeys, ArrowsChooseWithinTheGroup) {
    SetFocus(GetDlgItem(dialog, kSecond));
    stylus.Key(Qt::Key_Down); // past the disabled third, around
    EXPECT_EQ(FocusId(), kFirst);
    EXPECT_EQ(IsDlgButtonChecked(dialog, kFirst), BST_CHECKED);
    EXPECT_EQ(IsDlgButtonChecked(dialog, kSecond), BST_UNCHECKED);
    stylus.Key(Qt::Key_Up);
    EXPECT_EQ(FocusId(), kSecond);
    EXPECT_EQ(commands, (std::vector<UINT>{kFirst, kSecond}));
    SetFocus(GetDlgItem(dialog, kName));
    stylus.Key(Qt::Key_Right); // the edit box's own
    EXPECT_EQ(FocusId(), kName);
}

TEST_F(DialogKeys, EnterAndEscapePressWhatTheyStandFor) {
    EXPECT_EQ(Marked(), std::vector<UINT>{IDOK});
    stylus.Key(Qt::Key_Return);
    EXPECT_EQ(commands, std::vector<UINT>{IDOK});
    SetFocus(GetDlgItem(dialog, kApply));
    EXPECT_EQ(Marked(), std::vector<UINT>{kApply});
    stylus.Key(Qt::Key_Return);
    stylus.Key(Qt::Key_Space);
    stylus.Key(Qt::Key_Escape);
    EXPECT_EQ(commands, (std::vector<UINT>{IDOK, kApply, kApply, IDCANCEL}));
    SetFocus(GetDlgItem(dialog, kNotes));
    stylus.Key(Qt::Key_Return);
    EXPECT_EQ(commands.size(), 4u);
    EXPECT_EQ(TextOf(dialog, kNotes).size(), 2u); // a line end
    EnableWindow(GetDlgItem(dialog, IDOK), FALSE);
    SetFocus(GetDlgItem(dialog, kCheck));
    stylus.Key(Qt::Key_Return);
    EXPECT_EQ(commands.size(), 4u);
}

TEST_F(DialogKeys, MnemonicsFindTheirControl) {
    stylus.Key(Qt::Key_A, Qt::AltModifier);
    EXPECT_EQ(commands, std::vector<UINT>{kApply});
    stylus.Key(Qt::Key_N, Qt::AltModifier); // a label's is that of the control behind it
    EXPECT_EQ(FocusId(), kName);
    stylus.Key(Qt::Key_R, Qt::AltModifier);
    EXPECT_EQ(IsDlgButtonChecked(dialog, kFirst), BST_CHECKED);
    // Two controls share a letter: in turn, from the focus on.
    stylus.Key(Qt::Key_K, Qt::AltModifier);
    EXPECT_EQ(FocusId(), kCheck);
    EXPECT_EQ(IsDlgButtonChecked(dialog, kCheck), BST_CHECKED);
    stylus.Key(Qt::Key_K, Qt::AltModifier);
    EXPECT_EQ(FocusId(), kFirst); // behind the group box

    commands.clear();
    SetFocus(GetDlgItem(dialog, kCheck));
    stylus.Key(Qt::Key_A); // where letters mean nothing else, Alt is not needed
    EXPECT_EQ(commands, std::vector<UINT>{kApply});
    SetFocus(GetDlgItem(dialog, kName));
    stylus.Key(Qt::Key_A);
    EXPECT_EQ(commands.size(), 1u);
    EXPECT_EQ(TextOf(dialog, kName).back(), u'a');
}

} // namespace
