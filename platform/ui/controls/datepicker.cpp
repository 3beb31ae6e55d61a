// The date picker and the time picker.
#include <QCalendarWidget>
#include <QDateTimeEdit>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QStyleOptionComboBox>
#include <QToolButton>
#include <algorithm>

#include "platform/base/localepatterns.h"
#include "platform/datetime.h"
#include "platform/ui/controls/controlsupport.h"
#include "platform/ui/drawing/look.h"

namespace ui {

namespace {

const QDate kFirstDate(1601, 1, 1);

bool IsTimePicker(const WindowObject& window) {
    return (window.style & DTS_TIMEFORMAT) == DTS_TIMEFORMAT;
}

// The short date, its year always in full.
QString DatePattern(const QLocale& locale) {
    static const QRegularExpression shortYear(QStringLiteral("(?<!y)yy(?!y)"));
    return locale.dateFormat(QLocale::ShortFormat).replace(shortYear, QStringLiteral("yyyy"));
}

// The calendar's month button would run its menu as a loop of the host's own.
void OpenMonthMenuWithoutLoop(QCalendarWidget* calendar) {
    auto* button = calendar->findChild<QToolButton*>(QStringLiteral("qt_calendar_monthbutton"));
    QMenu* menu = button ? button->menu() : nullptr;
    if (!menu)
        return;
    button->setMenu(nullptr);
    QObject::connect(button, &QToolButton::clicked, menu,
                     [button, menu] { menu->popup(button->mapToGlobal(QPoint(0, button->height()))); });
}

void NameParts(QCalendarWidget* calendar) {
    calendar->setAccessibleName(QStringLiteral("Calendar"));
    const std::pair<const char*, const char*> names[] = {
        {"qt_calendar_prevmonth", "Previous month"},
        {"qt_calendar_nextmonth", "Next month"},
        {"qt_calendar_yearedit", "Year"},
        {"qt_calendar_calendarview", "Days"},
    };
    for (const auto& [part, name] : names)
        if (auto* widget = calendar->findChild<QWidget*>(QLatin1String(part)))
            widget->setAccessibleName(QLatin1String(name));
}

void DrawFrameAround(QCalendarWidget* calendar) {
    QWidget* popup = calendar->parentWidget();
    look::Recolour(calendar, QPalette::Window, look::Window);
    look::Recolour(popup, QPalette::Window, look::Line);
    popup->layout()->setContentsMargins(1, 1, 1, 1);
}

// The host's editor ends with the year 9999, the platform's calendar with 30827. What was set is therefore
// kept whole beside the editor and given back until the user edits it. A date beyond the editor's end is
// shown in its place; editing starts from the last date that the editor knows.
class Picker : public QDateTimeEdit {
public:
    Picker(bool picksTime, QWidget* parent)
        : QDateTimeEdit(picksTime ? QVariant(QTime(0, 0)) : QVariant(kFirstDate),
                        picksTime ? QMetaType::QTime : QMetaType::QDate, parent),
          picksTime(picksTime), beyond(new QLabel(lineEdit())) {
        const QLocale locale = QLocale::system();
        setLocale(locale);
        setTimeSpec(Qt::UTC); // no hour of the local zone is skipped while it is edited
        setDisplayFormat(picksTime ? TimePattern(locale, true) : DatePattern(locale));
        // The host's own menu would run a loop of its own.
        setContextMenuPolicy(Qt::PreventContextMenu);
        lineEdit()->setContextMenuPolicy(Qt::PreventContextMenu);
        if (!picksTime) {
            setMinimumDate(kFirstDate);
            setCalendarPopup(true);
        }
        PrepareBeyond();
        SYSTEMTIME now;
        GetLocalTime(&now);
        Set(now);
        connect(
            this, &QDateTimeEdit::dateTimeChanged, this, [this] { TakeEdit(); });
        connect(lineEdit(), &QLineEdit::textChanged, this, [this] {
            if (!setting)
                beyond->hide();
        });
    }

    // False when it is no time of the platform's calendar.
    bool Set(const SYSTEMTIME& time) {
        FILETIME checked;
        if (!SystemTimeToFileTime(&time, &checked))
            return false;
        value = time;
        edited = false;
        setting = true;
        if (picksTime) {
            setTime(QTime(time.wHour, time.wMinute, time.wSecond));
        } else {
            const QDate date(time.wYear, time.wMonth, time.wDay);
            setDate(std::min(date, maximumDate()));
            beyond->setText(locale().toString(date, displayFormat()));
            beyond->setVisible(date > maximumDate());
        }
        setting = false;
        return true;
    }

    SYSTEMTIME Get() {
        interpretText(); // half of a number may still stand in a section
        SYSTEMTIME time = value;
        if (edited && picksTime) {
            time.wHour = static_cast<WORD>(this->time().hour());
            time.wMinute = static_cast<WORD>(this->time().minute());
            time.wSecond = static_cast<WORD>(this->time().second());
            time.wMilliseconds = 0;
        } else if (edited) {
            time.wYear = static_cast<WORD>(date().year());
            time.wMonth = static_cast<WORD>(date().month());
            time.wDay = static_cast<WORD>(date().day());
            time.wDayOfWeek = static_cast<WORD>(date().dayOfWeek() % 7);
        }
        return time;
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool altDown = event->key() == Qt::Key_Down && event->modifiers() & Qt::AltModifier;
        if (calendarPopup() && (altDown || event->key() == Qt::Key_F4))
            OpenCalendar();
        else
            QDateTimeEdit::keyPressEvent(event);
    }
    void mousePressEvent(QMouseEvent* event) override {
        // The calendar is costly, and few pickers are ever asked for it.
        if (calendarPopup() && !calendar) {
            calendar = calendarWidget();
            DrawFrameAround(calendar);
            OpenMonthMenuWithoutLoop(calendar);
            NameParts(calendar);
        }
        QDateTimeEdit::mousePressEvent(event);
    }

private:
    void PrepareBeyond() {
        auto* layout = new QHBoxLayout(lineEdit());
        layout->setContentsMargins(2, 0, 0, 0);
        layout->addWidget(beyond);
        beyond->setBackgroundRole(QPalette::Base);
        beyond->setAutoFillBackground(true);
        beyond->setAttribute(Qt::WA_TransparentForMouseEvents);
        beyond->hide();
    }

    void TakeEdit() {
        if (setting)
            return;
        edited = true;
        beyond->hide();
    }

    // The host opens it for a press on the arrow only.
    void OpenCalendar() {
        QStyleOptionComboBox option;
        option.initFrom(this);
        option.editable = true;
        option.frame = hasFrame();
        const QPointF arrow =
            style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxArrow, this).center();
        QMouseEvent press(QEvent::MouseButtonPress, arrow, mapToGlobal(arrow), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        mousePressEvent(&press);
    }

    const bool picksTime;
    QLabel* const beyond; // over the editor's text
    QCalendarWidget* calendar = nullptr;
    SYSTEMTIME value{};
    bool edited = false; // by the user, since `value` was set
    bool setting = false;
};

QWidget* MakePicker(WindowObject& window, QWidget* parent) {
    const bool picksTime = IsTimePicker(window);
    auto* picker = new Picker(picksTime, parent);
    if (NameAfterLabel(window, picker).isEmpty())
        picker->setAccessibleName(picksTime ? QStringLiteral("Time") : QStringLiteral("Date"));
    return picker;
}

LRESULT PickerProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    Picker* picker = WidgetOf<Picker>(window);
    auto* time = reinterpret_cast<SYSTEMTIME*>(lParam);
    if (!picker)
        return DefaultControlProcedure(window, message, wParam, lParam);
    switch (message) {
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case DTM_GETSYSTEMTIME:
        *time = picker->Get();
        return GDT_VALID;
    case DTM_SETSYSTEMTIME:
        return wParam == GDT_VALID && picker->Set(*time);
    }
    return DefaultControlProcedure(window, message, wParam, lParam);
}

} // namespace

void RegisterDatePickerClass() {
    RegisterBuiltInClass(u"SysDateTimePick32", PickerProcedure, MakePicker);
}

} // namespace ui
