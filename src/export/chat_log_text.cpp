// SPDX-License-Identifier: MIT
//
// The whole log as Markdown, in one walk.
#include <QHash>
#include <QString>
#include <span>
#include <variant>

#include "export/chat_log_text.h"
#include "export/markdown.h"
#include "export/message.h"
#include "export/text_render_settings.h"
#include "identity/contacts/contacts_store.h"
#include "identity/contacts/sender_name.h"

namespace vell {
namespace {

using Event = TesselChatLog::Event;
using Settings = TesselChatLog::TextRenderSettings;
using Next = MarkdownWriter::Next;

constexpr qsizetype kUnitsPerEvent = 64;

/// Longer headings are made anew each time: many names may share the characters of one.
constexpr qsizetype kLongestKeptHeading = 256;

class Renderer {
  public:
    Renderer(const TesselChatLog& log, const ContactsStore& contacts, const Settings& settings,
             TextSink& sink)
        : log_(log), contacts_(contacts), settings_(settings), sink_(sink) {}

    void newDay(const Event& event);
    void newMinute(const Event& event);
    void senderChange(const Event* next);
    void systemMessage(std::span<const Event> message);
    void message(std::span<const Event> message);

  private:
    const TesselChatLog& log_;
    const ContactsStore& contacts_;
    const Settings& settings_;
    TextSink& sink_;
    QString& out_{sink_.text()};
    MarkdownWriter writer_{sink_};
    QHash<TesselUserID, QString> headings_;
    /// Whose heading stands above what is written next; nobody's after a system message.
    SharedUserID headed_;
    SharedUserID latest_;
    bool latestIsOwn_ = false;
    bool followsBody_ = false;

    void heading(QStringView linePrefix, QStringView prefix, QStringView text,
                 QStringView lineSuffix);
    void senderHeading(const SharedUserID& sender);
    [[nodiscard]] QString headingOf(const TesselUserID& sender) const;
    [[nodiscard]] bool isOwn(const SharedUserID& sender);
    void pieces(std::span<const Event> message);
    void piece(const Event& event, Next next);
    [[nodiscard]] static Next nextOf(std::span<const Event> message, std::size_t index);
};

void Renderer::newDay(const Event& event) {
    heading(settings_.dayLinePrefix, settings_.dayPrefix,
            settings_.dayFormatter.string(event.timestamp), settings_.dayLineSuffix);
}

void Renderer::newMinute(const Event& event) {
    heading(settings_.timeLinePrefix, settings_.timePrefix,
            settings_.timeFormatter.string(event.timestamp), settings_.timeLineSuffix);
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
void Renderer::senderChange(const Event* next) {
    headed_ = {};
    if (next) senderHeading(next->sender);
}

void Renderer::senderHeading(const SharedUserID& sender) {
    const auto known = headings_.constFind(*sender);
    if (known != headings_.cend()) {
        out_ += *known;
    } else {
        const QString text = headingOf(*sender);
        out_ += text;
        if (text.size() <= kLongestKeptHeading) headings_.insert(*sender, text);
    }
    sink_.endPiece();
    headed_ = sender;
    followsBody_ = false;
}

QString Renderer::headingOf(const TesselUserID& sender) const {
    QString name = senderName(sender, contacts_);
    name.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    name.replace(u'\n', u' ').replace(u'\r', u' ');
    TextSink heading;
    heading.text() = settings_.newUserLinePrefix + settings_.newUserPrefix;
    MarkdownWriter(heading).literal(name.trimmed(), Next::more);
    return heading.take() + settings_.newUserLineSuffix;
}

/// Few people write most of a transcript, and their names may be long.
bool Renderer::isOwn(const SharedUserID& sender) {
    if (!latest_ || sender.operator->() != latest_.operator->()) {
        latest_ = sender;
        latestIsOwn_ = *sender == log_.ownUserID();
    }
    return latestIsOwn_;
}

void Renderer::systemMessage(std::span<const Event> message) {
    out_ += settings_.systemLinePrefix;
    out_ += settings_.systemPrefix;
    writer_.beginBlock({});
    pieces(message);
    // Two underscores with nothing between them would be just that, two underscores.
    if (writer_.isAtLineStart()) out_ += u"<!-- -->";
    out_ += settings_.systemSuffix;
    headed_ = {};
    followsBody_ = false;
}

void Renderer::message(std::span<const Event> message) {
    const SharedUserID& sender = message.front().sender;
    if (headed_ != sender) senderHeading(sender);
    const bool isQuoted = settings_.quoteOtherMessages && !isOwn(sender);
    const bool isNothing = isEmpty(message);
    if (isNothing && !isQuoted) return;
    // Without an empty line a reader joins paragraphs, and takes an unquoted one into a quote.
    if (followsBody_ || !isQuoted) out_ += u'\n';
    writer_.beginBlock(isQuoted ? (isNothing ? u">" : u"> ") : u"");
    pieces(message);
    out_ += u'\n';
    sink_.endPiece();
    followsBody_ = true;
}

void Renderer::pieces(std::span<const Event> message) {
    bool followsFile = false;
    for (std::size_t i = 0; i < message.size(); ++i) {
        const Event& event = message[i];
        if (isEmptyText(event)) continue;
        const bool isFile = std::holds_alternative<TesselChatLog::File>(event.value);
        const bool needsOwnLine = isFile || followsFile;
        if (needsOwnLine && !writer_.isAtLineStart() && !beginsWithLineBreak(event))
            writer_.lineBreak();
        if (const auto text = textAt(message, i))
            writer_.literal(*text, nextOf(message, i));
        else
            piece(event, nextOf(message, i));
        sink_.endPiece();
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
        // Told by the caller.
        void operator()(const TesselChatLog::PlainText&) {}
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
    TextSink sink;
    sink.text().reserve(static_cast<qsizetype>(events_.size()) * kUnitsPerEvent);
    Renderer renderer(*this, contacts, settings, sink);
    walk(*this, renderer);
    return sink.take();
}

void writeMarkdown(const TesselChatLog& log, const ContactsStore& contacts,
                   const ByteSink& output) {
    const Settings settings;
    TextSink sink(output);
    Renderer renderer(log, contacts, settings, sink);
    walk(log, renderer);
    sink.passOn();
}

}  // namespace vell
