// What everything looks like: on a small screen, when it is turned, in the desktop's colours.
#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QPalette>
#include <QScrollBar>

#include "app/application.h"
#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "platform/ui/core/windowobject.h"
#include "platform/ui/screen/screen.h"
#include "resources/resource.h"
#include "tests/support/sampledatabases.h"
#include "tests/support/session.h"

namespace {

LONG_PTR FrameProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_INITDIALOG)
        return HandleFrameMessage(dialog, message, wParam, lParam, nullptr);
    InitDialogFrame(dialog, kDoneButton | kHelpButton);
    return TRUE;
}

// Whether all its text is to be seen.
bool ShowsItsText(const QWidget* widget) {
    const QFontMetrics metrics = widget->fontMetrics();
    if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
        return metrics.size(Qt::TextShowMnemonic, button->text()).width() <= button->width();
    const auto* label = qobject_cast<const QLabel*>(widget);
    return !label || label->text().isEmpty() ||
           metrics.boundingRect(label->rect(), Qt::TextWordWrap, label->text()).height() <= label->height();
}

double Lightness() {
    const QImage shown = ui::ScreenArea()->grab().toImage();
    double sum = 0;
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width(); ++x)
            sum += qGray(shown.pixel(x, y));
    return sum / shown.width() / shown.height();
}

using LooksTest = Session;

} // namespace

TEST_F(LooksTest, ASmallScreenCutsNoDialogAndNoBox) {
    MakeDatabase(u"A", {});
    RunProgram([&] {
        Window();
        for (const QSize& size : {QSize(240, 320), QSize(320, 240)}) {
            stylus.Resize(size.width(), size.height());
            for (UINT id = IDD_ABOUT; id < IDD_ABOUT + 100; ++id) {
                const bool landscape = id == IDD_BACKUP_OPTIONS_LANDSCAPE || id == IDD_MAIN_KEYS_LANDSCAPE ||
                                       id == IDD_VIEWER_LANDSCAPE || id == IDD_SELECTION_LIST_LANDSCAPE;
                const DLGTEMPLATE* const dialogTemplate = FindDialogTemplate(id);
                if (!dialogTemplate || (landscape && !LandscapeLayout()))
                    continue;
                const HWND dialog = CreateDialogIndirectParamW(AppInstance(), dialogTemplate,
                                                               App().mainWindow, FrameProcedure, 0);
                ShowWindow(dialog, SW_SHOW);
                stylus.Settle();
                EXPECT_LE(dialog->widget->width(), size.width()) << id; // nothing to scroll across
                for (const HWND control : dialog->children)
                    EXPECT_TRUE(control->id == IDC_FRAME_HELP || !IsWindowVisible(control) ||
                                ShowsItsText(control->widget))
                        << id << ' ' << control->text.toStdString();
                DestroyWindow(dialog);
            }
        }
        stylus.Resize(480, 640);
    });
}

TEST_F(LooksTest, ATurnedScreenLaysOutAnew) {
    MakeDatabase(u"A", {{TextValue(1, u"text")}});
    const auto rectOf = [&](int control) { return Control(control)->widget->geometry(); };
    RunProgram([&] {
        TapRow(IDC_LIST, u"A");
        InWindow(IDD_VIEWER);
        const QRect list = rectOf(IDC_VIEWER_LIST);
        EXPECT_LT(list.bottom(), rectOf(IDC_VALUE_TEXT).top());
        stylus.Resize(640, 480);
        EXPECT_LT(rectOf(IDC_VIEWER_LIST).right(), rectOf(IDC_VALUE_TEXT).left());
        stylus.Resize(480, 640);
        EXPECT_EQ(rectOf(IDC_VIEWER_LIST), list);
        Press(Qt::Key_Escape);
        InMainWindow();
        Choose(u"Tools/Backup...");
        InWindow(IDD_BACKUP_OPTIONS);
        stylus.Resize(320, 240);
        stylus.Resize(640, 480);
        EXPECT_EQ(rectOf(IDC_BACKUP_SELECTED).top(), rectOf(IDC_BACKUP_COMPRESS).top()); // beside each other
        Press(Qt::Key_Escape);
        InMainWindow();
        stylus.Resize(480, 640);
    });
}

TEST_F(LooksTest, WindowsDialogsAndBoxesAreAsDarkAsTheDesktop) {
    const QPalette light = QApplication::palette();
    QPalette dark(QColor(60, 60, 64), QColor(45, 45, 48));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        dark.setColor(role, QColor(230, 230, 230));
    dark.setColor(QPalette::Base, QColor(30, 30, 32));
    dark.setColor(QPalette::AlternateBase, QColor(38, 38, 40));
    RunProgram([&] {
        const auto followsTheDesktop = [&](const char* what) {
            Window();
            QApplication::setPalette(dark);
            stylus.Settle();
            EXPECT_LT(Lightness(), 90) << what;
            QApplication::setPalette(light);
            stylus.Settle();
            EXPECT_GT(Lightness(), 190) << what;
        };
        followsTheDesktop("the main window");
        Choose(u"Tools/Options...");
        InWindow(IDD_OPTIONS);
        followsTheDesktop("a dialog");
        Press(Qt::Key_Escape);
        InMainWindow();
    });
}
