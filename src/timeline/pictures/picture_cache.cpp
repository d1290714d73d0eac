// SPDX-License-Identifier: MIT
#include "timeline/pictures/picture_cache.h"

#include <algorithm>
#include <utility>

#include "foundation/picture_details.h"
#include "toolkit/callback_guard.h"
#include "toolkit/picture_decoder.h"
#include "transcript/chat_log.h"

namespace vell {
namespace {

constexpr int decoders = 2;
// Requests that have scrolled away long ago are dropped; painting the picture requests it again.
constexpr size_t mostRequests = 64;
// How long the program waits for a busy decoder when it ends, in milliseconds.
constexpr int exitTimeout = 2000;

}  // namespace

PictureCache::PictureCache(qsizetype maxBytes, QObject* parent)
    : QObject(parent),
      images_(maxBytes),
      threads_(std::make_unique<QThreadPool>()),
      callbacks_(std::make_shared<CallbackGuard>(this)) {
    threads_->setMaxThreadCount(decoders);
}

PictureCache::~PictureCache() {
    callbacks_->close();
    threads_->clear();
    // The threads own all they touch: one that doesn't end is left to itself.
    if (!threads_->waitForDone(exitTimeout)) static_cast<void>(threads_.release());
}

QSize PictureCache::size(const foundation::Picture& picture) {
    if (!picture.pixelSize) return {};
    const char* bytes = picture.data.identity();
    if (const auto known = sizes_.constFind(bytes); known != sizes_.cend()) return *known;
    const QSize stored = *picture.pixelSize;
    const QSize turned = foundation::isTurned(picture) ? stored.transposed() : stored;
    const QSize size = (turned / foundation::pixelsPerPoint(picture)).expandedTo(QSize(1, 1));
    sizes_.insert(bytes, size);
    return size;
}

const QImage* PictureCache::image(const foundation::Picture& picture, QSize pixels) {
    const Key key{picture.data.identity(), pixels};
    if (const QImage* known = images_.object(key)) return known;
    if (problems_.contains(key.bytes)) return nullptr;
    if (!pending_.contains(key)) {
        pending_.insert(key);
        requests_.push_back({key, picture});
        if (requests_.size() > mostRequests) {
            pending_.remove(requests_.front().key);
            requests_.erase(requests_.begin());
        }
        decodeNext();
    }
    const auto other = latest_.constFind(key.bytes);
    return other == latest_.cend() ? nullptr : images_.object({key.bytes, *other});
}

bool PictureCache::isAnimated(const foundation::Picture& picture) {
    const char* bytes = picture.data.identity();
    const auto known = animated_.constFind(bytes);
    if (known != animated_.cend()) return *known;
    return *animated_.insert(bytes, foundation::isAnimated(picture));
}

QString PictureCache::problem(const foundation::Picture& picture) const {
    return problems_.value(picture.data.identity());
}

void PictureCache::forget(const TesselChatLog& chatlog) {
    QSet<const char*> gone;
    for (const TesselChatLog::Event& event : chatlog.events()) {
        if (const auto* image = std::get_if<TesselChatLog::Image>(&event.value)) {
            gone.insert(image->image().data.identity());
        }
    }
    if (gone.isEmpty()) return;
    for (const Key& key : images_.keys()) {
        if (gone.contains(key.bytes)) images_.remove(key);
    }
    for (const char* bytes : gone) {
        latest_.remove(bytes);
        sizes_.remove(bytes);
        animated_.remove(bytes);
        problems_.remove(bytes);
    }
    std::erase_if(requests_, [&](const Request& request) {
        if (!gone.contains(request.key.bytes)) return false;
        pending_.remove(request.key);
        return true;
    });
    // Results that are still being decoded are ignored when they arrive.
    pending_.removeIf([&](const auto& key) { return gone.contains(key.bytes); });
}

bool PictureCache::isBusy() const {
    return running_ > 0 || !requests_.empty();
}

void PictureCache::decodeNext() {
    while (running_ < decoders && !requests_.empty()) {
        ++running_;
        Request request = std::move(requests_.back());
        requests_.pop_back();
        // Without a known size, the frame it is shown in has other proportions.
        const auto mode =
            size(request.picture).isEmpty() ? Qt::KeepAspectRatio : Qt::IgnoreAspectRatio;
        threads_->start([this, request = std::move(request), mode, callbacks = callbacks_] {
            DecodedPicture decoded = decodePicture(request.picture, request.key.pixels, mode);
            callbacks->post(
                [this, key = request.key, decoded = std::move(decoded)]() { take(key, decoded); });
        });
    }
}

void PictureCache::take(const Key& key, const DecodedPicture& decoded) {
    --running_;
    decodeNext();
    if (!pending_.remove(key)) return;
    if (!decoded) {
        problems_.insert(key.bytes, decoded.problem);
    } else {
        const QImage& image = decoded.picture.image;
        images_.insert(key, new QImage(image), image.sizeInBytes());
        latest_.insert(key.bytes, key.pixels);
    }
    Q_EMIT changed(key.bytes);
}

}  // namespace vell
