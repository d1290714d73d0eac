// SPDX-License-Identifier: MIT
#include "cli/temporary_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <utility>

#include "cli/sink.h"

namespace vell {
namespace {

constexpr int endingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

/// The paths for the handler below; more files than this are never written at once.
std::array<std::atomic<const char*>, 256> registered;
static_assert(std::atomic<const char*>::is_always_lock_free);

/// Removes the files, then lets the signal take its default action.
void removeAndEnd(int signal) {
    for (const auto& path : registered) {
        if (const char* name = path.load()) ::unlink(name);
    }
    ::raise(signal);  // delivered when we return, with its default action
}

/// Signals that the shell or nohup has set to be ignored stay ignored.
void handleEndingSignals() {
    for (const int signal : endingSignals) {
        struct sigaction action {};
        if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) continue;
        action.sa_handler = removeAndEnd;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        ::sigaction(signal, &action, nullptr);
    }
}

/// Without a name, or -1 where the system or the file system has no such files.
int openNameless([[maybe_unused]] const QByteArray& folder) {
#ifdef O_TMPFILE
    static const bool canBeNamed = ::access("/proc/self/fd", X_OK) == 0;
    if (canBeNamed) return ::open(folder.constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
#endif
    return -1;
}

[[noreturn]] void throwExists() {
    throw WriteError{QStringLiteral("the file exists (--force replaces it)")};
}

bool isThere(const QByteArray& path) {
    struct stat status {};
    return ::lstat(path.constData(), &status) == 0;
}

}  // namespace

/// While it lives, an ending signal removes the file.
class TemporaryFile::Registration {
  public:
    /// Borrows the path.
    explicit Registration(const char* path) {
        [[maybe_unused]] static const bool handled = (handleEndingSignals(), true);
        for (auto& place : registered) {
            const char* none = nullptr;
            if (!place.compare_exchange_strong(none, path)) continue;
            place_ = &place;
            return;
        }
    }
    ~Registration() {
        if (place_) *place_ = nullptr;
    }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

  private:
    std::atomic<const char*>* place_ = nullptr;
};

TemporaryFile::TemporaryFile(const QByteArray& folder)
    : folder_(folder), descriptor_(openNameless(folder)) {
    if (descriptor_ >= 0) return;
    name([this](const char* path) {
        descriptor_ = ::open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        return descriptor_ >= 0;
    });
}

/// Gives the file a name that no other has. It is registered first, so that no signal can come
/// between the two.
void TemporaryFile::name(const std::function<bool(const char* path)>& create) {
    static std::atomic<int> count = 0;
    const QByteArray stem = folder_ + "/.vell-export-" + QByteArray::number(::getpid()) + '-';
    for (int attempt = 0; attempt < 100; ++attempt) {
        registration_.reset();
        path_ = stem + QByteArray::number(count++);
        registration_ = std::make_unique<Registration>(path_.constData());
        if (create(path_.constData())) return;
        if (errno != EEXIST) break;
    }
    const QString reason = systemReason();
    registration_.reset();
    path_.clear();
    throw WriteError{reason};
}

TemporaryFile::~TemporaryFile() {
    if (!path_.isEmpty()) ::unlink(path_.constData());
    registration_.reset();
    if (descriptor_ >= 0) ::close(descriptor_);
}

void TemporaryFile::keepAs(const QByteArray& path, mode_t permissions, bool replacesExisting) {
    // File systems without permissions refuse; there the file has those of all others.
    [[maybe_unused]] const int refused = ::fchmod(descriptor_, permissions);
    // Some file systems report only when a descriptor is closed that they are full.
    if (::close(::dup(descriptor_)) != 0) throw WriteError{systemReason()};
    path_.isEmpty() ? nameAs(path, replacesExisting) : renameAs(path, replacesExisting);
}

void TemporaryFile::nameAs(const QByteArray& path, bool replacesExisting) {
    const QByteArray self = "/proc/self/fd/" + QByteArray::number(descriptor_);
    const auto linkAs = [&self](const char* name) {
        return ::linkat(AT_FDCWD, self.constData(), AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
    };
    if (linkAs(path.constData())) return;
    if (errno != EEXIST) throw WriteError{systemReason()};
    if (!replacesExisting) throwExists();
    name(linkAs);
    renameAs(path, true);
}

void TemporaryFile::renameAs(const QByteArray& path, bool replacesExisting) {
    if (!replacesExisting) {
        if (::link(path_.constData(), path.constData()) == 0) return;
        if (errno == EEXIST || isThere(path)) throwExists();
        // Nothing is there, and not every file system has links. If it failed for another reason,
        // renaming fails too.
    }
    if (::rename(path_.constData(), path.constData()) != 0) throw WriteError{systemReason()};
    registration_.reset();
    path_.clear();
}

}  // namespace vell
