// SPDX-License-Identifier: MIT
#include "library/query_terms.h"

#include <algorithm>
#include <utility>

namespace vell {
namespace {

bool isQuotationMark(QChar c) {
    return c == u'"' || c == u'\u201c' || c == u'\u201d';
}

QString written(const QString& key, QString value) {
    value.removeIf(isQuotationMark);
    const bool needsMarks =
        std::any_of(value.cbegin(), value.cend(), [](QChar c) { return c.isSpace(); });
    return needsMarks ? key + QStringLiteral(":\"") + value + u'"' : key + u':' + value;
}

}  // namespace

std::vector<QueryTerm> queryTerms(const QString& text) {
    std::vector<QueryTerm> terms;
    for (qsizetype i = 0; i < text.size();) {
        if (text[i].isSpace()) {
            ++i;
            continue;
        }
        QueryTerm term;
        term.position = i;
        bool isOpen = false;
        for (; i < text.size() && (isOpen || !text[i].isSpace()); ++i) {
            const QChar c = text[i];
            if (isQuotationMark(c)) {
                if (isOpen && term.key.isEmpty()) {
                    ++i;
                    break;
                }
                isOpen = !isOpen;
                term.isQuoted = true;
            } else if (c == u':' && !term.isQuoted && term.key.isEmpty() && !term.text.isEmpty()) {
                term.key = std::exchange(term.text, {});
            } else {
                term.text += c;
            }
        }
        term.length = i - term.position;
        terms.push_back(std::move(term));
    }
    return terms;
}

QStringList termValues(const QString& text, const QString& key) {
    QStringList values;
    for (const QueryTerm& term : queryTerms(text)) {
        if (term.key == key) values.append(term.text);
    }
    return values;
}

QString withTerms(const QString& text, const QString& key, const QStringList& values) {
    QString words;
    qsizetype kept = 0;
    for (const QueryTerm& term : queryTerms(text)) {
        if (term.key != key) continue;
        words += text.mid(kept, term.position - kept);
        kept = term.position + term.length;
        while (kept < text.size() && text[kept].isSpace())
            ++kept;
    }
    words += text.mid(kept);
    QStringList terms;
    for (const QString& value : values)
        terms.append(written(key, value));
    if (terms.isEmpty()) return words;
    return terms.join(u' ') + u' ' + words;
}

}  // namespace vell
