// The whole program by keys alone: what has the focus after each of them, and what a screen reader finds on
// the screen by then.
#include <QAccessible>
#include <QApplication>
#include <QMenu>

#include "platform/controls.h"
#include "platform/ui/controls/header.h"
#include "platform/ui/core/windowcore.h"
#include "platform/ui/menus/menubarwidget.h"
#include "platform/ui/screen/screen.h"
#include "resources/resource.h"
#include "tests/support/sampledatabases.h"
#include "tests/support/session.h"

namespace {

// Its own name, or that of its label.
QString NameOf(QAccessibleInterface* element) {
    const QString name = element->text(QAccessible::Name);
    const auto labels = element->relations(QAccessible::Label);
    return labels.isEmpty() ? name : labels.first().first->text(QAccessible::Name);
}

QString NameOf(QWidget* widget) {
    return NameOf(QAccessible::queryAccessibleInterface(widget));
}

// ---- what a screen reader finds ----

bool NeedsName(QAccessible::Role role) {
    static const std::set<QAccessible::Role> nameless = {
        QAccessible::Client,    QAccessible::Pane,      QAccessible::Border,
        QAccessible::Separator, QAccessible::ScrollBar, QAccessible::StaticText,
    };
    return !nameless.contains(role);
}

bool HasLetters(const QString& name) {
    return std::any_of(
        name.begin(), name.end(), [](QChar each) { return each.isLetterOrNumber(); });
}

QAccessible::Role RoleOfButton(DWORD style) {
    static const std::map<DWORD, QAccessible::Role> roles = {{BS_AUTOCHECKBOX, QAccessible::CheckBox},
                                                             {BS_AUTORADIOBUTTON, QAccessible::RadioButton},
                                                             {BS_GROUPBOX, QAccessible::Grouping}};
    const auto found = roles.find(style & BS_TYPEMASK);
    return found == roles.end() ? QAccessible::PushButton : found->second;
}

QAccessible::Role RoleOfWindow(HWND window) {
    static const std::map<QString, QAccessible::Role> roles = {
        {"static", QAccessible::StaticText},      {"edit", QAccessible::EditableText},
        {"combobox", QAccessible::ComboBox},      {"sysdatetimepick32", QAccessible::SpinBox},
        {"syslistview32", QAccessible::Pane},     {"sysheader32", QAccessible::ColumnHeader},
        {"menu_worker", QAccessible::MenuBar},    {"file_picker", QAccessible::Dialog},
        {"maindbdeleteclass", QAccessible::Pane}, {"msctls_progress32", QAccessible::ProgressBar},
    };
    const QString name = window->windowClass->name.toLower();
    if (name == QLatin1String("button"))
        return RoleOfButton(window->style);
    if (window->dialog) // a box is made without a template
        return window->dialog->homes.empty() ? QAccessible::AlertMessage : QAccessible::Dialog;
    return roles.at(name);
}

bool RoleFits(QAccessibleInterface* element) {
    const auto* const widget = qobject_cast<QWidget*>(element->object());
    const HWND window = widget ? ui::WindowOfWidget(widget) : nullptr;
    if (window && window->widget == widget)
        return element->role() == RoleOfWindow(window);
    return element->role() != QAccessible::NoRole;
}

void Crawl(QAccessibleInterface* element, const QString& path) {
    if (!element || !element->isValid() || element->state().invisible)
        return;
    const QString here = path + u'/' + QString::number(element->role(), 16) + u' ' + NameOf(element);
    EXPECT_TRUE(RoleFits(element)) << here.toStdString();
    EXPECT_TRUE(!NeedsName(element->role()) || HasLetters(NameOf(element))) << here.toStdString();
    for (int child = 0; child < element->childCount(); ++child)
        Crawl(element->child(child), here);
}

// ---- where the keyboard is ----

QString WhereInList(const ui::ListWidget& list) {
    const int row = ListView_GetNextItem(list.handle, -1, LVNI_FOCUSED);
    if (row < 0)
        return QStringLiteral("[nowhere]");
    QAccessibleInterface* const rows = QAccessible::queryAccessibleInterface(list.CurrentView());
    QAccessibleInterface* const cell = rows->tableInterface()->cellAt(row, 0);
    const QString description = cell->text(QAccessible::Description);
    return u'[' + cell->text(QAccessible::Name) + (description.isEmpty() ? QString() : u' ' + description) +
           (cell->state().selected ? QStringLiteral("]") : QStringLiteral(" unselected]"));
}

QString Where() {
    if (QWidget* const popup = QApplication::activePopupWidget()) {
        const auto* const menu = qobject_cast<QMenu*>(popup);
        return menu ? QStringLiteral("menu ") + NameOf(popup) : QStringLiteral("drop-down");
    }
    const HWND focus = GetFocus();
    const HWND top = ui::TopLevelOf(focus);
    if (!top || !focus->widget)
        return QStringLiteral("nowhere");
    const auto* const bar = top->topLevel->frame->findChild<ui::MenuBarWidget*>();
    if (bar && bar->Marked())
        return QStringLiteral("bar ") + NameOf(bar->Marked());
    QWidget* const host = QApplication::focusWidget();
    QString where = NameOf(top->widget) + QStringLiteral(": ") + NameOf(host);
    if (QAccessible::queryAccessibleInterface(host)->state().checked)
        where += QStringLiteral(" (checked)");
    const auto* const list = dynamic_cast<ui::ListWidget*>(focus->widget.data());
    if (list && host == list->CurrentView())
        where += WhereInList(*list);
    if (dynamic_cast<ui::HeaderView*>(host))
        where += u'[' + host->accessibleDescription() + u']';
    return where;
}

struct Step {
    int key; // with what is held
    const char* where;
};

class KeyboardWalk : public Session {
protected:
    void Walk(std::initializer_list<Step> steps) {
        ui::TestHooks() = {}; // what opens is answered by keys
        for (const Step& step : steps) {
            stylus.Key(static_cast<Qt::Key>(step.key & ~Qt::KeyboardModifierMask),
                       Qt::KeyboardModifiers(step.key & Qt::KeyboardModifierMask));
            if (const std::string where = Where().toStdString(); where != step.where)
                return Leave(where, step.where);
            Crawl(QAccessible::queryAccessibleInterface(ui::ScreenArea()->window()), QString());
            if (QWidget* const popup = QApplication::activePopupWidget())
                Crawl(QAccessible::queryAccessibleInterface(popup), QString());
        }
    }
    void ExpectHelp(const char* anchor) {
        stylus.Key(Qt::Key_F1);
        EXPECT_EQ(HelpShown(), std::string("tarnwickscope.htm") + anchor);
    }

private:
    void Leave(const std::string& where, const char* expected) {
        ADD_FAILURE() << "at " << where << ", which is not " << expected;
        for (int open = 0; open < 6; ++open)
            stylus.Key(Qt::Key_Escape);
    }
};

constexpr int kAlt = Qt::AltModifier;
constexpr int kControl = Qt::ControlModifier;
constexpr int kShift = Qt::ShiftModifier;

} // namespace

TEST_F(KeyboardWalk, GoesThroughTheMainWindow) {
    MakeDatabase(u"A", {});
    MakeDatabase(u"B", {{TextValue(1, u"b")}});
    MakeDatabase(u"C", {});
    RunProgram([&] {
        Walk({
            {Qt::Key_Down, "Pocket Strandview: Databases[B]"},
            {kControl | Qt::Key_R, "Pocket Strandview: Databases[B]"},
            {Qt::Key_F2, "Pocket Strandview: B"},
            {Qt::Key_Escape, "Pocket Strandview: Databases[B]"},
            {Qt::Key_F6, "Pocket Strandview: Name[sorted ascending]"},
            {Qt::Key_Space, "Pocket Strandview: Name[sorted descending]"},
            {Qt::Key_Right, "Pocket Strandview: Size[]"},
            {Qt::Key_Down, "Pocket Strandview: Databases[B]"},
            {Qt::Key_Down, "Pocket Strandview: Databases[A empty]"}, // turned around
            {Qt::Key_F6, "Pocket Strandview: Size[]"},
            {Qt::Key_F6, "bar Edit"},
            {Qt::Key_Left, "bar Properties"},
            {Qt::Key_Left, "bar Delete"},
            {Qt::Key_Down, "bar Delete"}, // which is no menu
            {Qt::Key_F6, "Pocket Strandview: Databases[A empty]"},
            {Qt::Key_F10, "bar Edit"},
            {Qt::Key_Down, "menu Edit"},
            {Qt::Key_Right, "menu View"},
            {Qt::Key_Escape, "Pocket Strandview: Databases[A empty]"},
            {Qt::Key_Menu, "menu List"},
            {Qt::Key_Escape, "Pocket Strandview: Databases[A empty]"},
            {kShift | Qt::Key_F10, "menu List"},
            {Qt::Key_D, "Pocket Strandview: No"},
            {Qt::Key_Escape, "Pocket Strandview: Databases[A empty]"},
            {Qt::Key_Delete, "Pocket Strandview: No"},
            {Qt::Key_Escape, "Pocket Strandview: Databases[A empty]"},
            {kShift | Qt::Key_Up, "Pocket Strandview: Databases[B]"}, // two rows
            {Qt::Key_Delete, "Pocket Strandview: Databases[B]"},
            {Qt::Key_Up, "Pocket Strandview: Databases[C empty]"},
            {kAlt | Qt::Key_V, "menu View"},
            {Qt::Key_G, "Pocket Strandview: Databases[C empty]"}, // large icons
            {Qt::Key_F6, "bar Edit"},
            {Qt::Key_Escape, "Pocket Strandview: Databases[C empty]"},
        });
    });
}

TEST_F(KeyboardWalk, GoesThroughTheDialogs) {
    MakeDatabase(u"A", {{TextValue(1, u"a")}});
    MakeDatabase(u"B", {{TextValue(1, u"b")}});
    RunProgram([&] {
        Walk({
            {Qt::Key_Down, "Pocket Strandview: Databases[B]"},
            {kAlt | Qt::Key_T, "menu Tools"},
            {Qt::Key_O, "Options: Show system databases"},
            {Qt::Key_Tab, "Options: Use bold font"},
            {Qt::Key_Return, "Pocket Strandview: Databases[B]"},
            {kAlt | Qt::Key_T, "menu Tools"},
            {Qt::Key_U, "About Pocket Strandview: OK"},
            {Qt::Key_Escape, "Pocket Strandview: Databases[B]"},
            {kControl | Qt::Key_N, "Rename Database: To:"},
            {Qt::Key_Menu, "menu Edit"}, // of the host
            {Qt::Key_Escape, "Rename Database: To:"},
            {Qt::Key_Escape, "Pocket Strandview: Databases[B]"},
            {kControl | Qt::Key_P, "Database Properties: OK"},
            {Qt::Key_Escape, "Pocket Strandview: Databases[B]"},
            {kControl | Qt::Key_B, "Backup Databases: Selected database(s) (checked)"},
            {Qt::Key_Down, "Backup Databases: All databases (checked)"},
            {kAlt | Qt::Key_G, "Backup Databases: Generate Autobackup script (checked)"},
            {Qt::Key_Tab, "Backup Databases: Generate Autobackup script"}, // the path, named after it
            {Qt::Key_Tab, "Backup Databases: Browse"},
            {Qt::Key_Space, "Save As: Name:"},
            {Qt::Key_Escape, "Backup Databases: Browse"},
            {kAlt | Qt::Key_P, "Backup Databases: Password-protected (checked)"},
            {Qt::Key_Return, "Protect Backup: Password:"},
            {Qt::Key_Escape, "Backup Databases: Password-protected (checked)"},
            {Qt::Key_Escape, "Pocket Strandview: Databases[B]"},
            {kControl | kShift | Qt::Key_S, "Export Database: File format:"},
            {kAlt | Qt::Key_Down, "drop-down"},
            {Qt::Key_Escape, "Export Database: File format:"}, // and the dialog stays
            {kAlt | Qt::Key_Down, "drop-down"},
            {Qt::Key_Return, "Export Database: File format:"},
            {Qt::Key_Escape, "Pocket Strandview: Databases[B]"},
            {kControl | Qt::Key_B, "Backup Databases: Selected database(s) (checked)"},
            {Qt::Key_Return, "Save As: Name:"},
            {Qt::Key_N, "Save As: Name:"},
            {Qt::Key_Return, "Pocket Strandview: Databases[B]"},
            {kControl | Qt::Key_T, "Open: Name:"},
            {Qt::Key_N, "Open: Name:"},
            {Qt::Key_Return, "Restore Registry Database: Databases[B]"},
            {Qt::Key_Return, "Database Exists: Rename"},
            {Qt::Key_Escape, "Pocket Strandview: Databases[B]"},
            {kControl | Qt::Key_G, "Infrared Transfer: Cancel"},
            {Qt::Key_Return, "Pocket Strandview: Yes"},
            {Qt::Key_Y, "Pocket Strandview: Databases[B]"},
            {kAlt | Qt::Key_T, "menu Tools"},
            {Qt::Key_K, "Backup Registry Database: Main Registry Keys[HKEY_CLASSES_ROOT unselected]"},
            {Qt::Key_Escape, "Pocket Strandview: Databases[B]"},
        });
    });
}

TEST_F(KeyboardWalk, GoesThroughTheViewer) {
    MakeDatabase(u"A", {{NumberValue(1, CEVT_I2, 5), TextValue(2, u"text"), NumberValue(3, CEVT_BOOL, 1),
                         NumberValue(4, CEVT_FILETIME, 0)}});
    RunProgram([&] {
        CatchHelp();
        Walk({
            {Qt::Key_Return, "Database: \"A\": Properties[BOOLEAN]"},
            {Qt::Key_Tab, "Database: \"A\": Add..."},
            {Qt::Key_Tab, "Database: \"A\": Delete"},
            {Qt::Key_Tab, "Database: \"A\": True (checked)"},
            {Qt::Key_Tab, "Database: \"A\": Properties[BOOLEAN]"},
            {Qt::Key_Down, "Database: \"A\": Properties[DATE]"},
            {kShift | Qt::Key_Tab, "Database: \"A\": Time"},
            {kShift | Qt::Key_Tab, "Database: \"A\": Date"},
            {kAlt | Qt::Key_Down, "drop-down"}, // the calendar
            {Qt::Key_Escape, "Database: \"A\": Date"},
            {kControl | Qt::Key_F, "Find Property: Text to find:"},
        });
        ExpectHelp("#findprop");
        Walk({
            {Qt::Key_Escape, "Database: \"A\": Date"},
            {Qt::Key_Tab, "Database: \"A\": Time"},
            {Qt::Key_Tab, "Database: \"A\": Properties[DATE]"},
            {Qt::Key_End, "Database: \"A\": Properties[TEXT]"},
            {kShift | Qt::Key_Tab, "Database: \"A\": Value"},
            {Qt::Key_Menu, "menu Edit"},
            {Qt::Key_Escape, "Database: \"A\": Value"},
            {Qt::Key_Tab, "Database: \"A\": Properties[TEXT]"},
            {Qt::Key_Menu, "menu Edit"},
            {Qt::Key_C, "Database: \"A\": Properties[TEXT]"},
            {Qt::Key_Up, "Database: \"A\": Properties[INT]"},
            {Qt::Key_Delete, "Pocket Strandview: Yes"},
            {Qt::Key_Escape, "Database: \"A\": Properties[INT]"},
            {Qt::Key_F6, "Database: \"A\": Type[sorted ascending]"},
            {Qt::Key_Space, "Database: \"A\": Type[sorted descending]"},
            {Qt::Key_Tab, "Database: \"A\": Add..."},
            {Qt::Key_F6, "bar Record"},
            {Qt::Key_F6, "Database: \"A\": Add..."},
        });
        ExpectHelp("#fieldview");
        Walk({
            {Qt::Key_Space, "Add Property Wizard: Property Type:"},
            {kAlt | Qt::Key_Down, "drop-down"},
            {Qt::Key_End, "drop-down"},
            {Qt::Key_Return, "Add Property Wizard: Property Type:"},
            {Qt::Key_Tab, "Add Property Wizard: Property ID:   "},
            {kAlt | Qt::Key_N, "Initial Numeric Property Value: Number:"},
            {kAlt | Qt::Key_B, "Add Property Wizard: Property Type:"},
            {Qt::Key_B, "Add Property Wizard: Property Type:"},
            {kAlt | Qt::Key_N, "Initial Boolean Property Value: False (checked)"},
            {kAlt | Qt::Key_B, "Add Property Wizard: Property Type:"},
            {Qt::Key_D, "Add Property Wizard: Property Type:"},
            {kAlt | Qt::Key_N, "Initial Date Property Value: Date:"},
            {kAlt | Qt::Key_B, "Add Property Wizard: Property Type:"},
            {Qt::Key_T, "Add Property Wizard: Property Type:"},
            {kAlt | Qt::Key_N, "Initial Text Property Value: Initial Text Property Value"},
        });
        ExpectHelp("#addprop");
        Walk({
            {Qt::Key_Escape, "Database: \"A\": Add..."},
            {Qt::Key_Escape, "Pocket Strandview: Databases[A]"},
        });
    });
}
