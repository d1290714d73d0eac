#pragma once
// SPDX-License-Identifier: MIT
//
// Texts: the strings of an archive as QStrings. Writers store equal strings once in the property
// list, however many objects have them; once the texts are longer together than the file, long ones
// are looked up by where they lie, so that their copies share one buffer.

#include <QString>
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

    QString decode(const Node& node);
};

}  // namespace foundation::keyed
