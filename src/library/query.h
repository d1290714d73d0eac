#pragma once
// SPDX-License-Identifier: MIT
//
// Query: what a person looks for in a library.
//
//     dinner "see you" from:anna with:ben before:2009-07 after:2008 in:2009 has:picture
//
// All words must be in one message, whole; of the last one the beginning is enough. Words in
// quotation marks stand side by side. `before:` and `after:` leave out the day, month or year that
// they name. Of several people after `from:` any may have written.

#include <QByteArray>
#include <QString>
#include <limits>
#include <optional>
#include <vector>

#include "library/conversation.h"
#include "toolkit/text_tokens.h"

namespace vell {

/// Why a query makes no sense.
struct QueryError {
    QString reason;
};

struct Query {
    /// Tokens that stand side by side.
    struct Phrase {
        std::vector<QString> tokens;  ///< folded; never empty
        bool isPrefix = false;        ///< the last token may go on

        friend bool operator==(const Phrase&, const Phrase&) = default;
    };

    std::vector<Phrase> phrases;
    QStringList from;
    QStringList with;
    quint8 has = 0;  ///< all of these kinds
    /// Seconds since 2001-01-01 UTC: from the first on, earlier than the second.
    double begin = -std::numeric_limits<double>::infinity();
    double end = std::numeric_limits<double>::infinity();

    /// Reads the language above; days are those of the local time zone. Throws QueryError.
    [[nodiscard]] static Query parse(const QString& text);
    /// What a term of the language adds: the value of `key:value`. False for an unknown key.
    bool addFilter(QStringView key, const QString& value);

    /// Whether nothing is looked for, so that every message would be found.
    [[nodiscard]] bool isEmpty() const;
    /// Whether a message of this date and these kinds may be found.
    [[nodiscard]] bool accepts(foundation::Date date, quint8 kinds) const;

    static constexpr int worstRank = 2;
    /// How well the text matches: 0 with the words side by side, 1 with whole words, 2 with the
    /// beginning of the last one; nothing when it doesn't.
    [[nodiscard]] std::optional<int> rank(const TextTokenizer& text) const;
    /// The query that finds just the texts of a rank or a better one.
    [[nodiscard]] Query narrowedTo(int rank) const;
};

/// The text without case and accents, as searches compare it.
[[nodiscard]] QString foldedText(const QString& text);
/// Whether the name contains what was typed, folded as texts are.
[[nodiscard]] bool containsFolded(const QString& name, const QString& typed);

/// A stretch of a text in UTF-16 units.
struct TextStretch {
    qsizetype position = 0;
    qsizetype length = 0;
};
/// Where the phrases are in the text that was read, in its order, none overlapping another.
[[nodiscard]] std::vector<TextStretch> stretchesOf(const Query& query, const TextTokenizer& text);

}  // namespace vell
