#pragma once
// SPDX-License-Identifier: MIT
//
// Reader: the grammar of a non-keyed archive above its bytes: groups, objects, classes, and
// the tables that references point into. It needs no knowledge of classes; each object goes to the
// rebuilder when it ends, so one pass over the archive is enough.

#include <deque>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "foundation/non_keyed/budget.h"
#include "foundation/non_keyed/object_rebuilder.h"
#include "foundation/non_keyed/object_table.h"
#include "foundation/non_keyed/stream_value.h"
#include "foundation/non_keyed/type_string.h"
#include "foundation/non_keyed/typed_stream.h"

namespace foundation::non_keyed {

class Reader {
  public:
    /// Reads the header. The registry must outlive the reader; throws MalformedArchive, like all
    /// other members that read.
    Reader(const Data& data, const ClassRegistry& registry);

    /// The object that the archive's first group holds.
    Value readRoot();
    /// The archived name of the root's class, once that was read.
    [[nodiscard]] QByteArray rootClassName() const { return rootClassName_; }
    /// The next group of the top level; valid until the next call.
    std::span<const StreamValue> readGroup();
    /// What can be read of a damaged archive, where readRoot() fails.
    struct Salvage {
        struct Instance {
            Value value;
            bool followsGap = false;
        };
        Value first;                        ///< of the root's elements
        std::vector<Instance> instances;    ///< of the wanted class, in the order of the archive
        std::optional<qint64> storedCount;  ///< of the collection that holds them
        qint64 breakOffset = 0;             ///< in the bytes
        bool endsInGap = false;
    };
    /// Reads up to the first break, and behind it every instance of the class that refers only to
    /// what was numbered before: the numbers of what follows a break are unknown.
    /// An object with one of the mended bytes, offsets in ascending order, is lost as well, and an
    /// instance with an object that doesn't fit: a wrong number is likely to lead to one.
    using Fits = std::function<bool(size_t index, const Value& part)>;
    Salvage salvage(const ClassInfo& wanted, std::vector<qsizetype> mended, Fits fits);
    [[nodiscard]] bool atEnd() const { return stream_.remaining() == 0; }

  private:
    struct SharedString {
        std::string_view text;
        // As a type string, its operations; none until it is used as one.
        quint32 firstOp = 0;
        quint32 endOp = 0;
    };

    /// Of the wanted class, while salvaging.
    struct Begun {
        quint32 number;
        size_t strings;        ///< numbered before it
        const char* position;  ///< behind its class
    };

    void readGroupOf(quint32 types, bool keeps);
    StreamValue readValue(quint32 at);
    StreamValue readArray(quint32 at);
    void skipBody(quint32 first, quint32 end);
    StreamValue readObject();
    void readObjectBody(quint32 number, const ClassRecord& cls);
    StreamValue readCString();
    StreamValue readShared(char type);
    const ClassRecord* readClass();
    const ClassRecord& addClass(quint32 number, quint32 name, const ClassRecord* superclass);
    const ClassRecord* readNewClass(quint8 head);
    const ClassRecord* classAt(quint32 number) const;
    std::optional<quint32> readSharedString() { return readSharedString(stream_.byte()); }
    std::optional<quint32> readSharedString(quint8 head);
    quint32 readReference(quint8 head, size_t tableSize) {
        const qint64 index = stream_.integer(head) - firstReference;
        if (index < 0 || static_cast<quint64>(index) >= tableSize) throw MalformedArchive();
        return static_cast<quint32>(index);
    }
    void readTypesOf(SharedString& shared);
    quint32 addEntry(ObjectTable::Entry entry) {
        budget_.spendWorking(growthFactor * sizeof(ObjectTable::Entry));
        return table_.add(entry);
    }
    void keep(const StreamValue& value) {
        if (values_.size() == values_.capacity()) makeRoomForValues();
        values_.push_back(value);
    }
    void makeRoomForValues();
    [[nodiscard]] bool isFinished(const Begun& begun) const {
        return table_[begun.number].kind == ObjectTable::Kind::object;
    }
    [[nodiscard]] bool isSound(const Begun& begun) const {
        return isFinished(begun) && !untrusted_.contains(begun.number);
    }
    [[nodiscard]] bool holdsMended(const char* start) const;
    [[nodiscard]] bool holdsMisfit(std::span<const StreamValue> values);
    void noteCollection(Salvage& salvage);
    [[nodiscard]] QByteArray instanceHead() const;
    [[nodiscard]] quint32 firstDoubtful() const;
    void salvageBehindBreak(Salvage& salvage);
    [[nodiscard]] size_t certainObjects() const {
        return std::min<size_t>(table_.size(), certainObjects_);
    }
    [[nodiscard]] size_t certainStrings() const {
        return std::min(strings_.size(), certainStrings_);
    }
    void enter();
    void leave() { --nesting_; }

    /// The reference to the first entry of a table: negative, so that the first 238 entries take
    /// one byte and don't collide with the marks.
    static constexpr qint64 firstReference = -110;
    /// The entries that a growing vector allocates at most for each entry: the old ones and twice
    /// as many.
    static constexpr quint64 growthFactor = 3;

    Data data_;
    const ClassRegistry& registry_;
    TypedStream stream_;
    Budget budget_;
    ObjectTable table_;
    ObjectRebuilder rebuilder_;
    std::vector<SharedString> strings_;
    std::vector<TypeOp> ops_;
    std::deque<ClassRecord> classes_;
    std::unordered_map<const char*, const ClassInfo*> knownClasses_;
    /// The values of all objects that have begun, outermost first.
    std::vector<StreamValue> values_;
    size_t maximumValues_;
    size_t maximumElements_;
    QByteArray rootClassName_;
    int nesting_ = 0;

    // Of salvage().
    const ClassInfo* wanted_ = nullptr;
    Fits fits_;
    std::vector<Begun> begun_;
    std::vector<qsizetype> mended_;
    std::unordered_set<quint32> untrusted_;  ///< objects with a mended byte or such a part
    size_t untrustedParts_ = 0;              ///< references to them
    /// What is numbered behind a break can't be referred to.
    size_t certainObjects_ = std::numeric_limits<size_t>::max();
    size_t certainInstances_ = std::numeric_limits<size_t>::max();
    size_t certainStrings_ = std::numeric_limits<size_t>::max();
};

}  // namespace foundation::non_keyed
