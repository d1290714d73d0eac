#pragma once
// SPDX-License-Identifier: MIT
//
// QueryTerm: the terms of a query as it was typed, and the query with some of them replaced: what
// buttons beside a search field change.
//
//     withTerms("dinner in:2009", "in", {"2008"})  →  "in:2008 dinner"

#include <QString>
#include <QStringList>
#include <vector>

namespace vell {

/// What stands before a colon outside quotation marks, and the rest.
struct QueryTerm {
    QString key;
    QString text;
    bool isQuoted = false;
    qsizetype position = 0;  ///< in what was typed
    qsizetype length = 0;
};
[[nodiscard]] std::vector<QueryTerm> queryTerms(const QString& text);

/// The values of the terms with this key.
[[nodiscard]] QStringList termValues(const QString& text, const QString& key);
/// The query with just these values for the key. They go before the words, of which the last one
/// may be unfinished.
[[nodiscard]] QString withTerms(const QString& text, const QString& key, const QStringList& values);

}  // namespace vell
