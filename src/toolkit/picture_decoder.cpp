// SPDX-License-Identifier: MIT
#include "toolkit/picture_decoder.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QTimer>
#include <atomic>
#include <utility>

#include "toolkit/picture_messages.h"
#include "toolkit/picture_process.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

constexpr int mostProcesses = 2;
constexpr int idleTime = 30'000;      // milliseconds
constexpr int restartDelay = 10'000;  // milliseconds; starting fails slowly

QByteArray digest(const foundation::Data& picture) {
    return QCryptographicHash::hash(picture.view(), QCryptographicHash::Sha256);
}

}  // namespace

PictureDecoder::PictureDecoder(QString program) : program_(std::move(program)) {}

PictureDecoder::~PictureDecoder() = default;

DecodedPicture PictureDecoder::decode(const foundation::Picture& picture, QSize wanted,
                                      Qt::AspectRatioMode mode) {
    if (picture.data.size() > picture_messages::mostBytes)
        return {{}, u"The picture is too large to be drawn"_s};
    const auto data = picture.data.load();
    if (!data) return {{}, u"The chat’s file has changed or is gone"_s};
    if (QString problem = knownProblem(*data); !problem.isEmpty()) return {{}, problem};
    std::optional<PictureProcess::Answer> answer;
    PictureProcess::End end = PictureProcess::End::between;
    // A process that died while idle doesn't count as a failed attempt.
    for (int i = 0; i <= mostProcesses && end == PictureProcess::End::between; ++i) {
        std::unique_ptr<PictureProcess> process = take();
        if (process) {
            answer = process->still(*data, wanted, mode);
            end = process->end();
        }
        giveBack(std::move(process));
    }
    if (answer) return {{std::move(answer->image), false}, answer->problem};
    if (end == PictureProcess::End::between)
        return {{}, u"Pictures can't be drawn: vell-picture doesn't start"_s};
    const QString problem = end == PictureProcess::End::late
                                ? u"The picture takes too long to be drawn"_s
                                : u"The picture is damaged: drawing it broke off"_s;
    giveUp(*data, problem);
    return {{}, problem};
}

bool PictureDecoder::endIdle() {
    const std::lock_guard lock(mutex_);
    if (busy_ == 0 && sinceUse_.hasExpired(idleTime)) idle_.clear();
    return busy_ == 0 && idle_.empty();
}

/// A process for exclusive use; null when none can be started.
std::unique_ptr<PictureProcess> PictureDecoder::take() {
    {
        std::unique_lock lock(mutex_);
        isFree_.wait(lock, [&] { return busy_ < mostProcesses; });
        ++busy_;
        if (!idle_.empty()) {
            auto process = std::move(idle_.back());
            idle_.pop_back();
            return process;
        }
        if (sinceFailedStart_.isValid() && !sinceFailedStart_.hasExpired(restartDelay))
            return nullptr;
    }
    auto process = PictureProcess::start(program_);
    if (!process) {
        const std::lock_guard lock(mutex_);
        sinceFailedStart_.start();
    }
    return process;
}

void PictureDecoder::giveBack(std::unique_ptr<PictureProcess> process) {
    {
        const std::lock_guard lock(mutex_);
        --busy_;
        sinceUse_.start();
        if (process && process->end() == PictureProcess::End::none)
            idle_.push_back(std::move(process));
    }
    isFree_.notify_one();
}

QString PictureDecoder::knownProblem(const foundation::Data& picture) {
    const std::lock_guard lock(mutex_);
    const auto [begin, end] = std::as_const(givenUp_).equal_range(picture.size());
    if (begin == end) return {};
    const QByteArray own = digest(picture);
    for (auto known = begin; known != end; ++known)
        if (known->digest == own) return known->problem;
    return {};
}

void PictureDecoder::giveUp(const foundation::Data& picture, const QString& problem) {
    const QByteArray own = digest(picture);
    const std::lock_guard lock(mutex_);
    givenUp_.insert(picture.size(), {own, problem});
}

namespace {

PictureDecoder& sharedDecoder() {
    static PictureDecoder decoder(PictureProcess::program());
    return decoder;
}

/// Ends the processes once they idle; a program without an event loop keeps them to its end.
void lookLater() {
    static std::atomic<bool> isPlanned = false;
    QCoreApplication* application = QCoreApplication::instance();
    if (!application || isPlanned.exchange(true)) return;
    const auto look = [] {
        isPlanned = false;
        if (!sharedDecoder().endIdle()) lookLater();
    };
    // Timers are started by the thread they belong to.
    QMetaObject::invokeMethod(
        application, [=] { QTimer::singleShot(idleTime, application, look); },
        Qt::QueuedConnection);
}

}  // namespace

DecodedPicture decodePicture(const foundation::Picture& picture, QSize wanted,
                             Qt::AspectRatioMode mode) {
    DecodedPicture decoded = sharedDecoder().decode(picture, wanted, mode);
    lookLater();
    return decoded;
}

}  // namespace vell
