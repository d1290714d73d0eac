// SPDX-License-Identifier: MIT
#include "export/markdown.h"

#include <QHash>

#include "export/chat_log_visitor.h"
#include "export/markdown_writer.h"
#include "identity/contacts/contacts_store.h"
#include "identity/contacts/sender_name.h"

namespace vell {
namespace {

using Next = MarkdownWriter::Next;

constexpr qsizetype unitsPerEvent = 64;

/// Longer headings are not kept: many names may share their characters.
constexpr qsizetype longestKeptHeading = 256;

class MarkdownRenderer final : public ChatLogVisitor {
  public:
    MarkdownRenderer(const TesselChatLog& log, const ContactsStore& contacts,
                     const TextRenderSettings& settings, const AttachmentPaths& attachments,
                     TextSink& sink)
        : log_(log),
          contacts_(contacts),
          settings_(settings),
          attachments_(attachments),
          sink_(sink) {}

    void session(const TesselChatLog::Session& session) override;
    void newDay(const Event& event) override;
    void newMinute(const Event& event) override;
    void senderChange(const Event* next) override;
    void systemMessage(Message message) override;
    void message(Message message) override;

    // Each writes one piece of a message.
    void operator()(const QString& text);
    void operator()(const TesselChatLog::Link* link);
    void operator()(const TesselChatLog::Image* image);
    void operator()(const TesselChatLog::File* file);

  private:
    const TesselChatLog& log_;
    const ContactsStore& contacts_;
    const TextRenderSettings& settings_;
    const AttachmentPaths& attachments_;
    TextSink& sink_;
    QString& out_{sink_.text()};
    MarkdownWriter writer_{sink_};
    QHash<SharedUserID, QString> headings_;
    /// The sender of the latest heading; none after a system message.
    SharedUserID headed_;
    bool followsBody_ = false;
    /// What comes after the piece at hand.
    Next next_ = Next::blockEnd;
    /// Where the piece at hand was written; empty where it wasn't.
    QString attachment_;

    void heading(QStringView linePrefix, QStringView prefix, QStringView text,
                 QStringView lineSuffix);
    void senderHeading(const SharedUserID& sender);
    [[nodiscard]] QString headingOf(const TesselUserID& sender) const;
    void pieces(Message message);
};

void MarkdownRenderer::session(const TesselChatLog::Session& session) {
    out_ += settings_.sessionLinePrefix;
    out_ += settings_.sessionPrefix;
    writer_.beginBlock({});
    writer_.literal(session.name().simplified(), Next::more);
    out_ += settings_.sessionLineSuffix;
    headed_ = {};
    followsBody_ = false;
}

void MarkdownRenderer::newDay(const Event& event) {
    heading(settings_.dayLinePrefix, settings_.dayPrefix,
            settings_.dayFormatter.string(event.timestamp), settings_.dayLineSuffix);
}

void MarkdownRenderer::newMinute(const Event& event) {
    heading(settings_.timeLinePrefix, settings_.timePrefix,
            settings_.timeFormatter.string(event.timestamp), settings_.timeLineSuffix);
}

void MarkdownRenderer::heading(QStringView linePrefix, QStringView prefix, QStringView text,
                               QStringView lineSuffix) {
    out_ += linePrefix;
    out_ += prefix;
    out_ += text;
    out_ += lineSuffix;
    followsBody_ = false;
}

/// The marker ends a run, but readers look for who speaks from here on.
void MarkdownRenderer::senderChange(const Event* next) {
    headed_ = {};
    if (next) senderHeading(next->sender);
}

void MarkdownRenderer::senderHeading(const SharedUserID& sender) {
    const auto known = headings_.constFind(sender);
    if (known != headings_.cend()) {
        out_ += *known;
    } else {
        const QString text = headingOf(*sender);
        out_ += text;
        if (text.size() <= longestKeptHeading) headings_.insert(sender, text);
    }
    sink_.endPiece();
    headed_ = sender;
    followsBody_ = false;
}

QString MarkdownRenderer::headingOf(const TesselUserID& sender) const {
    QString name = senderName(sender, contacts_);
    name.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    name.replace(u'\n', u' ').replace(u'\r', u' ');
    TextSink heading;
    heading.text() = settings_.newUserLinePrefix + settings_.newUserPrefix;
    MarkdownWriter(heading).literal(name.trimmed(), Next::more);
    return heading.take() + settings_.newUserLineSuffix;
}

void MarkdownRenderer::systemMessage(Message message) {
    out_ += settings_.systemLinePrefix;
    out_ += settings_.systemPrefix;
    writer_.beginBlock({});
    pieces(message);
    // Two underscores with nothing between them would be plain underscores.
    if (writer_.isAtLineStart()) out_ += u"<!-- -->";
    out_ += settings_.systemSuffix;
    headed_ = {};
    followsBody_ = false;
}

void MarkdownRenderer::message(Message message) {
    const SharedUserID& sender = message.front().sender;
    if (headed_ != sender) senderHeading(sender);
    const bool isQuoted = settings_.quoteOtherMessages && !log_.isOwn(sender);
    const bool isBlank = isEmpty(message);
    if (isBlank && !isQuoted) return;
    // Without an empty line paragraphs are joined, and an unquoted one becomes part of a quote.
    if (followsBody_ || !isQuoted) out_ += u'\n';
    writer_.beginBlock(isQuoted ? (isBlank ? u">" : u"> ") : u"");
    pieces(message);
    out_ += u'\n';
    sink_.endPiece();
    followsBody_ = true;
}

void MarkdownRenderer::pieces(Message message) {
    PieceReader reader(message);
    for (std::optional<Piece> piece = reader.next(); piece;) {
        std::optional<Piece> following = reader.next();
        next_ = !following ? Next::blockEnd : following->needsOwnLine ? Next::line : Next::more;
        if (piece->needsOwnLine && !writer_.isAtLineStart() && !piece->beginsWithLineBreak())
            writer_.lineBreak();
        attachment_ = attachmentAddress(attachments_.value(piece->sequence));
        std::visit(*this, piece->content);
        sink_.endPiece();
        piece = std::move(following);
    }
}

void MarkdownRenderer::operator()(const QString& text) {
    writer_.literal(text, next_);
}

void MarkdownRenderer::operator()(const TesselChatLog::Link* link) {
    writer_.link(link->url->absoluteString(), ownTitle(*link));
}

void MarkdownRenderer::operator()(const TesselChatLog::Image* image) {
    const QString path = picturePath(*image);
    writer_.image(pictureName(path), attachment_.isEmpty() ? path : attachment_);
}

void MarkdownRenderer::operator()(const TesselChatLog::File* file) {
    const QString line = fileLine(*file->wrapper);
    attachment_.isEmpty() ? writer_.literal(line, next_) : writer_.link(attachment_, line);
}

}  // namespace

QString generatePlainText(const TesselChatLog& log, const ContactsStore& contacts,
                          const TextRenderSettings& settings) {
    TextSink sink;
    sink.text().reserve(static_cast<qsizetype>(log.events().size()) * unitsPerEvent);
    const AttachmentPaths none;
    MarkdownRenderer renderer(log, contacts, settings, none, sink);
    visit(log, renderer);
    return sink.take();
}

qint64 writeMarkdown(const TesselChatLog& log, const ContactsStore& contacts,
                     const ByteSink& output, const TextRenderSettings& settings,
                     const AttachmentPaths& attachments) {
    TextSink sink(output);
    MarkdownRenderer renderer(log, contacts, settings, attachments, sink);
    const qint64 messages = visit(log, renderer);
    sink.passOn();
    return messages;
}

}  // namespace vell
