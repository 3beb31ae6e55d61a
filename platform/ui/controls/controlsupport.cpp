#include "platform/ui/controls/controlsupport.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <algorithm>

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

QString NameAfterLabel(const WindowObject& window, QWidget* widget) {
    const WindowObject* parent = LiveWindow(window.parent);
    if (!parent)
        return QString();
    const auto own = std::find(parent->children.begin(), parent->children.end(), &window);
    QWidget* before = own == parent->children.begin() ? nullptr : (*std::prev(own))->widget.data();
    if (auto* label = qobject_cast<QLabel*>(before)) {
        label->setBuddy(widget);
        return label->text();
    }
    if (qobject_cast<QGroupBox*>(before) || qobject_cast<QCheckBox*>(before))
        widget->setAccessibleName(WithoutMnemonic((*std::prev(own))->text));
    return widget->accessibleName();
}

void TakeOwnInput(QWidget* widget) {
    widget->setProperty("ownInput", true);
}

} // namespace ui
