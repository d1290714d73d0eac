// SPDX-License-Identifier: MIT
#include "toolkit/file_output_stream.h"

namespace vell {

const char* FileOutputStream::Error::what() const noexcept {
    return value == Closed ? "Closed" : "WriteFailed";
}

void FileOutputStream::write(std::span<const QByteArrayView> buckets) {
    if (!handle_) throw Error(Error::Closed);
    for (const QByteArrayView bucket : buckets) {
        const auto written =
            std::fwrite(bucket.data(), static_cast<std::size_t>(bucket.size()), 1, handle_);
        // An empty bucket (the tag of a plain line) also returns 0.
        if (written != 1 && !bucket.isEmpty()) throw Error(Error::WriteFailed);
    }
}

void FileOutputStream::flush() {
    if (handle_) std::fflush(handle_);
}

void FileOutputStream::end() {
    if (!handle_) return;
    std::fclose(handle_);
    handle_ = nullptr;
}

}  // namespace vell
