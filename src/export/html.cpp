// SPDX-License-Identifier: MIT
#include "export/html.h"

#include "export/chat_log_visitor.h"
#include "identity/contacts/sender_name.h"
#include "toolkit/date_formatters.h"
#include "toolkit/link_schemes.h"

namespace vell {
namespace {

class HtmlWriter final : public ChatLogVisitor {
  public:
    HtmlWriter(const ContactsStore& contacts, TextSink& sink) : contacts_(contacts), sink_(sink) {
        out_ += u"<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"></head><body>\n";
    }
    void finish() { out_ += u"</body></html>\n"; }

    void session(const TesselChatLog::Session& session) override {
        out_ += u"<h2>";
        text(session.name());
        out_ += u"</h2>\n";
    }
    void newDay(const Event& event) override {
        out_ += u"<h3>";
        text(daySeparatorFormatter().string(event.timestamp));
        out_ += u"</h3>\n";
    }
    void newMinute(const Event&) override {}
    void senderChange(const Event*) override {}
    void systemMessage(Message message) override {
        begin();
        out_ += u"<i>";
        pieces(message);
        out_ += u"</i>";
        end();
    }
    void message(Message message) override {
        const Event& first = message.front();
        begin();
        out_ += u"<b>";
        text(senderName(*first.sender, contacts_));
        out_ += u"</b>, ";
        text(timeSeparatorFormatter().string(first.timestamp));
        out_ += u": ";
        pieces(message);
        end();
    }

    // Each writes one piece of a message.
    void operator()(const QString& words) { text(words); }
    void operator()(const TesselChatLog::Link* link) {
        const QString& address = link->url->absoluteString();
        if (!hasPlainScheme(address)) {
            text(linkInText(*link));
            return;
        }
        const QString title = ownTitle(*link);
        out_ += u"<a href=\"";
        text(address);
        out_ += u"\">";
        text(title.isEmpty() ? address : title);
        out_ += u"</a>";
    }
    void operator()(const TesselChatLog::Image* image) { text(pictureName(picturePath(*image))); }
    void operator()(const TesselChatLog::File* file) { text(fileLine(*file->wrapper)); }

  private:
    // The direction of each message is its own; its line breaks and blanks stand.
    void begin() { out_ += u"<p dir=\"auto\" style=\"white-space: pre-wrap\">"; }
    void end() {
        out_ += u"</p>\n";
        sink_.endPiece();
    }
    void text(QString words) {
        words.replace(QChar(), QChar(QChar::ReplacementCharacter));
        out_ += words.toHtmlEscaped().replace(u'\n', QLatin1StringView("<br>"));
    }
    void pieces(Message message) {
        PieceReader reader(message);
        for (bool isFirst = true; const std::optional<Piece> piece = reader.next();
             isFirst = false) {
            if (!isFirst && piece->needsOwnLine && !piece->beginsWithLineBreak()) out_ += u"<br>";
            std::visit(*this, piece->content);
            sink_.endPiece();
        }
    }

    const ContactsStore& contacts_;
    TextSink& sink_;
    QString& out_{sink_.text()};
};

}  // namespace

void writeHtml(const TesselChatLog& log, const ContactsStore& contacts, const ByteSink& output) {
    TextSink sink(output);
    HtmlWriter writer(contacts, sink);
    visit(log, writer);
    writer.finish();
    sink.passOn();
}

}  // namespace vell
