// What a test expects to open, and how it is answered.
#include <QAbstractButton>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <gtest/gtest.h>

#include "platform/base/utf8.h"
#include "platform/resources.h"
#include "platform/ui/core/windowcore.h"
#include "tests/support/script.h"
#include "tests/support/stylus.h"

namespace {

bool IsTemplate(const DLGTEMPLATE* dialogTemplate, int id) {
    const HRSRC resource = FindResourceW(nullptr, MAKEINTRESOURCEW(static_cast<WORD>(id)), RT_DIALOG);
    return resource && LoadResource(nullptr, resource) == dialogTemplate;
}

QAction* FindAction(const QMenu* menu, const QString& text) {
    for (QAction* action : menu->actions()) {
        QString shown = action->text().section(QLatin1Char('\t'), 0, 0);
        if (shown.remove(QLatin1Char('&')) == text)
            return action;
    }
    return nullptr;
}

} // namespace

void Stylus::ExpectBox(const std::u16string& text, int answer) {
    expected.push_back({Kind::Box, text, answer, nullptr});
}

void Stylus::ExpectDialog(int templateId, std::function<void(HWND)> act) {
    expected.push_back({Kind::Dialog, {}, templateId, std::move(act)});
}

void Stylus::AllowDialog(int templateId) {
    allowed.insert(templateId);
}

void Stylus::ExpectMenu(const std::u16string& item) {
    expected.push_back({Kind::Menu, item, 0, nullptr});
}

// For what opens a menu itself: what the item is to open is expected already.
void Stylus::ExpectMenuFirst(const std::u16string& item) {
    expected.push_front({Kind::Menu, item, 0, nullptr});
}

void Stylus::ExpectPicker(bool save, const std::u16string& name) {
    expected.push_back({Kind::Picker, name, save, nullptr});
}

bool Stylus::Take(Kind kind, const std::function<bool(const Expected&)>& fits, Expected& taken) {
    ++opened;
    if (expected.empty() || expected.front().kind != kind || !fits(expected.front()))
        return false;
    taken = std::move(expected.front());
    expected.pop_front();
    return true;
}

// Beside the loop of what has opened.
void Stylus::Answer(std::function<void()> act) {
    ++answering;
    StartScript([this, act = std::move(act)] {
        act();
        --answering;
    });
}

std::string Stylus::Waiting() const {
    if (expected.empty())
        return "nothing";
    static const char* const kKinds[] = {"box", "dialog", "menu", "picker"};
    const Expected& next = expected.front();
    return std::string(kKinds[static_cast<int>(next.kind)]) + " \"" + ToUtf8(next.text) + "\" " +
           std::to_string(next.number);
}

void Stylus::BoxOpened(const ui::MessageBoxSeen& box) {
    Expected taken;
    const HWND window = box.window;
    if (Take(
            Kind::Box, [&](const Expected& next) { return next.text == box.text; }, taken)) {
        EXPECT_TRUE(GetDlgItem(window, taken.number)) << "no such answer: " << taken.number;
        Answer([this, window, answer = taken.number] {
            if (ui::LiveWindow(window))
                Tap(window, answer);
        });
        return;
    }
    ADD_FAILURE() << "unexpected message box: " << ToUtf8(box.text) << "; expected was " << Waiting();
    StartScript([] { ui::AnswerMessageBox(IDCANCEL); });
}

void Stylus::DialogOpened(const ui::DialogSeen& dialog) {
    Expected taken;
    const HWND window = dialog.window;
    if (Take(
            Kind::Dialog,
            [&](const Expected& next) { return IsTemplate(dialog.dialogTemplate, next.number); }, taken)) {
        Answer([window, act = taken.act] {
            if (ui::LiveWindow(window) && act)
                act(window);
            else
                PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
        });
        return;
    }
    for (const int id : allowed)
        if (IsTemplate(dialog.dialogTemplate, id))
            return;
    ADD_FAILURE() << "unexpected dialog: " << ToUtf8(TextOf(window)) << "; expected was " << Waiting();
    PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
}

void Stylus::MenuOpened(QMenu* menu) {
    Expected taken;
    const QPointer<QMenu> shown(menu);
    if (Take(
            Kind::Menu, [](const Expected&) { return true; }, taken)) {
        Answer([this, shown, item = taken.text] {
            if (shown)
                ChooseItem(shown, item);
        });
        return;
    }
    ADD_FAILURE() << "unexpected menu; expected was " << Waiting();
    StartScript([shown] {
        if (shown)
            shown->close();
    });
}

void Stylus::ChooseItem(QMenu* menu, const std::u16string& item) {
    const QStringList path = QString::fromStdU16String(item).split(QLatin1Char('/'));
    QPointer<QMenu> shown(menu);
    // An item may have a slash of its own, as may the way to it: the whole text comes first.
    QAction* action = FindAction(menu, QString::fromStdU16String(item));
    for (qsizetype i = 0; !action && i < path.size() && shown; ++i) {
        QAction* step = FindAction(shown, path[i]);
        if (!step || !step->menu()) {
            action = step;
            break;
        }
        const QPointer<QMenu> submenu(step->menu());
        QTest::mouseClick(shown, Qt::LeftButton, {}, shown->actionGeometry(step).center());
        if (!QTest::qWaitFor([&submenu] { return submenu && submenu->isVisible(); }))
            break;
        shown = submenu;
    }
    if (!action || !action->isEnabled()) {
        ADD_FAILURE() << (action ? "greyed in the menu: " : "not in the menu: ") << ToUtf8(item);
        menu->close();
        return;
    }
    QTest::mouseClick(shown, Qt::LeftButton, {}, shown->actionGeometry(action).center());
}

void Stylus::PickerOpened(const ui::PickerSeen& picker) {
    Expected taken;
    const QPointer<QWidget> shown(picker.widget);
    if (Take(
            Kind::Picker, [&](const Expected& next) { return (next.number != 0) == picker.save; }, taken)) {
        Answer([this, shown, name = taken.text] {
            if (shown)
                FinishPicker(shown, name);
        });
        return;
    }
    ADD_FAILURE() << "unexpected picker; expected was " << Waiting();
    StartScript([this, shown] {
        if (shown)
            FinishPicker(shown, u"");
    });
}

void Stylus::FinishPicker(QWidget* picker, const std::u16string& name) {
    const char* buttonName = name.empty() ? "pickerCancel" : "pickerAccept";
    auto* edit = picker->findChild<QLineEdit*>(QStringLiteral("pickerName"));
    auto* button = picker->findChild<QAbstractButton*>(QLatin1String(buttonName));
    ASSERT_TRUE(edit && button);
    edit->selectAll();
    QTest::keyClicks(edit, QString::fromStdU16String(name));
    QTest::mouseClick(button, Qt::LeftButton);
}
