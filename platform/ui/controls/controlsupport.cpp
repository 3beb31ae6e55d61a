#include "platform/ui/controls/controlsupport.h"

#include <algorithm>
#include <cstring>

QString TextOf(const WCHAR* text) {
    if (!text)
        return QString();
    return QString(reinterpret_cast<const QChar*>(text),
                   static_cast<qsizetype>(std::char_traits<WCHAR>::length(text)));
}

int CopyText(const QString& text, WCHAR* buffer, int capacity) {
    if (!buffer || capacity <= 0)
        return 0;
    int count = static_cast<int>(std::min<qsizetype>(text.size(), capacity - 1));
    std::memcpy(buffer, text.constData(), static_cast<std::size_t>(count) * sizeof(WCHAR));
    buffer[count] = 0;
    return count;
}

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
