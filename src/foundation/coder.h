#pragma once
// SPDX-License-Identifier: MIT
//
// Coder: what an archived class decodes itself from. Values of a keyed archive are found by key,
// those of a non-keyed one by position; a class checks isKeyed() first. A missing, mistyped or
// exhausted value is nothing, never an error; an archive that can't be read at all ends the
// decoding with an exception that classes don't catch.

#include <optional>
#include <string_view>

#include "foundation/value.h"

namespace foundation {

class Coder {
  public:
    virtual ~Coder() = default;

    /// Whether values are found by key.
    [[nodiscard]] virtual bool isKeyed() const = 0;
    /// The object under the key in the instance being decoded; nothing in a non-keyed archive.
    virtual Value decodeObject(std::string_view key) = 0;
    /// The next object of the instance being decoded; nothing past its end, when the next value is
    /// no object, or in a keyed archive.
    virtual Value decodeObject() = 0;
    /// The next value of the instance when it is a plain integer (type code "I"), as 32 bits.
    virtual std::optional<quint32> decodeUInt32() = 0;
    /// The archive's number of the instance being decoded, where it has one.
    [[nodiscard]] virtual std::optional<quint32> objectNumber() const { return std::nullopt; }
    /// A text of this archive without its first units; made once for all that share the text.
    [[nodiscard]] virtual QString withoutPrefix(const QString& text, qsizetype length) {
        return text.sliced(length);
    }
    /// Names the coder in diagnostics, without addresses.
    [[nodiscard]] virtual QString description() const = 0;
};

}  // namespace foundation
