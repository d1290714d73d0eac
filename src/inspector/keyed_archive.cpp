// SPDX-License-Identifier: MIT
#include "inspector/keyed_archive.h"

#include <QLocale>
#include <algorithm>
#include <bit>
#include <utility>

#include "foundation/printable.h"

namespace vell::inspector {

using namespace Qt::StringLiterals;
using foundation::BinaryPropertyList;

namespace {

constexpr quint64 none = BinaryPropertyList::none;
/// In place of the property list's own top object, whose parts are the objects too.
constexpr quint32 isRoot = 1;
constexpr qsizetype longestName = 120;
/// Keys that are looked through for one; no object has more.
constexpr quint64 mostKeys = 4096;

QString number(double value) {
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

}  // namespace

KeyedArchive::KeyedArchive(BinaryPropertyList list, Offsets offsets)
    : list_(std::move(list)), showsOffsets_(offsets == Offsets::known) {
    objectsRef_ = find(list_.node(list_.topObject()), "$objects");
    objects_ = list_.node(objectsRef_);
}

QString KeyedArchive::summary() const {
    const QString values = QString::number(list_.objectCount());
    return isArchive() ? u"keyed archive, %1 values, %2 objects"_s.arg(values).arg(objects_.count())
                       : u"property list, %1 values"_s.arg(values);
}

quint64 KeyedArchive::objectCount() const {
    return isArchive() ? objects_.count() : 0;
}

Entry KeyedArchive::root() const {
    Entry result;
    result.kind = Entry::Kind::container;
    result.place = list_.objectCount();
    const Node top = list_.node(list_.topObject());
    result.count = top.kind() != Kind::dictionary ? 1 : top.count() - (isArchive() ? 1 : 0);
    result.state[0] = isRoot;
    return result;
}

Entry KeyedArchive::object(quint64 number) {
    const Ref ref = list_.element(objects_, number);
    Entry result = entry(ref, u'#' + QString::number(number));
    const Node node = list_.node(ref);
    if (node.kind() != Kind::dictionary) return result;
    result.kind = Entry::Kind::object;
    const quint64 classUid = list_.uid(find(node, "$class"));
    if (classUid < objects_.count()) {
        result.type = "object";
        result.value = className(classUid);
    } else if (const QString name = className(number); !name.isEmpty()) {
        result.type = "class";
        result.value = u"class "_s + name;
    } else {
        result.value.clear();
    }
    return result;
}

void KeyedArchive::visitParts(const Entry& whole, quint64 first, const Visitor& visitor) {
    const bool isTop = whole.state[0] == isRoot;
    const Ref ref = isTop ? list_.topObject() : whole.place;
    const Node node = list_.node(ref);
    if (node.kind() == Kind::dictionary) {
        quint64 index = 0;
        for (quint64 i = isTop ? 0 : std::min(first, node.count()); i < node.count(); ++i) {
            const Ref value = list_.value(node, i);
            if (isTop && ((isArchive() && value == objectsRef_) || index++ < first)) continue;
            const QString step = name(list_.key(node, i));
            if (!visitor(entry(value, isTop ? step : u'.' + step))) return;
        }
    } else if (isTop) {
        if (first == 0) visitor(entry(ref, u"root"_s));
    } else if (node.kind() == Kind::array || node.kind() == Kind::set) {
        for (quint64 i = first; i < node.count(); ++i)
            if (!visitor(entry(list_.element(node, i), u'[' + QString::number(i) + u']'))) return;
    }
}

Entry KeyedArchive::entry(Ref ref, QString step) const {
    Entry result;
    result.step = std::move(step);
    result.place = std::min(ref, list_.objectCount());
    if (showsOffsets_ && ref < list_.objectCount()) result.offset = qint64(list_.offset(ref));
    describe(result, list_.node(ref));
    return result;
}

void KeyedArchive::describe(Entry& entry, const Node& node) const {
    const auto scalar = [&entry](const char* type, QString value) {
        entry.type = type;
        entry.value = std::move(value);
    };
    const auto container = [&entry, &node](const char* type) {
        entry.kind = Entry::Kind::container;
        entry.type = type;
        entry.count = node.count();
        entry.value = QString::fromLatin1(type) + u" of "_s + QString::number(node.count());
    };
    switch (node.kind()) {
        case Kind::null:
            return scalar("null", u"null"_s);
        case Kind::boolean:
            return scalar("boolean", node.value() != 0 ? u"true"_s : u"false"_s);
        case Kind::integer:
            return scalar("integer", QString::number(qint64(node.value())));
        case Kind::hugeInteger:
            return scalar("integer", QString::number(node.value()));
        case Kind::real:
            return scalar("real", number(std::bit_cast<double>(node.value())));
        case Kind::date:
            return scalar("date", u"date "_s + number(std::bit_cast<double>(node.value())));
        case Kind::data:
            entry.kind = Entry::Kind::bytes;
            entry.type = "data";
            entry.bytes = list_.slice(node);
            return;
        case Kind::asciiString:
        case Kind::utf16String:
            entry.kind = Entry::Kind::text;
            return scalar("text", text(node));
        case Kind::uid:
            entry.kind = Entry::Kind::reference;
            entry.target = node.value();
            return scalar("reference", u'#' + QString::number(node.value()));
        case Kind::array:
            return container("array");
        case Kind::set:
            return container("set");
        case Kind::dictionary:
            return container("dictionary");
        case Kind::invalid:
            break;
    }
    scalar("invalid", u"invalid"_s);
}

QString KeyedArchive::text(const Node& node) const {
    if (node.kind() == Kind::asciiString)
        return QString::fromLatin1(node.payload(), qsizetype(node.count()));
    if (node.kind() != Kind::utf16String) return {};
    QString result(qsizetype(node.count()), Qt::Uninitialized);
    for (qsizetype i = 0; i < result.size(); ++i)
        result[i] = QChar(qFromBigEndian<quint16>(node.payload() + 2 * i));
    return result;
}

QString KeyedArchive::name(Ref key) const {
    const Node node = list_.node(key);
    if (node.kind() != Kind::asciiString && node.kind() != Kind::utf16String) return u"?"_s;
    return foundation::printable(text(node), longestName);
}

BinaryPropertyList::Ref KeyedArchive::find(const Node& dictionary, QByteArrayView key) const {
    if (dictionary.kind() != Kind::dictionary) return none;
    for (quint64 i = 0; i < std::min(dictionary.count(), mostKeys); ++i) {
        const Node name = list_.node(list_.key(dictionary, i));
        if (name.kind() == Kind::asciiString &&
            QByteArrayView(name.payload(), qsizetype(name.count())) == key)
            return list_.value(dictionary, i);
    }
    return none;
}

QString KeyedArchive::className(quint64 uid) {
    const auto known = classNames_.constFind(uid);
    if (known != classNames_.cend()) return *known;
    const Node record = list_.node(list_.element(objects_, uid));
    QString name = text(list_.node(find(record, "$classname"))).left(longestName);
    classNames_.insert(uid, name);
    return name;
}

}  // namespace vell::inspector
