#pragma once
// SPDX-License-Identifier: MIT
//
// ObjectRebuilder: turns the values of a finished object of a non-keyed archive into an instance of
// its class. Objects end innermost first, so everything that an object holds exists already, except
// the objects around it, which count as absent: rebuilt graphs hold no cycles.

#include <memory>
#include <span>
#include <unordered_map>

#include "foundation/attributed_string.h"
#include "foundation/derived_texts.h"
#include "foundation/non_keyed/budget.h"
#include "foundation/non_keyed/chunked_vector.h"
#include "foundation/non_keyed/object_table.h"
#include "foundation/non_keyed/stream_value.h"

namespace foundation::non_keyed {

class ObjectRebuilder {
  public:
    /// What is kept of an object's values until it ends.
    enum class Needs {
        nothing,   ///< they are never used
        values,    ///< all of its values
        elements,  ///< the same, for a collection whose size is bounded
    };

    /// All three must outlive the rebuilder. Attachment bytes become slices of `data`.
    ObjectRebuilder(const Data& data, ObjectTable& table, Budget& budget)
        : data_(data), table_(table), budget_(budget) {}

    [[nodiscard]] static Needs needs(const ClassRecord& cls);
    /// Rebuilds the object of that number, which must not be finished yet.
    void rebuild(quint32 number, const ClassRecord& cls, std::span<const StreamValue> values);
    /// The object that the value holds; nothing when it is nil, absent or no object. Valid as long
    /// as the rebuilder.
    [[nodiscard]] const Value& value(const StreamValue& value) {
        return value.kind == StreamValue::Kind::object ? valueOf(value.number) : nothing_;
    }

    /// A text without its first units, made once for all that share the text.
    [[nodiscard]] QString withoutPrefix(const QString& text, qsizetype length);

  private:
    struct ArchivedDictionary {
        quint32 firstMember = 0;  ///< in members_: the numbers of keys and values in turn
        quint32 memberCount = 0;
        /// What it means as an attribute dictionary; null when none of the attributes is set.
        std::shared_ptr<const Attributes> attributes;
        Value value;  ///< made on first use
    };

    Value rebuilt(quint32 number, const ClassRecord& cls, std::span<const StreamValue> values);
    Value opaque(const ClassRecord& cls);
    Value string(std::span<const StreamValue> values);
    QString text(std::string_view bytes);
    Value data(std::span<const StreamValue> values);
    Value url(std::span<const StreamValue> values);
    std::vector<Value> elements(std::span<const StreamValue> values);
    Value attributedString(std::span<const StreamValue> values);
    Value textAttachment(std::span<const StreamValue> values);
    Value fileWrapper(std::span<const StreamValue> values);
    Value application(quint32 number, const ClassInfo& info, std::span<const StreamValue> values);
    void addDictionary(quint32 number, std::span<const StreamValue> values, quint8 height);
    std::shared_ptr<const Attributes> attributesAmong(quint32 firstMember, quint32 memberCount);
    [[nodiscard]] const std::shared_ptr<const Attributes>* attributesOf(const StreamValue& value);
    const Value& valueOf(quint32 number);
    const Value& dictionaryValue(ArchivedDictionary& dictionary);
    [[nodiscard]] quint64 storedCount(std::span<const StreamValue> values) const;
    [[nodiscard]] static quint8 heightOf(std::span<const StreamValue> values);
    [[nodiscard]] Data slice(const StreamValue& value) const;

    const Value nothing_;
    const Data& data_;
    ObjectTable& table_;
    Budget& budget_;
    ChunkedVector<Value> rebuilt_;
    ChunkedVector<ArchivedDictionary> dictionaries_;
    ChunkedVector<quint32> members_;
    std::unordered_map<const char*, Value> opaqueByName_;
    std::unordered_map<const char*, std::shared_ptr<const FileWrapper>> wrappersBySource_;
    std::unordered_map<const char*, QString> textsBySource_;
    DerivedTexts derivedTexts_;
    /// Of the attributed string being rebuilt, by their number less one.
    std::vector<const std::shared_ptr<const Attributes>*> numberedAttributes_;
};

}  // namespace foundation::non_keyed
