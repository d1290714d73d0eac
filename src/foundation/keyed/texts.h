#pragma once
// SPDX-License-Identifier: MIT
//
// Texts: the strings of an archive as QStrings. Writers store equal strings once in the property
// list, however many objects have them, so that one read a moment ago often comes again: the plain
// text of a message and its attributed one. Those share one buffer. Once the texts together are
// longer than the file, all long ones do.

#include <QString>
#include <array>
#include <map>
#include <tuple>

#include "foundation/keyed/archive.h"
#include "foundation/keyed/limits.h"

namespace foundation::keyed {

class Texts {
  public:
    Texts(quint64 fileSize, Allowance& bytes) : fileSize_(fileSize), bytes_(bytes) {}

    /// The text of a string node of either kind, or of the UTF-8 in a data node. Bytes above 0x7f
    /// in an ASCII string are read as UTF-8, unpaired surrogates are kept.
    QString text(const Node& node);

  private:
    quint64 fileSize_;
    Allowance& bytes_;
    quint64 decoded_ = 0;  ///< units
    struct Recent {
        const char* payload = nullptr;
        QString text;
    };
    std::array<Recent, 16> recent_;
    /// By payload, and by count and kind.
    std::map<std::tuple<const char*, quint64, Kind>, QString> shared_;

    QString decode(const Node& node);
};

}  // namespace foundation::keyed
