#include "tests/support/usersession.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <algorithm>

#include "app/application.h"
#include "app/uiservices.h"
#include "platform/controls.h"
#include "platform/process.h"
#include "platform/ui/messagequeue.h"
#include "platform/ui/pickerwidget.h"
#include "platform/ui/titlebar.h"
#include "platform/ui/windowobject.h"

namespace {

constexpr int kPatience = 20'000; // milliseconds for one step
constexpr int kTextRoom = 1024;

bool TakesInput(HWND window) {
    return IsWindow(window) && IsWindowVisible(window) && IsWindowEnabled(window);
}

QString Narrow(const std::u16string& text) {
    return QString::fromStdU16String(text);
}

int CountRows(HWND list) {
    return static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
}

} // namespace

UserSession::UserSession() {
    TestHooks().messageBox = [this](const MessageBoxSeen& seen) { MessageBoxOpened(seen); };
    TestHooks().dialog = [this](const DialogSeen& seen) { DialogOpened(seen); };
    TestHooks().picker = [this](const PickerSeen& seen) {
        auto* const picker = static_cast<PickerWidget*>(seen.widget);
        const std::string name = names.empty() ? "" : names.front();
        if (!names.empty())
            names.pop_front();
        picker->findChild<QLineEdit*>(QStringLiteral("pickerName"))->setText(QString::fromStdString(name));
        name.empty() ? picker->Cancel() : picker->Accept();
    };
}

UserSession::~UserSession() {
    TestHooks() = {};
}

void UserSession::Do(std::function<void(HWND)> act) {
    steps.push_back({currentTemplate, [act = std::move(act)](HWND window) {
                         act(window);
                         return true;
                     }});
}

void UserSession::WaitFor(std::function<bool(HWND)> condition) {
    steps.push_back({currentTemplate, std::move(condition)});
}

void UserSession::Tap(int controlId) {
    Do([controlId](HWND window) {
        QWidget* const widget = GetDlgItem(window, controlId)->widget;
        const int nearEdge = widget->height() / 2; // where a check box has its box
        QTest::mouseClick(widget, Qt::LeftButton, {}, {nearEdge, nearEdge});
    });
}

void UserSession::TapTitleButton() {
    Do([](HWND) {
        auto* const button = ScreenArea()->window()->findChild<TitleBarButton*>();
        QTest::mouseClick(button, Qt::LeftButton);
    });
}

void UserSession::Press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    WaitFor([](HWND) { return QApplication::focusWidget() != nullptr; });
    Do([key, modifiers](HWND) { QTest::keyClick(QApplication::focusWidget(), key, modifiers); });
}

void UserSession::Type(const char* text) {
    WaitFor([](HWND) { return QApplication::focusWidget() != nullptr; });
    Do([text = std::string(text)](HWND) {
        QTest::keyClicks(QApplication::focusWidget(), QString::fromStdString(text));
    });
}

void UserSession::TypeInto(int controlId, const char* text) {
    Do([controlId](HWND window) {
        SetFocus(GetDlgItem(window, controlId));
        SendMessageW(GetDlgItem(window, controlId), EM_SETSEL, 0, -1);
    });
    Type(text);
}

void UserSession::TapRow(int listId, const std::u16string& text) {
    Do([listId, text](HWND window) {
        const HWND list = GetDlgItem(window, listId);
        const std::vector<std::u16string> names = Column(list, 0);
        const auto found = std::find(names.begin(), names.end(), text);
        ASSERT_NE(found, names.end()) << "no row " << Narrow(text).toStdString();
        LVITEMW item = {};
        item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&item));
        item.state = item.stateMask;
        SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(found - names.begin()),
                     reinterpret_cast<LPARAM>(&item));
    });
}

void UserSession::Choose(UINT command) {
    Do([command](HWND window) { PostMessageW(window, WM_COMMAND, command, 0); });
}

void UserSession::ExpectMessage(std::u16string text, int answer) {
    messages.emplace_back(std::move(text), answer);
}

void UserSession::PickName(const char* name) {
    names.emplace_back(name);
}

HWND UserSession::WindowOf(UINT templateId) const {
    if (templateId == 0)
        return App().idle ? App().mainWindow : nullptr;
    const auto found = opened.find(FindDialogTemplate(templateId));
    return found == opened.end() ? nullptr : found->second;
}

// Takes the next step when its window is ready for it; called again and again.
void UserSession::Go() {
    // What was done before takes its effect first: a tap on what a queued tap is about to cover would be
    // lost.
    if (gaveUp || FindQueued(0, UINT32_MAX))
        return;
    const HWND window = steps.empty() ? nullptr : WindowOf(steps.front().templateId);
    if (TakesInput(window)) {
        // The step leaves the queue first: what it opens runs a loop of its own, in which the next steps are
        // taken.
        Step step = std::move(steps.front());
        steps.pop_front();
        if (step.act(window))
            sinceStep.start();
        else
            steps.push_front(std::move(step));
    } else if (steps.empty() && TakesInput(App().mainWindow) && App().idle) {
        PostMessageW(App().mainWindow, WM_CLOSE, 0, 0);
    }
    if (sinceStep.hasExpired(kPatience))
        GiveUp();
}

void UserSession::GiveUp() {
    gaveUp = true;
    ADD_FAILURE() << steps.size() << " steps wait in vain, the first for template "
                  << (steps.empty() ? 0 : steps.front().templateId);
    for (const auto& [dialogTemplate, window] : opened) {
        if (IsWindow(window))
            PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
    }
    PostQuitMessage(0);
}

void UserSession::MessageBoxOpened(const MessageBoxSeen& seen) {
    const bool yesNo = seen.style & MB_YESNO;
    if (messages.empty()) {
        ADD_FAILURE() << "unexpected message: " << Narrow(seen.text).toStdString();
        AnswerMessageBox(yesNo ? IDNO : IDOK);
        return;
    }
    const auto [text, answer] = messages.front();
    messages.pop_front();
    EXPECT_EQ(Narrow(seen.text).toStdString(), Narrow(text).toStdString());
    AnswerMessageBox(answer);
}

void UserSession::DialogOpened(const DialogSeen& seen) {
    opened[seen.dialogTemplate] = seen.window;
    sinceStep.start();
}

void UserSession::RunProgram() {
    static bool classRegistered = false;
    EnsureWindowSystem();
    QTimer timer;
    timer.callOnTimeout([this] { Go(); });
    timer.start(1);
    sinceStep.start();
    App() = Application();
    // A second run in one process finds the window class there, as a second instance of old did.
    const HINSTANCE previous = classRegistered ? reinterpret_cast<HINSTANCE>(this) : nullptr;
    classRegistered = true;
    WCHAR nothing[] = u"";
    EXPECT_EQ(WinMain(nullptr, previous, nothing, SW_SHOWNORMAL), 0);
    EXPECT_TRUE(steps.empty()) << steps.size() << " steps were left over";
    EXPECT_TRUE(messages.empty()) << "a message was expected in vain: "
                                  << Narrow(messages.front().first).toStdString();
    EXPECT_TRUE(names.empty());
    currentTemplate = 0;
}

std::u16string UserSession::Text(HWND dialog, int controlId) {
    std::u16string text(kTextRoom, u'\0');
    text.resize(GetDlgItemTextW(dialog, controlId, text.data(), kTextRoom));
    return text;
}

std::u16string UserSession::RowText(HWND list, int row, int column) {
    WCHAR text[kTextRoom] = {};
    LVITEMW item = {};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = kTextRoom;
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
}

std::vector<std::u16string> UserSession::Column(HWND list, int column) {
    std::vector<std::u16string> texts;
    for (int row = 0; row < CountRows(list); ++row)
        texts.push_back(RowText(list, row, column));
    return texts;
}

int UserSession::SelectedRow(HWND list) {
    return static_cast<int>(SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}
