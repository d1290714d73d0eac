// SPDX-License-Identifier: MIT
#include "export/terminal_text.h"

#include <optional>
#include <span>
#include <variant>

#include "export/message.h"
#include "export/text_sink.h"
#include "foundation/line_break.h"
#include "identity/contacts/sender_name.h"
#include "toolkit/date_formatters.h"
#include "transcript/chat_log.h"

using namespace Qt::StringLiterals;

namespace vell {
namespace {

using Event = TesselChatLog::Event;
using foundation::isLineBreak;

constexpr char16_t kControlPictures = 0x2400;
constexpr char16_t kDeletePicture = 0x2421;

enum class LineBreaks { indented, blanks };

/// Embeddings, overrides and isolates: they would let words stand where nobody wrote them.
bool turnsDirection(char16_t unit) {
    return (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

bool isHarmless(char16_t unit) {
    if (unit < 0x20) return unit == u'\t';
    return unit < 0x7F || (unit >= 0xA0 && !isLineBreak(unit) && !turnsDirection(unit) &&
                           !QChar::isSurrogate(unit));
}

/// What stands for a control: its picture, or the replacement character where there is none.
char16_t shownControl(char16_t unit) {
    if (unit < 0x20) return static_cast<char16_t>(kControlPictures + unit);
    return unit == 0x7F ? kDeletePicture : static_cast<char16_t>(QChar::ReplacementCharacter);
}

class Renderer {
  public:
    Renderer(const ContactsStore& contacts, TextSink& sink) : contacts_(contacts), sink_(sink) {}

    void newDay(const Event& event);
    void newMinute(const Event& event) { minute_ = event.timestamp; }
    void senderChange(const Event* /*next*/) { headed_ = {}; }
    void systemMessage(std::span<const Event> message);
    void message(std::span<const Event> message);

  private:
    const ContactsStore& contacts_;
    TextSink& sink_;
    QString& out_{sink_.text()};
    SharedUserID headed_;
    /// The minute that the next content opens, told beside its sender.
    std::optional<foundation::Date> minute_;

    QStringView indentation_;
    bool needsIndentation_ = false;

    void heading(const SharedUserID& sender);
    void minute();
    void begin(QStringView firstLine, QStringView furtherLines);
    void newLine();
    void pieces(std::span<const Event> message);
    void piece(const Event& event);
    void text(QStringView text, LineBreaks breaks = LineBreaks::indented);
    void clean(QStringView text);
};

void Renderer::newDay(const Event& event) {
    if (!sink_.isEmpty()) out_ += u"\n\n";
    out_ += daySeparatorFormatter().string(event.timestamp);
    out_ += u'\n';
    minute_.reset();
    headed_ = {};
}

void Renderer::systemMessage(std::span<const Event> message) {
    if (!sink_.isEmpty()) out_ += u'\n';
    begin(u"* ", u"  ");
    pieces(message);
    minute();
    out_ += u'\n';
    headed_ = {};
}

void Renderer::heading(const SharedUserID& sender) {
    if (headed_ == sender && !minute_) return;
    if (!sink_.isEmpty()) out_ += u'\n';
    begin({}, {});
    text(senderName(*sender, contacts_).trimmed(), LineBreaks::blanks);
    minute();
    out_ += u":\n";
    headed_ = sender;
}

void Renderer::minute() {
    if (minute_) clean(u" ("_s + timeSeparatorFormatter().string(*minute_) + u')');
    minute_.reset();
}

void Renderer::message(std::span<const Event> message) {
    heading(message.front().sender);
    begin(isEmpty(message) ? u"" : u"    ", u"      ");
    pieces(message);
    out_ += u'\n';
    sink_.endPiece();
}

void Renderer::pieces(std::span<const Event> message) {
    bool isFirst = true;
    bool followsFile = false;
    for (std::size_t i = 0; i < message.size(); ++i) {
        const Event& event = message[i];
        if (isEmptyText(event)) continue;
        const bool isFile = std::holds_alternative<TesselChatLog::File>(event.value);
        if ((isFile || followsFile) && !isFirst && !beginsWithLineBreak(event)) newLine();
        if (const auto words = textAt(message, i))
            text(*words);
        else
            piece(event);
        sink_.endPiece();
        isFirst = false;
        followsFile = isFile;
    }
}

void Renderer::begin(QStringView firstLine, QStringView furtherLines) {
    out_ += firstLine;
    indentation_ = furtherLines;
    needsIndentation_ = false;
}

void Renderer::newLine() {
    out_ += u'\n';
    needsIndentation_ = true;
}

void Renderer::piece(const Event& event) {
    struct {
        Renderer& to;
        void operator()(const TesselChatLog::Link& link) {
            const QString address = link.url->absoluteString();
            const bool isTitled = hasOwnTitle(link.title, address);
            to.text(isTitled ? link.title + u" <"_s + address + u'>' : address);
        }
        void operator()(const TesselChatLog::Image& image) {
            const QString path = picturePath(image);
            const QString name = pictureName(path);
            to.text(u"[Picture: "_s + name + (name == path ? u"]"_s : u", "_s + path + u']'));
        }
        void operator()(const TesselChatLog::File& file) {
            to.text(u'[' + fileLine(*file.wrapper) + u']');
        }
        // Told by the caller.
        void operator()(const TesselChatLog::PlainText&) {}
        // Headings, never a piece of a message.
        void operator()(const TesselChatLog::NewDay&) {}
        void operator()(const TesselChatLog::NewMinute&) {}
        void operator()(const TesselChatLog::User&) {}
    } write{*this};
    std::visit(write, event.value);
}

void Renderer::text(QStringView text, LineBreaks breaks) {
    qsizetype start = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const char16_t unit = text[at].unicode();
        if (isHarmless(unit)) continue;
        if (QChar::isHighSurrogate(unit) && at + 1 < text.size() && text[at + 1].isLowSurrogate()) {
            ++at;
            continue;
        }
        clean(text.sliced(start, at - start));
        if (unit == u'\r' && at + 1 < text.size() && text[at + 1] == u'\n') ++at;
        start = at + 1;
        if (turnsDirection(unit)) continue;
        if (!isLineBreak(unit)) {
            const QChar shown(shownControl(unit));
            clean(QStringView(&shown, 1));
        } else if (breaks == LineBreaks::indented) {
            newLine();
        } else {
            clean(u" ");
        }
    }
    clean(text.sliced(start));
}

/// Text without line breaks and controls.
void Renderer::clean(QStringView text) {
    if (text.isEmpty()) return;
    if (needsIndentation_) out_ += indentation_;
    needsIndentation_ = false;
    out_ += text;
}

}  // namespace

void writeTerminalText(const TesselChatLog& log, const ContactsStore& contacts,
                       const ByteSink& output) {
    TextSink sink(output);
    Renderer renderer(contacts, sink);
    walk(log, renderer);
    sink.passOn();
}

}  // namespace vell
