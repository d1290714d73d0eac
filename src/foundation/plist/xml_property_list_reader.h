#pragma once
// SPDX-License-Identifier: MIT
//
// XmlPropertyListReader: pulls the elements of an XML property list one after the other and
// enforces its grammar. Comments, processing instructions and a document type are skipped; there
// are no entities but the five of XML and character references.
//
//     XmlPropertyListReader reader(data);
//     while (reader.next() != XmlPropertyListReader::Token::end) …  // or ::invalid

#include <QByteArray>
#include <QByteArrayView>
#include <vector>

#include "foundation/data.h"
#include "foundation/xml_scanner.h"

namespace foundation {

class XmlPropertyListReader {
  public:
    enum class Token {
        beginDictionary,
        endDictionary,
        beginArray,
        endArray,
        key,      ///< text(); the token after it begins its value
        string,   ///< text()
        integer,  ///< magnitude() and isNegative()
        real,     ///< real()
        boolean,  ///< magnitude() is 0 or 1
        date,     ///< real(), seconds since 2001-01-01 UTC
        data,     ///< text(), the decoded bytes
        end,      ///< of the document; stays
        invalid,  ///< malformed; stays
    };

    /// Reads UTF-8, or what a byte order mark or the XML declaration says; keeps the data.
    explicit XmlPropertyListReader(const Data& data);

    /// Whether the bytes begin like XML: "<" after white space or a byte order mark.
    [[nodiscard]] static bool looksLikeXml(QByteArrayView bytes);

    [[nodiscard]] Token next();

    /// UTF-8 text, or the bytes of data; valid until the next call of next().
    [[nodiscard]] QByteArrayView text() const { return text_; }
    [[nodiscard]] quint64 magnitude() const { return magnitude_; }
    [[nodiscard]] bool isNegative() const { return negative_; }
    [[nodiscard]] double real() const { return real_; }

  private:
    enum class Open : quint8 { document, plist, array, keys, value };

    QByteArray bytes_;
    XmlScanner xml_;
    std::vector<Open> open_{Open::document};
    bool complete_ = false;  ///< the one object has been read
    bool failed_ = false;
    bool pendingEnd_ = false;  ///< the last begin was an empty element
    QByteArrayView text_;
    QByteArray buffer_;  ///< holds text_ where it differs from the bytes
    quint64 magnitude_ = 0;
    bool negative_ = false;
    double real_ = 0;

    Token fail();
    Token readElement();
    Token begin(Open kind, bool isEmpty);
    Token close(QByteArrayView name);
    Token finishValue(Token token);
    Token readLeaf(QByteArrayView name, bool isEmpty);
    bool mayHoldValue() const;

    bool readText(QByteArrayView name);
    bool appendMarkup();
    bool appendReference();
    bool readInteger();
    bool readReal();
    bool readDate();
    bool readBase64();
};

}  // namespace foundation
