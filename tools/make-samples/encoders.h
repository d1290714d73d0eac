#pragma once
// SPDX-License-Identifier: MIT
//
// Small encoders of picture files. They compress modestly but give the same bytes on every machine,
// whichever versions of compression libraries are installed.

#include <QByteArray>
#include <vector>

#include "canvas.h"

namespace samples {

[[nodiscard]] QByteArray encodePng(const Canvas& canvas);
/// Baseline, without chroma subsampling.
[[nodiscard]] QByteArray encodeJpeg(const Canvas& canvas);
/// An endless animation; each frame is shown for this many hundredths of a second.
[[nodiscard]] QByteArray encodeGif(const std::vector<Canvas>& frames, int delay);

}  // namespace samples
