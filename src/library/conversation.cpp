// SPDX-License-Identifier: MIT
#include "library/conversation.h"

#include <QHash>
#include <stdexcept>

namespace vell {

using namespace Qt::StringLiterals;

namespace {

// Texts in UTF-16 units; messages of real transcripts stay far below.
constexpr quint64 textsOfAnyFile = quint64{32} << 20;
constexpr quint64 textsPerByte = 8;

/// Appends an event to its message.
class MessageBuilder {
  public:
    explicit MessageBuilder(LibraryMessage& message) : message_(message) {}

    void operator()(const TesselChatLog::PlainText& value) {
        message_.kinds |= ContentKinds::text;
        append(value.text);
    }
    void operator()(const TesselChatLog::Link& value) {
        message_.kinds |= ContentKinds::link;
        append(value.title);
        const QString& address = value.url->absoluteString();
        if (value.title != address) append(u" ("_s + address + u')');
    }
    void operator()(const TesselChatLog::Image& value) {
        message_.kinds |= ContentKinds::picture;
        if (value.path()) appendLine(value.path()->mid(value.path()->lastIndexOf(u'/') + 1));
    }
    void operator()(const TesselChatLog::File& value) {
        message_.kinds |= ContentKinds::file;
        const auto& name = value.wrapper->filename;
        appendLine((name ? name : value.wrapper->preferredFilename).value_or(QString()));
    }
    template <class Marker>
    void operator()(const Marker&) {}

  private:
    LibraryMessage& message_;
    bool needsLineBreak_ = false;

    void append(const QString& text) {
        if (text.isEmpty()) return;
        if (needsLineBreak_) message_.text += u'\n';
        needsLineBreak_ = false;
        if (message_.text.isEmpty())
            message_.text = text;  // shared, as long as nothing follows
        else
            message_.text += text;
    }
    void appendLine(const QString& text) {
        if (!message_.text.isEmpty() && !text.isEmpty()) needsLineBreak_ = true;
        append(text);
        needsLineBreak_ = !message_.text.isEmpty();
    }
};

foundation::Date wholeMilliseconds(foundation::Date date) {
    const auto milliseconds = date.millisecondsSinceEpoch();
    return milliseconds ? foundation::Date::fromMillisecondsSinceEpoch(*milliseconds) : date;
}

}  // namespace

Conversation conversationOf(const TesselChatLog& log, qsizetype fileSize) {
    Conversation result;
    QHash<TesselUserID, int> numbers;
    const auto numberOf = [&](const TesselUserID& user) {
        const auto at = numbers.constFind(user);
        if (at != numbers.cend()) return *at;
        result.people.push_back(user);
        return *numbers.insert(user, static_cast<int>(result.people.size()) - 1);
    };
    numberOf(log.ownUserID());
    for (const TesselUserID& other : sorted(log.otherUserIDs()))
        numberOf(other);

    quint64 left = textsOfAnyFile + textsPerByte * static_cast<quint64>(fileSize);
    const auto& events = log.events();
    SharedUserID lastSender;
    int lastNumber = -1;
    for (std::size_t i = 0; i < events.size();) {
        const TesselChatLog::Event& first = events[i];
        if (!first.isMessage()) {
            ++i;
            continue;
        }
        if (first.sender && !(first.sender == lastSender)) {
            lastSender = first.sender;
            lastNumber = numberOf(*first.sender);
        }
        LibraryMessage message{first.sequence,
                               wholeMilliseconds(first.timestamp),
                               first.sender ? lastNumber : -1,
                               0,
                               {}};
        MessageBuilder builder(message);
        do {
            std::visit(builder, events[i++].value);
        } while (log.continuesMessage(i));
        const auto size = static_cast<quint64>(message.text.size());
        if (size > left) throw std::length_error("its texts are out of all proportion to the file");
        left -= size;
        if (message.kinds != ContentKinds::text || size > 0)
            result.messages.push_back(std::move(message));
    }
    return result;
}

QString placeholderFor(quint8 kinds) {
    if (kinds & ContentKinds::picture) return u"[picture]"_s;
    if (kinds & ContentKinds::file) return u"[file]"_s;
    return {};
}

}  // namespace vell
