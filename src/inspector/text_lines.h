#pragma once
// SPDX-License-Identifier: MIT
//
// TextLines: the lines of an archive's text. Values never break a line, and whatever is in them the
// output is valid UTF-8.

#include <QByteArray>
#include <QStringView>

#include "inspector/archive_text.h"

namespace vell::inspector {

class TextLines {
  public:
    explicit TextLines(const Output& output) : output_(output) {}

    TextLines& operator<<(QByteArrayView ascii) {
        text_.append(ascii);
        return *this;
    }
    TextLines& operator<<(const char* ascii) { return *this << QByteArrayView(ascii); }
    TextLines& operator<<(quint64 number) {
        text_.append(QByteArray::number(number));
        return *this;
    }
    TextLines& operator<<(qint64 number) {
        text_.append(QByteArray::number(number));
        return *this;
    }
    TextLines& operator<<(double number);
    /// In quotes, with what would break or hide the line as "\n" or "\u{1B}".
    void appendText(QStringView text);
    /// How many, and the first of them.
    void appendBytes(QByteArrayView bytes);
    /// The same without quotes, for names.
    void appendName(QStringView name);
    void endLine();
    void flush();

  private:
    const Output& output_;
    QByteArray text_;

    void appendEscaped(QStringView text, bool isQuoted);
};

}  // namespace vell::inspector
