// The drop-down list.
#include <QAbstractItemView>
#include <QComboBox>
#include <QEvent>
#include <QStyledItemDelegate>
#include <algorithm>
#include <utility>

#include "platform/base/outofmemory.h"
#include "platform/text.h"
#include "platform/ui/controls/controlsupport.h"

namespace ui {

namespace {

constexpr int kLineUnits = 13; // dialog units, as tall as an edit box
constexpr int kRowPadding = 6; // pixels

// Rows that a finger hits.
class RowDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return QStyledItemDelegate::sizeHint(option, index).grownBy(QMargins(0, 0, 0, kRowPadding));
    }
};

class DropList : public QComboBox {
public:
    DropList(WindowObject& window, QWidget* parent) : QComboBox(parent) {
        const HWND handle = &window;
        view()->setAccessibleName(QStringLiteral("Choices"));
        setItemDelegate(new RowDelegate(this));
        KeepOneLine();
        connect(
            this, &QComboBox::currentIndexChanged, this, [this] { changed = true; });
        connect(this, &QComboBox::activated, this, [this, handle] {
            if (std::exchange(changed, false))
                CommandToParent(handle, CBN_SELCHANGE);
        });
    }

    LRESULT Add(const WCHAR* text, bool sorted) {
        const int index = sorted ? SortedIndex(text) : count();
        const int before = currentIndex();
        insertItem(index, HostText(text));
        if (before < 0)
            setCurrentIndex(-1); // the host chooses the first item that comes
        changed = false;
        return index;
    }

    LRESULT Choose(int index) {
        const bool valid = index >= 0 && index < count();
        setCurrentIndex(valid ? index : -1);
        changed = false;
        return valid ? index : CB_ERR;
    }

protected:
    void changeEvent(QEvent* event) override {
        QComboBox::changeEvent(event);
        if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
            KeepOneLine();
    }

private:
    // Templates give the height of the dropped list, which the host finds by itself.
    void KeepOneLine() {
        const int line = (HIWORD(GetDialogBaseUnits()) * kLineUnits + 4) / 8;
        setFixedHeight(std::max(line, sizeHint().height()));
    }

    // Behind everything that is not greater.
    int SortedIndex(const WCHAR* text) const {
        int index = count();
        while (index > 0 && lstrcmpiW(reinterpret_cast<const WCHAR*>(itemText(index - 1).utf16()), text) > 0)
            --index;
        return index;
    }

    bool changed = false; // by the user, and the parent does not know yet
};

QWidget* MakeDropList(WindowObject& window, QWidget* parent) {
    auto* list = new DropList(window, parent);
    NameAfterLabel(window, list);
    return list;
}

LRESULT ComboBoxProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    DropList* list = WidgetOf<DropList>(window);
    if (!list)
        return DefaultControlProcedure(window, message, wParam, lParam);
    const int index = static_cast<int>(wParam);
    const bool exists = index >= 0 && index < list->count();
    switch (message) {
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case CB_ADDSTRING:
        return UnlessOutOfMemory<LRESULT>(CB_ERR, [&] {
            return list->Add(reinterpret_cast<const WCHAR*>(lParam), window->style & CBS_SORT);
        });
    case CB_GETCOUNT:
        return list->count();
    case CB_GETCURSEL:
        return list->currentIndex() < 0 ? CB_ERR : list->currentIndex();
    case CB_SETCURSEL:
        return list->Choose(index);
    case CB_GETITEMDATA:
        return exists ? static_cast<LRESULT>(list->itemData(index).toLongLong()) : CB_ERR;
    case CB_SETITEMDATA:
        if (exists)
            list->setItemData(index, static_cast<qlonglong>(lParam));
        return exists ? 0 : CB_ERR;
    }
    return DefaultControlProcedure(window, message, wParam, lParam);
}

} // namespace

void RegisterComboBoxClass() {
    RegisterBuiltInClass(u"ComboBox", ComboBoxProcedure, MakeDropList);
}

} // namespace ui
