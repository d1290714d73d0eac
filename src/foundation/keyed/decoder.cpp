// SPDX-License-Identifier: MIT
#include "foundation/keyed/decoder.h"

#include <utility>

#include "foundation/keyed/errors.h"

namespace foundation::keyed {

Decoder::Decoder(const Archive& archive, std::span<const ClassInfo* const> allowedClasses,
                 const ClassRegistry& registry, Coder& coder)
    : archive_(archive),
      allowedClasses_(allowedClasses),
      registry_(registry),
      coder_(coder),
      limits_(archive.fileSize()),
      texts_(archive.fileSize(), limits_.units),
      layouts_(archive, limits_),
      slots_(archive.objectCount()),
      states_(archive.objectCount(), State::unvisited) {}

Value Decoder::decodeTop(std::string_view key) {
    const auto value = archive_.top(key);
    if (!value) throw missingKeyError(key);
    return decodeValue(*value, key, Check::allowedClasses);
}

Value Decoder::decodeKey(std::string_view key) {
    if (!current_) return {};
    // Keys that begin with "$" belong to the archive itself; a caller's own is stored with one
    // more.
    const bool isEscaped = key.starts_with('$');
    const auto value = isEscaped ? current_->value('$' + std::string(key)) : current_->value(key);
    return value ? decodeValue(*value, key, Check::allowedClasses) : Value();
}

/// Plain values stand inline or behind a UID; both are read.
Value Decoder::decodeValue(const Node& value, std::string_view key, Check check) {
    if (const auto uid = archive_.uid(value)) return decodeObject(*uid, key, check);
    if (value.kind == Kind::invalid) throw brokenValueError(key);
    return scalar(value);
}

Value Decoder::decodeObject(quint64 uid, std::string_view key, Check check) {
    if (uid >= slots_.size()) throw brokenValueError(key);
    const State before = states_[uid];
    if (before == State::done || (before == State::unchecked && check == Check::none))
        return slots_[uid];
    if (before == State::inProgress) return {};
    if (before == State::classRecord) throw missingClassInformationError();

    const Node node = archive_.object(uid);
    if (node.kind != Kind::dictionary) {
        // Plain values are let through even where their class is not allowed.
        slots_[uid] = decodePrimitive(node, key);
        states_[uid] = State::done;
        return slots_[uid];
    }
    const Instance instance(node, layouts_);
    const ClassInfo& info = classOf(instance, key, check);
    if (before != State::unchecked) {
        states_[uid] = State::inProgress;
        Value value = decodeInstance(instance, info);
        if (before == State::attributes) {
            states_[uid] = before;
            return value;
        }
        slots_[uid] = std::move(value);
    }
    states_[uid] = check == Check::none ? State::unchecked : State::done;
    return slots_[uid];
}

Value Decoder::decodePrimitive(const Node& node, std::string_view key) {
    switch (node.kind) {
        case Kind::invalid:
            throw brokenValueError(key);
        case Kind::uid:
        case Kind::array:
        case Kind::set:
            throw missingClassInformationError();
        case Kind::asciiString:
            if (Archive::ascii(node) == "$null") return {};
            return scalar(node);
        default:
            return scalar(node);
    }
}

Value Decoder::decodeInstance(const Instance& instance, const ClassInfo& info) {
    if (depth_ >= depthLimit) throw excessError("levels of nesting");
    ++depth_;
    Value value = build(instance, info);
    --depth_;
    return value;
}

Value Decoder::build(const Instance& instance, const ClassInfo& info) {
    const auto elements = [&](std::string_view prefix) {
        return decodeElements(instance, "NS.objects", prefix);
    };
    switch (info.kind) {
        case ClassKind::application:
            return initApplicationObject(instance, info);
        case ClassKind::string:
            return decodeString(instance);
        case ClassKind::number:
            return decodeNumber(instance);
        case ClassKind::data:
            return decodeData(instance);
        case ClassKind::date:
            return decodeDate(instance);
        case ClassKind::url:
            return decodeUrl(instance);
        case ClassKind::array:
            return std::make_shared<Array>(elements("NS.object."));
        case ClassKind::set:
        case ClassKind::orderedSet:
            return std::make_shared<Set>(elements("NS.object."));
        case ClassKind::countedSet:
            return std::make_shared<Set>(elements("NS.object"));
        case ClassKind::dictionary:
            return decodeDictionary(instance);
        case ClassKind::attributedString:
            return decodeAttributedString(instance);
        case ClassKind::textAttachment:
            return decodeTextAttachment(instance);
        case ClassKind::fileWrapper:
            return decodeFileWrapper(instance);
        case ClassKind::none:
        case ClassKind::null:
        case ClassKind::calendar:
        case ClassKind::opaque:
            break;
    }
    return std::make_shared<OpaqueObject>(info.name);
}

Value Decoder::initApplicationObject(const Instance& instance, const ClassInfo& info) {
    const Instance* const enclosing = std::exchange(current_, &instance);
    Value value = info.initWithCoder(coder_);
    current_ = enclosing;
    return value;
}

Value Decoder::decodePart(const Instance& instance, std::string_view key, ClassKind kind) {
    const auto value = instance.value(key);
    if (!value) return {};
    const auto uid = archive_.uid(*value);
    if (!uid) return decodeValue(*value, key, Check::none);
    if (archive_.object(*uid).kind == Kind::dictionary && !instanceOfKind(*value, kind, key))
        return {};
    return decodeObject(*uid, key, Check::none);
}

std::optional<Instance> Decoder::instanceOfKind(const Node& value, ClassKind kind,
                                                std::string_view key) {
    const auto uid = archive_.uid(value);
    if (!uid) return std::nullopt;
    const Node node = archive_.object(*uid);
    if (node.kind != Kind::dictionary) return std::nullopt;
    Instance instance(node, layouts_);
    if (classOf(instance, key, Check::none).kind != kind) return std::nullopt;
    return instance;
}

}  // namespace foundation::keyed
