// SPDX-License-Identifier: MIT
//
// vell-picture: makes pixels of pictures for the program that started it, whose requests come on
// its standard input. Not meant to be started by users.
//
// All is done on one thread of the pool: there Qt scales and converts in place, instead of starting
// further threads with descriptors of their own. It has the fonts that were loaded in advance, too.

#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QGuiApplication>
#include <QSemaphore>
#include <QThreadPool>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <optional>

#include "picture/animation.h"
#include "picture/confinement.h"
#include "picture/decoding.h"
#include "toolkit/picture_messages.h"

namespace {

namespace messages = vell::picture_messages;
using foundation::Data;
using messages::Kind;
using messages::Reply;
using messages::Request;

constexpr int secondsForAPicture = 10;

/// A part of the memory shared with the program.
class Shared {
  public:
    Shared(qint64 offset, qint64 size, int protection) : size_(size) {
        if (size > 0 && offset + size <= lseek(messages::memoryDescriptor, 0, SEEK_END))
            start_ = mmap(nullptr, static_cast<size_t>(size), protection, MAP_SHARED,
                          messages::memoryDescriptor, offset);
    }
    ~Shared() {
        if (*this) munmap(start_, static_cast<size_t>(size_));
    }
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;

    explicit operator bool() const { return start_ != MAP_FAILED; }
    [[nodiscard]] char* begin() const { return static_cast<char*>(start_); }
    [[nodiscard]] Data data() const {
        return *this ? Data(QByteArray::fromRawData(begin(), size_)) : Data();
    }

  private:
    void* start_ = MAP_FAILED;
    qint64 size_;
};

void explain(Reply& reply, const QString& problem) {
    const QByteArray text = problem.toUtf8().left(sizeof reply.problem - 1);
    std::memcpy(reply.problem, text.constData(), static_cast<size_t>(text.size()));
}

void hand(Reply& reply, const Request& request, const QImage& image) {
    if (image.isNull()) return;
    const Shared pixels(messages::pixelOffset(request.byteCount), image.sizeInBytes(),
                        PROT_READ | PROT_WRITE);
    if (!pixels) return explain(reply, QStringLiteral("There is no memory for the picture"));
    std::memcpy(pixels.begin(), image.constBits(), static_cast<size_t>(image.sizeInBytes()));
    reply.width = image.width();
    reply.height = image.height();
    reply.isOpaque = image.hasAlphaChannel() ? 0 : 1;
}

class Service {
  public:
    [[nodiscard]] Reply respond(const Request& request) {
        Reply reply;
        const QSize size(request.width, request.height);
        const bool isSound = !size.isEmpty() && request.byteCount >= 0 &&
                             request.byteCount <= messages::mostBytes &&
                             qint64{size.width()} * size.height() <= messages::mostPixels;
        if (!isSound) return reply;
        try {
            if (request.kind == Kind::still) {
                const Shared bytes(0, request.byteCount, PROT_READ);
                const vell::Drawn drawn =
                    vell::draw(bytes.data(), size, request.keepsProportions != 0);
                explain(reply, drawn.problem);
                hand(reply, request, drawn.image);
            } else {
                if (request.kind == Kind::firstFrame) begin(request, size);
                if (animation_) handFrame(reply, request);
            }
        } catch (const std::bad_alloc&) {
            explain(reply, QStringLiteral("The picture takes too much memory to be drawn"));
        }
        return reply;
    }

  private:
    std::optional<Shared> bytes_;
    std::optional<vell::Animation> animation_;

    void begin(const Request& request, QSize size) {
        animation_.reset();
        bytes_.emplace(0, request.byteCount, PROT_READ);
        animation_.emplace(bytes_->data(), size);
    }
    void handFrame(Reply& reply, const Request& request) {
        const vell::Animation::Frame frame = animation_->next();
        reply.delay = frame.delay;
        hand(reply, request, frame.image);
    }
};

/// Until the program closes its end.
void serve() {
    Service service;
    Request request;
    const messages::Ready ready;
    send(messages::socketDescriptor, &ready, sizeof ready, MSG_NOSIGNAL);
    while (recv(messages::socketDescriptor, &request, sizeof request, 0) ==
           static_cast<ssize_t>(sizeof request)) {
        vell::confinement::allowSeconds(secondsForAPicture);
        const Reply reply = service.respond(request);
        send(messages::socketDescriptor, &reply, sizeof reply, MSG_NOSIGNAL);
    }
}

}  // namespace

int main(int argc, char** argv) {
    vell::confinement::limitResources();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_NO_GUI_THREADPOOL", "1");
    for (const char* service : {"DBUS_SESSION_BUS_ADDRESS", "DISPLAY", "WAYLAND_DISPLAY"})
        qunsetenv(service);
    const QGuiApplication application(argc, argv);
    QSemaphore isLoaded;
    QSemaphore isConfined;
    QThreadPool::globalInstance()->start([&] {
        vell::loadDecoders();
        vell::confinement::denyPaths();
        isLoaded.release();
        isConfined.acquire();
        serve();
        _exit(0);
    });
    isLoaded.acquire();
    vell::confinement::denyPaths();
    vell::confinement::denyCalls();
    isConfined.release();
    QThreadPool::globalInstance()->waitForDone();
}
