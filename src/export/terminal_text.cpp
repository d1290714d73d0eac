// SPDX-License-Identifier: MIT
#include "export/terminal_text.h"

#include <optional>

#include "export/chat_log_visitor.h"
#include "foundation/line_break.h"
#include "identity/contacts/sender_name.h"

using namespace Qt::StringLiterals;

namespace vell {
namespace {

using foundation::isLineBreak;

constexpr char16_t controlPictures = 0x2400;
constexpr char16_t deletePicture = 0x2421;

enum class LineBreaks { indented, asBlanks };

/// Embeddings, overrides and isolates, which could reorder the words of a line.
bool turnsDirection(char16_t unit) {
    return (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

bool isHarmless(char16_t unit) {
    if (unit < 0x20) return unit == u'\t';
    return unit < 0x7F || (unit >= 0xA0 && !isLineBreak(unit) && !turnsDirection(unit) &&
                           !QChar::isSurrogate(unit));
}

/// A control's picture, or the replacement character if it has none.
char16_t shownControl(char16_t unit) {
    if (unit < 0x20) return static_cast<char16_t>(controlPictures + unit);
    return unit == 0x7F ? deletePicture : static_cast<char16_t>(QChar::ReplacementCharacter);
}

class TerminalWriter final : public ChatLogVisitor {
  public:
    TerminalWriter(const ContactsStore& contacts, const TextRenderSettings& settings,
                   TextSink& sink)
        : contacts_(contacts), settings_(settings), sink_(sink) {}

    void session(const TesselChatLog::Session& session) override;
    void newDay(const Event& event) override;
    void newMinute(const Event& event) override { minute_ = event.timestamp; }
    void senderChange(const Event* /*next*/) override { headed_ = {}; }
    void systemMessage(Message message) override;
    void message(Message message) override;

    // Each writes one piece of a message.
    void operator()(const QString& text) { write(text); }
    void operator()(const TesselChatLog::Link* link);
    void operator()(const TesselChatLog::Image* image);
    void operator()(const TesselChatLog::File* file);

  private:
    const ContactsStore& contacts_;
    const TextRenderSettings& settings_;
    TextSink& sink_;
    QString& out_{sink_.text()};
    SharedUserID headed_;
    /// The minute that begins with the next content, shown next to its sender.
    std::optional<foundation::Date> minute_;

    QStringView indentation_;
    bool needsIndentation_ = false;

    void heading(const SharedUserID& sender);
    void minute();
    void begin(QStringView firstLine, QStringView furtherLines);
    void newLine();
    void pieces(Message message);
    void write(QStringView text, LineBreaks breaks = LineBreaks::indented);
    void clean(QStringView text);
};

void TerminalWriter::session(const TesselChatLog::Session& session) {
    if (!sink_.isEmpty()) out_ += u"\n\n";
    begin({}, {});
    out_ += u"== ";
    write(session.name(), LineBreaks::asBlanks);
    out_ += u" ==\n";
    minute_.reset();
    headed_ = {};
}

void TerminalWriter::newDay(const Event& event) {
    if (!sink_.isEmpty()) out_ += u"\n\n";
    out_ += settings_.dayFormatter.string(event.timestamp);
    out_ += u'\n';
    minute_.reset();
    headed_ = {};
}

void TerminalWriter::systemMessage(Message message) {
    if (!sink_.isEmpty()) out_ += u'\n';
    begin(u"* ", u"  ");
    pieces(message);
    minute();
    out_ += u'\n';
    headed_ = {};
}

void TerminalWriter::heading(const SharedUserID& sender) {
    if (headed_ == sender && !minute_) return;
    if (!sink_.isEmpty()) out_ += u'\n';
    begin({}, {});
    write(senderName(*sender, contacts_).trimmed(), LineBreaks::asBlanks);
    minute();
    out_ += u":\n";
    headed_ = sender;
}

void TerminalWriter::minute() {
    if (minute_) clean(u" ("_s + settings_.timeFormatter.string(*minute_) + u')');
    minute_.reset();
}

void TerminalWriter::message(Message message) {
    heading(message.front().sender);
    begin(isEmpty(message) ? u"" : u"    ", u"      ");
    pieces(message);
    out_ += u'\n';
    sink_.endPiece();
}

void TerminalWriter::pieces(Message message) {
    PieceReader reader(message);
    bool isFirst = true;
    while (const std::optional<Piece> piece = reader.next()) {
        if (piece->needsOwnLine && !isFirst && !piece->beginsWithLineBreak()) newLine();
        std::visit(*this, piece->content);
        sink_.endPiece();
        isFirst = false;
    }
}

void TerminalWriter::begin(QStringView firstLine, QStringView furtherLines) {
    out_ += firstLine;
    indentation_ = furtherLines;
    needsIndentation_ = false;
}

void TerminalWriter::newLine() {
    out_ += u'\n';
    needsIndentation_ = true;
}

void TerminalWriter::operator()(const TesselChatLog::Link* link) {
    const QString address = link->url->absoluteString();
    const QString title = ownTitle(*link);
    write(title.isEmpty() ? address : title + u" <"_s + address + u'>');
}

void TerminalWriter::operator()(const TesselChatLog::Image* image) {
    const QString path = picturePath(*image);
    const QString name = pictureName(path);
    write(u"[Picture: "_s + name + (name == path ? u"]"_s : u", "_s + path + u']'));
}

void TerminalWriter::operator()(const TesselChatLog::File* file) {
    write(u'[' + fileLine(*file->wrapper) + u']');
}

void TerminalWriter::write(QStringView text, LineBreaks breaks) {
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
void TerminalWriter::clean(QStringView text) {
    if (text.isEmpty()) return;
    if (needsIndentation_) out_ += indentation_;
    needsIndentation_ = false;
    out_ += text;
}

}  // namespace

qint64 writeTerminalText(const TesselChatLog& log, const ContactsStore& contacts,
                         const ByteSink& output, const TextRenderSettings& settings) {
    TextSink sink(output);
    TerminalWriter renderer(contacts, settings, sink);
    const qint64 messages = visit(log, renderer);
    sink.passOn();
    return messages;
}

}  // namespace vell
