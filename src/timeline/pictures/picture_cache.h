#pragma once
// SPDX-License-Identifier: MIT
//
// PictureCache: pictures as pixels, at the size they are shown in. Threads of its own wait for the
// processes that decode them. One serves all windows. GUI thread only.
//
//     if (const QImage* image = pictures.image(picture, size)) painter.drawImage(rect, *image);

#include <QCache>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QSet>
#include <QThreadPool>
#include <memory>
#include <vector>

#include "foundation/picture.h"

namespace vell {

struct DecodedPicture;
class CallbackGuard;
class TesselChatLog;

class PictureCache final : public QObject {
    Q_OBJECT

  public:
    static constexpr qsizetype defaultBytes = qsizetype(256) * 1024 * 1024;

    explicit PictureCache(qsizetype maxBytes = defaultBytes, QObject* parent = nullptr);
    ~PictureCache() override;

    /// Width and height as drawn, in points; empty where the header doesn't say.
    [[nodiscard]] QSize size(const foundation::Picture& picture);
    /// The picture at this many pixels, or at another size while that one is being decoded; null
    /// while there is none. Valid until control returns to the event loop.
    [[nodiscard]] const QImage* image(const foundation::Picture& picture, QSize pixels);
    /// Whether it is a GIF of several frames.
    [[nodiscard]] bool isAnimated(const foundation::Picture& picture);
    /// Why the picture can't be drawn, in words; empty when it can, or wasn't tried yet.
    [[nodiscard]] QString problem(const foundation::Picture& picture) const;

    /// Whether requested pictures are still to come.
    [[nodiscard]] bool isBusy() const;

    /// Drops all pictures of a log, whose bytes are about to go.
    void forget(const TesselChatLog& chatlog);
    [[nodiscard]] qsizetype byteCount() const { return images_.totalCost(); }

  Q_SIGNALS:
    /// A picture can be drawn now, or is known not to be; `bytes` is the identity of its data.
    void changed(const char* bytes);

  private:
    struct Key {
        const char* bytes;
        QSize pixels;
        friend bool operator==(const Key&, const Key&) = default;
        friend size_t qHash(const Key& key, size_t seed = 0) {
            return qHashMulti(seed, key.bytes, key.pixels.width(), key.pixels.height());
        }
    };
    struct Request {
        Key key;
        foundation::Picture picture;
    };

    void decodeNext();
    void take(const Key& key, const DecodedPicture& decoded);

    QCache<Key, QImage> images_;  // in bytes
    QHash<const char*, QSize> latest_;
    QHash<const char*, QSize> sizes_;
    QHash<const char*, bool> animated_;
    QHash<const char*, QString> problems_;
    QSet<Key> pending_;
    std::vector<Request> requests_;  // the last one comes first: it is on the screen
    int running_ = 0;
    std::unique_ptr<QThreadPool> threads_;
    std::shared_ptr<CallbackGuard> callbacks_;
};

}  // namespace vell
