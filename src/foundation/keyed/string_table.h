#pragma once
// SPDX-License-Identifier: MIT
//
// StringTable: the strings of an archive as QStrings. Writers store equal strings once in the
// property list, so one that was read recently often comes again: the plain text of a message and
// its attributed one. These share one buffer. Once all strings together are longer than the file,
// every long one is shared.

#include <QString>
#include <array>
#include <map>
#include <tuple>

#include "foundation/keyed/archive.h"
#include "foundation/keyed/budgets.h"

namespace foundation::keyed {

class StringTable {
  public:
    StringTable(quint64 fileSize, Budget& bytes) : fileSize_(fileSize), bytes_(bytes) {}

    /// The text of a string node of either kind, or of the UTF-8 in a data node. Bytes above 0x7f
    /// in an ASCII string are read as UTF-8, unpaired surrogates are kept.
    QString string(const Node& node);

  private:
    quint64 fileSize_;
    Budget& bytes_;
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
