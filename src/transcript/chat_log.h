#pragma once
// SPDX-License-Identifier: MIT
//
// TesselChatLog: a transcript as everything else sees it, a flat list of events numbered from 1.
// An immutable value; copies share their events' content. TesselChatLog::fromData reads one.

#include <QByteArray>
#include <QString>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

#include "foundation/calendar.h"
#include "foundation/date.h"
#include "foundation/file_wrapper.h"
#include "foundation/picture.h"
#include "foundation/url.h"
#include "transcript/user_id.h"

namespace foundation {
class ClassRegistry;
}

namespace vell {

class TesselLoadLog;

class TesselChatLog {
  public:
    struct PlainText {
        QString text;
        friend bool operator==(const PlainText&, const PlainText&) = default;
        friend size_t qHash(const PlainText& v, size_t seed = 0) { return ::qHash(v.text, seed); }
    };

    /// An inline picture; its fields are shared between copies.
    class Image {
      public:
        Image(foundation::Picture image, foundation::StoredData data, QString type,
              std::optional<QString> path);
        [[nodiscard]] const foundation::Picture& image() const { return fields_->image; }
        /// The bytes exactly as archived.
        [[nodiscard]] const foundation::StoredData& data() const { return fields_->data; }
        /// The uniform type identifier.
        [[nodiscard]] const QString& type() const { return fields_->type; }
        [[nodiscard]] const std::optional<QString>& path() const { return fields_->path; }
        friend bool operator==(const Image& a, const Image& b) {
            return a.fields_ == b.fields_ || *a.fields_ == *b.fields_;
        }
        friend size_t qHash(const Image& v, size_t seed = 0) {
            return qHashMulti(seed, v.data(), v.type(), v.path().value_or(QString()));
        }

      private:
        struct Fields {
            foundation::Picture image;
            foundation::StoredData data;
            QString type;
            std::optional<QString> path;
            friend bool operator==(const Fields&, const Fields&) = default;
        };
        std::shared_ptr<const Fields> fields_;
    };

    struct File {
        std::shared_ptr<const foundation::FileWrapper> wrapper;  ///< never null
        friend bool operator==(const File& a, const File& b) {
            return a.wrapper == b.wrapper || *a.wrapper == *b.wrapper;
        }
        friend size_t qHash(const File& v, size_t seed = 0) { return qHash(*v.wrapper, seed); }
    };

    struct Link {
        std::shared_ptr<const foundation::URL> url;  ///< never null
        QString title;
        friend bool operator==(const Link& a, const Link& b) {
            return a.title == b.title && (a.url == b.url || *a.url == *b.url);
        }
        friend size_t qHash(const Link& v, size_t seed = 0) {
            return qHashMulti(seed, v.url->absoluteString(), v.title);
        }
    };

    /// The following messages are from another file. Only in logs that were merged of several.
    struct Session {
        QByteArray path;
        /// The file's name for people.
        [[nodiscard]] QString name() const;
        friend bool operator==(const Session&, const Session&) = default;
        friend size_t qHash(const Session& v, size_t seed = 0) { return ::qHash(v.path, seed); }
    };

    /// The following events are on a new calendar day.
    struct NewDay {
        friend bool operator==(const NewDay&, const NewDay&) = default;
    };
    /// The same day, but a new minute.
    struct NewMinute {
        friend bool operator==(const NewMinute&, const NewMinute&) = default;
    };
    /// The run of events by the event's sender has ended.
    struct User {
        friend bool operator==(const User&, const User&) = default;
    };

    struct Event {
        using Value = std::variant<PlainText, Image, File, Link, NewDay, NewMinute, User, Session>;

        qint64 sequence = 0;  ///< 1, 2, 3 … without gaps; the event's identity
        foundation::Date timestamp;
        SharedUserID sender;
        Value value;

        [[nodiscard]] bool isSystemMessage() const { return !sender; }
        /// Whether this is a message or a piece of one: neither a separator nor the end of a run.
        [[nodiscard]] bool isMessage() const {
            return !std::holds_alternative<NewDay>(value) &&
                   !std::holds_alternative<NewMinute>(value) &&
                   !std::holds_alternative<User>(value) && !std::holds_alternative<Session>(value);
        }
        /// For diagnostics: "<Event[3]: ts=… by=<@alice (AIM)> …".
        [[nodiscard]] QString description() const;

        friend bool operator==(const Event&, const Event&) = default;
        friend size_t qHash(const Event& event, size_t seed = 0) { return event.hash(seed); }
        [[nodiscard]] size_t hash(size_t seed = 0) const;
    };

    /// `continuations` may end early; every event after it begins a new message.
    TesselChatLog(TesselServiceID serviceID, TesselUserID ownUserID,
                  QSet<TesselUserID> otherUserIDs, std::vector<Event> events,
                  std::vector<bool> continuations = {}, QSet<TesselUserID> furtherOwnUserIDs = {});
    /// A log of the same people with other events.
    [[nodiscard]] TesselChatLog withEvents(std::vector<Event> events,
                                           std::vector<bool> continuations) const {
        return {serviceID_,
                ownUserID_,
                otherUserIDs_,
                std::move(events),
                std::move(continuations),
                furtherOwnUserIDs_};
    }

    /// Reads a transcript's bytes, keyed or non-keyed. Throws the keyed reader's error when neither
    /// form can be read. `fileDate` dates the events of an empty transcript. The steps are written
    /// to the log, if there is one; files without a common log can be read side by side.
    static TesselChatLog fromData(const foundation::Data& data,
                                  std::optional<foundation::Date> fileDate,
                                  const foundation::Calendar& calendar,
                                  TesselLoadLog* log = nullptr);
    static TesselChatLog fromData(const foundation::Data& data,
                                  std::optional<foundation::Date> fileDate,
                                  const foundation::Calendar& calendar, TesselLoadLog* log,
                                  const foundation::ClassRegistry& registry);
    /// Reads the file at the path whole, dated by its modification time; also throws
    /// foundation::Error when it can't be read.
    static TesselChatLog fromFile(const QString& path, const foundation::Calendar& calendar,
                                  TesselLoadLog* log = nullptr);

    [[nodiscard]] const TesselServiceID& serviceID() const { return serviceID_; }
    /// The user who owned the transcript; "?" on the transcript's service when unknown.
    [[nodiscard]] const TesselUserID& ownUserID() const { return ownUserID_; }
    /// Under which other names the owner wrote; only in logs that were merged of several.
    [[nodiscard]] const QSet<TesselUserID>& furtherOwnUserIDs() const { return furtherOwnUserIDs_; }
    [[nodiscard]] bool isOwn(const SharedUserID& user) const {
        return user && (*user == ownUserID_ ||
                        (!furtherOwnUserIDs_.isEmpty() && furtherOwnUserIDs_.contains(*user)));
    }
    [[nodiscard]] const QSet<TesselUserID>& otherUserIDs() const { return otherUserIDs_; }
    [[nodiscard]] const std::vector<Event>& events() const { return events_; }
    /// The event of a row; rows are counted from 0.
    [[nodiscard]] const Event& event(qsizetype row) const {
        return events_[static_cast<std::size_t>(row)];
    }
    /// Whether the event at the index is a further piece of the message that the one before it
    /// belongs to: messages of one sender at one instant couldn't be distinguished otherwise.
    [[nodiscard]] bool continuesMessage(std::size_t index) const {
        return index < continuations_.size() && continuations_[index];
    }

    /// The numbers of the archived objects that the messages with events were, in the same order;
    /// nothing for what is no archive's. Empty in logs that were merged or changed.
    [[nodiscard]] const std::vector<std::optional<quint32>>& archivedMessages() const {
        return archivedMessages_;
    }
    void setArchivedMessages(std::vector<std::optional<quint32>> numbers) {
        archivedMessages_ = std::move(numbers);
    }

    /// The same messages with their days and minutes marked anew, as a clock elsewhere showed them.
    [[nodiscard]] TesselChatLog markedIn(const foundation::Calendar& calendar) const;

    /// Compares all of the above except where messages end and what they were.
    friend bool operator==(const TesselChatLog& a, const TesselChatLog& b) {
        return a.serviceID_ == b.serviceID_ && a.ownUserID_ == b.ownUserID_ &&
               a.otherUserIDs_ == b.otherUserIDs_ && a.furtherOwnUserIDs_ == b.furtherOwnUserIDs_ &&
               a.events_ == b.events_;
    }
    friend size_t qHash(const TesselChatLog& log, size_t seed = 0) { return log.hash(seed); }
    [[nodiscard]] size_t hash(size_t seed = 0) const;

  private:
    TesselServiceID serviceID_;
    TesselUserID ownUserID_;
    QSet<TesselUserID> otherUserIDs_;
    QSet<TesselUserID> furtherOwnUserIDs_;
    std::vector<Event> events_;
    std::vector<bool> continuations_;
    std::vector<std::optional<quint32>> archivedMessages_;
};

}  // namespace vell
