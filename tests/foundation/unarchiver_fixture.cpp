// SPDX-License-Identifier: MIT
#include "foundation/unarchiver_fixture.h"

#include <gtest/gtest.h>

namespace foundation::test {

Value Probe::initWithCoder(Coder& coder) {
    auto probe = std::make_shared<Probe>();
    EXPECT_FALSE(coder.isKeyed());
    EXPECT_TRUE(coder.decodeObject("Sender").isNothing());
    probe->first = coder.decodeObject();
    probe->number = coder.decodeUInt32();
    probe->second = coder.decodeObject();
    return probe;
}

const ClassRegistry& registry() {
    struct Shared {
        ClassRegistry registry;
        Shared() {
            registerPlatformClasses(registry);
            ClassInfo info;
            info.name = "Probe";
            info.kind = ClassKind::application;
            info.initWithCoder = &Probe::initWithCoder;
            registry.add(std::move(info));
        }
    };
    static const Shared shared;
    return shared.registry;
}

QByteArray archived(const Piece& root, Order order) {
    NonKeyedArchiveWriter archive(order);
    root(archive);
    return archive.bytes();
}

Value read(const QByteArray& bytes) {
    return unarchiveObjectWithData(bytes, registry()).object;
}

std::string described(const Value& value) {
    return (QString::fromUtf8(value.className()) + u' ' + value.description()).toStdString();
}

Piece raw(const QByteArray& types, QByteArrayView bytes) {
    return [types, bytes = bytes.toByteArray()](NonKeyedArchiveWriter& a) {
        a.group(types);
        a.raw(bytes);
    };
}

Piece nil() {
    return [](NonKeyedArchiveWriter& a) { a.nil(); };
}

Piece str(const char* utf8) {
    return [text = QString::fromUtf8(utf8)](NonKeyedArchiveWriter& a) { a.string(text); };
}

Piece obj(const NonKeyedArchiveWriter::ClassChain& classes, const Pieces& pieces) {
    return [=](NonKeyedArchiveWriter& a) {
        a.object(classes, [&] {
            for (const Piece& piece : pieces)
                piece(a);
        });
    };
}

Piece obj(const char* className, const Pieces& pieces) {
    return obj(NonKeyedArchiveWriter::classes(className), pieces);
}

Piece named(int& number, const Piece& object) {
    return [&number, object](NonKeyedArchiveWriter& a) {
        number = a.nextObject();
        object(a);
    };
}

Piece ref(const int& number) {
    return [&number](NonKeyedArchiveWriter& a) { a.reference(number); };
}

namespace {

Piece collection(const char* className, qsizetype count, const Pieces& members) {
    Pieces pieces = members;
    pieces.insert(pieces.begin(), [=](NonKeyedArchiveWriter& a) {
        a.group("i");
        a.integer(count);
    });
    return obj(className, pieces);
}

}  // namespace

Piece array(const Pieces& elements, const char* className) {
    return collection(className, std::ssize(elements), elements);
}

Piece dictionary(const Pieces& keysAndValues) {
    return collection("NSDictionary", std::ssize(keysAndValues) / 2, keysAndValues);
}

Piece data(const QByteArray& contents) {
    return [=](NonKeyedArchiveWriter& a) { a.data(contents); };
}

}  // namespace foundation::test
