// SPDX-License-Identifier: MIT
#include "cli/sink.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace vell {
namespace {

constexpr qsizetype maxHeldSize = 1 << 16;

}  // namespace

QString systemReason() {
    return QString::fromStdString(std::generic_category().message(errno));
}

void Sink::write(QByteArrayView bytes) {
    const bool isLarge = bytes.size() > maxHeldSize / 2;
    if (isLarge || held_.size() + bytes.size() > maxHeldSize) flush();
    if (isLarge)
        writeNow(bytes);
    else
        held_ += bytes;
}

void Sink::flush() {
    const QByteArray bytes = std::exchange(held_, QByteArray());
    writeNow(bytes);
}

void Sink::writeNow(QByteArrayView bytes) const {
    while (!bytes.isEmpty()) {
        const ssize_t written =
            ::write(descriptor_, bytes.data(), static_cast<std::size_t>(bytes.size()));
        if (written >= 0) {
            bytes = bytes.sliced(written);
        } else if (errno == EAGAIN) {  // a pipe that its other end has made non-blocking
            pollfd ready{descriptor_, POLLOUT, 0};
            poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            throw WriteError{systemReason()};
        }
    }
}

}  // namespace vell
