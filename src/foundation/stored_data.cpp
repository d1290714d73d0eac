// SPDX-License-Identifier: MIT
#include "foundation/stored_data.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace foundation {
namespace {

constexpr qint64 nanosecondsPerSecond = 1'000'000'000;

class Descriptor {
  public:
    explicit Descriptor(const QByteArray& path)
        : number_(::open(path.constData(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {}
    ~Descriptor() {
        if (number_ >= 0) ::close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] int number() const { return number_; }

  private:
    const int number_;
};

bool isAs(const FileState& file, int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
           status.st_size == file.size && status.st_ino == file.inode &&
           status.st_mtim.tv_sec * nanosecondsPerSecond + status.st_mtim.tv_nsec == file.modified;
}

bool readFully(int descriptor, QByteArray& bytes, qsizetype offset) {
    for (qsizetype done = 0; done < bytes.size();) {
        const auto count = ::pread(descriptor, bytes.data() + done,
                                   static_cast<size_t>(bytes.size() - done), offset + done);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        done += count;
    }
    return true;
}

}  // namespace

StoredData::StoredData(std::shared_ptr<const FileState> file, qsizetype offset, qsizetype size)
    : size_(size), place_(std::make_shared<const Place>(Place{std::move(file), offset})) {}

std::optional<Data> StoredData::load() const {
    if (!place_) return data_;
    const FileState& file = *place_->file;
    const Descriptor descriptor(file.path);
    if (descriptor.number() < 0 || !isAs(file, descriptor.number())) return std::nullopt;
    QByteArray bytes(size_, Qt::Uninitialized);
    // A file that is written while it is read is another one afterwards.
    if (!readFully(descriptor.number(), bytes, place_->offset) || !isAs(file, descriptor.number()))
        return std::nullopt;
    return Data(bytes);
}

bool operator==(const StoredData& a, const StoredData& b) {
    if (a.size_ != b.size_) return false;
    if (a.identity() == b.identity()) return true;
    const auto one = a.load();
    const auto other = b.load();
    return one && other && *one == *other;
}

}  // namespace foundation
