#include "platform/ui/controls/controlsupport.h"

namespace ui {

QString WithoutMnemonic(const QString& text) {
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'&' && i + 1 < text.size())
            ++i;
        plain += text[i];
    }
    return plain;
}

void NameAfterLabel(const WindowObject& window, QWidget* widget) {
    WindowObject* parent = LiveWindow(window.parent);
    if (!parent)
        return;
    QString name;
    for (HWND sibling : parent->children) {
        if (sibling == &window)
            break;
        bool label = sibling->windowClass->name.compare(QLatin1String("STATIC"), Qt::CaseInsensitive) == 0;
        if (label && (sibling->style & WS_VISIBLE))
            name = WithoutMnemonic(sibling->text);
    }
    widget->setAccessibleName(name);
}

void TakeOwnInput(QWidget* widget) {
    widget->setProperty("ownInput", true);
}

} // namespace ui
