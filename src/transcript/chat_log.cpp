// SPDX-License-Identifier: MIT
#include "transcript/chat_log.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <type_traits>
#include <utility>

using namespace Qt::StringLiterals;

namespace vell {
namespace {

/// The end of an event's description: its kind and what distinguishes it from its neighbours.
struct Describe {
    QString operator()(const TesselChatLog::PlainText& v) const { return u" \""_s + v.text + u'"'; }
    QString operator()(const TesselChatLog::Image& v) const {
        const QString size = QString::number(v.data().size());
        return u" image "_s + v.type() + u' ' + size + u" bytes"_s +
               (v.path() ? u" path="_s + *v.path() : QString());
    }
    QString operator()(const TesselChatLog::File& v) const {
        return u" file "_s + v.wrapper->description();
    }
    QString operator()(const TesselChatLog::Link& v) const {
        return u" link "_s + v.url->absoluteString() + u" \""_s + v.title + u'"';
    }
    QString operator()(const TesselChatLog::Session& v) const { return u" session "_s + v.name(); }
    QString operator()(const TesselChatLog::NewDay&) const { return u" new-day"_s; }
    QString operator()(const TesselChatLog::NewMinute&) const { return u" new-minute"_s; }
    QString operator()(const TesselChatLog::User&) const { return u" user"_s; }
};

/// Payloads without fields differ in their kind alone.
struct Hash {
    size_t seed;
    template <class T>
    size_t operator()(const T& v) const {
        if constexpr (std::is_empty_v<T>)
            return seed;
        else
            return qHash(v, seed);
    }
};

}  // namespace

TesselChatLog::Image::Image(foundation::Picture image, foundation::StoredData data, QString type,
                            std::optional<QString> path)
    : fields_(std::make_shared<const Fields>(
          Fields{std::move(image), std::move(data), std::move(type), std::move(path)})) {}

TesselChatLog::TesselChatLog(TesselServiceID serviceID, TesselUserID ownUserID,
                             QSet<TesselUserID> otherUserIDs, std::vector<Event> events,
                             std::vector<bool> continuations, QSet<TesselUserID> furtherOwnUserIDs)
    : serviceID_(std::move(serviceID)),
      ownUserID_(std::move(ownUserID)),
      otherUserIDs_(std::move(otherUserIDs)),
      furtherOwnUserIDs_(std::move(furtherOwnUserIDs)),
      events_(std::move(events)),
      continuations_(std::move(continuations)) {}

QString TesselChatLog::Session::name() const {
    const QFileInfo file(QFile::decodeName(path));
    const QString base = file.completeBaseName();
    return base.isEmpty() ? file.fileName() : base;
}

QString TesselChatLog::Event::description() const {
    QString result = u"<Event["_s + QString::number(sequence) + u"]: ts="_s +
                     timestamp.iso8601().value_or(timestamp.description());
    if (sender) result += u" by="_s + sender->description();
    return result + std::visit(Describe(), value) + u'>';
}

size_t TesselChatLog::Event::hash(size_t seed) const {
    seed = qHashMulti(seed, sequence, timestamp, value.index());
    if (sender) seed = qHash(*sender, seed);
    return std::visit(Hash{seed}, value);
}

size_t TesselChatLog::hash(size_t seed) const {
    seed = qHashMulti(seed, serviceID_, ownUserID_);
    seed = qHashRangeCommutative(otherUserIDs_.begin(), otherUserIDs_.end(), seed);
    return qHashRange(events_.begin(), events_.end(), seed);
}

}  // namespace vell
