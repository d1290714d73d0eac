// SPDX-License-Identifier: MIT
//
// TesselChatLog::generatePlainText: the whole log as Markdown, in one walk and one buffer.
#include <QHash>
#include <QString>
#include <optional>
#include <span>
#include <variant>

#include "export/markdown.h"
#include "export/message.h"
#include "export/text_render_settings.h"
#include "identity/contacts_store.h"
#include "identity/sender_name.h"

namespace vell {
namespace {

using Event = TesselChatLog::Event;
using Settings = TesselChatLog::TextRenderSettings;
using Next = MarkdownWriter::Next;

constexpr qsizetype kUnitsPerEvent = 64;

class Renderer {
  public:
    Renderer(const TesselChatLog& log, const ContactsStore& contacts, const Settings& settings)
        : log_(log), contacts_(contacts), settings_(settings), nextSender_(log.events()) {}

    QString render();

  private:
    const TesselChatLog& log_;
    const ContactsStore& contacts_;
    const Settings& settings_;
    NextSender nextSender_;
    QString out_;
    MarkdownWriter writer_{out_};
    QHash<TesselUserID, QString> headings_;
    /// Whose heading stands above what is written next; nobody's after a system message.
    std::optional<TesselUserID> headed_;
    bool followsBody_ = false;

    void heading(QStringView linePrefix, QStringView prefix, QStringView text,
                 QStringView lineSuffix);
    void senderChange(std::size_t index);
    void senderHeading(const TesselUserID& sender);
    void systemMessage(const Event& event);
    void message(std::span<const Event> message);
    void pieces(std::span<const Event> message);
    void piece(const Event& event, Next next);
    [[nodiscard]] static Next nextOf(std::span<const Event> message, std::size_t index);
};

QString Renderer::render() {
    const auto& events = log_.events();
    out_.reserve(static_cast<qsizetype>(events.size()) * kUnitsPerEvent);
    for (std::size_t i = 0; i < events.size(); ++i) {
        const Event& event = events[i];
        switch (eventRole(event)) {
            case EventRole::newDay:
                heading(settings_.dayLinePrefix, settings_.dayPrefix,
                        settings_.dayFormatter.string(event.timestamp), settings_.dayLineSuffix);
                break;
            case EventRole::newMinute:
                heading(settings_.timeLinePrefix, settings_.timePrefix,
                        settings_.timeFormatter.string(event.timestamp), settings_.timeLineSuffix);
                break;
            case EventRole::senderChange:
                senderChange(i);
                break;
            case EventRole::systemMessage:
                systemMessage(event);
                break;
            case EventRole::content: {
                const auto whole = messageAt(events, i);
                message(whole);
                i += whole.size() - 1;
                break;
            }
        }
    }
    return out_;
}

void Renderer::heading(QStringView linePrefix, QStringView prefix, QStringView text,
                       QStringView lineSuffix) {
    out_ += linePrefix;
    out_ += prefix;
    out_ += text;
    out_ += lineSuffix;
    followsBody_ = false;
}

/// The marker ends a sender's run, but what people look for is who speaks from here on. When
/// nobody does, or a system message comes first, there is nothing to name.
void Renderer::senderChange(std::size_t index) {
    headed_.reset();
    if (const Event* next = nextSender_.after(index)) senderHeading(*next->sender);
}

void Renderer::senderHeading(const TesselUserID& sender) {
    QString& text = headings_[sender];
    if (text.isEmpty()) {
        QString name = senderName(sender, contacts_);
        name.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
        name.replace(u'\n', u' ').replace(u'\r', u' ');
        text = settings_.newUserLinePrefix + settings_.newUserPrefix;
        MarkdownWriter(text).literal(name.trimmed(), Next::more);
        text += settings_.newUserLineSuffix;
    }
    out_ += text;
    headed_ = sender;
    followsBody_ = false;
}

void Renderer::systemMessage(const Event& event) {
    out_ += settings_.systemLinePrefix;
    out_ += settings_.systemPrefix;
    writer_.beginBlock({});
    piece(event, Next::blockEnd);
    // Two underscores with nothing between them would be just that, two underscores.
    if (writer_.isAtLineStart()) out_ += u"<!-- -->";
    out_ += settings_.systemSuffix;
    headed_.reset();
    followsBody_ = false;
}

void Renderer::message(std::span<const Event> message) {
    const TesselUserID& sender = *message.front().sender;
    if (headed_ != sender) senderHeading(sender);
    const bool isQuoted = settings_.quoteOtherMessages && sender != log_.ownUserID();
    const bool isEmpty = message.size() == 1 && isEmptyText(message.front());
    if (isEmpty && !isQuoted) return;
    // Without an empty line a reader joins paragraphs, and takes an unquoted one into a quote.
    if (followsBody_ || !isQuoted) out_ += u'\n';
    writer_.beginBlock(isQuoted ? (isEmpty ? u">" : u"> ") : u"");
    if (!isEmpty) pieces(message);
    out_ += u'\n';
    followsBody_ = true;
}

void Renderer::pieces(std::span<const Event> message) {
    bool followsFile = false;
    for (std::size_t i = 0; i < message.size(); ++i) {
        if (isEmptyText(message[i])) continue;
        const bool isFile = std::holds_alternative<TesselChatLog::File>(message[i].value);
        const bool needsOwnLine = isFile || followsFile;
        if (needsOwnLine && !writer_.isAtLineStart() && !beginsWithLineBreak(message[i])) {
            writer_.lineBreak();
        }
        piece(message[i], nextOf(message, i));
        followsFile = isFile;
    }
}

Next Renderer::nextOf(std::span<const Event> message, std::size_t index) {
    const auto isFile = [&](std::size_t i) {
        return std::holds_alternative<TesselChatLog::File>(message[i].value);
    };
    for (std::size_t i = index + 1; i < message.size(); ++i) {
        if (!isEmptyText(message[i])) return isFile(index) || isFile(i) ? Next::line : Next::more;
    }
    return Next::blockEnd;
}

void Renderer::piece(const Event& event, Next next) {
    struct {
        MarkdownWriter& writer;
        Next next;
        void operator()(const TesselChatLog::PlainText& text) { writer.literal(text.text, next); }
        void operator()(const TesselChatLog::Link& link) {
            const QString address = link.url->absoluteString();
            writer.link(address, hasOwnTitle(link.title, address) ? link.title : QString());
        }
        void operator()(const TesselChatLog::Image& image) {
            const QString path = picturePath(image);
            writer.image(pictureName(path), path);
        }
        void operator()(const TesselChatLog::File& file) {
            writer.literal(fileLine(*file.wrapper), next);
        }
        // Headings, never a piece of a message.
        void operator()(const TesselChatLog::NewDay&) {}
        void operator()(const TesselChatLog::NewMinute&) {}
        void operator()(const TesselChatLog::User&) {}
    } write{writer_, next};
    std::visit(write, event.value);
}

}  // namespace

QString TesselChatLog::generatePlainText(const ContactsStore& contacts) const {
    return generatePlainText(contacts, TextRenderSettings());
}

QString TesselChatLog::generatePlainText(const ContactsStore& contacts,
                                         const TextRenderSettings& settings) const {
    return Renderer(*this, contacts, settings).render();
}

}  // namespace vell
