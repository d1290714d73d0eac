#pragma once
// SPDX-License-Identifier: MIT
//
// StreamValue: one value of an unfinished object of a non-keyed archive. Sixteen bytes; what it
// refers to is in the archive or has a number.

#include <QtGlobal>
#include <string_view>

namespace foundation::non_keyed {

/// One value of an object. Arrays and structs count as one; only arrays of characters keep what
/// they hold.
struct StreamValue {
    enum class Kind : quint8 { nil, object, classReference, text, bytes, integer, real, compound };

    Kind kind = Kind::nil;
    char type = 0;       ///< its letter
    quint8 height = 0;   ///< of an object, as in its table
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

}  // namespace foundation::non_keyed
