#pragma once
// SPDX-License-Identifier: MIT
//
// PdfImages: the pictures of a PDF. One that is shown again is written once.

#include <QHash>
#include <QImage>

#include "paper/pdf_file.h"

namespace vell {

class PdfImages {
  public:
    explicit PdfImages(PdfFile& file) : file_(file) {}

    /// The object of a picture of few colours, exact to the bit.
    int drawing(const QImage& image);
    /// The object of any picture; of a large opaque one detail is lost that no eye misses.
    int photo(const QImage& image);

  private:
    int write(const QImage& image);
    int writeJpeg(const QImage& image);

    PdfFile& file_;
    QHash<qint64, int> known_;  // by the pictures' keys
};

}  // namespace vell
