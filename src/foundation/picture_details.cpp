// SPDX-License-Identifier: MIT
#include "foundation/picture_details.h"

#include <cmath>

#include "foundation/picture_header.h"

namespace foundation {
namespace {

using picture::Bytes;
using picture::maximumSteps;

constexpr double pointsPerInch = 72;
constexpr double metresPerInch = 0.0254;
constexpr int mostPixelsPerPoint = 4;
// Dots a metre and a centimetre are whole numbers.
constexpr double tolerance = 0.02;

double pngDensity(const Bytes& bytes) {
    qint64 at = 8;
    for (int step = 0; step < maximumSteps && bytes.has(at, 12); ++step) {
        if (bytes.is(at + 4, "IDAT")) break;
        if (bytes.is(at + 4, "pHYs") && bytes.u8(at + 16) == 1)
            return bytes.be32(at + 8) * metresPerInch;
        at += 12 + qint64{bytes.be32(at)};
    }
    return 0;
}

/// Behind the blocks of data that begin at a place.
qint64 afterBlocks(const Bytes& bytes, qint64 at) {
    while (bytes.u8(at) != 0)
        at += 1 + bytes.u8(at);
    return at + 1;
}

/// In bytes.
qint64 colorTableSize(quint8 flags) {
    return flags & 0x80 ? qint64{3} << ((flags & 7) + 1) : 0;
}

}  // namespace

int pixelsPerPoint(const Picture& picture) {
    if (picture.traits) return picture.traits->pixelsPerPoint;
    const Data data = picture.data.load().value_or(Data());
    const Bytes bytes(data.view());
    double density = 0;
    if (picture.format == PictureFormat::png) density = pngDensity(bytes);
    if (picture.format == PictureFormat::jpeg) density = picture::jpegDensity(bytes);
    if (picture.format == PictureFormat::tiff) density = picture::tiffDensity(bytes);
    const double pixels = density / pointsPerInch;
    const double whole = std::round(pixels);
    const bool isScreen = whole >= 2 && whole <= mostPixelsPerPoint;
    return isScreen && std::abs(pixels - whole) <= tolerance * whole ? static_cast<int>(whole) : 1;
}

bool isAnimated(const Picture& picture) {
    if (picture.format != PictureFormat::gif) return false;
    if (picture.traits) return picture.traits->isAnimated;
    const Data data = picture.data.load().value_or(Data());
    const Bytes bytes(data.view());
    int frames = 0;
    qint64 at = 13 + colorTableSize(bytes.u8(10));
    for (int step = 0; step < maximumSteps && bytes.has(at, 1); ++step) {
        if (bytes.u8(at) == 0x21) {  // an extension
            at = afterBlocks(bytes, at + 2);
        } else if (bytes.u8(at) == 0x2c) {
            if (++frames > 1) return true;
            at = afterBlocks(bytes, at + 11 + colorTableSize(bytes.u8(at + 9)));
        } else {
            break;
        }
    }
    return false;
}

PictureTraits traitsOf(const Picture& picture) {
    return {isTurned(picture), isAnimated(picture), pixelsPerPoint(picture)};
}

}  // namespace foundation
