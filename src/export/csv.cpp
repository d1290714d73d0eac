// SPDX-License-Identifier: MIT
#include "export/csv.h"

#include "export/byte_buffer.h"
#include "export/message.h"
#include "identity/contacts/contacts_store.h"
#include "identity/contacts/sender_name.h"
#include "transcript/chat_log.h"

namespace vell {
namespace {

using Event = TesselChatLog::Event;

/// What a spreadsheet takes for the start of a formula; some accept the wide forms too.
bool startsFormula(char16_t unit) {
    switch (unit) {
        case u'=':
        case u'+':
        case u'-':
        case u'@':
        case u'\uff1d':
        case u'\uff0b':
        case u'\uff0d':
        case u'\uff20':
            return true;
        default:
            return false;
    }
}

bool needsApostrophe(QStringView text) {
    if (text.startsWith(u'\'')) return true;
    for (const QChar c : text) {
        // Blanks, controls and what isn't seen may be skipped by whoever reads the cell.
        const bool isSkipped = c.isSpace() || c.category() == QChar::Other_Control ||
                               c.category() == QChar::Other_Format;
        if (!isSkipped) return startsFormula(c.unicode());
    }
    return false;
}

void appendCell(ByteBuffer& out, QStringView text) {
    if (text.isEmpty()) return;
    out.append('"');
    if (needsApostrophe(text)) out.append('\'');
    // Readers written in C end a text at its first null.
    const auto isSpecial = [](char16_t c) { return (c == u'"') | (c == 0); };
    out.appendText(text, isSpecial,
                   [&out](char c) { c == '"' ? out.append("\"\"") : out.append("\xef\xbf\xbd"); });
    out.append('"');
}

class CsvRenderer {
  public:
    CsvRenderer(const TesselChatLog& log, const ContactsStore& contacts, const ByteSink& output,
                const AttachmentPaths& attachments)
        : log_(log), contacts_(contacts), attachments_(attachments), out_(output) {}
    qint64 write(const CsvOptions& options);

    // Each writes the kind, the text and the address.
    void operator()(const TesselChatLog::PlainText& value) { cells("plainText", value.text, {}); }
    void operator()(const TesselChatLog::Link& value) {
        cells("link", value.title, value.url->absoluteString());
    }
    void operator()(const TesselChatLog::Image& value) {
        const QString path = picturePath(value);
        cells("image", pictureName(path),
              attachments_.value(sequence_, value.path().value_or(QString())));
    }
    void operator()(const TesselChatLog::File& value) {
        cells("file", fileName(*value.wrapper), attachments_.value(sequence_));
    }
    template <class Marker>
    void operator()(const Marker&) {}

  private:
    const TesselChatLog& log_;
    const ContactsStore& contacts_;
    const AttachmentPaths& attachments_;
    ByteBuffer out_;
    qint64 sequence_ = 0;  // of the event at hand
    // What neighbouring rows share, as it is written.
    const TesselUserID* sender_ = nullptr;
    ByteBuffer senderCells_;

    void timeCell(foundation::Date time);
    QByteArrayView senderCells(const TesselUserID& sender);
    template <std::size_t size>
    void cells(const char (&kind)[size], QStringView text, QStringView address);
};

qint64 CsvRenderer::write(const CsvOptions& options) {
    if (options.hasByteOrderMark) out_.append("\xef\xbb\xbf");
    if (options.hasHeader)
        out_.append("file,sequence,timestamp,service,user,name,kind,text,address\r\n");
    ByteBuffer file;
    appendCell(file, options.file);
    file.append(',');
    ByteBuffer noSender;
    appendCell(noSender, log_.serviceID().rawValue);
    noSender.append(",,,");
    qint64 messages = 0;
    for (std::size_t i = 0; i < log_.events().size(); ++i) {
        const Event& event = log_.events()[i];
        if (!event.isMessage()) continue;
        sequence_ = event.sequence;
        out_.append(file.view());
        out_.appendNumber(event.sequence);
        out_.append(',');
        timeCell(event.timestamp);
        out_.append(event.sender ? senderCells(*event.sender) : noSender.view());
        std::visit(*this, event.value);
        out_.append("\r\n");
        if (beginsMessage(log_, i)) ++messages;
    }
    out_.flush();
    return messages;
}

void CsvRenderer::timeCell(foundation::Date time) {
    const auto isSpecial = [](char16_t) { return false; };
    if (const auto text = time.iso8601()) out_.appendText(*text, isSpecial, [](char) {});
    out_.append(',');
}

QByteArrayView CsvRenderer::senderCells(const TesselUserID& sender) {
    if (&sender != sender_) {
        senderCells_.clear();
        appendCell(senderCells_, sender.serviceID.rawValue);
        senderCells_.append(',');
        appendCell(senderCells_, sender.userID);
        senderCells_.append(',');
        appendCell(senderCells_, senderName(sender, contacts_));
        senderCells_.append(',');
        sender_ = &sender;
    }
    return senderCells_.view();
}

template <std::size_t size>
void CsvRenderer::cells(const char (&kind)[size], QStringView text, QStringView address) {
    out_.append(kind);
    out_.append(',');
    appendCell(out_, text);
    out_.append(',');
    appendCell(out_, address);
}

}  // namespace

qint64 writeCsv(const TesselChatLog& log, const ContactsStore& contacts, const ByteSink& output,
                const CsvOptions& options, const AttachmentPaths& attachments) {
    return CsvRenderer(log, contacts, output, attachments).write(options);
}

}  // namespace vell
