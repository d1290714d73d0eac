#pragma once
// SPDX-License-Identifier: MIT
//
// Texts: the strings of an archive as QStrings. Writers store equal strings once in the property
// list, however many objects have them. The copies that follow each other, such as the two texts of
// one message, share one buffer; once the texts are longer together than the file, all long ones
// do.

#include <QString>
#include <array>
#include <map>

#include "foundation/keyed/archive.h"
#include "foundation/keyed/limits.h"

namespace foundation::keyed {

class Texts {
  public:
    Texts(quint64 fileSize, Allowance& units) : fileSize_(fileSize), units_(units) {}

    /// The text of a string node of either kind. Bytes above 0x7f in an ASCII string are read as
    /// UTF-8, unpaired surrogates are kept.
    QString text(const Node& node);

  private:
    quint64 fileSize_;
    Allowance& units_;
    quint64 decoded_ = 0;
    std::map<const char*, QString> shared_;  ///< by payload
    struct Recent {
        Node node;
        QString text;
    };
    std::array<Recent, 64> recent_;  ///< each the last of those whose payloads fall on its place

    QString decode(const Node& node);
};

}  // namespace foundation::keyed
