// SPDX-License-Identifier: MIT
#include "writers/non_keyed_archive_writer.h"

#include <bit>
#include <cmath>
#include <limits>

namespace writers {
namespace {

constexpr char newMark = '\x84';
constexpr char nilMark = '\x85';
constexpr char endMark = '\x86';
/// Table indices are written below zero so that the first 110 take one byte apart from the marks.
constexpr int firstReference = -110;

}  // namespace

NonKeyedArchiveWriter::NonKeyedArchiveWriter(ByteOrder order) : order_(order) {
    bytes_.append('\x04');
    unsharedString(order == ByteOrder::little ? "streamtyped" : "typedstream");
    integer(1000);
}

void NonKeyedArchiveWriter::appendBytes(quint64 value, int width) {
    for (int i = 0; i < width; ++i) {
        const int place = order_ == ByteOrder::little ? i : width - 1 - i;
        bytes_.append(static_cast<char>(value >> (8 * place)));
    }
}

void NonKeyedArchiveWriter::integer(qint64 value) {
    if (value >= firstReference && value <= 127) {
        bytes_.append(static_cast<char>(value));
    } else if (value >= -32767 && value <= 32767) {
        bytes_.append('\x81');
        appendBytes(static_cast<quint64>(value), 2);
    } else {
        bytes_.append('\x82');
        appendBytes(static_cast<quint64>(value), 4);
    }
}

void NonKeyedArchiveWriter::real32(double value) {
    const auto single = static_cast<float>(value);
    if (single == std::trunc(single) && std::abs(single) < 2e9f)
        return integer(static_cast<qint64>(single));
    bytes_.append('\x83');
    appendBytes(std::bit_cast<quint32>(single), 4);
}

void NonKeyedArchiveWriter::real64(double value) {
    // Whole values in the range of an int are written as integers.
    if (value == std::trunc(value) && std::abs(value) <= std::numeric_limits<qint32>::max())
        return integer(static_cast<qint64>(value));
    bytes_.append('\x83');
    appendBytes(std::bit_cast<quint64>(value), 8);
}

void NonKeyedArchiveWriter::unsharedString(QByteArrayView text) {
    integer(text.size());
    bytes_.append(text);
}

void NonKeyedArchiveWriter::table(int index) {
    integer(index + firstReference);
}

void NonKeyedArchiveWriter::sharedString(const QByteArray& text) {
    const auto known = strings_.constFind(text);
    if (known != strings_.constEnd()) return table(*known);
    strings_.insert(text, static_cast<int>(strings_.size()));
    bytes_.append(newMark);
    unsharedString(text);
}

void NonKeyedArchiveWriter::cString(const QByteArray& text) {
    const auto known = cStrings_.constFind(text);
    if (known != cStrings_.constEnd()) return table(*known);
    cStrings_.insert(text, objects_++);
    bytes_.append(newMark);
    sharedString(text);
}

void NonKeyedArchiveWriter::group(const QByteArray& types) {
    sharedString(types);
}

void NonKeyedArchiveWriter::classValue(const ClassChain& classes, size_t index) {
    if (index == classes.size()) {
        bytes_.append(nilMark);
        return;
    }
    const auto& [name, version] = classes[index];
    const auto known = classNumbers_.constFind(name);
    if (known != classNumbers_.constEnd()) return table(*known);
    classNumbers_.insert(name, objects_++);
    bytes_.append(newMark);
    sharedString(name);
    integer(version);
    classValue(classes, index + 1);
}

int NonKeyedArchiveWriter::objectValue(const ClassChain& classes, const Body& body) {
    bytes_.append(newMark);
    const int self = objects_++;
    classValue(classes, 0);
    if (body) body();
    bytes_.append(endMark);
    return self;
}

int NonKeyedArchiveWriter::object(const ClassChain& classes, const Body& body) {
    group("@");
    return objectValue(classes, body);
}

int NonKeyedArchiveWriter::object(const char* className, const Body& body) {
    return object(classes(className), body);
}

void NonKeyedArchiveWriter::nil() {
    group("@");
    bytes_.append(nilMark);
}

void NonKeyedArchiveWriter::reference(int object) {
    group("@");
    table(object);
}

int NonKeyedArchiveWriter::string(const QString& text, const char* className) {
    return object(className, [&] {
        group("+");
        unsharedString(text.toUtf8());
    });
}

int NonKeyedArchiveWriter::number(char type, double value) {
    return object("NSNumber", [&] {
        group("*");
        cString(QByteArray(1, type));
        group(QByteArray(1, type));
        if (type == 'c') {
            bytes_.append(static_cast<char>(value));
        } else if (type == 'd') {
            real64(value);
        } else {
            integer(static_cast<qint64>(value));
        }
    });
}

int NonKeyedArchiveWriter::date(double seconds) {
    return object("NSDate", [&] {
        group("d");
        real64(seconds);
    });
}

int NonKeyedArchiveWriter::url(const QString& absolute) {
    return object("NSURL", [&] {
        group("c");
        bytes_.append('\0');
        string(absolute);
    });
}

int NonKeyedArchiveWriter::data(QByteArrayView contents, const char* className) {
    return object(className, [&] {
        group("i");
        integer(contents.size());
        group('[' + QByteArray::number(contents.size()) + "c]");
        bytes_.append(contents);
    });
}

int NonKeyedArchiveWriter::array(int count, const Body& body, const char* className) {
    return object(className, [&] {
        group("i");
        integer(count);
        body();
    });
}

int NonKeyedArchiveWriter::dictionary(int count, const Body& body) {
    return array(count, body, "NSDictionary");
}

int NonKeyedArchiveWriter::attributedString(const QString& text, const std::vector<Run>& runs,
                                            const char* className) {
    return object(className, [&] {
        string(text,
               QByteArrayView(className).startsWith("NSMutable") ? "NSMutableString" : "NSString");
        for (const Run& run : runs) {
            group("iI");
            integer(run.number);
            integer(static_cast<qint32>(run.length));
            if (run.attributes) run.attributes();
        }
    });
}

NonKeyedArchiveWriter::ClassChain NonKeyedArchiveWriter::classes(const char* className) {
    const QByteArray name = className;
    const auto version = [](const QByteArray& of) {
        return of == "NSString" || of == "NSMutableString" ? 1 : of == "NSFont" ? 30 : 0;
    };
    ClassChain chain{{name, version(name)}};
    const auto add = [&](const QByteArray& superclass) {
        chain.emplace_back(superclass, version(superclass));
    };
    if (name == "NSTextStorage") {
        add("NSMutableAttributedString");
        add("NSAttributedString");
    } else if (name == "NSNumber") {
        add("NSValue");
    } else if (name.startsWith("NSMutable")) {
        add("NS" + name.mid(9));
    }
    add("NSObject");
    return chain;
}

}  // namespace writers
