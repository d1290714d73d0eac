#pragma once
// SPDX-License-Identifier: MIT
//
// KeyedArchiveWriter: writes keyed archives of any object graph, with the conventions of the
// platform's archiver: equal strings and class records are shared, mutable strings and data are
// instances, immutable ones stand directly. Wrong graphs are as easy as right ones: any member may
// hold anything, reserved objects make cycles, and a class name needs no class.
//
//     KeyedArchiveWriter archive;
//     const auto ann = archive.object({"Presentity", "NSObject"}, {{"ID", archive.string("ann")}});
//     archive.setTop("root", archive.array({ann, ann}));
//     const QByteArray bytes = archive.binary();

#include <QStringList>
#include <concepts>
#include <map>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "writers/property_list_writer.h"

namespace writers {

/// A reference to an object of an archive; 0 is nil.
struct Uid {
    quint32 index = 0;
};

/// What stands under a key: a reference, an array of references, or a scalar in place.
class Inline {
  public:
    Inline(Uid uid) : value_(uid) {}
    Inline(std::vector<Uid> uids) : value_(std::move(uids)) {}
    Inline(bool value) : value_(value) {}
    template <std::integral T>
    Inline(T value) : value_(static_cast<qint64>(value)) {}
    Inline(double value) : value_(value) {}
    Inline(const char* text) : value_(QString::fromUtf8(text)) {}
    Inline(QString text) : value_(std::move(text)) {}
    Inline(QByteArray data) : value_(std::move(data)) {}

  private:
    friend class KeyedArchiveWriter;
    std::variant<Uid, std::vector<Uid>, bool, qint64, double, QString, QByteArray> value_;
};

class KeyedArchiveWriter {
  public:
    using Members = std::vector<std::pair<QString, Inline>>;
    /// A stretch of an attributed string: its length in UTF-16 units and its dictionary.
    struct Run {
        quint64 length = 0;
        Uid attributes;
    };

    KeyedArchiveWriter();

    static constexpr Uid nil{0};

    /// A place for an object that is set later: for cycles, and for the platform's order, in which
    /// an object comes before what it holds.
    Uid reserve();
    void set(Uid uid, const Inline& value);
    void setObject(Uid uid, const QStringList& classes, const Members& members);

    /// A string, number or data standing directly among the objects, shared with nothing.
    Uid direct(const Inline& value);
    /// A string; equal strings are one object.
    Uid string(const QString& text);
    /// An instance of the first class; the others are its superclasses.
    Uid object(const QStringList& classes, const Members& members);
    /// The record of a class; equal lists are one object.
    Uid classRecord(const QStringList& classes, const QStringList& hints = {});

    Uid array(const std::vector<Uid>& elements, const char* className = "NSArray");
    Uid dictionary(const std::vector<std::pair<Uid, Uid>>& pairs);
    Uid mutableString(const QString& text);
    Uid mutableData(const QByteArray& bytes);
    /// Seconds since 2001-01-01 UTC.
    Uid date(double seconds);
    Uid url(const QString& relative, Uid base = nil);
    /// In the shortest of the three forms: empty, of one run, of several.
    Uid attributedString(Uid text, const std::vector<Run>& runs,
                         const char* className = "NSMutableAttributedString");

    void setTop(const QString& key, const Inline& value);
    /// Another value, or none, in place of an entry of the outermost dictionary.
    void setHeader(const QString& key, std::optional<Inline> value);

    [[nodiscard]] QByteArray binary(Widths widths = {});
    [[nodiscard]] QByteArray xml();

    /// The class and its superclasses, for the platform's classes.
    static QStringList classes(const char* className);

  private:
    using Node = PropertyListWriter::Node;
    Node node(const Inline& value);
    Node keyNode(const QString& key);
    Node top();

    PropertyListWriter list_;
    std::vector<Node> objects_;
    std::map<QString, Uid> strings_;
    std::map<QStringList, Uid> classRecords_;
    std::map<QString, Node> keys_;
    std::vector<std::pair<QString, Node>> top_;
    std::map<QString, std::optional<Node>> headers_;
};

}  // namespace writers
