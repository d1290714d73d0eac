// SPDX-License-Identifier: MIT
#include "recovery/xml_text.h"

#include <QStringConverter>
#include <QtEndian>

#include "recovery/xml_lines.h"

namespace vell::recovery {
namespace {

QByteArray withoutInvalidUtf8(QByteArrayView bytes) {
    QByteArray result = bytes.toByteArray();
    if (bytes.isValidUtf8()) return result;
    for (qsizetype i = 0; i < result.size();) {
        const auto lead = static_cast<unsigned char>(result[i]);
        const qsizetype length = lead < 0x80 ? 1 : lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
        const bool isValid =
            i + length <= result.size() && QByteArrayView(result).sliced(i, length).isValidUtf8();
        if (!isValid) result[i] = '<';
        i += isValid ? length : 1;
    }
    return result;
}

/// Behind the byte order mark.
QByteArray fromUtf16(QByteArrayView bytes, bool isBigEndian) {
    QString text(bytes.size() / 2 - 1, Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char* const unit = bytes.data() + 2 * i + 2;
        text[i] =
            QChar(isBigEndian ? qFromBigEndian<quint16>(unit) : qFromLittleEndian<quint16>(unit));
    }
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!text[i].isSurrogate()) continue;
        const bool isPair =
            i + 1 < text.size() && text[i].isHighSurrogate() && text[i + 1].isLowSurrogate();
        if (!isPair) text[i] = u'<';
        if (isPair) ++i;
    }
    return text.toUtf8();
}

}  // namespace

XmlText::XmlText(const foundation::Data& data) {
    const auto marked = QStringConverter::encodingForData(data.view());
    const bool isBigEndian = marked == QStringConverter::Utf16BE;
    isUtf16_ = isBigEndian || marked == QStringConverter::Utf16LE;
    original_ = isUtf16_ ? fromUtf16(data.view(), isBigEndian) : data.view().toByteArray();
    corrected_ = withoutInvalidUtf8(withCorrectedLines(original_));
}

qint64 XmlText::placeInFile(qsizetype position) const {
    qsizetype same = 0;
    for (const char byte : QByteArrayView(corrected_).first(position)) {
        const bool isSame = same < original_.size() && byte == original_[same];
        // Line breaks and indentation were added.
        if (!isSame && byte != '\n' && byte != '\t') break;
        same += isSame ? 1 : 0;
    }
    return isUtf16_ ? 2 * QString::fromUtf8(original_.first(same)).size() + 2 : same;
}

}  // namespace vell::recovery
