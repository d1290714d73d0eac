// SPDX-License-Identifier: MIT
#include "library/session_reader.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QHash>
#include <algorithm>
#include <exception>
#include <optional>
#include <utility>

#include "foundation/guarded.h"
#include "foundation/plain_reason.h"
#include "foundation/print.h"
#include "library/file_reading.h"
#include "library/parallel_files.h"
#include "library/stored_attachments.h"

namespace vell {
namespace {

// What is shown first is a few screens, or what can be read in so many milliseconds.
constexpr std::size_t firstEvents = 400;
constexpr int longestFirst = 100;
// Further results cost the window some time each.
constexpr qint64 resultInterval = 700;  // milliseconds

struct SessionReading {
    QByteArray path;
    std::shared_ptr<const TesselChatLog> log;  ///< null when the file can't be read
    QString reason;
    qsizetype size = 0;
};

/// Events are numbered as the library's index has them, whatever zone they are shown in.
SessionReading readSession(FoundFile file, const foundation::Calendar& calendar) {
    const foundation::SilentThread silent;
    SessionReading reading{file.path, {}, {}, 0};
    try {
        const QByteArray bytes = readBytes(file);
        reading.size = bytes.size();
        const foundation::Data data(bytes);
        const auto state = std::make_shared<const foundation::FileState>(
            foundation::FileState{file.path, file.size, file.modified, file.inode});
        reading.log = std::make_shared<const TesselChatLog>(
            withStoredAttachments(logOf(file, data, calendar), data, state));
    } catch (const std::exception& error) {
        reading.reason = foundation::plainReason(error);
    }
    return reading;
}

/// The indexes from `first` outwards.
std::vector<std::size_t> outwards(std::size_t count, std::size_t first) {
    std::vector<std::size_t> order;
    for (std::size_t distance = 0; order.size() < count; ++distance) {
        if (distance <= first) order.push_back(first - distance);
        if (distance > 0 && first + distance < count) order.push_back(first + distance);
    }
    return order;
}

class Reading {
  public:
    using Stop = std::shared_ptr<std::atomic<bool>>;

    Reading(std::vector<QByteArray> paths, foundation::Calendar calendar, SessionReader::Take take,
            Stop stop)
        : paths_(std::move(paths)),
          calendar_(std::move(calendar)),
          take_(std::move(take)),
          stop_(std::move(stop)) {}

    void run(std::size_t first) {
        const std::vector<std::size_t> order = outwards(paths_.size(), first);
        const QDeadlineTimer isLate(longestFirst);
        std::size_t next = 0;
        std::size_t events = 0;
        const auto calendar = foundation::Calendar::current();
        while (next < order.size() && events < firstEvents && !isLate.hasExpired() && !*stop_) {
            const std::size_t index = order[next++];
            add(index, readSession({paths_[index]}, calendar));
            if (!sessions_.empty()) events += sessions_.back().log->events().size();
        }
        handOver();
        if (next == order.size() || *stop_) return;

        std::vector<FoundFile> files;
        QHash<QByteArray, std::size_t> indexes;
        for (; next < order.size(); ++next) {
            files.push_back({paths_[order[next]]});
            indexes.insert(paths_[order[next]], order[next]);
        }
        ParallelFiles<SessionReading> readings(
            std::move(files),
            [] {
                return [calendar = foundation::Calendar::current()](const FoundFile& file) {
                    return readSession(file, calendar);
                };
            },
            [](const SessionReading& reading) { return static_cast<std::size_t>(reading.size); });
        QElapsedTimer sinceResult;
        sinceResult.start();
        qsizetype handedOver = done_;
        while (auto reading = readings.next(*stop_)) {
            add(indexes.value(reading->path), std::move(*reading));
            if (done_ < 2 * handedOver || !sinceResult.hasExpired(resultInterval)) continue;
            if (done_ == std::ssize(paths_)) break;
            handOver();
            handedOver = done_;
            sinceResult.restart();
        }
        if (!*stop_) handOver();
    }

  private:
    const std::vector<QByteArray> paths_;
    const foundation::Calendar calendar_;
    const SessionReader::Take take_;
    const Stop stop_;
    std::vector<SessionLog> sessions_;
    std::vector<SessionReader::Failure> failures_;
    qsizetype fileSize_ = 0;
    qsizetype done_ = 0;

    void add(std::size_t index, SessionReading reading) {
        ++done_;
        if (!reading.log) {
            failures_.push_back({reading.path, reading.reason});
            return;
        }
        fileSize_ += reading.size;
        sessions_.push_back(
            {static_cast<std::uint32_t>(index), std::move(reading.path), std::move(reading.log)});
    }

    void handOver() {
        take_({mergeChats(sessions_, calendar_), fileSize_, done_, std::ssize(paths_), failures_});
    }
};

}  // namespace

SessionReader::SessionReader(std::vector<QByteArray> paths, std::size_t first,
                             foundation::Calendar calendar, Take take) {
    const auto all = std::ssize(paths);
    foundation::runDetached(
        [stop = stop_, paths = std::move(paths), first, calendar = std::move(calendar),
         take]() mutable {
            Reading(std::move(paths), std::move(calendar), std::move(take), stop).run(first);
        },
        [take, all] {  // out of memory
            take({mergeChats({}, foundation::Calendar(QTimeZone::utc())), 0, all, all, {}});
        });
}

SessionReader::~SessionReader() {
    *stop_ = true;
}

}  // namespace vell
