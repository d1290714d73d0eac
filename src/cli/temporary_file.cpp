// SPDX-License-Identifier: MIT
#include "cli/temporary_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <utility>

#include "cli/sink.h"

namespace vell {
namespace {

constexpr int endingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

/// The path for the handler below; null without a file.
std::atomic<const char*> current{nullptr};
static_assert(std::atomic<const char*>::is_always_lock_free);

/// Removes the file, then lets the signal take its default action.
void removeAndEnd(int signal) {
    if (const char* path = current.load()) ::unlink(path);
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

/// Blocks the ending signals while it lives.
class SignalPause {
  public:
    SignalPause() {
        sigset_t ending;
        ::sigemptyset(&ending);
        for (const int signal : endingSignals)
            ::sigaddset(&ending, signal);
        ::pthread_sigmask(SIG_BLOCK, &ending, &before_);
    }
    ~SignalPause() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalPause(const SignalPause&) = delete;
    SignalPause& operator=(const SignalPause&) = delete;

  private:
    sigset_t before_{};
};

}  // namespace

TemporaryFile::TemporaryFile(const QByteArray& folder) {
    [[maybe_unused]] static const bool handled = (handleEndingSignals(), true);
    const QByteArray stem = folder + "/.vell-export-" + QByteArray::number(::getpid()) + '-';
    const SignalPause pause;
    for (int attempt = 0; attempt < 100; ++attempt) {
        path_ = stem + QByteArray::number(attempt);
        descriptor_ = ::open(path_.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (descriptor_ >= 0 || errno != EEXIST) break;
    }
    if (descriptor_ < 0) throw WriteError{systemReason()};
    current = path_.constData();
}

TemporaryFile::~TemporaryFile() {
    if (!path_.isEmpty()) ::unlink(path_.constData());
    current = nullptr;
    if (descriptor_ >= 0) ::close(descriptor_);
}

void TemporaryFile::keepAs(const QByteArray& path, mode_t permissions, bool replacesExisting) {
    // File systems without permissions refuse; there the file has those of all others.
    [[maybe_unused]] const int refused = ::fchmod(descriptor_, permissions);
    // Some file systems report only now that they are full.
    if (::close(std::exchange(descriptor_, -1)) != 0) throw WriteError{systemReason()};
    if (!replacesExisting) {
        if (::link(path_.constData(), path.constData()) == 0) return;
        struct stat there {};
        if (errno == EEXIST || ::lstat(path.constData(), &there) == 0)
            throw WriteError{QStringLiteral("the file exists (--force replaces it)")};
        // Nothing is there, and not every file system has links. If it failed for another reason,
        // renaming fails too.
    }
    if (::rename(path_.constData(), path.constData()) != 0) throw WriteError{systemReason()};
    path_.clear();
}

}  // namespace vell
