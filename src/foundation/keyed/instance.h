#pragma once
// SPDX-License-Identifier: MIT
//
// Instance: the dictionary of one archived object, asked by key. Archivers write the keys of a
// class in the same order each time and each name once, so the references of the keys are the same
// bytes in most instances; their names are looked up once for such a layout and then compared in
// place.

#include <array>
#include <optional>
#include <string_view>

#include "foundation/keyed/archive.h"
#include "foundation/keyed/limits.h"

namespace foundation::keyed {

/// The key names of the layouts seen last.
class KeyLayouts {
  public:
    /// Instances with more keys than this are searched without a layout.
    static constexpr quint64 keyLimit = 24;

    struct Layout {
        QByteArrayView keyRefs;
        std::array<std::string_view, keyLimit> names;
        /// Changes when another layout takes this place.
        quint32 generation = 0;
    };

    KeyLayouts(const Archive& archive, Limits& limits) : archive_(archive), limits_(limits) {}

    [[nodiscard]] const Archive& archive() const { return archive_; }
    [[nodiscard]] Limits& limits() { return limits_; }
    /// The layout of a dictionary with 1 to keyLimit keys.
    const Layout& find(const Node& dictionary);

  private:
    const Archive& archive_;
    Limits& limits_;
    std::array<Layout, 64> layouts_;
};

class Instance {
  public:
    /// Any other object than a dictionary is read as an empty one.
    Instance(const Node& object, KeyLayouts& layouts)
        : dictionary_(object.kind == BinaryPropertyList::Kind::dictionary ? object : Node()),
          layouts_(layouts) {}

    [[nodiscard]] const Node& dictionary() const { return dictionary_; }
    /// The value under the key; nothing when it is missing.
    [[nodiscard]] std::optional<Node> value(std::string_view key) const;

  private:
    Node dictionary_;
    KeyLayouts& layouts_;
    mutable const KeyLayouts::Layout* layout_ = nullptr;
    mutable quint32 generation_ = 0;
};

}  // namespace foundation::keyed
