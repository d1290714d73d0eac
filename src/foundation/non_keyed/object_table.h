#pragma once
// SPDX-License-Identifier: MIT
//
// ObjectTable: what the references of a non-keyed archive point to. Objects, classes and C strings
// share one sequence of numbers, in the order in which they begin; each takes one small entry.

#include <string_view>
#include <vector>

#include "foundation/class_registry.h"

namespace foundation::non_keyed {

/// A class as the archive describes it.
struct ClassRecord {
    std::string_view name;
    /// The class of that name, else the nearest known superclass; null when there is none.
    const ClassInfo* info = nullptr;
    int chainLength = 1;
};

class ObjectTable {
  public:
    enum class Kind : quint8 {
        absentObject,  ///< not finished, or nothing
        object,        ///< index: of its value
        dictionary,    ///< index: of the dictionary
        unfinishedClass,
        classRecord,  ///< index: of the class
        cString,      ///< index: of its string
    };
    struct Entry {
        Kind kind = Kind::absentObject;
        quint8 height = 0;  ///< how deep objects nest in this one, by reference too
        quint32 index = 0;
    };

    [[nodiscard]] quint32 size() const { return static_cast<quint32>(entries_.size()); }
    [[nodiscard]] const Entry& operator[](quint32 number) const { return entries_[number]; }
    quint32 add(Entry entry) {
        entries_.push_back(entry);
        return size() - 1;
    }
    void set(quint32 number, Entry entry) { entries_[number] = entry; }

  private:
    std::vector<Entry> entries_;
};

}  // namespace foundation::non_keyed
