// SPDX-License-Identifier: MIT
//
// From a file's bytes to a chat log: reads the timeline, then walks its messages once and writes
// the events.
#include <QDateTime>
#include <QFile>
#include <QStringList>
#include <unordered_map>
#include <utility>

#include "foundation/local_path.h"
#include "foundation/print.h"
#include "transcript/archived_classes.h"
#include "transcript/chat_log.h"
#include "transcript/chat_timeline.h"
#include "transcript/run.h"

namespace vell {

using namespace Qt::StringLiterals;
using foundation::AttributedString;
using foundation::Date;

namespace {

using Event = TesselChatLog::Event;

/// "The file could not be read", in "NSCocoaErrorDomain".
constexpr qint64 kFileReadError = 256;

/// The texts of senderless messages, where a placeholder stands for somebody's name. A text that
/// several messages share is replaced once.
class SystemTexts {
  public:
    QString replaced(const QString& text) {
        if (text.isDetached()) return QString(text).replace(u"%@"_s, u"User"_s);
        auto [at, isNew] = known_.try_emplace(text.constData());
        if (isNew) at->second = {text, QString(text).replace(u"%@"_s, u"User"_s)};
        return at->second.replaced;
    }

  private:
    struct Text {
        QString original;  // keeps the address of its characters from being used again
        QString replaced;
    };
    std::unordered_map<const QChar*, Text> known_;
};

/// The runs of attributed strings; of one that several messages share they are extracted once.
class RunCache {
  public:
    const std::vector<Run>& runsOf(const InstantMessage& message, bool isShared) {
        const auto& string = message.message;
        if (!isShared && string.use_count() == 1) {
            current_ = extractRuns(*string);
            return current_;
        }
        auto [at, isNew] = known_.try_emplace(string);
        if (isNew) at->second = extractRuns(*string);
        return at->second;
    }

  private:
    std::vector<Run> current_;
    std::unordered_map<std::shared_ptr<const AttributedString>, std::vector<Run>> known_;
};

class Conversion {
  public:
    Conversion(iChatTimeline timeline, std::optional<Date> fileDate,
               const foundation::Calendar& calendar)
        : timeline_(std::move(timeline)),
          fileDate_(fileDate),
          calendar_(calendar),
          serviceID_{timeline_.protocolName} {}

    TesselChatLog run();

  private:
    iChatTimeline timeline_;
    const std::optional<Date> fileDate_;
    const foundation::Calendar calendar_;
    const TesselServiceID serviceID_;
    QSet<TesselUserID> participants_;
    QSet<TesselUserID> seen_;
    std::vector<Event> events_;
    RunCache runs_;
    SystemTexts systemTexts_;

    // The state between two messages.
    Date date_ = Date::distantPast;
    std::shared_ptr<const Presentity> presentity_;  // of the sender
    std::optional<TesselUserID> sender_;

    [[nodiscard]] TesselUserID userID(const Presentity& presentity) const;
    void append(Date timestamp, const std::optional<TesselUserID>& sender, Event::Value value);
    void convert(const std::shared_ptr<const InstantMessage>& message);
    void takeSender(const std::shared_ptr<const Presentity>& presentity, Date date);
    void appendTimeMarker(Date date);
    void appendContent(const InstantMessage& message, bool isShared);
    void appendRun(const Run& run);
    void appendFallback(const InstantMessage& message);
    void appendEmptyTranscript();
    TesselChatLog finish();
};

TesselChatLog Conversion::run() {
    for (const auto& presentity : timeline_.participants) {
        if (!presentity->accountName.isEmpty()) participants_.insert(userID(*presentity));
    }
    if (timeline_.messages.empty()) {
        appendEmptyTranscript();
        return finish();
    }
    // An upper bound, so that the events are never moved; pages never written cost nothing.
    events_.reserve(timeline_.logSize.events);
    for (auto& message : timeline_.messages) {
        convert(message);
        message.reset();  // its memory serves the events that follow
    }
    return finish();
}

TesselUserID Conversion::userID(const Presentity& presentity) const {
    const auto& service = presentity.serviceName;
    return {service ? TesselServiceID{*service} : serviceID_, presentity.accountName};
}

void Conversion::append(Date timestamp, const std::optional<TesselUserID>& sender,
                        Event::Value value) {
    events_.push_back(
        {static_cast<qint64>(events_.size()) + 1, timestamp, sender, std::move(value)});
}

void Conversion::convert(const std::shared_ptr<const InstantMessage>& message) {
    const Date date = message->date.value_or(date_);
    takeSender(message->sender, date);
    appendTimeMarker(date);
    date_ = date;
    appendContent(*message, message.use_count() > 1);
}

/// Makes this the current sender, and ends the run of the one before when it is somebody else.
void Conversion::takeSender(const std::shared_ptr<const Presentity>& presentity, Date date) {
    if (presentity == presentity_) return;
    presentity_ = presentity;
    std::optional<TesselUserID> sender;
    if (presentity) sender = *seen_.insert(userID(*presentity));  // the set's copy is shared by all
    if (sender_ && sender != sender_) append(date, sender_, TesselChatLog::User());
    sender_ = std::move(sender);
}

void Conversion::appendTimeMarker(Date date) {
    if (!calendar_.isSameDay(date, date_))
        append(date, std::nullopt, TesselChatLog::NewDay());
    else if (!calendar_.isSameMinute(date, date_))
        append(date, std::nullopt, TesselChatLog::NewMinute());
}

void Conversion::appendContent(const InstantMessage& message, bool isShared) {
    if (message.message && !message.message->runs().empty()) {
        for (const Run& run : runs_.runsOf(message, isShared))
            appendRun(run);
    } else {
        appendFallback(message);
    }
}

void Conversion::appendRun(const Run& run) {
    struct Visitor {
        Conversion& self;
        Event::Value operator()(const PlainRun& plain) const {
            if (self.sender_) return TesselChatLog::PlainText{plain.text};
            return TesselChatLog::PlainText{self.systemTexts_.replaced(plain.text)};
        }
        Event::Value operator()(const TesselChatLog::Link& link) const { return link; }
        Event::Value operator()(const TesselChatLog::Image& image) const { return image; }
        Event::Value operator()(const FileRun& file) const {
            return TesselChatLog::File{file.wrapper};
        }
    };
    append(date_, sender_, std::visit(Visitor{*this}, run));
}

/// For a message without formatted text.
void Conversion::appendFallback(const InstantMessage& message) {
    if (message.originalMessage) {
        appendRun(PlainRun{*message.originalMessage});
        return;
    }
    foundation::print(u"WARN: Found no content in message: "_s + message.description());
    if (sender_) append(date_, sender_, TesselChatLog::PlainText());
}

void Conversion::appendEmptyTranscript() {
    const Date date = fileDate_ ? *fileDate_ : Date::now();
    if (fileDate_) append(date, std::nullopt, TesselChatLog::NewDay());
    append(date, std::nullopt, TesselChatLog::PlainText{u"The chatlog is empty."_s});
    if (participants_.isEmpty()) return;
    QStringList names;
    for (const TesselUserID& user : sorted(participants_))
        names.append(user.userID);
    append(date, std::nullopt, TesselChatLog::PlainText{u"Participants: "_s + names.join(u", "_s)});
}

/// The owner is the one who speaks without being listed among the participants.
TesselChatLog Conversion::finish() {
    QSet<TesselUserID> others = participants_;
    others.unite(seen_);
    const QSet<TesselUserID> candidates = seen_ - participants_;
    TesselUserID own{serviceID_, u"?"_s};
    if (candidates.size() == 1) {
        own = *candidates.begin();
        others.remove(own);
    }
    return {serviceID_, std::move(own), std::move(others), std::move(events_)};
}

}  // namespace

TesselChatLog TesselChatLog::fromData(const foundation::Data& data, std::optional<Date> fileDate,
                                      const foundation::Calendar& calendar) {
    return fromData(data, fileDate, calendar, sharedClassRegistry());
}

TesselChatLog TesselChatLog::fromData(const foundation::Data& data, std::optional<Date> fileDate,
                                      const foundation::Calendar& calendar,
                                      const foundation::ClassRegistry& registry) {
    const auto log = tesselLoadLog();
    return Conversion(iChatTimeline::fromAnyData(data, registry, log.get()), fileDate, calendar)
        .run();
}

TesselChatLog TesselChatLog::fromFile(const QString& path, const foundation::Calendar& calendar) {
    QFile file;
    if (!foundation::openForReading(file, path))
        throw foundation::Error(u"NSCocoaErrorDomain"_s, kFileReadError, file.errorString());
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw foundation::Error(u"NSCocoaErrorDomain"_s, kFileReadError, file.errorString());
    std::optional<Date> fileDate;
    const QDateTime modified = file.fileTime(QFileDevice::FileModificationTime);
    if (modified.isValid())
        fileDate = Date::fromMillisecondsSinceEpoch(modified.toMSecsSinceEpoch());
    return fromData(foundation::Data(bytes), fileDate, calendar);
}

}  // namespace vell
