#pragma once
// SPDX-License-Identifier: MIT
//
// XmlScanner: the lexical part of XML that property lists and SVG share. It works on UTF-8 in
// place, in linear time, and declares no entity, so nothing outside the bytes is ever read. (The
// toolkit's reader refuses control characters, which messages do hold, folds line ends, which
// lengths of runs count, and takes quadratic time for a tag's attributes.)

#include <QByteArrayView>
#include <optional>

namespace foundation {

class XmlScanner {
  public:
    struct Attribute {
        QByteArrayView name;
        QByteArrayView value;  ///< unparsed
    };

    XmlScanner() = default;
    explicit XmlScanner(QByteArrayView text) : rest_(text) {}

    [[nodiscard]] static bool isBlank(char c) {
        return c == ' ' || c == '\t' || c == '\r' || c == '\n';
    }

    /// What has not been read.
    [[nodiscard]] QByteArrayView rest() const { return rest_; }
    /// Skips the text if it comes next.
    bool skip(QByteArrayView text);
    void skipBlanks();
    /// Skips up to and including the next such mark; false when there is none.
    bool skipPast(QByteArrayView mark);
    /// Skips white space, comments and processing instructions, and a document type with its
    /// internal subset where one is allowed. False when one of them has no end.
    bool skipMisc(bool mayHoldDocumentType);
    /// Reads up to any of the characters, which is not skipped, or to the end.
    QByteArrayView readUntil(QByteArrayView characters);
    /// The name of an element or attribute; empty when there is none.
    QByteArrayView readName() { return readUntil(" \t\r\n=>/"); }
    /// The next attribute of a start tag; nothing at its end or where it is malformed.
    std::optional<Attribute> readAttribute();
    /// Skips the rest of a tag, attributes included. Whether it was that of an empty element;
    /// nothing when it has no end.
    std::optional<bool> skipTagEnd();

  private:
    QByteArrayView rest_;

    bool skipDocumentType();
    /// Skips a quoted text of which the opening quote comes next.
    bool skipQuoted();
};

}  // namespace foundation
