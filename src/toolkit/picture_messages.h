#pragma once
// SPDX-License-Identifier: MIT
//
// The protocol between a program and the process that draws its pictures: one message a packet of a
// socket. Bytes and pixels lie in memory that both share: the encoded picture at its start,
// the drawn one in the first page behind. Both sides validate what they receive.

#include <QtGlobal>

namespace vell::picture_messages {

/// Where the process finds them from its start.
constexpr int socketDescriptor = 0;
constexpr int memoryDescriptor = 1;

/// A picture is asked for in a size like that of a screen, never in a larger one.
constexpr qint64 mostPixels = 64'000'000;
/// Encoded ones that are longer are not drawn.
constexpr qint64 mostBytes = qint64{512} * 1024 * 1024;
constexpr qint64 bytesPerPixel = 4;
/// Pages of all machines are of this size or divide it.
constexpr qint64 alignment = 65536;

constexpr qint64 pixelOffset(qint64 byteCount) {
    return (byteCount + alignment - 1) / alignment * alignment;
}

/// The process's first message, sent once it has confined itself. The number changes
/// with this file: after an update the program on the disk may be another one.
struct Ready {
    quint32 version = 1;
};

enum class Kind : quint32 {
    still,       ///< the picture
    firstFrame,  ///< begins an animation
    nextFrame,   ///< goes on with it; the bytes are still there
};

struct Request {
    Kind kind = Kind::still;
    quint32 keepsProportions = 0;
    /// The size wanted, which the reply never exceeds.
    qint32 width = 0;
    qint32 height = 0;
    qint64 byteCount = 0;
};

struct Reply {
    /// Zero without a picture: see `problem`, or the animation has ended.
    qint32 width = 0;
    qint32 height = 0;
    quint32 isOpaque = 0;
    /// Milliseconds until the next frame.
    qint32 delay = 0;
    /// UTF-8, ends with a zero.
    char problem[240] = {};
};

}  // namespace vell::picture_messages
