// SPDX-License-Identifier: MIT
#include "export/message.h"

#include <algorithm>
#include <utility>

namespace vell {
namespace {

using Event = TesselChatLog::Event;

const TesselChatLog::PlainText* plainText(const Event& event) {
    return std::get_if<TesselChatLog::PlainText>(&event.value);
}

/// Nothing for markers, which are never part of a message.
struct ContentOf {
    using Content = std::optional<Piece::Content>;
    Content operator()(const TesselChatLog::PlainText& value) const { return value.text; }
    Content operator()(const TesselChatLog::Link& value) const { return &value; }
    Content operator()(const TesselChatLog::Image& value) const { return &value; }
    Content operator()(const TesselChatLog::File& value) const { return &value; }
    Content operator()(const TesselChatLog::Session&) const { return std::nullopt; }
    Content operator()(const TesselChatLog::NewDay&) const { return std::nullopt; }
    Content operator()(const TesselChatLog::NewMinute&) const { return std::nullopt; }
    Content operator()(const TesselChatLog::User&) const { return std::nullopt; }
};

bool isEmptyText(const Event& event) {
    const auto* text = plainText(event);
    return text && text->text.isEmpty();
}

QString counted(qsizetype count, const char* one, const char* many) {
    return QString::number(count) + u' ' + QLatin1StringView(count == 1 ? one : many);
}

}  // namespace

bool Piece::beginsWithLineBreak() const {
    const auto* text = std::get_if<QString>(&content);
    return text && (text->startsWith(u'\n') || text->startsWith(u'\r'));
}

std::optional<Piece> PieceReader::next() {
    while (index_ < message_.size()) {
        const qint64 sequence = message_[index_].sequence;
        std::optional<Piece::Content> content = std::visit(ContentOf(), message_[index_++].value);
        if (!content) continue;
        if (auto* text = std::get_if<QString>(&*content)) {
            appendTextsTo(*text);
            if (text->isEmpty()) continue;
        }
        const bool isFile = std::holds_alternative<const TesselChatLog::File*>(*content);
        const bool followsFile = std::exchange(followsFile_, isFile);
        return Piece{*std::move(content), isFile || followsFile, sequence};
    }
    return std::nullopt;
}

void PieceReader::appendTextsTo(QString& text) {
    for (; index_ < message_.size(); ++index_) {
        const auto* more = plainText(message_[index_]);
        if (!more) return;
        text += more->text;
    }
}

bool beginsMessage(const TesselChatLog& log, std::size_t index) {
    return log.events()[index].isMessage() && !log.continuesMessage(index);
}

qint64 messageCount(const TesselChatLog& log) {
    qint64 count = 0;
    for (std::size_t i = 0; i < log.events().size(); ++i)
        count += beginsMessage(log, i) ? 1 : 0;
    return count;
}

bool isEmpty(Message message) {
    return std::all_of(message.begin(), message.end(), isEmptyText);
}

QString fileName(const foundation::FileWrapper& wrapper) {
    return wrapper.filename.value_or(wrapper.preferredFilename.value_or(QStringLiteral("unnamed")));
}

QString fileLine(const foundation::FileWrapper& wrapper) {
    QString name = fileName(wrapper);
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

QString ownTitle(const TesselChatLog::Link& link) {
    return link.title == link.url->absoluteString() ? QString() : link.title;
}

QString linkInText(const TesselChatLog::Link& link) {
    const QString title = ownTitle(link);
    const QString& address = link.url->absoluteString();
    return title.isEmpty() ? address : title + QStringLiteral(" (") + address + u')';
}

}  // namespace vell
