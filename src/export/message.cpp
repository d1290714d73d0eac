// SPDX-License-Identifier: MIT
#include "export/message.h"

#include <algorithm>
#include <variant>

namespace vell {
namespace {

using Event = TesselChatLog::Event;

struct RoleOf {
    bool isSystemMessage;

    EventRole operator()(const TesselChatLog::NewDay&) const { return EventRole::newDay; }
    EventRole operator()(const TesselChatLog::NewMinute&) const { return EventRole::newMinute; }
    EventRole operator()(const TesselChatLog::User&) const { return EventRole::senderChange; }
    // Pictures, files and links without a sender too: below anybody's heading they would lie.
    EventRole operator()(const TesselChatLog::PlainText&) const { return content(); }
    EventRole operator()(const TesselChatLog::Image&) const { return content(); }
    EventRole operator()(const TesselChatLog::File&) const { return content(); }
    EventRole operator()(const TesselChatLog::Link&) const { return content(); }

  private:
    [[nodiscard]] EventRole content() const {
        return isSystemMessage ? EventRole::systemMessage : EventRole::content;
    }
};

const TesselChatLog::PlainText* plainText(const Event& event) {
    return std::get_if<TesselChatLog::PlainText>(&event.value);
}

QString counted(qsizetype count, const char* one, const char* many) {
    return QString::number(count) + u' ' + QLatin1StringView(count == 1 ? one : many);
}

}  // namespace

EventRole eventRole(const Event& event) {
    return std::visit(RoleOf{event.isSystemMessage()}, event.value);
}

std::span<const Event> messageAt(const TesselChatLog& log, std::size_t first) {
    std::size_t end = first + 1;
    while (log.continuesMessage(end))
        ++end;
    return std::span(log.events()).subspan(first, end - first);
}

std::optional<QString> textAt(std::span<const Event> message, std::size_t& index) {
    const auto* text = plainText(message[index]);
    if (!text) return std::nullopt;
    QString result = text->text;
    for (; index + 1 < message.size() && (text = plainText(message[index + 1])); ++index)
        result += text->text;
    return result;
}

bool isEmptyText(const Event& event) {
    const auto* text = plainText(event);
    return text && text->text.isEmpty();
}

bool isEmpty(std::span<const Event> message) {
    return std::all_of(message.begin(), message.end(), isEmptyText);
}

bool beginsWithLineBreak(const Event& event) {
    const auto* text = plainText(event);
    return text && (text->text.startsWith(u'\n') || text->text.startsWith(u'\r'));
}

const Event* NextSender::after(std::size_t index) {
    if (next_ <= index) next_ = index + 1;
    for (; next_ < events_.size(); ++next_) {
        const EventRole role = eventRole(events_[next_]);
        if (role == EventRole::content) return &events_[next_];
        if (role == EventRole::systemMessage) break;
    }
    return nullptr;
}

QString fileLine(const foundation::FileWrapper& wrapper) {
    const QString name =
        wrapper.filename.value_or(wrapper.preferredFilename.value_or(QStringLiteral("unnamed")));
    switch (wrapper.kind) {
        case foundation::FileWrapper::Kind::regularFile:
            return QStringLiteral("File: ") + name + QStringLiteral(" (") +
                   (wrapper.contents ? counted(wrapper.contents->size(), "byte", "bytes")
                                     : QStringLiteral("no contents")) +
                   u')';
        case foundation::FileWrapper::Kind::directory:
            return QStringLiteral("Folder: ") + name + QStringLiteral(" (") +
                   counted(static_cast<qsizetype>(wrapper.children.size()), "entry", "entries") +
                   u')';
        case foundation::FileWrapper::Kind::symbolicLink:
            return QStringLiteral("Symbolic link: ") + name +
                   (wrapper.linkDestination
                        ? QStringLiteral(" (to ") + *wrapper.linkDestination + u')'
                        : QString());
    }
    return name;
}

QString picturePath(const TesselChatLog::Image& image) {
    if (image.path() && !image.path()->isEmpty()) return *image.path();
    return QStringLiteral("picture.") +
           QLatin1StringView(foundation::fileExtension(image.image().format));
}

QString pictureName(const QString& path) {
    QString name = path.mid(path.lastIndexOf(u'/') + 1);
    return name.isEmpty() ? path : name;
}

bool hasOwnTitle(const QString& title, const QString& address) {
    return !title.isEmpty() && title != address;
}

}  // namespace vell
