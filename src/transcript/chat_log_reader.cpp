// SPDX-License-Identifier: MIT
//
// From a file's bytes to a chat log: reads the timeline, then converts its messages to events in
// one pass.
#include <QDateTime>
#include <QFile>
#include <QStringList>
#include <array>
#include <exception>
#include <new>
#include <unordered_map>
#include <utility>

#include "foundation/derived_texts.h"
#include "foundation/local_path.h"
#include "foundation/object_memory.h"
#include "foundation/print.h"
#include "foundation/whole_file.h"
#include "transcript/archived_classes.h"
#include "transcript/chat_log.h"
#include "transcript/chat_timeline.h"
#include "transcript/conversion.h"
#include "transcript/run.h"
#include "transcript/user_id_table.h"

namespace vell {

using namespace Qt::StringLiterals;
using foundation::AttributedString;
using foundation::Date;

namespace {

using Event = TesselChatLog::Event;

/// The text of a message without a sender, whose placeholder stands for a name. One that several
/// messages share is replaced once.
QString systemText(const QString& text, foundation::DerivedTexts& known) {
    const auto replaced = [&] { return QString(text).replace(u"%@"_s, u"User"_s); };
    return text.isDetached() ? replaced() : known.derived(text, nullptr, replaced);
}

/// The runs of attributed strings that several messages share, each extracted once.
class SharedRuns {
  public:
    const Extraction& runsOf(const std::shared_ptr<const AttributedString>& string) {
        auto [at, isNew] = known_.try_emplace(string);
        if (isNew) at->second = extractRuns(*string);
        return at->second;
    }

  private:
    std::unordered_map<std::shared_ptr<const AttributedString>, Extraction> known_;
};

void printErrors(const Extraction& extraction) {
    for (const QString& line : extraction.errors)
        foundation::print(line);
}

/// The ids of the latest senders: few people write most of a transcript.
class RecentSenders {
  public:
    /// None when the person isn't among them.
    [[nodiscard]] SharedUserID find(const Presentity* person) const {
        for (const Sender& sender : senders_)
            if (sender.person.get() == person) return sender.id;
        return {};
    }
    const SharedUserID& add(std::shared_ptr<const Presentity> person, SharedUserID id) {
        Sender& sender = senders_[next_++ % senders_.size()];
        sender = {std::move(person), std::move(id)};
        return sender.id;
    }

  private:
    struct Sender {
        std::shared_ptr<const Presentity> person;  // keeps its address in use
        SharedUserID id;
    };
    std::array<Sender, 8> senders_;
    std::size_t next_ = 0;
};

QSet<TesselUserID> usersOf(const QSet<SharedUserID>& shared) {
    QSet<TesselUserID> result;
    for (const SharedUserID& user : shared)
        result.insert(*user);
    return result;
}

/// Reads the keyed form, failing that the non-keyed one; throws what the keyed reader threw when
/// neither can be read. Running out of memory says nothing about the form.
iChatTimeline readTimeline(const foundation::Data& data, const foundation::ClassRegistry& registry,
                           TesselLoadLog* log) {
    if (log) log->logPreambleOfData(data.view());
    std::exception_ptr first;
    try {
        return iChatTimeline::fromData(data, log);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        first = std::current_exception();
    }
    if (log) log->write(u"\n---\n## Keyed loading failed, trying non-keyed\n\n");
    try {
        return iChatTimeline::fromNonKeyedData(data, registry, log);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        if (log) log->writeln(u"Throwing original error");
    }
    std::rethrow_exception(first);
}

class Conversion {
  public:
    Conversion(iChatTimeline timeline, qsizetype fileSize, std::optional<Date> fileDate,
               const foundation::Calendar& calendar)
        : timeline_(std::move(timeline)),
          fileDate_(fileDate),
          calendar_(calendar),
          serviceID_{timeline_.protocolName},
          userIDs_(fileSize) {}

    TesselChatLog run();

  private:
    iChatTimeline timeline_;
    const std::optional<Date> fileDate_;
    const foundation::Calendar calendar_;
    const TesselServiceID serviceID_;
    UserIDTable userIDs_;
    QSet<SharedUserID> participants_;
    QSet<SharedUserID> seen_;
    std::vector<Event> events_;
    std::vector<bool> continuations_;
    std::vector<std::optional<quint32>> archivedMessages_;
    SharedRuns sharedRuns_;
    Extraction extraction_;  // of the message at hand
    RecentSenders recentSenders_;
    foundation::DerivedTexts systemTexts_;

    // The state between two messages.
    Date date_ = Date::distantPast;
    std::shared_ptr<const Presentity> presentity_;  // of the sender
    SharedUserID sender_;

    [[nodiscard]] SharedUserID userID(const Presentity& presentity);
    template <class Payload>
    void append(Date timestamp, const SharedUserID& sender, Payload payload);
    void convert(const std::shared_ptr<const InstantMessage>& message);
    void takeSender(const std::shared_ptr<const Presentity>& presentity, Date date);
    void appendTimeMarker(Date date);
    void appendContent(const InstantMessage& message, bool isShared);
    void joinFrom(std::size_t first);
    void appendRun(Run&& run);
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
    foundation::useLargePages(events_.data(), events_.capacity() * sizeof(Event));
    for (auto& message : timeline_.messages) {
        convert(message);
        message.reset();  // its memory is reused for the events that follow
    }
    return finish();
}

SharedUserID Conversion::userID(const Presentity& presentity) {
    const auto& service = presentity.serviceName;
    return userIDs_.shared(
        {service ? TesselServiceID{*service} : serviceID_, presentity.accountName});
}

/// Built in place: events are most of what a conversion writes.
template <class Payload>
void Conversion::append(Date timestamp, const SharedUserID& sender, Payload payload) {
    Event& event = events_.emplace_back();
    event.sequence = static_cast<qint64>(events_.size());
    event.timestamp = timestamp;
    event.sender = sender;
    event.value.emplace<Payload>(std::move(payload));
}

void Conversion::convert(const std::shared_ptr<const InstantMessage>& message) {
    Date date = message->date.value_or(date_);
    if (date.isDistantPast()) date = Date::distantPast;
    takeSender(message->sender, date);
    appendTimeMarker(date);
    date_ = date;
    const std::size_t first = events_.size();
    appendContent(*message, message.use_count() > 1);
    if (events_.size() > first) archivedMessages_.push_back(message->archivedObject);
}

/// Makes this the current sender, and ends the run of the previous one if it is another.
void Conversion::takeSender(const std::shared_ptr<const Presentity>& presentity, Date date) {
    if (presentity == presentity_) return;
    presentity_ = presentity;
    SharedUserID sender;
    if (presentity) {
        sender = recentSenders_.find(presentity.get());
        if (!sender) sender = recentSenders_.add(presentity, *seen_.insert(userID(*presentity)));
    }
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
    const auto& string = message.message;
    if (!string || string->runs().empty()) return appendFallback(message);
    const std::size_t first = events_.size();
    if (isShared || string.use_count() > 1) {
        const Extraction& shared = sharedRuns_.runsOf(string);
        printErrors(shared);
        for (const Run& run : shared.runs)
            appendRun(Run(run));
    } else {
        extraction_.runs.clear();
        extraction_.errors.clear();
        extractRuns(*string, extraction_);
        printErrors(extraction_);
        for (Run& run : extraction_.runs)
            appendRun(std::move(run));
    }
    joinFrom(first);
}

/// Makes one message of the events from here on.
void Conversion::joinFrom(std::size_t first) {
    if (events_.size() - first < 2) return;
    continuations_.resize(first + 1, false);
    continuations_.resize(events_.size(), true);
}

void Conversion::appendRun(Run&& run) {
    struct Visitor {
        Conversion& self;
        void operator()(PlainRun&& plain) const {
            self.append(
                self.date_, self.sender_,
                TesselChatLog::PlainText{self.sender_ ? std::move(plain.text)
                                                      : systemText(plain.text, self.systemTexts_)});
        }
        void operator()(TesselChatLog::Link&& link) const {
            self.append(self.date_, self.sender_, std::move(link));
        }
        void operator()(TesselChatLog::Image&& image) const {
            self.append(self.date_, self.sender_, std::move(image));
        }
        void operator()(FileRun&& file) const {
            self.append(self.date_, self.sender_, TesselChatLog::File{std::move(file.wrapper)});
        }
    };
    std::visit(Visitor{*this}, std::move(run));
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
    for (const TesselUserID& user : sorted(usersOf(participants_)))
        names.append(user.userID);
    append(date, std::nullopt, TesselChatLog::PlainText{u"Participants: "_s + names.join(u", "_s)});
}

/// The owner is the one sender who isn't listed among the participants.
TesselChatLog Conversion::finish() {
    QSet<SharedUserID> others = participants_;
    others.unite(seen_);
    const QSet<SharedUserID> candidates = seen_ - participants_;
    TesselUserID own{serviceID_, u"?"_s};
    if (candidates.size() == 1) {
        own = **candidates.begin();
        others.remove(*candidates.begin());
    }
    TesselChatLog log(serviceID_, std::move(own), usersOf(others), std::move(events_),
                      std::move(continuations_));
    log.setArchivedMessages(std::move(archivedMessages_));
    return log;
}

}  // namespace

TesselChatLog TesselChatLog::fromData(const foundation::Data& data, std::optional<Date> fileDate,
                                      const foundation::Calendar& calendar, TesselLoadLog* log) {
    return fromData(data, fileDate, calendar, log, sharedClassRegistry());
}

TesselChatLog TesselChatLog::fromData(const foundation::Data& data, std::optional<Date> fileDate,
                                      const foundation::Calendar& calendar, TesselLoadLog* log,
                                      const foundation::ClassRegistry& registry) {
    const foundation::PrintingOfOneFile printing;
    try {
        Conversion conversion(readTimeline(data, registry, log), data.size(), fileDate, calendar);
        try {
            return conversion.run();
        } catch (const foundation::Error& error) {
            if (log) log->writeln(error.description());
            throw;
        }
    } catch (const std::bad_alloc&) {
        if (log) log->writeln(u"Out of memory.");
        throw;
    }
}

TesselChatLog convertTimeline(iChatTimeline timeline, qsizetype fileSize,
                              std::optional<Date> fileDate, const foundation::Calendar& calendar) {
    return Conversion(std::move(timeline), fileSize, fileDate, calendar).run();
}

TesselChatLog TesselChatLog::fromFile(const QString& path, const foundation::Calendar& calendar,
                                      TesselLoadLog* log) {
    QFile file;
    if (!foundation::openForReading(file, path))
        throw foundation::Error(u"NSCocoaErrorDomain"_s,
                                static_cast<qint64>(foundation::ReadErrorCode::unknown),
                                file.errorString());
    const QByteArray bytes = foundation::readWhole(file);
    std::optional<Date> fileDate;
    const QDateTime modified = file.fileTime(QFileDevice::FileModificationTime);
    if (modified.isValid())
        fileDate = Date::fromMillisecondsSinceEpoch(modified.toMSecsSinceEpoch());
    return fromData(foundation::Data(bytes), fileDate, calendar, log);
}

}  // namespace vell
