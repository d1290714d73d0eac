// SPDX-License-Identifier: MIT
#include "export/plain_lines.h"

#include "export/chat_log_visitor.h"
#include "identity/contacts/sender_name.h"
#include "toolkit/date_formatters.h"

namespace vell {
namespace {

class LineWriter final : public ChatLogVisitor {
  public:
    LineWriter(const ContactsStore& contacts, TextSink& sink) : contacts_(contacts), sink_(sink) {}

    void session(const TesselChatLog::Session& session) override {
        if (!sink_.isEmpty()) out_ += u'\n';
        out_ += session.name();
        endLine();
    }
    void newDay(const Event& event) override {
        if (!sink_.isEmpty()) out_ += u'\n';
        out_ += daySeparatorFormatter().string(event.timestamp);
        endLine();
    }
    void newMinute(const Event&) override {}
    void senderChange(const Event*) override {}
    void systemMessage(Message message) override { pieces(message); }
    void message(Message message) override {
        const Event& first = message.front();
        out_ += senderName(*first.sender, contacts_);
        out_ += u", ";
        out_ += timeSeparatorFormatter().string(first.timestamp);
        out_ += u": ";
        pieces(message);
    }

    // Each writes one piece of a message.
    void operator()(const QString& text) { out_ += text; }
    void operator()(const TesselChatLog::Link* link) { out_ += linkInText(*link); }
    void operator()(const TesselChatLog::Image* image) { out_ += pictureName(picturePath(*image)); }
    void operator()(const TesselChatLog::File* file) { out_ += fileLine(*file->wrapper); }

  private:
    void pieces(Message message) {
        PieceReader reader(message);
        for (bool isFirst = true; const std::optional<Piece> piece = reader.next();
             isFirst = false) {
            if (!isFirst && piece->needsOwnLine && !piece->beginsWithLineBreak()) out_ += u'\n';
            std::visit(*this, piece->content);
            sink_.endPiece();
        }
        endLine();
    }
    void endLine() {
        out_ += u'\n';
        sink_.endPiece();
    }

    const ContactsStore& contacts_;
    TextSink& sink_;
    QString& out_{sink_.text()};
};

}  // namespace

void writePlainLines(const TesselChatLog& log, const ContactsStore& contacts,
                     const ByteSink& output) {
    TextSink sink(output);
    LineWriter writer(contacts, sink);
    visit(log, writer);
    sink.passOn();
}

}  // namespace vell
