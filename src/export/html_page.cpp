// SPDX-License-Identifier: MIT
#include "export/html_page.h"

#include <QSet>
#include <chrono>
#include <optional>

#include "export/chat_log_visitor.h"
#include "export/html_head.h"
#include "export/html_style.h"
#include "toolkit/link_schemes.h"

namespace vell {
namespace {

using foundation::PictureFormat;

/// What browsers draw. They run no scripts of an SVG in a picture, and load nothing for it.
bool isShownByBrowsers(PictureFormat format) {
    switch (format) {
        case PictureFormat::png:
        case PictureFormat::jpeg:
        case PictureFormat::gif:
        case PictureFormat::bmp:
        case PictureFormat::ico:
        case PictureFormat::webp:
        case PictureFormat::avif:
        case PictureFormat::svg:
            return true;
        default:
            return false;
    }
}

class PageWriter final : public ChatLogVisitor {
  public:
    PageWriter(const TesselChatLog& log, const FormatContext& context, const ByteSink& output,
               const HtmlPageOptions& options)
        : log_(log),
          context_(context),
          options_(options),
          style_(log, context.contacts()),
          out_(output) {}

    qint64 write();

    void session(const TesselChatLog::Session& session) override;
    void newDay(const Event& event) override;
    void newMinute(const Event& event) override;
    void senderChange(const Event*) override {}
    void systemMessage(Message message) override;
    void message(Message message) override;

    // Each writes one piece of a message.
    void operator()(const QString& words);
    void operator()(const TesselChatLog::Link* link);
    void operator()(const TesselChatLog::Image* image);
    void operator()(const TesselChatLog::File* file);

  private:
    const TesselChatLog& log_;
    const FormatContext& context_;
    const HtmlPageOptions& options_;
    const HtmlStyle style_;
    ByteBuffer out_;
    QSet<QString> days_;     // that an anchor leads to
    bool isInText_ = false;  // of a message; in a bubble unless it is a system message
    bool isSystem_ = false;
    QString attachment_;  // where the piece at hand was written; empty where it wasn't

    void head();
    void header();
    void time(const Event& event, const DateFormatter& formatter);
    [[nodiscard]] QString anchorOf(const Event& event);
    [[nodiscard]] bool endsRun(Message message) const;
    void pieces(Message message);
    void beginText();
    void endText();
    void endBlock();
    void link(const QString& address, QStringView words);
    [[nodiscard]] bool isLinked(const TesselChatLog::Image& image) const;
    /// With the bytes in it, or the attachment's path.
    void drawn(const TesselChatLog::Image& image, const QString& name,
               const std::optional<foundation::Data>& bytes);
    void embed(const TesselChatLog::Image& image, QByteArrayView bytes);
    void fileText(const QString& words);
};

qint64 PageWriter::write() {
    head();
    header();
    const qint64 messages = visit(log_, *this);
    out_.append("</main>\n</body>\n</html>\n");
    out_.flush();
    return messages;
}

void PageWriter::head() {
    const bool hasFolder = options_.pictures == Pictures::folder;
    appendHtmlHead(out_, pageLocale(context_.dateLocale()), options_.title, style_.css(),
                   hasFolder ? "data: 'self'" : "data:");
}

void PageWriter::header() {
    out_.append("<body>\n<header>\n<h1 dir=\"auto\">");
    appendHtml(out_, options_.title);
    out_.append("</h1>\n</header>\n<main>\n");
}

void PageWriter::session(const TesselChatLog::Session& session) {
    out_.append("<h2 class=\"session\" dir=\"auto\">");
    appendHtml(out_, session.name());
    out_.append("</h2>\n");
}

void PageWriter::newDay(const Event& event) {
    out_.append("<h2 id=\"");
    appendHtml(out_, anchorOf(event), HtmlPlace::attribute);
    out_.append("\">");
    time(event, context_.settings().dayFormatter);
    out_.append("</h2>\n");
}

/// With a number if the chat comes to that day again.
QString PageWriter::anchorOf(const Event& event) {
    QString anchor = dayAnchor(localDay(event.timestamp, context_.calendar()));
    if (days_.contains(anchor)) anchor += u'-' + QString::number(event.sequence);
    days_.insert(anchor);
    return anchor;
}

void PageWriter::newMinute(const Event& event) {
    out_.append("<p class=\"minute\">");
    time(event, context_.settings().timeFormatter);
    out_.append("</p>\n");
}

void PageWriter::time(const Event& event, const DateFormatter& formatter) {
    out_.append("<time");
    if (const auto instant = event.timestamp.iso8601()) {
        out_.append(" datetime=\"");
        appendHtml(out_, *instant, HtmlPlace::attribute);
        out_.append('"');
    }
    out_.append('>');
    appendHtml(out_, formatter.string(event.timestamp));
    out_.append("</time>");
}

void PageWriter::systemMessage(Message message) {
    isSystem_ = true;
    out_.append("<div class=\"system c2\" id=\"m");
    out_.appendNumber(message.front().sequence);
    out_.append("\" dir=\"auto\">");
    pieces(message);
    out_.append("</div>\n");
    isSystem_ = false;
}

void PageWriter::message(Message message) {
    const Event& first = message.front();
    const HtmlSender& sender = style_.sender(first.sender);
    out_.append("<article class=\"message c");
    out_.appendNumber(static_cast<int>(sender.color));
    out_.append(" u");
    out_.appendNumber(sender.number);
    if (log_.isOwn(first.sender)) out_.append(" own");
    if (endsRun(message)) out_.append(" last");
    out_.append("\" id=\"m");
    out_.appendNumber(first.sequence);
    out_.append("\">\n<p class=\"label\"><b dir=\"auto\">");
    appendHtml(out_, sender.name);
    out_.append("</b><span>, ");
    time(first, context_.settings().timeFormatter);
    out_.append(":</span></p>\n");
    pieces(message);
    out_.append("</article>\n");
}

/// Whether the marker that follows ends what the sender wrote in a row.
bool PageWriter::endsRun(Message message) const {
    const std::size_t next =
        static_cast<std::size_t>(message.data() - log_.events().data()) + message.size();
    return next < log_.events().size() &&
           std::holds_alternative<TesselChatLog::User>(log_.events()[next].value);
}

void PageWriter::pieces(Message message) {
    bool hasAny = false;
    PieceReader reader(message);
    while (const std::optional<Piece> piece = reader.next()) {
        attachment_ = attachmentAddress(options_.attachments.value(piece->sequence));
        std::visit(*this, piece->content);
        hasAny = true;
    }
    if (!hasAny) beginText();
    endText();
}

void PageWriter::beginText() {
    if (std::exchange(isInText_, true) || isSystem_) return;
    out_.append("<div class=\"bubble\" dir=\"auto\" lang=\"\">");
}

void PageWriter::endText() {
    if (std::exchange(isInText_, false) && !isSystem_) endBlock();
}

void PageWriter::operator()(const QString& words) {
    beginText();
    appendHtml(out_, words);
}

void PageWriter::operator()(const TesselChatLog::Link* link) {
    beginText();
    const QString& address = link->url->absoluteString();
    const QString title = ownTitle(*link);
    if (hasPlainScheme(address))
        this->link(address, title.isEmpty() ? address : title);
    else
        appendHtml(out_, linkInText(*link));
}

void PageWriter::link(const QString& address, QStringView words) {
    out_.append("<a rel=\"noopener noreferrer nofollow\" href=\"");
    appendHtml(out_, address, HtmlPlace::attribute);
    out_.append("\">");
    appendHtml(out_, words);
    out_.append("</a>");
}

void PageWriter::operator()(const TesselChatLog::Image* image) {
    endText();
    const QString name = pictureName(picturePath(*image));
    std::optional<foundation::Data> bytes;
    if (options_.pictures == Pictures::embed && isShownByBrowsers(image->image().format))
        bytes = image->data().load();
    if (bytes || isLinked(*image))
        drawn(*image, name, bytes);
    else
        fileText(QStringLiteral("Picture: ") + name);
}

bool PageWriter::isLinked(const TesselChatLog::Image& image) const {
    return options_.pictures == Pictures::folder && !attachment_.isEmpty() &&
           isShownByBrowsers(image.image().format);
}

void PageWriter::drawn(const TesselChatLog::Image& image, const QString& name,
                       const std::optional<foundation::Data>& bytes) {
    out_.append("<div class=\"bubble picture\"><img alt=\"");
    appendHtml(out_, name, HtmlPlace::attribute);
    if (const auto& size = image.image().pixelSize; size && !isTurned(image.image())) {
        out_.append("\" width=\"");
        out_.appendNumber(size->width());
        out_.append("\" height=\"");
        out_.appendNumber(size->height());
    }
    out_.append("\" src=\"");
    bytes ? embed(image, bytes->view()) : appendHtml(out_, attachment_, HtmlPlace::attribute);
    out_.append("\">");
    endBlock();
}

void PageWriter::embed(const TesselChatLog::Image& image, QByteArrayView bytes) {
    out_.append("data:");
    out_.append(QByteArrayView(foundation::mimeType(image.image().format)));
    out_.append(";base64,");
    constexpr qsizetype bytesAtOnce = 3 << 13;  // three bytes are four characters
    for (qsizetype at = 0; at < bytes.size(); at += bytesAtOnce) {
        const QByteArrayView piece = bytes.sliced(at, std::min(bytesAtOnce, bytes.size() - at));
        out_.append(QByteArrayView(QByteArray::fromRawData(piece.data(), piece.size()).toBase64()));
    }
}

void PageWriter::operator()(const TesselChatLog::File* file) {
    endText();
    fileText(fileLine(*file->wrapper));
}

void PageWriter::fileText(const QString& words) {
    out_.append("<div class=\"file\" dir=\"auto\">");
    if (!attachment_.isEmpty()) {
        out_.append("<a href=\"");
        appendHtml(out_, attachment_, HtmlPlace::attribute);
        out_.append("\">");
    }
    appendHtml(out_, words);
    if (!attachment_.isEmpty()) out_.append("</a>");
    endBlock();
}

/// The line breaks of a system message are its own.
void PageWriter::endBlock() {
    isSystem_ ? out_.append("</div>") : out_.append("</div>\n");
}

}  // namespace

void appendHtml(ByteBuffer& out, QStringView text, HtmlPlace place) {
    if (text.contains(u"\r\n"))
        return appendHtml(
            out, text.toString().replace(QStringLiteral("\r\n"), QStringLiteral("\n")), place);
    const auto isSpecial = [](char16_t c) {
        return (c == u'&') | (c == u'<') | (c == u'>') | (c == u'"') | (c == u'\'') | (c == u'\n') |
               (c == u'\r') | (c == 0);
    };
    out.appendText(text, isSpecial, [&](char c) {
        switch (c) {
            case '&':
                return out.append("&amp;");
            case '<':
                return out.append("&lt;");
            case '>':
                return out.append("&gt;");
            case '"':
                return out.append("&quot;");
            case '\'':
                return out.append("&#39;");
            case 0:
                return out.append("\xef\xbf\xbd");
            default:
                return place == HtmlPlace::text ? out.append("<br>") : out.append("&#10;");
        }
    });
}

std::optional<std::chrono::year_month_day> localDay(foundation::Date date,
                                                    const foundation::Calendar& calendar) {
    using namespace std::chrono;
    const auto second = calendar.localSecond(date);
    if (!second) return std::nullopt;
    return year_month_day(floor<days>(sys_seconds(seconds(*second))));
}

QString dayAnchor(const std::optional<std::chrono::year_month_day>& day) {
    if (!day) return QStringLiteral("day");
    return QString::asprintf("day-%04d-%02u-%02u", int(day->year()), unsigned(day->month()),
                             unsigned(day->day()));
}

qint64 writeHtmlPage(const TesselChatLog& log, const FormatContext& context, const ByteSink& output,
                     const HtmlPageOptions& options) {
    return PageWriter(log, context, output, options).write();
}

}  // namespace vell
