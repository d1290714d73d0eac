// SPDX-License-Identifier: MIT
#include "inspector/non_keyed_archive.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "foundation/object_memory.h"
#include "inspector/shown_values.h"

namespace vell::inspector {

using namespace Qt::StringLiterals;
using foundation::non_keyed::MalformedArchive;
using foundation::non_keyed::Mark;

namespace {

constexpr qint64 firstReference = -110;
/// Objects in one another.
constexpr int maximumNesting = 256;
constexpr qsizetype longestClassName = 200;
/// What real archives need for one object at least, and how many are made room for.
constexpr size_t bytesPerObject = 20;
constexpr size_t mostReserved = size_t(1) << 22;

/// Unsigned types are written like the others.
qint64 integer(qint64 value, char type) {
    if (type == 'S') return value & 0xffff;
    return type == 'I' || type == 'L' ? value & 0xffffffff : value;
}

}  // namespace

/// The values from one index on.
struct NonKeyedArchive::Range {
    quint64 first;
    const Visitor& visitor;
    QString prefix;
    quint64 index = 0;
};

std::unique_ptr<NonKeyedArchive> NonKeyedArchive::open(const foundation::Data& data) {
    if (quint64(data.size()) > std::numeric_limits<quint32>::max()) return nullptr;
    try {
        std::unique_ptr<NonKeyedArchive> result(new NonKeyedArchive(data));
        result->index();
        return result;
    } catch (const MalformedArchive&) {
        return nullptr;
    }
}

NonKeyedArchive::NonKeyedArchive(const foundation::Data& data)
    : data_(data), start_{TypedStream(data_)} {}

void NonKeyedArchive::index() {
    objects_.reserve(std::min(size_t(data_.size()) / bytesPerObject, mostReserved));
    foundation::useLargePages(objects_.data(), objects_.capacity() * sizeof(Object));
    Cursor cursor = start_;
    try {
        while (cursor.stream.remaining() > 0) {
            const Types types = readTypes(cursor, cursor.stream.byte());
            for (quint32 at = types.firstOp; at < types.endOp; at = ops_[at].end) {
                ++rootCount_;
                readValue(cursor, at, nullptr);
            }
        }
    } catch (const MalformedArchive&) {
        breakOffset_ = offsetOf(cursor);
    }
}

QString NonKeyedArchive::summary() const {
    return start_.stream.isBigEndian() ? u"non-keyed archive, big-endian"_s
                                       : u"non-keyed archive, little-endian"_s;
}

Entry NonKeyedArchive::root() const {
    Entry result;
    result.kind = Entry::Kind::container;
    result.place = quint64(data_.size());
    result.count = rootCount_;
    return result;
}

Entry NonKeyedArchive::object(quint64 number) {
    const Object& object = objects_[number];
    Entry result;
    result.step = u'#' + QString::number(number);
    result.offset = object.offset;
    result.place = object.offset;
    switch (object.sort) {
        case Sort::object:
            result.kind = Entry::Kind::object;
            result.type = "object";
            result.count = quint64(object.count);
            result.state[0] = quint32(number);
            if (objects_[object.name].sort == Sort::classRecord)
                result.value = className(objects_[object.name].name);
            break;
        case Sort::classRecord:
            result.kind = Entry::Kind::classRecord;
            result.type = "class";
            result.value = u"class %1, version %2"_s.arg(className(object.name),
                                                         QString::number(object.count));
            break;
        case Sort::cString:
            result.kind = Entry::Kind::text;
            result.type = "*";
            result.value = text(object.name);
    }
    return result;
}

void NonKeyedArchive::visitParts(const Entry& whole, quint64 first, const Visitor& visitor) {
    const bool isRoot = whole.place == quint64(data_.size());
    Range range{first, visitor, isRoot ? u"root"_s : QString()};
    try {
        if (isRoot) {
            Cursor cursor = start_;
            visitGroups(cursor, isRoot, range);
        } else if (whole.kind == Entry::Kind::object) {
            const Place& body = objects_[whole.state[0]].body;
            Cursor cursor = cursorAt(body);
            if (body.offset != 0) visitGroups(cursor, isRoot, range);
        } else if (whole.kind == Entry::Kind::container) {
            Cursor cursor = cursorAt({quint32(whole.place), whole.state[1], whole.state[2]});
            const TypeOp op = ops_[whole.state[0]];
            for (quint32 i = 0; i < op.count; ++i)
                if (!visitTypes(cursor, whole.state[0] + 1, op.end, range)) break;
        }
    } catch (const MalformedArchive&) {
        // What is before the break has been visited.
    }
}

void NonKeyedArchive::visitGroups(Cursor& cursor, bool isRoot, Range& range) {
    while (!isRoot || cursor.stream.remaining() > 0) {
        const quint8 head = cursor.stream.byte();
        if (!isRoot && head == quint8(Mark::endOfObject)) return;
        const Types types = readTypes(cursor, head);
        if (!visitTypes(cursor, types.firstOp, types.endOp, range)) return;
    }
}

/// False at the end of the visit.
bool NonKeyedArchive::visitTypes(Cursor& cursor, quint32 firstOp, quint32 endOp, Range& range) {
    for (quint32 at = firstOp; at < endOp; at = ops_[at].end) {
        const bool isWanted = range.index >= range.first;
        Entry entry;
        readValue(cursor, at, isWanted ? &entry : nullptr);
        if (isWanted) {
            entry.step = range.prefix + u'[' + QString::number(range.index) + u']';
            if (!range.visitor(std::move(entry))) return false;
        }
        if (cursor.isBroken) return false;
        ++range.index;
    }
    return true;
}

void NonKeyedArchive::readValue(Cursor& cursor, quint32 at, Entry* entry) {
    const TypeOp op = ops_[at];
    TypedStream& stream = cursor.stream;
    if (entry) {
        entry->offset = offsetOf(cursor);
        entry->place = quint64(entry->offset);
        entry->type = QByteArray(1, op.type);
    }
    switch (op.type) {
        case '[':
        case '{':
            return readArray(cursor, at, entry);
        case '@':
            return readObject(cursor, entry);
        case '*':
            return readCString(cursor, entry);
        case '#':
            if (const quint32 cls = readClass(cursor); cls != none)
                refer(entry, cls);
            else
                showNil(entry);
            return;
        case 'c':
            return showInteger(entry, qint8(stream.byte()));
        case 'C':
        case 'B':
            return showInteger(entry, stream.byte());
        case 'f':
            return showReal(entry, stream.real32());
        case 'd':
            return showReal(entry, stream.real64());
        case '+':
            return readBytes(cursor, entry);
        case ':':
        case '%': {
            const quint32 string = readString(cursor, stream.byte());
            if (string == none) return showNil(entry);
            if (!entry) return;
            entry->kind = Entry::Kind::text;
            entry->value = text(string);
            return;
        }
        default:
            return showInteger(entry, integer(stream.integer(), op.type));
    }
}

void NonKeyedArchive::readBytes(Cursor& cursor, Entry* entry) {
    const std::string_view bytes =
        cursor.stream.takes(Mark::nil) ? std::string_view() : cursor.stream.unsharedString();
    if (!entry) return;
    const QByteArrayView view(bytes);
    entry->kind = view.isValidUtf8() ? Entry::Kind::text : Entry::Kind::bytes;
    if (entry->kind == Entry::Kind::text) entry->value = QString::fromUtf8(view);
    if (!bytes.empty()) entry->bytes = data_.slice(bytes.data() - data_.begin(), view.size());
}

void NonKeyedArchive::readArray(Cursor& cursor, quint32 at, Entry* entry) {
    const TypeOp op = ops_[at];
    const bool isArray = op.type == '[';
    if (isArray && op.end == at + 2 && (ops_[at + 1].type | 0x20) == 'c') {
        const std::string_view bytes = cursor.stream.bytes(op.count);
        if (!entry) return;
        entry->kind = Entry::Kind::bytes;
        entry->type = "data";
        entry->bytes = data_.slice(bytes.data() - data_.begin(), qsizetype(bytes.size()));
        return;
    }
    if (op.count > cursor.stream.remaining()) throw MalformedArchive();
    const quint32 strings = cursor.nextString;
    const quint32 objects = cursor.nextObject;
    quint64 count = 0;
    for (quint32 i = 0; i < op.count; ++i)
        for (quint32 part = at + 1; part < op.end; part = ops_[part].end, ++count)
            readValue(cursor, part, nullptr);
    if (!entry) return;
    entry->kind = Entry::Kind::container;
    entry->type = isArray ? "array" : "struct";
    entry->value = QString::fromLatin1(entry->type) + u" of "_s + QString::number(count);
    entry->count = count;
    entry->state = {at, strings, objects};
}

void NonKeyedArchive::readObject(Cursor& cursor, Entry* entry) {
    const quint32 offset = offsetOf(cursor);
    const quint8 head = cursor.stream.byte();
    if (head == quint8(Mark::isNew))
        refer(entry, readNewObject(cursor, offset));
    else if (head == quint8(Mark::nil))
        showNil(entry);
    else
        refer(entry, readReference(cursor, head, cursor.nextObject));
}

/// One that is known is skipped.
quint32 NonKeyedArchive::readNewObject(Cursor& cursor, quint32 offset) {
    const quint32 self = cursor.nextObject;
    if (self < objects_.size()) {
        const Place& end = objects_[self].end;
        if (end.offset == 0)
            cursor.isBroken = true;
        else
            cursor = cursorAt(end);
        return self;
    }
    Object object;
    object.offset = offset;
    addObject(cursor, object);
    const quint32 cls = readClass(cursor);
    if (cls == none) throw MalformedArchive();
    objects_[self].name = cls;
    objects_[self].body = placeOf(cursor);
    readBody(cursor, self);
    objects_[self].end = placeOf(cursor);
    return self;
}

void NonKeyedArchive::readBody(Cursor& cursor, quint32 self) {
    if (++depth_ > maximumNesting) throw MalformedArchive();
    for (quint8 head = cursor.stream.byte(); head != quint8(Mark::endOfObject);
         head = cursor.stream.byte()) {
        const Types types = readTypes(cursor, head);
        for (quint32 at = types.firstOp; at < types.endOp; at = ops_[at].end) {
            ++objects_[self].count;
            readValue(cursor, at, nullptr);
        }
    }
    --depth_;
}

void NonKeyedArchive::readCString(Cursor& cursor, Entry* entry) {
    Object object;
    object.sort = Sort::cString;
    object.offset = offsetOf(cursor);
    const quint8 head = cursor.stream.byte();
    if (head == quint8(Mark::nil)) return showNil(entry);
    if (head != quint8(Mark::isNew))
        return refer(entry, readReference(cursor, head, cursor.nextObject));
    object.name = readString(cursor, cursor.stream.byte());
    if (object.name == none) throw MalformedArchive();
    refer(entry, addObject(cursor, object));
}

/// The number of a class.
quint32 NonKeyedArchive::readClass(Cursor& cursor) {
    quint32 first = none;
    Object object;
    object.sort = Sort::classRecord;
    object.offset = offsetOf(cursor);
    quint8 head = cursor.stream.byte();
    while (head == quint8(Mark::isNew)) {
        object.name = readString(cursor, cursor.stream.byte());
        if (object.name == none) throw MalformedArchive();
        object.count = cursor.stream.integer();
        const quint32 self = addObject(cursor, object);
        if (first == none) first = self;
        object.offset = offsetOf(cursor);
        head = cursor.stream.byte();
    }
    if (head == quint8(Mark::nil)) return first;
    const quint32 known = readReference(cursor, head, cursor.nextObject);
    if (objects_[known].sort != Sort::classRecord) throw MalformedArchive();
    return first != none ? first : known;
}

NonKeyedArchive::Types NonKeyedArchive::readTypes(Cursor& cursor, quint8 head) {
    const quint32 string = readString(cursor, head);
    if (string == none) throw MalformedArchive();
    auto& [text, types] = strings_[string];
    if (types.endOp == 0) {
        const size_t first = ops_.size();
        if (!foundation::non_keyed::appendTypeOps(text, ops_)) {
            ops_.resize(first);
            throw MalformedArchive();
        }
        types.firstOp = quint32(first);
        types.endOp = quint32(ops_.size());
    }
    return types;
}

quint32 NonKeyedArchive::readString(Cursor& cursor, quint8 head) {
    if (head == quint8(Mark::nil)) return none;
    if (head != quint8(Mark::isNew)) return readReference(cursor, head, cursor.nextString);
    const std::string_view text = cursor.stream.unsharedString();
    if (cursor.nextString == strings_.size()) strings_.push_back({.text = text});
    return cursor.nextString++;
}

quint32 NonKeyedArchive::addObject(Cursor& cursor, const Object& object) {
    if (cursor.nextObject == objects_.size()) objects_.push_back(object);
    return cursor.nextObject++;
}

quint32 NonKeyedArchive::readReference(Cursor& cursor, quint8 head, quint32 size) {
    const qint64 index = cursor.stream.integer(head) - firstReference;
    if (index < 0 || index >= size) throw MalformedArchive();
    return quint32(index);
}

NonKeyedArchive::Cursor NonKeyedArchive::cursorAt(const Place& place) const {
    Cursor result = start_;
    result.stream.moveTo(data_.begin() + place.offset);
    result.nextString = place.strings;
    result.nextObject = place.objects;
    return result;
}

NonKeyedArchive::Place NonKeyedArchive::placeOf(const Cursor& cursor) const {
    return {offsetOf(cursor), cursor.nextString, cursor.nextObject};
}

// Many objects may be of one class with a long name, of which only the start is decoded.
QString NonKeyedArchive::className(quint32 string) const {
    constexpr std::size_t bytesPerCharacter = 4;
    const std::string_view start =
        strings_[string].text.substr(0, bytesPerCharacter * longestClassName);
    return QString::fromUtf8(start.data(), qsizetype(start.size())).left(longestClassName);
}

QString NonKeyedArchive::text(quint32 string) const {
    const std::string_view text = strings_[string].text;
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

}  // namespace vell::inspector
