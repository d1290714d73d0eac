// SPDX-License-Identifier: MIT
#include "foundation/non_keyed/reader.h"

namespace foundation::non_keyed {

namespace {

using Kind = StreamValue::Kind;

/// Objects and brackets inside one another; real archives stay below 30.
constexpr int maximumNesting = 256;
/// Elements of one collection, above an eighth of the archive's size; no real one has more.
constexpr size_t extraElements = 4096;
/// Values of unfinished objects, above a quarter of the archive's size.
constexpr size_t extraValues = size_t(1) << 20;

constexpr quint8 newMark = static_cast<quint8>(Mark::isNew);
constexpr quint8 nilMark = static_cast<quint8>(Mark::nil);
constexpr quint8 endOfObjectMark = static_cast<quint8>(Mark::endOfObject);

}  // namespace

Reader::Reader(const Data& data, const ClassRegistry& registry)
    : data_(data),
      registry_(registry),
      stream_(data_),
      budget_(data_.size()),
      rebuilder_(data_, table_, budget_),
      maximumValues_(static_cast<size_t>(data_.size()) / 4 + extraValues),
      maximumElements_(static_cast<size_t>(data_.size()) / 8 + extraElements) {}

Value Reader::readRoot() {
    const auto group = readGroup();
    if (group.size() != 1 || !group[0].isObject()) throw MalformedArchive();
    return rebuilder_.value(group[0]);
}

std::span<const StreamValue> Reader::readGroup() {
    values_.clear();
    const auto types = readSharedString();
    if (!types) throw MalformedArchive();
    readGroupOf(*types, true);
    return values_;
}

void Reader::readGroupOf(quint32 types, bool keeps) {
    SharedString& shared = strings_[types];
    if (shared.endOp == 0) readTypesOf(shared);
    // The table may grow while the values are read.
    const quint32 end = shared.endOp;
    for (quint32 at = shared.firstOp; at < end;) {
        const quint32 next = ops_[at].end;
        const StreamValue value = readValue(at);
        if (keeps) keep(value);
        at = next;
    }
}

StreamValue Reader::readValue(quint32 at) {
    const char type = ops_[at].type;
    switch (type) {
        case 'c':
            return StreamValue::ofInteger(type, static_cast<qint8>(stream_.byte()));
        case 'C':
        case 'B':
            return StreamValue::ofInteger(type, stream_.byte());
        // Unsigned values are stored through the signed coding: widened first, then cut.
        case 'S':
            return StreamValue::ofInteger(type, static_cast<quint16>(stream_.integer()));
        case 'I':
        case 'L':
            return StreamValue::ofInteger(type, static_cast<quint32>(stream_.integer()));
        case 's':
        case 'i':
        case 'l':
        case 'q':
        case 'Q':
            return StreamValue::ofInteger(type, stream_.integer());
        case 'f':
            return StreamValue::ofReal(type, stream_.real32());
        case 'd':
            return StreamValue::ofReal(type, stream_.real64());
        case '@':
            return readObject();
        case '#':
            return StreamValue::of(readClass() ? Kind::classReference : Kind::nil, type);
        case '*':
            return readCString();
        case '+':
            if (stream_.takes(Mark::nil)) return StreamValue::of(Kind::nil, type);
            return StreamValue::ofBytes(Kind::bytes, type, stream_.unsharedString());
        case '[':
            return readArray(at);
        case '{':
            skipBody(at + 1, ops_[at].end);
            return StreamValue::of(Kind::compound, type);
        default:  // a selector or an atom
            return readShared(type);
    }
}

StreamValue Reader::readArray(quint32 at) {
    const auto [type, count, end] = ops_[at];
    const bool isOfCharacters = end == at + 2 && (ops_[at + 1].type | 0x20) == 'c';
    if (isOfCharacters) return StreamValue::ofBytes(Kind::bytes, type, stream_.bytes(count));
    // Whatever it holds, each element takes a byte at least.
    if (count > stream_.remaining()) throw MalformedArchive();
    for (quint32 i = 0; i < count; ++i)
        skipBody(at + 1, end);
    return StreamValue::of(Kind::compound, type);
}

void Reader::skipBody(quint32 first, quint32 end) {
    enter();
    for (quint32 at = first; at < end;) {
        const quint32 next = ops_[at].end;
        readValue(at);
        at = next;
    }
    leave();
}

StreamValue Reader::readObject() {
    const quint8 head = stream_.byte();
    if (head == nilMark) return StreamValue::of(Kind::nil, '@');
    StreamValue result = StreamValue::of(Kind::object, '@');
    if (head == newMark) {
        const char* const start = stream_.position();
        const size_t untrusted = untrustedParts_;
        result.number = addEntry({});
        const ClassRecord* cls = readClass();
        if (!cls) throw MalformedArchive();
        if (result.number == 0)
            rootClassName_ = QByteArray(cls->name.data(), static_cast<qsizetype>(cls->name.size()));
        if (wanted_ && cls->info == wanted_)
            begun_.push_back({result.number, strings_.size(), stream_.position()});
        enter();
        readObjectBody(result.number, *cls);
        leave();
        if (!mended_.empty() && (untrustedParts_ != untrusted || holdsMended(start)))
            untrusted_.insert(result.number);
    } else {
        result.number = readReference(head, std::min(certainObjects(), certainInstances_));
        if (!untrusted_.empty() && untrusted_.contains(result.number)) ++untrustedParts_;
        if (table_[result.number].kind > ObjectTable::Kind::dictionary) throw MalformedArchive();
    }
    result.height = table_[result.number].height;
    return result;
}

void Reader::readObjectBody(quint32 number, const ClassRecord& cls) {
    const size_t first = values_.size();
    const ObjectRebuilder::Needs needs = ObjectRebuilder::needs(cls);
    while (true) {
        const quint8 head = stream_.byte();
        if (head == endOfObjectMark) break;
        const auto types = readSharedString(head);
        if (!types) throw MalformedArchive();
        readGroupOf(*types, needs != ObjectRebuilder::Needs::nothing);
        if (needs == ObjectRebuilder::Needs::elements &&
            values_.size() - first > maximumElements_ + 1)
            throw MalformedArchive();
    }
    if (wanted_ && cls.info == wanted_ && holdsMisfit(std::span(values_).subspan(first)))
        untrusted_.insert(number);
    rebuilder_.rebuild(number, cls, std::span(values_).subspan(first));
    values_.resize(first);
}

StreamValue Reader::readCString() {
    const quint8 head = stream_.byte();
    if (head == nilMark) return StreamValue::of(Kind::nil, '*');
    quint32 string = 0;
    if (head == newMark) {
        const auto body = readSharedString();
        if (!body) throw MalformedArchive();
        string = *body;
        addEntry({.kind = ObjectTable::Kind::cString, .index = string});
    } else {
        const auto& entry = table_[readReference(head, certainObjects())];
        if (entry.kind != ObjectTable::Kind::cString) throw MalformedArchive();
        string = entry.index;
    }
    return StreamValue::ofBytes(Kind::text, '*', strings_[string].text);
}

StreamValue Reader::readShared(char type) {
    const auto string = readSharedString();
    if (!string) return StreamValue::of(Kind::nil, type);
    return StreamValue::ofBytes(Kind::text, type, strings_[*string].text);
}

const ClassRecord* Reader::classAt(quint32 number) const {
    const auto& entry = table_[number];
    if (entry.kind != ObjectTable::Kind::classRecord) throw MalformedArchive();
    return &classes_[entry.index];
}

/// Null for nil.
const ClassRecord* Reader::readClass() {
    const quint8 head = stream_.byte();
    if (head == nilMark || head == newMark) return readNewClass(head);
    return classAt(readReference(head, certainObjects()));
}

/// A class is written with its superclasses, up to nil or to one that is known. All of them are
/// numbered in that order, and none may be referred to before the chain ends.
const ClassRecord* Reader::readNewClass(quint8 head) {
    const quint32 first = table_.size();
    std::vector<quint32> names;
    for (; head == newMark; head = stream_.byte()) {
        const auto name = readSharedString();
        if (!name || names.size() == maximumClassChain) throw MalformedArchive();
        stream_.integer();  // its version
        names.push_back(*name);
        addEntry({.kind = ObjectTable::Kind::unfinishedClass});
    }
    const ClassRecord* superclass = nullptr;
    if (head != nilMark) superclass = classAt(readReference(head, certainObjects()));
    for (auto i = static_cast<quint32>(names.size()); i-- > 0;)
        superclass = &addClass(first + i, names[i], superclass);
    return superclass;
}

const ClassRecord& Reader::addClass(quint32 number, quint32 name, const ClassRecord* superclass) {
    // Shared names are looked up once: they may be long, and a class takes few bytes.
    const std::string_view text = strings_[name].text;
    const auto [known, isNew] = knownClasses_.try_emplace(text.data());
    if (isNew) known->second = registry_.find(text);
    ClassRecord record{.name = text, .info = known->second};
    if (superclass) {
        if (!record.info) record.info = superclass->info;
        record.chainLength = superclass->chainLength + 1;
        if (static_cast<size_t>(record.chainLength) > maximumClassChain) throw MalformedArchive();
    }
    budget_.spendWorking(2 * sizeof(ClassRecord));
    table_.set(number, {.kind = ObjectTable::Kind::classRecord,
                        .index = static_cast<quint32>(classes_.size())});
    return classes_.emplace_back(record);
}

/// Nothing for nil.
std::optional<quint32> Reader::readSharedString(quint8 head) {
    if (head == nilMark) return std::nullopt;
    if (head != newMark) return readReference(head, certainStrings());
    budget_.spendWorking(growthFactor * sizeof(SharedString));
    strings_.push_back({.text = stream_.unsharedString()});
    return static_cast<quint32>(strings_.size() - 1);
}

void Reader::readTypesOf(SharedString& shared) {
    shared.firstOp = static_cast<quint32>(ops_.size());
    if (!appendTypeOps(shared.text, ops_)) throw MalformedArchive();
    shared.endOp = static_cast<quint32>(ops_.size());
    budget_.spendWorking(growthFactor * sizeof(TypeOp) * (shared.endOp - shared.firstOp));
}

void Reader::makeRoomForValues() {
    if (values_.size() >= maximumValues_) throw MalformedArchive();
    values_.reserve(std::min(values_.size() * 2 + 64, maximumValues_));
}

void Reader::enter() {
    if (++nesting_ > maximumNesting) throw MalformedArchive();
}

}  // namespace foundation::non_keyed
