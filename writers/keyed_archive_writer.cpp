// SPDX-License-Identifier: MIT
#include "writers/keyed_archive_writer.h"

#include <algorithm>

namespace writers {
namespace {

/// Lengths and dictionary numbers of runs, as numbers of seven bits a byte, lowest first.
void appendVarint(QByteArray& bytes, quint64 value) {
    for (; value >= 0x80; value >>= 7)
        bytes.append(static_cast<char>(value | 0x80));
    bytes.append(static_cast<char>(value));
}

}  // namespace

KeyedArchiveWriter::KeyedArchiveWriter() {
    objects_.push_back(list_.string(u"$null"));
    headers_["$version"] = list_.integer(100000);
    headers_["$archiver"] = list_.string(u"NSKeyedArchiver");
}

Uid KeyedArchiveWriter::reserve() {
    objects_.push_back(objects_.front());
    return {static_cast<quint32>(objects_.size() - 1)};
}

void KeyedArchiveWriter::set(Uid uid, const Inline& value) {
    objects_.at(uid.index) = node(value);
}

void KeyedArchiveWriter::setObject(Uid uid, const QStringList& classes, const Members& members) {
    std::vector<std::pair<Node, Node>> pairs;
    pairs.reserve(members.size() + 1);
    for (const auto& [key, value] : members)
        pairs.emplace_back(keyNode(key), node(value));
    pairs.emplace_back(keyNode("$class"), node(classRecord(classes)));
    objects_.at(uid.index) = list_.dictionary(pairs);
}

Uid KeyedArchiveWriter::direct(const Inline& value) {
    const Uid uid = reserve();
    set(uid, value);
    return uid;
}

Uid KeyedArchiveWriter::string(const QString& text) {
    const auto known = strings_.find(text);
    if (known != strings_.end()) return known->second;
    return strings_[text] = direct(text);
}

Uid KeyedArchiveWriter::object(const QStringList& classes, const Members& members) {
    const Uid uid = reserve();
    setObject(uid, classes, members);
    return uid;
}

Uid KeyedArchiveWriter::classRecord(const QStringList& classes, const QStringList& hints) {
    const QStringList key = classes + QStringList("") + hints;
    const auto known = classRecords_.find(key);
    if (known != classRecords_.end()) return known->second;
    const auto names = [&](const QStringList& list) {
        std::vector<Node> nodes;
        for (const QString& name : list)
            nodes.push_back(list_.string(name));
        return list_.array(nodes);
    };
    std::vector<std::pair<Node, Node>> pairs{
        {keyNode("$classname"), list_.string(classes.value(0))},
        {keyNode("$classes"), names(classes)}};
    if (!hints.isEmpty()) pairs.emplace_back(keyNode("$classhints"), names(hints));
    const Uid uid = reserve();
    objects_[uid.index] = list_.dictionary(pairs);
    return classRecords_[key] = uid;
}

Uid KeyedArchiveWriter::array(const std::vector<Uid>& elements, const char* className) {
    return object(classes(className), {{"NS.objects", elements}});
}

Uid KeyedArchiveWriter::dictionary(const std::vector<std::pair<Uid, Uid>>& pairs) {
    std::vector<Uid> keys;
    std::vector<Uid> values;
    for (const auto& [key, value] : pairs) {
        keys.push_back(key);
        values.push_back(value);
    }
    return object(classes("NSDictionary"), {{"NS.keys", keys}, {"NS.objects", values}});
}

Uid KeyedArchiveWriter::mutableString(const QString& text) {
    return object(classes("NSMutableString"), {{"NS.string", text}});
}

Uid KeyedArchiveWriter::mutableData(const QByteArray& bytes) {
    return object(classes("NSMutableData"), {{"NS.data", bytes}});
}

Uid KeyedArchiveWriter::date(double seconds) {
    return object(classes("NSDate"), {{"NS.time", seconds}});
}

Uid KeyedArchiveWriter::url(const QString& relative, Uid base) {
    return object(classes("NSURL"), {{"NS.base", base}, {"NS.relative", string(relative)}});
}

Uid KeyedArchiveWriter::attributedString(Uid text, const std::vector<Run>& runs,
                                         const char* className) {
    if (runs.empty()) return object(classes(className), {{"NSString", text}});
    if (runs.size() == 1)
        return object(classes(className),
                      {{"NSString", text}, {"NSAttributes", runs.front().attributes}});
    std::vector<Uid> dictionaries;
    QByteArray info;
    for (const Run& run : runs) {
        const auto known = std::find_if(dictionaries.begin(), dictionaries.end(),
                                        [&](Uid uid) { return uid.index == run.attributes.index; });
        appendVarint(info, run.length);
        appendVarint(info, static_cast<quint64>(known - dictionaries.begin()));
        if (known == dictionaries.end()) dictionaries.push_back(run.attributes);
    }
    return object(classes(className), {{"NSString", text},
                                       {"NSAttributes", array(dictionaries, "NSMutableArray")},
                                       {"NSAttributeInfo", mutableData(info)}});
}

void KeyedArchiveWriter::setTop(const QString& key, const Inline& value) {
    top_.emplace_back(key, node(value));
}

void KeyedArchiveWriter::setHeader(const QString& key, std::optional<Inline> value) {
    headers_[key] = value ? std::optional(node(*value)) : std::nullopt;
}

QByteArray KeyedArchiveWriter::binary(Widths widths) {
    return list_.binary(top(), widths);
}

QByteArray KeyedArchiveWriter::xml() {
    return list_.xml(top());
}

QStringList KeyedArchiveWriter::classes(const char* className) {
    const QString name = className;
    if (name == "NSTextStorage")
        return {name, "NSMutableAttributedString", "NSAttributedString", "NSObject"};
    if (name == "NSTokenAttachment") return {name, "NSTextAttachment", "NSObject"};
    if (name == "NSCountedSet") return {name, "NSMutableSet", "NSSet", "NSObject"};
    if (name == "NSCalendarDate") return {name, "NSDate", "NSObject"};
    if (name.startsWith("NSMutable")) return {name, "NS" + name.mid(9), "NSObject"};
    return {name, "NSObject"};
}

PropertyListWriter::Node KeyedArchiveWriter::node(const Inline& value) {
    struct Maker {
        PropertyListWriter& list;
        Node operator()(Uid uid) const { return list.uid(uid.index); }
        Node operator()(const std::vector<Uid>& uids) const {
            std::vector<Node> nodes;
            nodes.reserve(uids.size());
            for (const Uid uid : uids)
                nodes.push_back(list.uid(uid.index));
            return list.array(nodes);
        }
        Node operator()(bool truth) const { return list.boolean(truth); }
        Node operator()(qint64 number) const { return list.integer(number); }
        Node operator()(double number) const { return list.real(number); }
        Node operator()(const QString& text) const { return list.string(text); }
        Node operator()(const QByteArray& data) const { return list.data(data); }
    };
    return std::visit(Maker{list_}, value.value_);
}

PropertyListWriter::Node KeyedArchiveWriter::keyNode(const QString& key) {
    const auto known = keys_.find(key);
    if (known != keys_.end()) return known->second;
    return keys_[key] = list_.string(key);
}

PropertyListWriter::Node KeyedArchiveWriter::top() {
    std::vector<std::pair<Node, Node>> topPairs;
    for (const auto& [key, value] : top_)
        topPairs.emplace_back(keyNode(key), value);
    auto headers = headers_;
    headers.try_emplace("$top", list_.dictionary(topPairs));
    headers.try_emplace("$objects", list_.array(objects_));
    std::vector<std::pair<Node, Node>> pairs;
    for (const char* key : {"$version", "$archiver", "$top", "$objects"}) {
        const auto header = headers.extract(key);
        if (header.mapped()) pairs.emplace_back(keyNode(key), *header.mapped());
    }
    for (const auto& [key, value] : headers)
        if (value) pairs.emplace_back(keyNode(key), *value);
    return list_.dictionary(pairs);
}

}  // namespace writers
