// SPDX-License-Identifier: MIT
#include "app/documents/selection_data.h"

#include <QCoreApplication>
#include <limits>
#include <utility>

#include "export/expansion.h"
#include "export/html.h"
#include "export/markdown.h"
#include "export/plain_lines.h"
#include "identity/contacts/contacts_store.h"
#include "timeline/input/selection.h"
#include "transcript/content_types.h"

namespace vell {
namespace {

using Event = TesselChatLog::Event;

QString plainType() {
    return QStringLiteral("text/plain");
}

QString htmlType() {
    return QStringLiteral("text/html");
}

QString markdownName() {
    return markdownType.mimeName.toString();
}

bool isSeparator(const Event& event) {
    return std::holds_alternative<TesselChatLog::Session>(event.value) ||
           std::holds_alternative<TesselChatLog::NewDay>(event.value) ||
           std::holds_alternative<TesselChatLog::NewMinute>(event.value);
}

/// How many messages and, if they count, separators show something; at most `most`.
qsizetype countMessages(const TesselChatLog& log, const TextSpan& span, bool withSeparators,
                        qsizetype most) {
    qsizetype count = 0;
    for (qsizetype row = span.from.row; row <= span.to.row && count < most; ++row) {
        const auto index = static_cast<size_t>(row);
        if (!showsSomething(log, span, row)) continue;
        if (!withSeparators && isSeparator(log.events()[index])) continue;
        if (count == 0 || !log.continuesMessage(index)) ++count;
    }
    return count;
}

/// A text, cut where the selection begins and ends; other events can't be.
void cut(Event& event, qsizetype from, qsizetype to) {
    if (auto* text = std::get_if<TesselChatLog::PlainText>(&event.value))
        text->text = text->text.mid(from, to - from);
}

struct LimitExceeded {};

}  // namespace

SelectionData::SelectionData(ShownChat chat, const ContactsStore& contacts, const TextSpan& span)
    : chat_(std::move(chat)),
      contacts_(contacts),
      span_(span),
      isOneMessage_(countMessages(*chat_.log, span, true, 2) < 2) {
    // A clipboard's manager asks after the program's objects have gone.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &SelectionData::makeAll);
}

qsizetype SelectionData::count() const {
    const TesselChatLog& log = *chat_.log;
    if (isOneMessage_) return selectedText(log, span_).size();
    return countMessages(log, span_, false, std::numeric_limits<qsizetype>::max());
}

QStringList SelectionData::formats() const {
    if (!chat_.log) return QMimeData::formats();
    if (isOneMessage_) return {plainType()};
    return {plainType(), markdownName(), htmlType()};
}

bool SelectionData::hasFormat(const QString& format) const {
    return formats().contains(format);
}

TesselChatLog SelectionData::selectedLog() const {
    const TesselChatLog& log = *chat_.log;
    std::vector<Event> events;
    std::vector<bool> continuations;
    for (qsizetype row = span_.from.row; row <= span_.to.row; ++row) {
        const auto index = static_cast<size_t>(row);
        const Event& event = log.events()[index];
        const bool isMarker = std::holds_alternative<TesselChatLog::User>(event.value);
        if (!isMarker && !showsSomething(log, span_, row)) continue;
        continuations.push_back(!events.empty() && log.continuesMessage(index));
        events.push_back(event);
        if (row == span_.to.row) cut(events.back(), 0, span_.to.offset);
        if (row == span_.from.row)
            cut(events.back(), span_.from.offset, std::numeric_limits<int>::max());
    }
    return log.withEvents(std::move(events), std::move(continuations));
}

bool SelectionData::isOutOfProportion() const {
    if (isOneMessage_) return false;
    return expandsBeyond(
        exportLimit(chat_.fileSize), *chat_.expansion, contacts_,
        [this](const ByteSink& output) { writeHtml(selectedLog(), contacts_, output); });
}

QVariant SelectionData::retrieveData(const QString& format, QMetaType type) const {
    if (!chat_.log) return QMimeData::retrieveData(format, type);
    if (!hasFormat(format)) return {};
    if (isOneMessage_) return selectedText(*chat_.log, span_);
    QByteArray bytes;
    const quint64 limit = exportLimit(chat_.fileSize);
    const ByteSink output = [&](QByteArrayView more) {
        if (static_cast<quint64>(bytes.size() + more.size()) > limit) throw LimitExceeded();
        bytes.append(more);
    };
    const TesselChatLog log = selectedLog();
    try {
        if (format == htmlType()) {
            writeHtml(log, contacts_, output);
        } else if (format == plainType()) {
            writePlainLines(log, contacts_, output);
        } else {
            writeMarkdown(log, contacts_, output);
        }
    } catch (const LimitExceeded&) {
        return {};
    }
    if (format == markdownName()) return bytes;
    return QString::fromUtf8(bytes);
}

void SelectionData::makeAll() {
    const QStringList wanted = formats();
    for (const QString& format : wanted) {
        const QVariant made = retrieveData(format, {});
        QMimeData::setData(format, made.metaType().id() == QMetaType::QString
                                       ? made.toString().toUtf8()
                                       : made.toByteArray());
    }
    chat_.log.reset();
}

}  // namespace vell
