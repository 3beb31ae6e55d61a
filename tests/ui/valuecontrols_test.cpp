// Drop-down list, date and time pickers, numbers in dialogs.
#include <QAbstractItemView>
#include <QCalendarWidget>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QLabel>

#include "tests/ui/windowfixture.h"

namespace {

constexpr UINT kFirst = 101;
constexpr UINT kSecond = 102;

class DropListTest : public WindowTest {
protected:
    HWND AddList(DWORD style) {
        return Add(u"ComboBox", u"", CBS_DROPDOWNLIST | WS_VSCROLL | style, kFirst, {10, 10, 210, 240});
    }
    static LRESULT AddItem(HWND list, const WCHAR* text, LPARAM data) {
        const LRESULT place = Send(list, CB_ADDSTRING, 0, text);
        Send(list, CB_SETITEMDATA, static_cast<WPARAM>(place), data);
        return place;
    }
    static LRESULT ChosenData(HWND list) {
        return Send(list, CB_GETITEMDATA, static_cast<WPARAM>(Send(list, CB_GETCURSEL)));
    }
};

class PickerTest : public WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        date = Add(u"SysDateTimePick32", u"", 0, kFirst);
        time = Add(u"SysDateTimePick32", u"", DTS_TIMEFORMAT, kSecond, {10, 60, 210, 90});
    }
    static LRESULT Set(HWND picker, const SYSTEMTIME& value) {
        return Send(picker, DTM_SETSYSTEMTIME, GDT_VALID, &value);
    }
    static std::vector<WORD> Get(HWND picker) {
        SYSTEMTIME value = {};
        EXPECT_EQ(Send(picker, DTM_GETSYSTEMTIME, 0, &value), static_cast<LRESULT>(GDT_VALID));
        return {value.wYear, value.wMonth, value.wDay, value.wHour, value.wMinute, value.wSecond};
    }
    void UseSection(HWND picker, QDateTimeEdit::Section section) {
        Focus(picker);
        qobject_cast<QDateTimeEdit*>(picker->widget)->setSelectedSection(section);
    }
    static QString Shown(HWND picker) {
        const QLabel* beyond = picker->widget->findChild<QLabel*>();
        return beyond->isVisible() ? beyond->text() : qobject_cast<QDateTimeEdit*>(picker->widget)->text();
    }

    HWND date = nullptr;
    HWND time = nullptr;
};

using NumberTest = WindowTest;

} // namespace

TEST_F(DropListTest, ItemsAreSortedAndKeepTheirData) {
    const HWND list = AddList(CBS_SORT);
    EXPECT_EQ(Send(list, CB_GETCURSEL), CB_ERR);
    EXPECT_EQ(AddItem(list, u"pear", 3), 0);
    EXPECT_EQ(AddItem(list, u"Apple", 1), 0);
    EXPECT_EQ(AddItem(list, u"fig", -7), 1);
    EXPECT_EQ(Send(list, CB_GETCURSEL), CB_ERR);
    EXPECT_EQ(Send(list, CB_SETCURSEL, 2), 2);
    EXPECT_EQ(AddItem(list, u"\u00C4pfel", 9), 3); // no locale's alphabet
    EXPECT_EQ(AddItem(list, u"Banana", 2), 1);
    EXPECT_EQ(Send(list, CB_GETCOUNT), 5);
    EXPECT_EQ(ChosenData(list), 3); // the choice has moved along
    EXPECT_EQ(Send(list, CB_GETITEMDATA, 2), -7);
    EXPECT_EQ(Send(list, CB_GETITEMDATA, 5), CB_ERR);
    EXPECT_EQ(Send(list, CB_SETCURSEL, 5), CB_ERR);
    EXPECT_EQ(Send(list, CB_GETCURSEL), CB_ERR);
    EXPECT_TRUE(commands.empty()); // only the user's choices are told
    EXPECT_LT(list->widget->height(), 60);
    const HWND plain = Add(u"ComboBox", u"", CBS_DROPDOWNLIST, kSecond);
    AddItem(plain, u"b", 0);
    EXPECT_EQ(AddItem(plain, u"a", 0), 1);
}

TEST_F(DropListTest, TheKeyboardAndThePopupChoose) {
    const HWND list = AddList(0);
    AddItem(list, u"Lake", 10);
    AddItem(list, u"River", 11);
    AddItem(list, u"Sea", 12);
    Send(list, CB_SETCURSEL, 0);
    Focus(list);
    stylus.Key(Qt::Key_Down);
    EXPECT_EQ(ChosenData(list), 11);
    Type(list, u"s");
    EXPECT_EQ(ChosenData(list), 12);
    EXPECT_EQ(commands, (std::vector<Command>{{kFirst, CBN_SELCHANGE}, {kFirst, CBN_SELCHANGE}}));

    stylus.Key(Qt::Key_Down, Qt::AltModifier);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    stylus.Key(Qt::Key_Escape);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_EQ(commands.size(), 2u);

    stylus.Tap(list, {20, 10});
    QWidget* popup = QApplication::activePopupWidget();
    ASSERT_NE(popup, nullptr);
    auto* rows = qobject_cast<QComboBox*>(list->widget)->view();
    EXPECT_GE(popup->mapToGlobal(QPoint(0, 0)).y(), list->widget->mapToGlobal(QPoint(0, 0)).y() + 10);
    const QPoint first = rows->visualRect(rows->model()->index(0, 0)).center();
    QTest::mouseMove(rows->viewport()); // no move is told of where the pointer stands already
    QTest::mouseMove(rows->viewport(), first);
    QTest::mouseClick(rows->viewport(), Qt::LeftButton, {}, first, QApplication::doubleClickInterval());
    stylus.Settle();
    EXPECT_EQ(ChosenData(list), 10);
    EXPECT_EQ(commands.size(), 3u);
    EXPECT_EQ(GetFocus(), list);
}

TEST_F(PickerTest, EveryDateOfTheCalendarIsGivenBack) {
    const SYSTEMTIME times[] = {{1601, 1, 0, 1, 0, 0, 0, 0},      {2024, 2, 0, 29, 23, 59, 58, 0},
                                {9999, 12, 0, 31, 1, 2, 3, 0},    {10000, 1, 0, 1, 4, 5, 6, 0},
                                {12000, 2, 0, 29, 12, 30, 45, 0}, {30827, 12, 0, 31, 23, 59, 59, 0}};
    for (const SYSTEMTIME& set : times) {
        EXPECT_EQ(Set(date, set), TRUE);
        EXPECT_EQ(Set(time, set), TRUE);
        stylus.Settle();
        const std::vector<WORD> fields = {set.wYear, set.wMonth,  set.wDay,
                                          set.wHour, set.wMinute, set.wSecond};
        EXPECT_EQ(Get(date), fields);
        EXPECT_EQ(Get(time), fields);
        EXPECT_TRUE(Shown(date).contains(QString::number(set.wYear))) << Shown(date).toStdString();
        EXPECT_TRUE(Shown(time).contains(QString::number(set.wSecond))) << Shown(time).toStdString();
    }
    const SYSTEMTIME none = {2023, 2, 0, 29, 0, 0, 0, 0};
    EXPECT_EQ(Set(date, none), FALSE);
    EXPECT_EQ(Get(date)[0], 30827);
    // Looking at it changes nothing; an edit starts from the editor's last day.
    UseSection(date, QDateTimeEdit::YearSection);
    stylus.Key(Qt::Key_Left);
    EXPECT_EQ(Get(date)[0], 30827);
    UseSection(date, QDateTimeEdit::YearSection);
    stylus.Key(Qt::Key_Down);
    EXPECT_EQ(Get(date), (std::vector<WORD>{9998, 12, 31, 23, 59, 59}));
    EXPECT_TRUE(Shown(date).contains(QStringLiteral("9998")));
}

TEST_F(PickerTest, SectionsAreTyped) {
    const SYSTEMTIME set = {2024, 5, 0, 17, 8, 9, 10, 0};
    Set(date, set);
    Set(time, set);
    UseSection(date, QDateTimeEdit::YearSection);
    Type(date, u"1987");
    UseSection(date, QDateTimeEdit::DaySection);
    stylus.Key(Qt::Key_Up);
    EXPECT_EQ(Get(date), (std::vector<WORD>{1987, 5, 18, 8, 9, 10}));
    // One digit of two counts as soon as the value is asked for.
    UseSection(time, QDateTimeEdit::HourSection);
    Type(time, u"1");
    EXPECT_EQ(Get(time), (std::vector<WORD>{2024, 5, 17, 1, 9, 10}));
    UseSection(time, QDateTimeEdit::SecondSection);
    Type(time, u"59");
    EXPECT_EQ(Get(time), (std::vector<WORD>{2024, 5, 17, 1, 9, 59}));
    Set(time, set);
    EXPECT_EQ(Get(time), (std::vector<WORD>{2024, 5, 17, 8, 9, 10}));
}

TEST_F(PickerTest, TheCalendarOpensByArrowAndByKey) {
    Set(date, {2024, 5, 0, 17, 8, 9, 10, 0});
    Focus(date);
    stylus.Key(Qt::Key_Down, Qt::AltModifier);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    stylus.Key(Qt::Key_Escape);
    ASSERT_EQ(QApplication::activePopupWidget(), nullptr);

    stylus.Tap(date, {date->widget->width() - 8, date->widget->height() / 2});
    QWidget* popup = QApplication::activePopupWidget();
    ASSERT_NE(popup, nullptr);
    auto* calendar = popup->findChild<QCalendarWidget*>();
    ASSERT_NE(calendar, nullptr);
    auto* days = calendar->findChild<QWidget*>(QStringLiteral("qt_calendar_calendarview"));
    ASSERT_NE(days, nullptr);
    QTest::keyClick(days, Qt::Key_Right);
    QTest::keyClick(days, Qt::Key_Return);
    stylus.Settle();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_EQ(Get(date), (std::vector<WORD>{2024, 5, 18, 8, 9, 10}));
    EXPECT_EQ(GetFocus(), date);
}

TEST_F(NumberTest, OnlyWholeNumbersThatFitAreTranslated) {
    Add(u"EDIT", u"", 0, kFirst);
    const auto isNumber = [this](const WCHAR* text, BOOL isSigned, UINT expected) {
        SetDlgItemTextW(main, kFirst, text);
        BOOL translated = 2;
        EXPECT_EQ(GetDlgItemInt(main, kFirst, &translated, isSigned), expected);
        return translated;
    };
    EXPECT_TRUE(isNumber(u" \t042", FALSE, 42));
    EXPECT_TRUE(isNumber(u"4294967295", FALSE, 4294967295));
    EXPECT_TRUE(isNumber(u"2147483647", TRUE, 2147483647));
    EXPECT_TRUE(isNumber(u"-2147483648", TRUE, 0x80000000));
    EXPECT_TRUE(isNumber(u"-0", TRUE, 0));
    for (const WCHAR* text : {u"", u"  ", u"-", u"abc", u"4x", u"4 ", u"4294967296", u"-4", u"\uFF14"})
        EXPECT_FALSE(isNumber(text, FALSE, 0)) << QString::fromUtf16(text).toStdString();
    for (const WCHAR* text : {u"2147483648", u"-2147483649", u"--4", u"- 4", u"+4"})
        EXPECT_FALSE(isNumber(text, TRUE, 0)) << QString::fromUtf16(text).toStdString();
    EXPECT_EQ(GetDlgItemInt(main, kSecond, nullptr, FALSE), 0u);

    SetDlgItemInt(main, kFirst, 4294967295u, FALSE);
    EXPECT_EQ(TextOf(main, kFirst), u"4294967295");
    SetDlgItemInt(main, kFirst, 4294967295u, TRUE);
    EXPECT_EQ(TextOf(main, kFirst), u"-1");
}
