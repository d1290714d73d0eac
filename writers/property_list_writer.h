#pragma once
// SPDX-License-Identifier: MIT
//
// PropertyListWriter: writes a graph of property-list objects in the binary form, as the platform's
// writer lays it out, or as XML. Objects are made bottom-up; equal scalars become one object, UIDs
// never do. Nothing stops a caller from writing what no platform would.
//
//     PropertyListWriter list;
//     const auto name = list.string(u"Ann");
//     const QByteArray bytes = list.binary(list.dictionary({{list.string(u"name"), name}}));

#include <QByteArray>
#include <QString>
#include <unordered_map>
#include <utility>
#include <vector>

namespace writers {

/// Bytes per entry of the offset table and per reference; 0 is the least that does.
struct Widths {
    int offset = 0;
    int reference = 0;
};

class PropertyListWriter {
  public:
    /// An object of this writer.
    using Node = quint32;

    Node boolean(bool value);
    Node integer(qint64 value);
    Node real(double value);
    /// Seconds since 2001-01-01 UTC.
    Node date(double seconds);
    Node data(QByteArrayView bytes);
    /// In ASCII where that does, else in UTF-16.
    Node string(QStringView text);
    Node uid(quint32 value);
    /// An object of exactly these bytes, for what the other functions would not write.
    Node raw(QByteArrayView encoded);
    Node array(const std::vector<Node>& elements);
    Node dictionary(const std::vector<std::pair<Node, Node>>& pairs);

    /// A whole file. Objects that the top does not reach are left out.
    [[nodiscard]] QByteArray binary(Node top, Widths widths = {}) const;
    /// The XML form; UIDs as dictionaries with the one key "CF$UID".
    [[nodiscard]] QByteArray xml(Node top) const;

  private:
    enum class Kind : quint8 { scalar, array, dictionary };
    struct Entry {
        qsizetype begin;  ///< in encoded_ or in references_
        qsizetype count;  ///< bytes or references
        Kind kind;
    };

    Node addScalar(QByteArrayView encoded, bool shared);
    Node addContainer(Kind kind, std::vector<Node> references);
    [[nodiscard]] std::vector<Node> inFileOrder(Node top) const;
    void appendXml(QByteArray& xml, Node node) const;
    void appendScalarXml(QByteArray& xml, QByteArrayView encoded) const;

    std::vector<Entry> entries_;
    QByteArray encoded_;
    std::vector<Node> references_;
    std::unordered_map<size_t, Node> shared_;  ///< by the hash of the encoded bytes
};

}  // namespace writers
