#pragma once
// SPDX-License-Identifier: MIT
//
// XmlText: a damaged property list in XML as UTF-8 and in corrected lines. Whatever was no
// character is a "<" there, which the element around it doesn't survive.

#include <QByteArray>

#include "foundation/data.h"

namespace vell::recovery {

class XmlText {
  public:
    explicit XmlText(const foundation::Data& data);

    [[nodiscard]] QByteArrayView corrected() const { return corrected_; }
    /// Where a position in the corrected text is in the file. Behind the first correction it is
    /// that correction's.
    [[nodiscard]] qint64 placeInFile(qsizetype position) const;

  private:
    bool isUtf16_;
    QByteArray original_;
    QByteArray corrected_;
};

}  // namespace vell::recovery
