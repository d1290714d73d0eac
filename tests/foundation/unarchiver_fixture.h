#pragma once
// SPDX-License-Identifier: MIT
//
// Non-keyed archives for tests, put together from small pieces:
//
//     read(archived(array({str("a"), obj("NSFont", {raw("f", "\x0c")})})))

#include "foundation/unarchiver.h"
#include "writers/non_keyed_archive_writer.h"

namespace foundation::test {

using writers::NonKeyedArchiveWriter;
using Order = NonKeyedArchiveWriter::ByteOrder;
/// Writes some groups.
using Piece = std::function<void(NonKeyedArchiveWriter&)>;
using Pieces = std::vector<Piece>;

/// An application class that reads object, integer, object, as far as its values go.
class Probe final : public Object {
  public:
    static Value initWithCoder(Coder& coder);
    [[nodiscard]] QByteArray className() const override { return "Probe"; }

    Value first;
    std::optional<quint32> number;
    Value second;
};

/// The platform's classes and "Probe".
const ClassRegistry& registry();

QByteArray archived(const Piece& root, Order order = Order::little);
Value read(const QByteArray& bytes);
/// Class name and description.
std::string described(const Value& value);
inline std::string described(const Piece& root) {
    return described(read(archived(root)));
}

/// A group of these types, its bytes as given.
Piece raw(const QByteArray& types, QByteArrayView bytes);
Piece nil();
Piece str(const char* utf8);
Piece obj(const NonKeyedArchiveWriter::ClassChain& classes, const Pieces& pieces = {});
Piece obj(const char* className, const Pieces& pieces = {});
/// Also an object, whose number the variable has from then on.
Piece named(int& number, const Piece& object);
/// To what the variable names when this is written.
Piece ref(const int& number);
Piece array(const Pieces& elements, const char* className = "NSArray");
/// Keys and values in turn.
Piece dictionary(const Pieces& keysAndValues);
Piece data(const QByteArray& contents);

}  // namespace foundation::test
