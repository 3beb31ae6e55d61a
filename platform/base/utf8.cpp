#include "platform/base/utf8.h"

#include <QByteArray>
#include <QString>

std::string ToUtf8(std::u16string_view text) {
    const auto length = static_cast<qsizetype>(text.size());
    return QStringView(text.data(), length).toUtf8().toStdString();
}

std::u16string FromUtf8(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).toStdU16String();
}
