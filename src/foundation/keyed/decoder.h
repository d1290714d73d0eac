#pragma once
// SPDX-License-Identifier: MIT
//
// Decoder: rebuilds the objects of a keyed archive on demand. Objects are decoded once,
// successfully or not, and shared, in one slot a UID; values (strings, numbers, dates, data) have
// no identity and are read in place each time. What is still being decoded counts as nothing, which
// cuts every cycle. The first error ends the decoding.

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "foundation/attributed_string.h"
#include "foundation/class_registry.h"
#include "foundation/derived_texts.h"
#include "foundation/keyed/archive.h"
#include "foundation/keyed/budgets.h"
#include "foundation/keyed/instance.h"
#include "foundation/keyed/string_table.h"
#include "foundation/url.h"

namespace foundation::keyed {

class Decoder {
  public:
    /// All of these must outlive the decoder; application classes decode from the coder.
    Decoder(const Archive& archive, std::span<const ClassInfo* const> allowedClasses,
            const ClassRegistry& registry, Coder& coder);
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    /// The value of "$top" under the key. Throws Error, also when there is none.
    Value decodeTop(std::string_view key);
    /// The value under the key in the instance of an application class that is being decoded.
    Value decodeKey(std::string_view key);
    /// The UID of that instance.
    [[nodiscard]] quint32 currentUid() const { return currentUid_; }
    /// From now on an instance with an unreadable part is an error, also where that part would
    /// not be missed: for damaged archives, in which nothing may look complete that isn't.
    void requireWholeInstances() { requiresWhole_ = true; }
    /// Whatever refers to the object fails.
    void refuse(quint64 uid) { states_[uid] = State::broken; }
    /// The class of an object; null when it has none that is known.
    const ClassInfo* knownClass(quint64 uid);
    /// The object of that UID. Throws Error; the other objects can be decoded all the same.
    Value decodeUid(quint64 uid) { return decodeObject(uid, {"NS.objects"}); }
    /// A text without its first units, made once for all that share the text.
    QString withoutPrefix(const QString& text, qsizetype length);

  private:
    /// What an object is decoded for.
    struct Demand {
        /// Named in errors.
        std::string_view key;
        /// Set when a value class pulls a part that it is made of: the class of an instance must be
        /// of this kind, else the part counts as missing. Everything else must be of an allowed
        /// class.
        std::optional<ClassKind> part = {};
    };
    enum class State : quint8 {
        unvisited,  ///< or a value
        inProgress,
        unchecked,   ///< decoded, its class was not checked
        done,        ///< decoded and checked
        nothing,     ///< decoded, without a result
        broken,      ///< its decoding failed
        attributes,  ///< a dictionary of which only Attributes were read
    };

    const Archive& archive_;
    std::span<const ClassInfo* const> allowedClasses_;
    const ClassRegistry& registry_;
    Coder& coder_;
    Budgets budgets_;
    StringTable strings_;
    KeyLayouts layouts_;
    std::vector<std::shared_ptr<const Object>> slots_;
    std::vector<State> states_;
    std::map<quint64, ClassRecord> classes_;  ///< by UID
    /// Of dictionaries that are used as values too, by UID.
    std::map<quint64, std::shared_ptr<const Attributes>> sharedAttributes_;
    /// By the address of their bytes; null for malformed ones.
    std::map<std::pair<const char*, qsizetype>, std::shared_ptr<const FileWrapper>> fileWrappers_;
    DerivedTexts derivedTexts_;
    const Instance* current_ = nullptr;
    quint32 currentUid_ = 0;
    int depth_ = 0;
    bool requiresWhole_ = false;

    // decoder.cpp: references and slots
    Value decodeValue(Ref value, const Demand& demand);
    Value decodeObject(quint64 uid, const Demand& demand);
    Value decodeNewInstance(quint64 uid, const Instance& instance, const Demand& demand);
    void requireWhole(const Node& dictionary, std::string_view key) const;
    Value decodePrimitive(const Node& node, std::string_view key);
    Value build(quint64 uid, const Instance& instance, const ClassInfo& info);
    Value initApplicationObject(quint64 uid, const Instance& instance, const ClassInfo& info);
    Value decodePart(const Instance& instance, const Key& key, ClassKind kind);
    /// The instance that a UID names if it is of the demanded kind.
    std::optional<Instance> partInstance(quint64 uid, const Demand& demand);

    // class_records.cpp
    const ClassInfo& classOf(const Instance& instance, const Demand& demand);
    const ClassRecord& classRecord(quint64 uid);
    ClassRecord readClassRecord(const Instance& record);
    const ClassInfo* firstKnownClass(const Node& names);
    QByteArray archivedClassName(quint64 uid);

    // value_classes.cpp
    Value scalar(const Node& node);
    Value decodeString(const Instance& instance);
    Value decodeNumber(const Instance& instance);
    Value decodeData(const Instance& instance);
    Value decodeDate(const Instance& instance);
    Value decodeUrl(const Instance& instance);
    Value decodeDictionary(const Instance& instance);
    std::vector<Value> decodeElements(const Instance& instance, const Key& listKey,
                                      std::string_view numberedPrefix);
    /// The values of keys that are numbered from 0, as other writers have collections.
    std::vector<Ref> numberedValues(const Instance& instance, std::string_view prefix);

    // text_classes.cpp
    Value decodeAttributedString(const Instance& instance);
    void decodeRuns(const Instance& dictionaries, const Data& info, quint64 length,
                    AttributeRunBuilder& runs);
    std::shared_ptr<const Attributes> decodeAttributes(Ref value);
    std::shared_ptr<const Attributes> buildAttributes(const Instance& instance);
    Value* slotFor(Ref name, Attributes& attributes);
    Value decodeTextAttachment(const Instance& instance);
    Value decodeFileWrapper(const Instance& instance);
    std::shared_ptr<const FileWrapper> fileWrapper(const Data& data);
};

}  // namespace foundation::keyed
