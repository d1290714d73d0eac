// SPDX-License-Identifier: MIT
#include "transcript/instant_message.h"

#include <utility>

#include "foundation/elided.h"
#include "foundation/object_memory.h"
#include "foundation/print.h"

namespace vell {

using namespace Qt::StringLiterals;
using foundation::AttributedString;

InstantMessage::InstantMessage(std::optional<foundation::Date> date,
                               std::optional<QString> original,
                               std::shared_ptr<const AttributedString> message, bool isRead,
                               std::shared_ptr<const foundation::Set> participantIds,
                               std::shared_ptr<const Presentity> sender,
                               std::shared_ptr<const Presentity> subject, quint32 flags)
    : date(date),
      originalMessage(std::move(original)),
      message(std::move(message)),
      sender(std::move(sender)),
      subject(std::move(subject)),
      participantIds(std::move(participantIds)),
      flags(flags),
      isRead(isRead) {}

foundation::Value InstantMessage::initWithCoder(foundation::Coder& coder) {
    auto result = foundation::makeObject<InstantMessage>(std::nullopt);
    result->archivedObject = coder.objectNumber();
    if (coder.isKeyed()) {
        result->sender = coder.decodeObject("Sender").object<Presentity>();
        result->subject = coder.decodeObject("Subject").object<Presentity>();
        const foundation::Value time = coder.decodeObject("Time");
        if (const foundation::Date* date = time.date()) result->date = *date;
        const foundation::Value original = coder.decodeObject("OriginalMessage");
        if (const QString* text = original.string()) result->originalMessage = *text;
        result->message = coder.decodeObject("MessageText").object<AttributedString>();
        const foundation::Value isRead = coder.decodeObject("IsRead");
        if (const foundation::Number* number = isRead.number()) result->isRead = number->toBool();
    } else {
        result->sender = coder.decodeObject().object<Presentity>();
        const foundation::Value time = coder.decodeObject();
        if (const foundation::Date* date = time.date()) result->date = *date;
        result->message = coder.decodeObject().object<AttributedString>();
        result->flags = coder.decodeUInt32().value_or(0);
    }
    return result;
}

QString InstantMessage::description() const {
    // Each text may be long, and shared by many messages.
    const auto part = [](const QString& text) {
        return foundation::elided(text, foundation::longestPrintedLine);
    };
    QString result = u"<Message:"_s;
    if (sender) result += u' ' + part(sender->accountName);
    if (originalMessage) result += u" \""_s + part(*originalMessage) + u'"';
    if (date) result += u" date="_s + date->description();
    if (isRead) result += u" read"_s;
    if (participantIds) result += u" parts="_s + participantIds->description();
    if (subject) result += u" subject="_s + subject->description();
    if (message) result += u" message="_s + part(message->description());
    if (flags != 0) result += u" flags="_s + QString::number(flags);
    return result + u'>';
}

}  // namespace vell
