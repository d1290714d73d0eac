// SPDX-License-Identifier: MIT
#include "app/documents/find/match_model.h"

#include <algorithm>
#include <utility>

#include "app/documents/find/chat_search.h"
#include "foundation/line_break.h"
#include "identity/contacts/sender_name.h"
#include "toolkit/date_formatters.h"
#include "toolkit/shown_text.h"

namespace vell {
namespace {

// Characters of a line before a match, and from its start.
constexpr qsizetype mostBefore = 24;
constexpr qsizetype mostFrom = 200;

}  // namespace

MatchModel::Line lineAround(QStringView text, qsizetype from, qsizetype to) {
    const auto isBreak = [&](qsizetype at) { return foundation::isLineBreak(text[at].unicode()); };
    qsizetype start = from;
    while (start > 0 && from - start < mostBefore && !isBreak(start - 1))
        --start;
    const bool isCut = start > 0 && !isBreak(start - 1);
    if (isCut) {
        const qsizetype blank = text.indexOf(u' ', start);
        if (blank >= 0 && blank < from) {
            start = blank + 1;
        } else if (text[start].isLowSurrogate()) {
            ++start;
        }
    }
    qsizetype end = from;
    while (end < text.size() && end - from < mostFrom && !isBreak(end))
        ++end;
    if (end < text.size() && text[end].isLowSurrogate()) --end;
    MatchModel::Line line;
    if (isCut) line.text = QStringLiteral("…");
    line.start = line.text.size() + from - start;
    line.length = std::min(to, end) - from;
    line.text += text.sliced(start, end - start);
    return line;
}

MatchModel::MatchModel(std::shared_ptr<const TesselChatLog> log, const ContactsStore& contacts,
                       QObject* parent)
    : QAbstractListModel(parent),
      log_(std::move(log)),
      contacts_(contacts),
      matches_(std::make_shared<FoundSpans>()) {}

void MatchModel::setMatches(std::shared_ptr<const FoundSpans> matches) {
    beginResetModel();
    matches_ = std::move(matches);
    count_ = matches_->size();
    endResetModel();
}

void MatchModel::grow(qsizetype first, qsizetype count) {
    beginInsertRows({}, static_cast<int>(first), static_cast<int>(first + count - 1));
    count_ += count;
    endInsertRows();
}

int MatchModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(count_);
}

QVariant MatchModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= matches_->size()) return {};
    const TextSpan& match = (*matches_)[index.row()];
    const auto& event = log_->event(match.from.row);
    const auto line = [&] {
        return lineAround(searchableText(event), match.from.offset, match.to.offset);
    };
    const auto origin = [&] {
        QString date = daySeparatorFormatter().string(event.timestamp);
        if (!event.sender) return date;
        //: "Jonas, 1 May 2005, 20:05"
        return tr("%1, %2").arg(shownText(senderName(*event.sender, contacts_)), date);
    };
    switch (role) {
        case Qt::DisplayRole:
            return line().text;
        case startRole:
            return line().start;
        case lengthRole:
            return line().length;
        case originRole:
            return origin();
        case Qt::AccessibleTextRole:
            //: "Jonas, 1 May 2005, 20:05: the line that holds the match"
            return tr("%1: %2").arg(origin(), line().text);
        default:
            return {};
    }
}

}  // namespace vell
