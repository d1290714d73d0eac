#pragma once
// SPDX-License-Identifier: MIT
//
// Reader: the grammar of a non-keyed archive above its bytes: groups, objects, classes, and
// the tables that references point into. It needs to know no class; each object is handed to the
// rebuilder when it ends, so one pass over the archive is enough.

#include <deque>
#include <span>
#include <unordered_map>
#include <vector>

#include "foundation/non_keyed/memory_budget.h"
#include "foundation/non_keyed/object_rebuilder.h"
#include "foundation/non_keyed/object_table.h"
#include "foundation/non_keyed/stream_value.h"
#include "foundation/non_keyed/type_string.h"
#include "foundation/non_keyed/typed_stream.h"

namespace foundation::nonkeyed {

class Reader {
  public:
    /// Reads the header. The registry must outlive the reader; throws MalformedArchive, like all
    /// other members that read.
    Reader(const Data& data, const ClassRegistry& registry);

    /// The object that the archive's first group holds.
    Value readRoot();
    /// The next group of the top level; valid until the next call.
    std::span<const StreamValue> readGroup();
    [[nodiscard]] bool atEnd() const { return stream_.remaining() == 0; }

  private:
    struct SharedString {
        std::string_view text;
        // As a type string, its operations; none until it is used as one.
        quint32 firstOp = 0;
        quint32 endOp = 0;
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
    std::optional<quint32> readSharedString();
    quint32 readReference(quint32 tableSize);
    const SharedString& typesOf(quint32 string);
    quint32 addEntry(ObjectTable::Entry entry);
    void keep(const StreamValue& value);
    void enter();
    void leave() { --nesting_; }

    Data data_;
    const ClassRegistry& registry_;
    TypedStream stream_;
    MemoryBudget budget_;
    ObjectTable table_;
    ObjectRebuilder rebuilder_;
    std::deque<SharedString> strings_;
    std::vector<TypeOp> ops_;
    std::deque<ClassRecord> classes_;
    std::unordered_map<const char*, const ClassInfo*> knownClasses_;
    /// The values of all objects that have begun, outermost first.
    std::vector<StreamValue> values_;
    size_t maximumValues_;
    size_t maximumElements_;
    int nesting_ = 0;
};

}  // namespace foundation::nonkeyed
