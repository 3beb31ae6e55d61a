// How a list's columns share its width.
#include <QHeaderView>

#include "platform/ui/controls/listviews.h"
#include "tests/ui/listfixture.h"

namespace {

class ColumnsTest : public ListTest {
protected:
    QHeaderView* Header() { return dynamic_cast<ui::ListWidget*>(list->widget.data())->details->header(); }
    int Width(int column) { return Header()->sectionSize(column); }
    int AllWidths() { return Width(0) + Width(1) + Width(2); }
    int TextWidth(const std::u16string& text) {
        return QFontMetrics(list->widget->font()).horizontalAdvance(QString::fromStdU16String(text));
    }
    void SetName(const std::u16string& text) {
        ListView_SetItemText(list, 0, 0, text.c_str());
        Header()->viewport()->parentWidget()->parentWidget()->update();
        Insert(ListView_GetItemCount(list));
        stylus.Settle();
    }
};

} // namespace

TEST_F(ColumnsTest, NamesAreWholeAsLongAsAnotherColumnHasRoomToSpare) {
    Make();
    stylus.Settle();
    EXPECT_EQ(AllWidths(), 400); // the last one took what was left
    const std::u16string name = u"A name of thirty-one characters";
    SetName(name);
    EXPECT_GT(Width(0), TextWidth(name));
    EXPECT_GT(Width(1), TextWidth(u"row 4"));
    EXPECT_EQ(AllWidths(), 400);
    MoveWindow(list, 0, 0, 250, 300, TRUE);
    stylus.Settle();
    EXPECT_EQ(AllWidths(), 250);
    EXPECT_GT(Width(2), TextWidth(u"row 4")); // numbers are not cut for it
    std::u16string title = u"Text";
    ListView_InsertColumn(list, 3, {LVCF_TEXT | LVCF_WIDTH | LVCF_FMT, LVCFMT_LEFT, 60, title.data(), 0, 0});
    ListView_SetItemText(list, 0, 3, name.c_str());
    Insert(ListView_GetItemCount(list));
    stylus.Settle();
    EXPECT_EQ(AllWidths(), 250);
    EXPECT_GT(Width(3), TextWidth(name)); // a text that nobody could read there is scrolled to
}

TEST_F(ColumnsTest, ATwiceTappedDividerFitsItsColumnToTheContents) {
    Make();
    const std::u16string name = u"Middling name";
    SetName(name);
    ASSERT_GT(Width(0), TextWidth(name) + 30);
    const int others = Width(1);
    stylus.TapTwice(ListView_GetHeader(list), QPoint(Header()->sectionPosition(1) - 1, 8));
    EXPECT_GT(Width(0), TextWidth(name));
    EXPECT_LT(Width(0), TextWidth(name) + 30);
    EXPECT_EQ(Width(1), others); // it stays as it was
    EXPECT_EQ(AllWidths(), 400);
    const int fitted = Width(0);
    SetName(u"The user's widths outlive a longer name");
    EXPECT_EQ(Width(0), fitted);
}
