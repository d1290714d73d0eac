// SPDX-License-Identifier: MIT
#include "inspector/text_lines.h"

#include <QLocale>
#include <QString>
#include <algorithm>

#include "foundation/printable.h"

namespace vell::inspector {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype pieceSize = 1 << 16;
constexpr qsizetype shownBytes = 32;

}  // namespace

TextLines& TextLines::operator<<(double number) {
    text_.append(QByteArray::number(number, 'g', QLocale::FloatingPointShortest));
    return *this;
}

void TextLines::appendText(QStringView text) {
    text_.append('"');
    appendEscaped(text, true);
    text_.append('"');
}

void TextLines::appendName(QStringView name) {
    appendEscaped(name, false);
}

void TextLines::appendEscaped(QStringView text, bool isQuoted) {
    QString escaped = text.toString();
    if (isQuoted)
        escaped.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s).replace(u'\n', u"\\n"_s);
    text_.append(foundation::printable(std::move(escaped)).toUtf8());
}

void TextLines::appendBytes(QByteArrayView bytes) {
    *this << "<" << qint64(bytes.size()) << (bytes.size() == 1 ? " byte" : " bytes");
    if (!bytes.isEmpty())
        *this << ": " << bytes.first(std::min(bytes.size(), shownBytes)).toByteArray().toHex(' ');
    *this << (bytes.size() > shownBytes ? " …>" : ">");
}

void TextLines::endLine() {
    text_.append('\n');
    if (text_.size() >= pieceSize) flush();
}

void TextLines::flush() {
    if (!text_.isEmpty()) output_(text_);
    text_.clear();
}

}  // namespace vell::inspector
