#pragma once
// SPDX-License-Identifier: MIT
//
// Decoder: rebuilds the objects of a keyed archive when they are asked for. Each UID has one slot:
// an object is decoded once and shared, and one that is still being decoded counts as nothing,
// which cuts every cycle. The first error ends the decoding.

#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "foundation/attributed_string.h"
#include "foundation/class_registry.h"
#include "foundation/keyed/archive.h"
#include "foundation/keyed/instance.h"
#include "foundation/keyed/limits.h"
#include "foundation/keyed/texts.h"
#include "foundation/url.h"

namespace foundation::keyed {

class Decoder {
  public:
    /// Everything given must outlive the decoder; application classes are handed the coder.
    Decoder(const Archive& archive, std::span<const ClassInfo* const> allowedClasses,
            const ClassRegistry& registry, Coder& coder);
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    /// The value of "$top" under the key. Throws Error, also when there is none.
    Value decodeTop(std::string_view key);
    /// The value under the key in the instance of an application class that is being decoded.
    Value decodeKey(std::string_view key);

  private:
    /// Whether an object's class must be allowed. Value classes pull the parts they are made of
    /// without; whatever else is asked for is checked.
    enum class Check : bool { none, allowedClasses };
    enum class State : quint8 {
        unvisited,
        inProgress,
        unchecked,    ///< decoded, its class was not checked
        done,         ///< decoded and checked
        attributes,   ///< a dictionary of which only Attributes were read
        classRecord,  ///< the slot holds an index in classes_
    };
    struct ClassRecord {
        const ClassInfo* info;  ///< null when no class of its names is known
        bool isAllowed;
    };
    const Archive& archive_;
    std::span<const ClassInfo* const> allowedClasses_;
    const ClassRegistry& registry_;
    Coder& coder_;
    Limits limits_;
    Texts texts_;
    KeyLayouts layouts_;
    std::vector<Value> slots_;
    std::vector<State> states_;
    std::vector<ClassRecord> classes_;
    const Instance* current_ = nullptr;
    int depth_ = 0;

    // decoder.cpp: references and slots
    Value decodeValue(const Node& value, std::string_view key, Check check);
    Value decodeObject(quint64 uid, std::string_view key, Check check);
    Value decodePrimitive(const Node& node, std::string_view key);
    Value decodeInstance(const Instance& instance, const ClassInfo& info);
    Value build(const Instance& instance, const ClassInfo& info);
    Value initApplicationObject(const Instance& instance, const ClassInfo& info);
    /// The value under the key when it is a plain value or an instance of that kind, whose class is
    /// not checked.
    Value decodePart(const Instance& instance, std::string_view key, ClassKind kind);
    /// The instance that a value refers to when it is of that kind; the class is not checked.
    std::optional<Instance> instanceOfKind(const Node& value, ClassKind kind, std::string_view key);

    // class_records.cpp
    const ClassInfo& classOf(const Instance& instance, std::string_view key, Check check);
    ClassRecord classRecord(quint64 uid, const Instance& record);
    const ClassInfo* resolveClass(const Instance& record);
    const ClassInfo* firstKnownClass(const std::optional<Node>& names);

    // value_classes.cpp
    Value scalar(const Node& node);
    Value decodeString(const Instance& instance);
    Value decodeNumber(const Instance& instance);
    Value decodeData(const Instance& instance);
    Value decodeDate(const Instance& instance);
    Value decodeUrl(const Instance& instance);
    Value decodeDictionary(const Instance& instance);
    std::vector<Value> decodeElements(const Instance& instance, std::string_view listKey,
                                      std::string_view numberedPrefix);
    /// The values of a collection: the inline list under one key or, as other writers have it, a
    /// key for each, numbered from 0.
    std::vector<Node> numberedValues(const Instance& instance, std::string_view prefix);

    // text_classes.cpp
    Value decodeAttributedString(const Instance& instance);
    std::vector<AttributedString::Run> decodeRuns(const Instance& instance, qsizetype length);
    std::shared_ptr<const Attributes> decodeAttributes(const Node& value);
    std::shared_ptr<const Attributes> buildAttributes(const Instance& instance);
    Value* slotFor(const Node& name, Attributes& attributes);
    Value decodeTextAttachment(const Instance& instance);
    Value decodeFileWrapper(const Instance& instance);
};

}  // namespace foundation::keyed
