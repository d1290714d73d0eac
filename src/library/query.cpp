// SPDX-License-Identifier: MIT
#include "library/query.h"

#include <QDateTime>
#include <QRegularExpression>
#include <algorithm>

#include "library/query_terms.h"
#include "toolkit/text_search.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

/// The days that "2008", "2008-07" or "2008-07-14" names; `end` isn't among them.
struct Days {
    QDate begin;
    QDate end;
};

Days daysNamed(const QString& text) {
    static const QRegularExpression form(u"^(\\d{4})(?:-(\\d{1,2}))?(?:-(\\d{1,2}))?$"_s);
    const auto match = form.match(text);
    const QString month = match.captured(2);
    const QString day = match.captured(3);
    const QDate begin(match.captured(1).toInt(), month.isEmpty() ? 1 : month.toInt(),
                      day.isEmpty() ? 1 : day.toInt());
    if (!match.hasMatch() || !begin.isValid())
        throw QueryError{
            u"not a day, month or year: %1 (such as 2009-07-14, 2009-07, 2009)"_s.arg(text)};
    if (!day.isEmpty()) return {begin, begin.addDays(1)};
    return {begin, month.isEmpty() ? begin.addYears(1) : begin.addMonths(1)};
}

double startOf(QDate day) {
    return static_cast<double>(
        day.startOfDay().toSecsSinceEpoch() -
        QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC).toSecsSinceEpoch());
}

quint8 kindNamed(const QString& name) {
    if (name == "picture"_L1) return ContentKinds::picture;
    if (name == "link"_L1) return ContentKinds::link;
    if (name == "file"_L1) return ContentKinds::file;
    throw QueryError{u"a message has a picture, link or file, not: "_s + name};
}

std::optional<Query::Phrase> phraseOf(const QString& text, TextTokenizer& tokenizer) {
    Query::Phrase phrase;
    tokenizer.read(text);
    for (const TextToken& token : tokenizer.tokens())
        phrase.tokens.push_back(tokenizer.folded(token).toString());
    if (phrase.tokens.empty()) return std::nullopt;
    return phrase;
}

/// Whether the phrase stands at the token; `isWhole` says whether its prefix is a whole word.
bool standsAt(const Query::Phrase& phrase, const TextTokenizer& text, std::size_t at,
              bool& isWhole) {
    const auto& tokens = text.tokens();
    if (at + phrase.tokens.size() > tokens.size()) return false;
    for (std::size_t i = 0; i < phrase.tokens.size(); ++i) {
        const QStringView token = text.folded(tokens[at + i]);
        const bool isLast = i + 1 == phrase.tokens.size();
        if (isLast && phrase.isPrefix ? !token.startsWith(phrase.tokens[i])
                                      : token != phrase.tokens[i])
            return false;
        if (isLast) isWhole = token.size() == phrase.tokens[i].size();
    }
    return true;
}

/// 0 when it is somewhere as whole words, 1 with a prefix, nothing else.
std::optional<int> find(const Query::Phrase& phrase, const TextTokenizer& text) {
    std::optional<int> found;
    for (std::size_t at = 0; at < text.tokens().size(); ++at) {
        bool isWhole = false;
        if (!standsAt(phrase, text, at, isWhole)) continue;
        if (isWhole) return 0;
        found = 1;
    }
    return found;
}

}  // namespace

Query Query::parse(const QString& text) {
    Query query;
    TextTokenizer tokenizer;
    bool endsWithWord = false;
    for (const QueryTerm& term : queryTerms(text)) {
        endsWithWord = false;
        if (!term.key.isEmpty() && query.addFilter(term.key, term.text)) continue;
        const QString words = term.key.isEmpty() ? term.text : term.key + u':' + term.text;
        if (auto phrase = phraseOf(words, tokenizer)) {
            query.phrases.push_back(*std::move(phrase));
            endsWithWord = !term.isQuoted;
        }
    }
    // A blank behind it says that the word is complete.
    if (endsWithWord && !text.back().isSpace()) query.phrases.back().isPrefix = true;
    return query;
}

bool Query::addFilter(QStringView key, const QString& value) {
    if (key == "from"_L1) {
        from.append(value);
    } else if (key == "with"_L1) {
        with.append(value);
    } else if (key == "has"_L1) {
        has |= kindNamed(value);
    } else if (key == "before"_L1) {
        end = std::min(end, startOf(daysNamed(value).begin));
    } else if (key == "after"_L1) {
        begin = std::max(begin, startOf(daysNamed(value).end));
    } else if (key == "in"_L1) {
        begin = std::max(begin, startOf(daysNamed(value).begin));
        end = std::min(end, startOf(daysNamed(value).end));
    } else {
        return false;
    }
    return true;
}

bool Query::isEmpty() const {
    return phrases.empty() && from.isEmpty() && with.isEmpty() && has == 0 &&
           begin == -std::numeric_limits<double>::infinity() &&
           end == std::numeric_limits<double>::infinity();
}

bool Query::accepts(foundation::Date date, quint8 kinds) const {
    const double at = date.secondsSinceReferenceDate;
    const bool isLimited = begin != -std::numeric_limits<double>::infinity() ||
                           end != std::numeric_limits<double>::infinity();
    return (kinds & has) == has && (!isLimited || (at >= begin && at < end));
}

std::optional<int> Query::rank(const TextTokenizer& text) const {
    int worst = 1;
    for (const Phrase& phrase : phrases) {
        const auto found = find(phrase, text);
        if (!found) return std::nullopt;
        worst = std::max(worst, 1 + *found);
    }
    const Query sideBySide = narrowedTo(0);
    if (sideBySide.phrases.empty() || find(sideBySide.phrases.front(), text)) return 0;
    return worst;
}

Query Query::narrowedTo(int rank) const {
    Query result = *this;
    if (rank >= worstRank) return result;
    for (Phrase& phrase : result.phrases)
        phrase.isPrefix = false;
    if (rank == 0 && result.phrases.size() > 1) {
        Phrase all;
        for (const Phrase& phrase : result.phrases)
            all.tokens.insert(all.tokens.end(), phrase.tokens.begin(), phrase.tokens.end());
        result.phrases = {all};
    }
    return result;
}

QString foldedText(const QString& text) {
    QString result;
    for (const uint character : text.toUcs4())
        appendFolded(character, result);
    return result;
}

bool containsFolded(const QString& name, const QString& typed) {
    return foldedText(name).contains(foldedText(typed));
}

std::vector<TextStretch> stretchesOf(const Query& query, const TextTokenizer& text) {
    const auto& tokens = text.tokens();
    std::vector<TextStretch> result;
    for (std::size_t at = 0; at < tokens.size(); ++at) {
        qsizetype end = 0;
        for (const Query::Phrase& phrase : query.phrases) {
            bool isWhole = false;
            if (!standsAt(phrase, text, at, isWhole)) continue;
            const TextToken& last = tokens[at + phrase.tokens.size() - 1];
            end = std::max(end, last.position + last.length);
        }
        if (end == 0) continue;
        const qsizetype begin = tokens[at].position;
        if (!result.empty() && begin < result.back().position + result.back().length) {
            TextStretch& before = result.back();
            before.length = std::max(before.length, end - before.position);
        } else {
            result.push_back({begin, end - begin});
        }
    }
    return result;
}

}  // namespace vell
