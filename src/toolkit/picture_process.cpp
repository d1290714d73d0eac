// SPDX-License-Identifier: MIT
#include "toolkit/picture_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <thread>
#include <utility>

namespace vell {

using namespace Qt::StringLiterals;
using picture_messages::Kind;
using picture_messages::Ready;
using picture_messages::Reply;

namespace {

// Milliseconds. The process itself allows a picture fewer seconds of the processor.
constexpr int replyTimeout = 30'000;
constexpr int longestDelay = 3'600'000;

/// Moves a descriptor above the three standard ones and closes it on exec.
int outOfTheWay(int descriptor) {
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, 3);
    close(descriptor);
    return moved;
}

/// Runs the program with these two, silent and with signals as they are by default.
pid_t spawn(const QByteArray& path, int socket, int memory) {
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, socket, picture_messages::socketDescriptor);
    posix_spawn_file_actions_adddup2(&files, memory, picture_messages::memoryDescriptor);
#if !defined(__SANITIZE_ADDRESS__)
    // Decoders print what they find in a picture.
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
#endif
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    QByteArray name = path;
    char* arguments[] = {name.data(), nullptr};
    pid_t process = -1;
    const int failure =
        posix_spawn(&process, path.constData(), &files, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return failure == 0 ? process : -1;
}

/// Calls until all is moved or nothing moves any more.
template <class Move>
bool moveAll(qint64 size, const Move& move) {
    for (qint64 done = 0; done < size;) {
        const ssize_t moved = move(done, static_cast<size_t>(size - done));
        if (moved < 0 && errno == EINTR) continue;
        if (moved <= 0) return false;
        done += moved;
    }
    return true;
}

QString words(const Reply& reply) {
    QString problem = QString::fromUtf8(
        reply.problem, static_cast<qsizetype>(strnlen(reply.problem, sizeof reply.problem)));
    for (QChar& c : problem)
        if (!c.isPrint()) c = u' ';
    return problem;
}

}  // namespace

QString PictureProcess::program() {
    static const QString path =
        QFileInfo(QFile::symLinkTarget(u"/proc/self/exe"_s)).path() + u"/vell-picture"_s;
    return path;
}

std::unique_ptr<PictureProcess> PictureProcess::start(const QString& program) {
    int ends[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) return nullptr;
    std::unique_ptr<PictureProcess> started(new PictureProcess);
    started->socket_ = outOfTheWay(ends[0]);
    started->memory_ = outOfTheWay(memfd_create("picture", MFD_CLOEXEC));
    const int other = outOfTheWay(ends[1]);
    if (started->socket_ >= 0 && started->memory_ >= 0 && other >= 0)
        started->process_ = spawn(QFile::encodeName(program), other, started->memory_);
    close(other);
    if (started->process_ < 0) return nullptr;
    Ready ready{0};
    const bool isOurs = started->receive(&ready, sizeof ready) && ready.version == Ready().version;
    return isOurs ? std::move(started) : nullptr;
}

PictureProcess::~PictureProcess() {
    finish(End::between);
    if (socket_ >= 0) close(socket_);
    if (memory_ >= 0) close(memory_);
}

std::optional<PictureProcess::Answer> PictureProcess::still(const foundation::Data& picture,
                                                            QSize wanted,
                                                            Qt::AspectRatioMode mode) {
    request_.kind = Kind::still;
    request_.keepsProportions = mode == Qt::KeepAspectRatio ? 1 : 0;
    if (!share(picture, wanted)) return Answer{{}, 0, u"There is no memory for the picture"_s};
    auto answer = ask();
    if (ftruncate(memory_, 0) != 0) finish(End::between);
    return answer;
}

std::optional<PictureProcess::Answer> PictureProcess::firstFrame(const foundation::Data& picture,
                                                                 QSize wanted) {
    request_.kind = Kind::firstFrame;
    request_.keepsProportions = 0;
    if (!share(picture, wanted)) return Answer{{}, 0, u"There is no memory for the picture"_s};
    return ask();
}

std::optional<PictureProcess::Answer> PictureProcess::nextFrame() {
    request_.kind = Kind::nextFrame;
    return ask();
}

void PictureProcess::interrupt() {
    shutdown(socket_, SHUT_RDWR);
}

bool PictureProcess::share(const foundation::Data& picture, QSize wanted) {
    namespace messages = picture_messages;
    const qint64 pixels = qint64{wanted.width()} * wanted.height();
    const qint64 size = picture.size();
    if (wanted.isEmpty() || pixels > messages::mostPixels || size > messages::mostBytes)
        return false;
    request_.width = wanted.width();
    request_.height = wanted.height();
    request_.byteCount = size;
    if (ftruncate(memory_, messages::pixelOffset(size) + pixels * messages::bytesPerPixel) != 0)
        return false;
    return moveAll(size, [&](qint64 at, size_t left) {
        return pwrite(memory_, picture.begin() + at, left, at);
    });
}

std::optional<PictureProcess::Answer> PictureProcess::ask() {
    if (end_ != End::none) return std::nullopt;
    if (send(socket_, &request_, sizeof request_, MSG_NOSIGNAL) !=
        static_cast<ssize_t>(sizeof request_)) {
        finish(End::between);
        return std::nullopt;
    }
    Reply reply;
    if (!receive(&reply, sizeof reply)) return std::nullopt;
    auto answer = read(reply);
    if (!answer) finish(End::during);  // its memory may be corrupted
    return answer;
}

/// Receives one whole message; on failure the process is ended.
bool PictureProcess::receive(void* message, size_t size) {
    const QDeadlineTimer deadline(replyTimeout);
    pollfd wait{socket_, POLLIN, 0};
    int ready = -1;
    do {
        ready = poll(&wait, 1, static_cast<int>(deadline.remainingTime()));
    } while (ready < 0 && errno == EINTR);
    if (ready > 0 &&
        recv(socket_, message, size, MSG_DONTWAIT | MSG_TRUNC) == static_cast<ssize_t>(size))
        return true;
    finish(ready > 0 ? End::during : End::late);
    return false;
}

std::optional<PictureProcess::Answer> PictureProcess::read(const Reply& reply) {
    if (reply.width == 0 && reply.height == 0) return Answer{{}, 0, words(reply)};
    if (reply.width < 1 || reply.height < 1 || reply.width > request_.width ||
        reply.height > request_.height || reply.delay < 0 || reply.delay > longestDelay)
        return std::nullopt;
    QImage image(reply.width, reply.height,
                 reply.isOpaque ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return Answer{{}, 0, u"There is no memory for the picture"_s};
    uchar* const pixels = image.bits();
    const qint64 start = picture_messages::pixelOffset(request_.byteCount);
    // Read, not mapped: memory that shrinks is then an error like any other.
    const bool isWhole = moveAll(image.sizeInBytes(), [&](qint64 at, size_t left) {
        return pread(memory_, pixels + at, left, start + at);
    });
    if (!isWhole) return std::nullopt;
    return Answer{std::move(image), reply.delay, {}};
}

void PictureProcess::finish(End end) {
    if (end_ != End::none || process_ < 0) return;
    end_ = end;
    // A process that ended by itself keeps its own exit status.
    kill(process_, SIGKILL);
    int status = 0;
    if (end == End::between) {
        // Freeing its memory may take time that a window shouldn't wait for.
        if (waitpid(process_, &status, WNOHANG) == 0)
            std::thread([process = process_] { waitpid(process, nullptr, 0); }).detach();
        return;
    }
    if (waitpid(process_, &status, 0) == process_ && WIFSIGNALED(status) &&
        WTERMSIG(status) == SIGXCPU)
        end_ = End::late;
}

}  // namespace vell
