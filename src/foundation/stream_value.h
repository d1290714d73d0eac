#pragma once
// SPDX-License-Identifier: MIT
//
// What the reader of non-keyed archives keeps while it reads: the values of objects that are not
// finished, and for each numbered thing of the archive one small entry. All of it is gone once the
// root is rebuilt.

#include <deque>
#include <string_view>

#include "foundation/class_registry.h"
#include "foundation/typed_stream.h"

namespace foundation {

/// One value of an object. Arrays and structs count as one; only arrays of characters keep what
/// they hold.
struct StreamValue {
    enum class Kind : quint8 { nil, object, classReference, text, bytes, integer, real, compound };

    Kind kind = Kind::nil;
    char type = 0;       ///< its letter
    quint32 number = 0;  ///< of an object; of text and bytes, how many they are
    union {
        qint64 integer = 0;
        double real;
        const char* data;  ///< of text and bytes: inside the archive
    };

    static StreamValue of(Kind kind, char type, quint32 number = 0) {
        StreamValue value;
        value.kind = kind;
        value.type = type;
        value.number = number;
        return value;
    }
    static StreamValue ofInteger(char type, qint64 integer) {
        StreamValue value = of(Kind::integer, type);
        value.integer = integer;
        return value;
    }
    static StreamValue ofReal(char type, double real) {
        StreamValue value = of(Kind::real, type);
        value.real = real;
        return value;
    }
    static StreamValue ofBytes(Kind kind, char type, std::string_view bytes) {
        StreamValue value = of(kind, type, static_cast<quint32>(bytes.size()));
        value.data = bytes.data();
        return value;
    }
    [[nodiscard]] std::string_view view() const { return {data, number}; }
    [[nodiscard]] bool isObject() const { return type == '@'; }  ///< nil too
};

/// The numbered things of an archive: objects, classes and C strings, in the order in which they
/// begin.
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
    std::deque<Entry> entries_;
};

/// A class as the archive describes it.
struct ClassRecord {
    std::string_view name;
    /// The class of that name, else the nearest known superclass; null when there is none.
    const ClassInfo* info = nullptr;
    int chainLength = 1;
};

/// Stops a read whose memory grows out of all proportion to the archive: a few bytes can name a
/// class whose empty instance is a hundred times as large.
class MemoryBudget {
  public:
    explicit MemoryBudget(qsizetype archiveSize)
        : working_(static_cast<quint64>(archiveSize) * 16 + (64u << 20)),
          kept_(static_cast<quint64>(archiveSize) * 7 + (56u << 20)) {}

    /// Takes memory that is freed after the read.
    void takeWorking(quint64 bytes) {
        if (bytes > working_) throw MalformedArchive();
        working_ -= bytes;
    }
    /// Takes memory that the rebuilt values keep.
    void takeKept(quint64 bytes) {
        takeWorking(bytes);
        if (bytes > kept_) throw MalformedArchive();
        kept_ -= bytes;
    }

  private:
    quint64 working_;
    quint64 kept_;
};

}  // namespace foundation
