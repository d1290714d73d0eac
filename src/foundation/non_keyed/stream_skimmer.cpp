// SPDX-License-Identifier: MIT
#include "foundation/non_keyed/stream_skimmer.h"

#include <QtEndian>
#include <algorithm>

#include "foundation/non_keyed/typed_stream.h"

namespace foundation::non_keyed {
namespace {

/// An object in another takes two or three levels; real archives nest objects less than 30 deep.
constexpr size_t maximumFrames = 128;
constexpr qsizetype longestTypes = 256;
constexpr qint64 firstReference = -110;
/// Types in all type strings; no real archive has as many.
constexpr size_t maximumTypes = 1 << 16;

/// Some writers stored numbers for texts.
bool isSimilar(const ClassInfo& part, const ClassInfo& wanted) {
    if (part.kind == ClassKind::number && wanted.kind == ClassKind::string) return true;
    return part.kind == ClassKind::application || wanted.kind == ClassKind::application
               ? &part == &wanted
               : part.kind == wanted.kind;
}

}  // namespace

StreamSkimmer::StreamSkimmer(const QByteArray& bytes, qsizetype start, bool isBigEndian,
                             const ClassRegistry& registry, std::vector<ClassShape> shapes)
    : bytes_(bytes), registry_(registry), shapes_(std::move(shapes)), isBigEndian_(isBigEndian) {
    state_.position = start;
    state_.frames.push_back({});
}

void StreamSkimmer::returnTo(const State& state) {
    state_ = state;
    objects_.resize(state.objects);
    strings_.resize(state.strings);
}

StreamSkimmer::Entries StreamSkimmer::entriesBehind(const State& state) const {
    return {{objects_.begin() + std::ptrdiff_t(state.objects), objects_.end()},
            {strings_.begin() + std::ptrdiff_t(state.strings), strings_.end()}};
}

void StreamSkimmer::returnTo(const State& early, const Entries& entries, const State& late) {
    returnTo(early);
    objects_.insert(objects_.end(), entries.objects.begin(), entries.objects.end());
    strings_.insert(strings_.end(), entries.strings.begin(), entries.strings.end());
    returnTo(late);
}

void StreamSkimmer::setMisfitAllowed(qsizetype position, bool isAllowed) {
    if (isAllowed)
        allowedMisfits_.insert(position);
    else
        allowedMisfits_.erase(position);
}

bool StreamSkimmer::step() {
    places_.clear();
    text_ = {};
    unknownNames_.clear();
    isAtMisfit_ = false;
    Frame& top = state_.frames.back();
    switch (top.kind) {
        case Frame::Kind::root:
            if (std::exchange(top.at, 1) == 1) return false;
            beginGroup(byte());
            break;
        case Frame::Kind::object: {
            const quint8 head = byte();
            if (head == quint8(Mark::endOfObject))
                endObject();
            else
                beginGroup(head);
            break;
        }
        case Frame::Kind::types:
            if (top.at == top.end) {
                state_.frames.pop_back();
            } else {
                const quint32 at = std::exchange(top.at, ops_[top.at].end);
                const TypeOp op = ops_[at];
                readValue(op, at);
            }
            break;
        case Frame::Kind::repetition: {
            if (top.count == 0) {
                state_.frames.pop_back();
                break;
            }
            --top.count;
            const Frame types{.kind = Frame::Kind::types, .at = top.at, .end = top.end};
            state_.frames.push_back(types);
            break;
        }
    }
    if (state_.frames.size() > maximumFrames) throw MalformedArchive();
    state_.objects = objects_.size();
    state_.strings = strings_.size();
    return true;
}

void StreamSkimmer::endObject() {
    const Frame object = state_.frames.back();
    const ClassShape* const shape = shapeOf(object.info);
    if (shape && object.parts < shape->parts.size()) throw MalformedArchive();
    if (shape && !shape->parts.empty()) ++state_.shaped;
    state_.frames.pop_back();
}

const ClassShape* StreamSkimmer::shapeOf(const ClassInfo* info) const {
    for (const ClassShape& shape : shapes_)
        if (shape.owner == info) return &shape;
    return nullptr;
}

void StreamSkimmer::beginGroup(quint8 head) {
    const Types types = typesOf(sharedString(head));
    state_.frames.push_back({.kind = Frame::Kind::types, .at = types.first, .end = types.end});
}

void StreamSkimmer::readValue(const TypeOp& op, quint32 at) {
    switch (op.type) {
        case 'c':
        case 'C':
        case 'B':
            return skip(1);
        case 'f':
        case 'd': {
            const quint8 head = byte();
            if (head == quint8(Mark::real)) return skip(op.type == 'f' ? 4 : 8);
            integer(head);
            return;
        }
        case '@':
            return readObject();
        case '#':
            readClass(byte());
            return;
        case '+':
        case '%':
        case ':': {
            const quint8 head = byte();
            if (head == quint8(Mark::nil)) return;
            if (op.type != '+') {
                sharedString(head);
                return;
            }
            const qint64 size = integer(head);
            text_ = {state_.position, qsizetype(size)};
            return skip(size);
        }
        case '*': {
            const quint8 head = byte();
            if (head == quint8(Mark::nil)) return;
            if (head == quint8(Mark::isNew)) {
                sharedString(byte());
                return addObject({.kind = Kind::cString});
            }
            if (objects_[reference(head, objects_.size())].kind != Kind::cString)
                throw MalformedArchive();
            return;
        }
        case '[':
            if (op.end == at + 2 && (ops_[at + 1].type | 0x20) == 'c') return skip(op.count);
            if (op.count > quint64(bytes_.size() - state_.position)) throw MalformedArchive();
            state_.frames.push_back(
                {.kind = Frame::Kind::repetition, .at = at + 1, .end = op.end, .count = op.count});
            return;
        case '{':
            state_.frames.push_back({.kind = Frame::Kind::types, .at = at + 1, .end = op.end});
            return;
        default:
            integer();
    }
}

void StreamSkimmer::readObject() {
    const quint8 head = byte();
    if (head == quint8(Mark::nil)) return checkPart(true, nullptr);
    if (head != quint8(Mark::isNew)) {
        const Object& object = objects_[reference(head, objects_.size())];
        if (object.kind != Kind::object) throw MalformedArchive();
        return checkPart(false, object.info);
    }
    const size_t number = objects_.size();
    addObject({});
    const quint8 classHead = byte();
    if (classHead == quint8(Mark::nil)) throw MalformedArchive();
    const ClassInfo* const info = readClass(classHead);
    objects_[number].info = info;
    checkPart(false, info);
    state_.frames.push_back({.kind = Frame::Kind::object, .info = info});
}

/// The innermost object receives a part: nil, or one of this class, which may be unknown.
void StreamSkimmer::checkPart(bool isNil, const ClassInfo* part) {
    const auto owner =
        std::find_if(state_.frames.rbegin(), state_.frames.rend(),
                     [](const Frame& frame) { return frame.kind == Frame::Kind::object; });
    if (owner == state_.frames.rend() || !owner->info) return;
    const quint32 index = owner->parts++;
    const ClassShape* const shape = shapeOf(owner->info);
    if (isNil || !shape || index >= shape->parts.size()) return;
    if (part && isSimilar(*part, *shape->parts[index])) return;
    isAtMisfit_ = !allowedMisfits_.contains(state_.position);
    if (isAtMisfit_) throw MalformedArchive();
}

const ClassInfo* StreamSkimmer::readClass(quint8 head) {
    const size_t first = objects_.size();
    const ClassInfo* info = nullptr;
    for (; head == quint8(Mark::isNew); head = byte()) {
        const Text name = strings_[sharedString(byte())];
        integer();
        if (objects_.size() - first == maximumClassChain) throw MalformedArchive();
        const ClassInfo* const found =
            registry_.find({bytes_.constData() + name.begin, size_t(name.size)});
        if (!found) unknownNames_.push_back(name);
        if (!info) info = found;
        addObject({.kind = Kind::unfinishedClass, .info = found});
    }
    const ClassInfo* superclass = nullptr;
    if (head != quint8(Mark::nil)) {
        const Object& object = objects_[reference(head, objects_.size())];
        if (object.kind != Kind::classRecord) throw MalformedArchive();
        superclass = object.info;
    }
    for (size_t i = objects_.size(); i-- > first;) {
        if (!objects_[i].info) objects_[i].info = superclass;
        objects_[i].kind = Kind::classRecord;
        superclass = objects_[i].info;
    }
    return superclass;
}

void StreamSkimmer::addObject(Object object) {
    objects_.push_back(object);
}

quint8 StreamSkimmer::byte() {
    if (state_.position >= bytes_.size()) throw MalformedArchive();
    places_.push_back(state_.position);
    return quint8(bytes_[state_.position++]);
}

qint64 StreamSkimmer::integer(quint8 head) {
    if (head < 0x80 || head > 0x91) return qint8(head);
    if (head != quint8(Mark::int16) && head != quint8(Mark::int32)) throw MalformedArchive();
    std::array<uchar, 4> raw{};
    const size_t size = head == quint8(Mark::int16) ? 2 : 4;
    for (size_t i = 0; i < size; ++i)
        raw[i] = byte();
    if (size == 2)
        return isBigEndian_ ? qFromBigEndian<qint16>(raw.data())
                            : qFromLittleEndian<qint16>(raw.data());
    return isBigEndian_ ? qFromBigEndian<qint32>(raw.data())
                        : qFromLittleEndian<qint32>(raw.data());
}

void StreamSkimmer::skip(qint64 size) {
    if (size < 0 || size > bytes_.size() - state_.position) throw MalformedArchive();
    state_.position += size;
}

quint32 StreamSkimmer::reference(quint8 head, size_t size) {
    const qint64 index = integer(head) - firstReference;
    if (index < 0 || quint64(index) >= size) throw MalformedArchive();
    return quint32(index);
}

quint32 StreamSkimmer::sharedString(quint8 head) {
    if (head != quint8(Mark::isNew)) return reference(head, strings_.size());
    const qint64 size = integer();
    const qsizetype begin = state_.position;
    skip(size);
    // Types are as much grammar as what stands around them.
    for (qsizetype i = begin; i < state_.position && i < begin + 4; ++i)
        places_.push_back(i);
    strings_.push_back({begin, size});
    return quint32(strings_.size() - 1);
}

StreamSkimmer::Types StreamSkimmer::typesOf(quint32 string) {
    const Text& text = strings_[string];
    if (text.size > longestTypes || ops_.size() > maximumTypes) throw MalformedArchive();
    const std::string name(bytes_.constData() + text.begin, size_t(text.size));
    const auto known = types_.find(name);
    if (known != types_.end()) return known->second;
    const auto first = quint32(ops_.size());
    if (!appendTypeOps(name, ops_)) {
        ops_.resize(first);
        throw MalformedArchive();
    }
    return types_[name] = {first, quint32(ops_.size())};
}

}  // namespace foundation::non_keyed
