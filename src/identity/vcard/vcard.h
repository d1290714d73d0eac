#pragma once
// SPDX-License-Identifier: MIT
//
// Takes a file of vCards (versions 2.1, 3.0 and 4.0) apart into cards and their properties. Files
// found in the wild mix the versions' habits, so what is unambiguous is read in all of them. Input
// is hostile: the time is linear in the file's size, and nothing but the file is kept.
//
//     VCardReader reader(file);
//     while (reader.next([&](const VCardProperty& property) {
//         if (property.is("FN")) name = property.text();
//     }) != VCardReader::Card::none) …

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <functional>

namespace vell {

enum class VCardVersion { v2_1, v3_0, v4_0 };

struct VCardProperty {
    enum class Encoding { none, quotedPrintable, base64 };

    QByteArrayView name;        ///< without a group
    QByteArrayView parameters;  ///< between name and colon, starting with a semicolon unless empty
    QByteArrayView value;       ///< unfolded and without soft line breaks, otherwise as in the file
    Encoding encoding = Encoding::none;
    VCardVersion version = VCardVersion::v3_0;

    /// Names of properties and parameters compare without case.
    [[nodiscard]] bool is(QByteArrayView otherName) const;
    /// The first value of a named parameter, without quotes; empty when it is missing.
    [[nodiscard]] QByteArrayView parameter(QByteArrayView parameterName) const;
    /// The value as bytes: transfer encodings undone.
    [[nodiscard]] QByteArray bytes() const;
    /// The value as one text. Bytes that are not in the declared character set, or in none, are
    /// read as Windows-1252, which never fails; NUL characters are left out.
    [[nodiscard]] QString text() const;
    /// The value's parts between unescaped separators, each as text. An unescaped list separator in
    /// a part becomes a space.
    [[nodiscard]] QStringList parts(QChar separator, QChar listSeparator = {}) const;
    /// 1 is the most preferred of several; 101 where the card says nothing. Only version 4.0 ranks.
    [[nodiscard]] int preference() const;
};

/// Skips text between cards, cards within a card and lines that are not properties.
class VCardReader {
  public:
    enum class Card { none, whole, cutOff };

    /// The file is in UTF-8 or any other 8-bit character set, or in UTF-16 with a byte-order mark
    /// or without, as some address books wrote it.
    explicit VCardReader(QByteArray file);
    VCardReader(const VCardReader&) = delete;
    VCardReader& operator=(const VCardReader&) = delete;

    using Visit = std::function<void(const VCardProperty& property)>;
    /// Visits the properties of the next card, each valid during its visit. A card that the file's
    /// end or another card cuts off is visited as far as it goes.
    Card next(const Visit& visit);
    /// The line that the last card begins at, counted from 1.
    [[nodiscard]] qint64 cardLine() const { return cardLine_; }

  private:
    [[nodiscard]] bool isAtEnd() const { return position_ >= text_.size(); }
    [[nodiscard]] QByteArrayView line() const {
        return QByteArrayView(text_).sliced(lineStart_, lineSize_);
    }
    [[nodiscard]] QByteArrayView peekLine() const;
    QByteArrayView takeLine();
    bool readProperty();
    void appendToLine(QByteArrayView continuation);
    void appendFoldedLines();
    void appendSoftBreaks();
    void appendBareBase64();

    QByteArray text_;
    qsizetype position_ = 0;   ///< of the first byte not yet taken
    qsizetype lineStart_ = 0;  ///< of the current property's line, continuations moved up to it
    qsizetype lineSize_ = 0;
    qint64 linesTaken_ = 0;
    qint64 cardLine_ = 0;
    VCardProperty property_;
};

}  // namespace vell
