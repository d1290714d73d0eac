// SPDX-License-Identifier: MIT
#include <bit>
#include <unordered_map>
#include <vector>

#include "foundation/printable.h"
#include "inspector/forms.h"

namespace vell::inspector {

using namespace Qt::StringLiterals;
using foundation::BinaryPropertyList;

namespace {

using Kind = BinaryPropertyList::Kind;
using Node = BinaryPropertyList::Node;
using Ref = BinaryPropertyList::Ref;
constexpr quint64 none = BinaryPropertyList::none;

/// Containers in one another; deeper ones are named only.
constexpr int maximumDepth = 64;
/// Of the names in a path, and of texts that were written before.
constexpr qsizetype longestName = 120;

/// Containers share their bytes, which no real list does.
struct Overlap {};

class KeyedText {
  public:
    KeyedText(const BinaryPropertyList& list, Offsets offsets, TextLines& lines)
        : list_(list),
          lines_(lines),
          showsOffsets_(offsets == Offsets::shown),
          isWritten_(list.objectCount()),
          itemsLeft_(quint64(list.data().size())) {}

    void write();

  private:
    const BinaryPropertyList& list_;
    TextLines& lines_;
    const bool showsOffsets_;
    std::vector<bool> isWritten_;  ///< containers and texts, by reference
    quint64 itemsLeft_;
    std::unordered_map<quint64, QString> classNames_;  ///< by UID
    QByteArray path_;

    [[nodiscard]] QString text(Ref ref) const;
    [[nodiscard]] Ref find(const Node& dictionary, QByteArrayView key);
    void charge(const Node& container);
    const QString& className(const Node& objects, quint64 uid);
    void writeObject(const Node& objects, quint64 number);
    void writeValue(Ref ref, int depth);
    void writeItems(const Node& container, int depth);
    void writeItem(const QByteArray& step, Ref ref, int depth);
    void writeText(Ref ref);
    void writeScalar(const Node& node, Ref ref);
    QByteArray name(Ref key) const;
};

QString KeyedText::text(Ref ref) const {
    const Node node = list_.node(ref);
    if (node.kind() == Kind::asciiString)
        return QString::fromLatin1(node.payload(), qsizetype(node.count()));
    if (node.kind() != Kind::utf16String) return {};
    QString result(qsizetype(node.count()), Qt::Uninitialized);
    for (qsizetype i = 0; i < result.size(); ++i)
        result[i] = QChar(qFromBigEndian<quint16>(node.payload() + 2 * i));
    return result;
}

void KeyedText::charge(const Node& container) {
    if (container.count() > itemsLeft_) throw Overlap();
    itemsLeft_ -= container.count();
}

Ref KeyedText::find(const Node& dictionary, QByteArrayView key) {
    if (dictionary.kind() != Kind::dictionary) return none;
    for (quint64 i = 0; i < dictionary.count(); ++i) {
        const Node name = list_.node(list_.key(dictionary, i));
        if (name.kind() == Kind::asciiString &&
            QByteArrayView(name.payload(), qsizetype(name.count())) == key)
            return list_.value(dictionary, i);
    }
    return none;
}

const QString& KeyedText::className(const Node& objects, quint64 uid) {
    const auto [known, isNew] = classNames_.try_emplace(uid);
    if (isNew) {
        const Node record = list_.node(list_.element(objects, uid));
        if (record.kind() == Kind::dictionary) charge(record);
        known->second = text(find(record, "$classname")).left(longestName);
    }
    return known->second;
}

void KeyedText::write() {
    const Node top = list_.node(list_.topObject());
    const Ref objectsRef = find(top, "$objects");
    const Node objects = list_.node(objectsRef);
    const bool isArchive = objects.kind() == Kind::array;
    lines_ << (isArchive ? "keyed archive, " : "property list, ") << quint64(list_.objectCount())
           << " values";
    if (isArchive) lines_ << ", " << objects.count() << " objects";
    lines_.endLine();
    if (isArchive) isWritten_[objectsRef] = true;
    if (top.kind() == Kind::dictionary) {
        for (quint64 i = 0; i < top.count(); ++i)
            if (!isArchive || list_.value(top, i) != objectsRef)
                writeItem(name(list_.key(top, i)), list_.value(top, i), 0);
    } else {
        writeItem("root", list_.topObject(), 0);
    }
    if (isArchive)
        for (quint64 number = 0; number < objects.count(); ++number)
            writeObject(objects, number);
}

void KeyedText::writeObject(const Node& objects, quint64 number) {
    const Ref ref = list_.element(objects, number);
    const Node node = list_.node(ref);
    path_ = '#' + QByteArray::number(number);
    lines_ << path_;
    if (showsOffsets_ && ref < list_.objectCount()) lines_ << " @" << list_.offset(ref);
    if (node.kind() != Kind::dictionary || isWritten_[ref]) {
        lines_ << " = ";
        writeValue(ref, 0);
        return;
    }
    isWritten_[ref] = true;
    const quint64 classUid = list_.uid(find(node, "$class"));
    if (classUid < objects.count()) {
        lines_ << " ";
        lines_.appendName(className(objects, classUid));
    }
    lines_.endLine();
    writeItems(node, 0);
}

void KeyedText::writeItem(const QByteArray& step, Ref ref, int depth) {
    const qsizetype length = path_.size();
    path_.append(step);
    lines_ << path_ << " = ";
    writeValue(ref, depth);
    path_.truncate(length);
}

/// The rest of a line, and the lines of what is in it.
void KeyedText::writeValue(Ref ref, int depth) {
    const Node node = list_.node(ref);
    const bool isContainer =
        node.kind() == Kind::array || node.kind() == Kind::set || node.kind() == Kind::dictionary;
    if (!isContainer) {
        writeScalar(node, ref);
        lines_.endLine();
        return;
    }
    const char* const kind = node.kind() == Kind::array ? "array" : "set";
    lines_ << (node.kind() == Kind::dictionary ? "dictionary" : kind) << " of " << node.count();
    const bool isKnown = isWritten_[ref];
    if (isKnown) lines_ << ", the same as above";
    lines_.endLine();
    if (isKnown || depth == maximumDepth) return;
    isWritten_[ref] = true;
    writeItems(node, depth + 1);
}

void KeyedText::writeItems(const Node& container, int depth) {
    charge(container);
    for (quint64 i = 0; i < container.count(); ++i) {
        if (container.kind() == Kind::dictionary)
            writeItem('.' + name(list_.key(container, i)), list_.value(container, i), depth);
        else
            writeItem('[' + QByteArray::number(i) + ']', list_.element(container, i), depth);
    }
}

QByteArray KeyedText::name(Ref key) const {
    const Kind kind = list_.node(key).kind();
    if (kind != Kind::asciiString && kind != Kind::utf16String) return "?";
    return foundation::printable(text(key), longestName).toUtf8();
}

/// A long one once.
void KeyedText::writeText(Ref ref) {
    const QString whole = text(ref);
    const bool isElided = isWritten_[ref] && whole.size() > longestName;
    isWritten_[ref] = true;
    lines_.appendText(isElided ? whole.first(longestName) : whole);
    if (isElided) lines_ << " …";
}

void KeyedText::writeScalar(const Node& node, Ref ref) {
    switch (node.kind()) {
        case Kind::null:
            lines_ << "null";
            break;
        case Kind::boolean:
            lines_ << (node.value() != 0 ? "true" : "false");
            break;
        case Kind::integer:
            lines_ << qint64(node.value());
            break;
        case Kind::hugeInteger:
            lines_ << node.value();
            break;
        case Kind::real:
            lines_ << std::bit_cast<double>(node.value());
            break;
        case Kind::date:
            lines_ << "date " << std::bit_cast<double>(node.value());
            break;
        case Kind::data:
            lines_.appendBytes({node.payload(), qsizetype(node.count())});
            break;
        case Kind::asciiString:
        case Kind::utf16String:
            writeText(ref);
            break;
        case Kind::uid:
            lines_ << "#" << node.value();
            break;
        default:
            lines_ << "invalid";
    }
}

}  // namespace

QString writeKeyed(const BinaryPropertyList& list, Offsets offsets, TextLines& lines) {
    try {
        KeyedText(list, offsets, lines).write();
        return {};
    } catch (const Overlap&) {
        return u"its objects share their bytes"_s;
    }
}

}  // namespace vell::inspector
