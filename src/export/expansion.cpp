// SPDX-License-Identifier: MIT
#include "export/expansion.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <utility>
#include <variant>

#include "identity/contacts/contacts_store.h"
#include "identity/contacts/sender_name.h"
#include "transcript/chat_log.h"

namespace vell {
namespace {

using foundation::StoredData;

constexpr quint64 limitPerByte = 16;
constexpr quint64 baseLimit = quint64(64) << 20;

// Upper bounds, in bytes, of what formats write: marks, members and dates around a text or an
// attachment, and for each UTF-16 unit.
constexpr quint64 aroundDocument = 16'384;
constexpr quint64 aroundSender = 4096;  // with a picture
constexpr quint64 aroundText = 512;
constexpr quint64 aroundAttachment = 1024;
constexpr quint64 perUnit = 7;
/// An address is escaped in other ways than a text, and may be written twice.
constexpr quint64 perAddressUnit = 16;

quint64 units(const std::optional<QString>& text) {
    return text ? static_cast<quint64>(text->size()) : 0;
}

/// The bytes that an event takes at most, without its sender.
struct MostOfEvent {
    quint64 operator()(const TesselChatLog::PlainText& value) const {
        return aroundText + units(value.text) * perUnit;
    }
    quint64 operator()(const TesselChatLog::Image& value) const {
        return aroundAttachment + units(value.type()) * perUnit +
               units(value.path()) * perAddressUnit;
    }
    quint64 operator()(const TesselChatLog::File& value) const {
        const auto& wrapper = *value.wrapper;
        return aroundAttachment +
               std::max(units(wrapper.filename), units(wrapper.preferredFilename)) * perUnit;
    }
    quint64 operator()(const TesselChatLog::Link& value) const {
        return aroundText + units(value.url->absoluteString()) * perAddressUnit +
               units(value.title) * perUnit;
    }
    quint64 operator()(const TesselChatLog::Session& value) const {
        return aroundText + static_cast<quint64>(value.path.size()) * perUnit;
    }
    template <class Marker>
    quint64 operator()(const Marker&) const {
        return aroundText;
    }
};

quint64 mostOfUser(const TesselUserID& user, const ContactsStore& contacts) {
    return (units(user.serviceID.rawValue) + units(user.userID) +
            units(senderName(user, contacts))) *
           perUnit;
}

const StoredData* attachedData(const TesselChatLog::Event& event) {
    if (const auto* image = std::get_if<TesselChatLog::Image>(&event.value)) return &image->data();
    const auto* file = std::get_if<TesselChatLog::File>(&event.value);
    return file && file->wrapper->contents ? &*file->wrapper->contents : nullptr;
}

/// Ends a document that has reached the limit.
struct LimitReached {};

}  // namespace

quint64 exportLimit(qsizetype transcriptSize) {
    return static_cast<quint64>(transcriptSize) * limitPerByte + baseLimit;
}

ExpansionBound::ExpansionBound(const TesselChatLog& log, const ExpansionExtras& extras)
    : withoutUsers_(aroundDocument + extras.perEvent * log.events().size()) {
    users_.emplace_back(log.ownUserID(), 1);
    for (const auto* users : {&log.furtherOwnUserIDs(), &log.otherUserIDs()}) {
        for (const TesselUserID& user : *users) {
            withoutUsers_ += aroundText;
            users_.emplace_back(user, 1);
        }
    }
    std::unordered_map<const TesselUserID*, size_t> places;
    for (const TesselChatLog::Event& event : log.events()) {
        withoutUsers_ += std::visit(MostOfEvent(), event.value);
        if (const auto* image = std::get_if<TesselChatLog::Image>(&event.value);
            image && extras.hasPictures) {
            withoutUsers_ += static_cast<quint64>(image->data().size()) * 4 / 3;
        }
        if (!event.sender) continue;
        const auto [place, isNew] = places.try_emplace(event.sender.operator->(), users_.size());
        if (isNew) {
            users_.emplace_back(event.sender, 0);
            withoutUsers_ += aroundSender;
        }
        ++users_[place->second].second;
    }
}

quint64 ExpansionBound::bytes(const ContactsStore& contacts) const {
    quint64 bytes = withoutUsers_;
    for (const auto& [user, times] : users_)
        bytes += mostOfUser(*user, contacts) * times;
    return bytes;
}

bool expandsBeyond(quint64 limit, const ExpansionBound& bound, const ContactsStore& contacts,
                   const std::function<void(const ByteSink&)>& write) {
    if (bound.bytes(contacts) <= limit) return false;
    quint64 left = limit;
    try {
        write([&left](QByteArrayView bytes) {
            const auto size = static_cast<quint64>(bytes.size());
            if (size > left) throw LimitReached();
            left -= size;
        });
    } catch (const LimitReached&) {
        return true;
    }
    return false;
}

bool attachmentsExceed(quint64 limit, const TesselChatLog& log) {
    quint64 sum = 0;
    for (const TesselChatLog::Event& event : log.events()) {
        if (const StoredData* data = attachedData(event)) sum += static_cast<quint64>(data->size());
    }
    if (sum <= limit) return false;
    std::set<std::pair<const char*, qsizetype>> slices;
    sum = 0;
    for (const TesselChatLog::Event& event : log.events()) {
        const StoredData* data = attachedData(event);
        if (!data || !slices.emplace(data->identity(), data->size()).second) continue;
        sum += static_cast<quint64>(data->size());
        if (sum > limit) return true;
    }
    return false;
}

}  // namespace vell
