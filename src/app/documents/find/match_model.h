#pragma once
// SPDX-License-Identifier: MIT
//
// MatchModel: the matches of a search as rows for a view, each with its line of text, who wrote it
// and when. Lines are cut out when they are asked for.

#include <QAbstractListModel>
#include <memory>

#include "timeline/text/found_spans.h"
#include "transcript/chat_log.h"

namespace vell {

class ContactsStore;

class MatchModel final : public QAbstractListModel {
    Q_OBJECT

  public:
    enum Role { startRole = Qt::UserRole, lengthRole, originRole };

    /// What surrounds a match on its line, bounded, and where it is in there.
    struct Line {
        QString text;
        qsizetype start = 0;
        qsizetype length = 0;
    };

    MatchModel(std::shared_ptr<const TesselChatLog> log, const ContactsStore& contacts,
               QObject* parent = nullptr);

    /// Shows another list of matches, as long as it is now.
    void setMatches(std::shared_ptr<const FoundSpans> matches);
    /// Shows that this many were added to the list.
    void grow(qsizetype first, qsizetype count);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

  private:
    std::shared_ptr<const TesselChatLog> log_;
    const ContactsStore& contacts_;
    std::shared_ptr<const FoundSpans> matches_;
    qsizetype count_ = 0;
};

[[nodiscard]] MatchModel::Line lineAround(QStringView text, qsizetype from, qsizetype to);

}  // namespace vell
