// SPDX-License-Identifier: MIT
#include "export/terminal_text.h"

#include <optional>
#include <span>
#include <variant>

#include "export/message.h"
#include "identity/sender_name.h"
#include "toolkit/date_formatters.h"
#include "transcript/chat_log.h"

using namespace Qt::StringLiterals;

namespace vell {
namespace {

using Event = TesselChatLog::Event;

constexpr char16_t kControlPictures = 0x2400;
constexpr char16_t kDeletePicture = 0x2421;

enum class LineBreaks { indented, blanks };

bool isLineBreak(char16_t unit) {
    return (unit >= u'\n' && unit <= u'\r') || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

bool isHarmless(char16_t unit) {
    if (unit < 0x20) return unit == u'\t';
    return unit < 0x7F || (unit >= 0xA0 && !isLineBreak(unit) && !QChar::isSurrogate(unit));
}

/// What stands for a control: its picture, or the replacement character where there is none.
char16_t shownControl(char16_t unit) {
    if (unit < 0x20) return static_cast<char16_t>(kControlPictures + unit);
    return unit == 0x7F ? kDeletePicture : static_cast<char16_t>(QChar::ReplacementCharacter);
}

class Renderer {
  public:
    Renderer(const TesselChatLog& log, const ContactsStore& contacts)
        : log_(log), contacts_(contacts) {}

    QString render();

  private:
    const TesselChatLog& log_;
    const ContactsStore& contacts_;
    QString out_;
    std::optional<TesselUserID> headed_;
    /// The minute that the next content opens, told beside its sender.
    std::optional<foundation::Date> minute_;

    QStringView indentation_;
    bool needsIndentation_ = false;

    void newDay(const Event& event);
    void systemMessage(const Event& event);
    void message(std::span<const Event> message);
    void heading(const TesselUserID& sender);
    void minute();
    void begin(QStringView firstLine, QStringView furtherLines);
    void newLine();
    void piece(const Event& event);
    void text(QStringView text, LineBreaks breaks = LineBreaks::indented);
    void clean(QStringView text);
};

QString Renderer::render() {
    const auto& events = log_.events();
    for (std::size_t i = 0; i < events.size(); ++i) {
        const Event& event = events[i];
        switch (eventRole(event)) {
            case EventRole::newDay:
                newDay(event);
                break;
            case EventRole::newMinute:
                minute_ = event.timestamp;
                break;
            case EventRole::senderChange:
                headed_.reset();
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

void Renderer::newDay(const Event& event) {
    if (!out_.isEmpty()) out_ += u"\n\n";
    out_ += daySeparatorFormatter().string(event.timestamp);
    out_ += u'\n';
    minute_.reset();
    headed_.reset();
}

void Renderer::systemMessage(const Event& event) {
    if (!out_.isEmpty()) out_ += u'\n';
    begin(u"* ", u"  ");
    piece(event);
    minute();
    out_ += u'\n';
    headed_.reset();
}

void Renderer::heading(const TesselUserID& sender) {
    if (headed_ == sender && !minute_) return;
    if (!out_.isEmpty()) out_ += u'\n';
    begin({}, {});
    text(senderName(sender, contacts_).trimmed(), LineBreaks::blanks);
    minute();
    out_ += u":\n";
    headed_ = sender;
}

void Renderer::minute() {
    if (minute_) clean(u" ("_s + timeSeparatorFormatter().string(*minute_) + u')');
    minute_.reset();
}

void Renderer::message(std::span<const Event> message) {
    heading(*message.front().sender);
    begin(isEmptyText(message.front()) ? u"" : u"    ", u"      ");
    bool followsFile = false;
    for (const Event& event : message) {
        const bool isFile = std::holds_alternative<TesselChatLog::File>(event.value);
        const bool isFirst = &event == &message.front();
        if ((isFile || followsFile) && !isFirst && !beginsWithLineBreak(event)) newLine();
        piece(event);
        followsFile = isFile;
    }
    out_ += u'\n';
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
        void operator()(const TesselChatLog::PlainText& plain) { to.text(plain.text); }
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

QString terminalText(const TesselChatLog& log, const ContactsStore& contacts) {
    return Renderer(log, contacts).render();
}

}  // namespace vell
