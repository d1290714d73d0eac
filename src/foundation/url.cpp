// SPDX-License-Identifier: MIT
#include "foundation/url.h"

#include <QStringView>
#include <algorithm>
#include <optional>

namespace foundation {

namespace {

/// The five components of a reference; an absent one differs from an empty one.
struct Components {
    std::optional<QStringView> scheme;
    std::optional<QStringView> authority;
    QStringView path;
    std::optional<QStringView> query;
    std::optional<QStringView> fragment;
};

bool isScheme(QStringView text) {
    const auto isLetter = [](QChar c) {
        return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
    };
    return !text.isEmpty() && isLetter(text[0]) &&
           std::all_of(text.begin(), text.end(), [&](QChar c) {
               return isLetter(c) || (c >= u'0' && c <= u'9') || c == u'+' || c == u'-' ||
                      c == u'.';
           });
}

Components split(QStringView text) {
    Components parts;
    if (const auto hash = text.indexOf(u'#'); hash >= 0) {
        parts.fragment = text.sliced(hash + 1);
        text.truncate(hash);
    }
    if (const auto mark = text.indexOf(u'?'); mark >= 0) {
        parts.query = text.sliced(mark + 1);
        text.truncate(mark);
    }
    if (const auto colon = text.indexOf(u':'); colon >= 0 && isScheme(text.first(colon))) {
        parts.scheme = text.first(colon);
        text = text.sliced(colon + 1);
    }
    if (text.startsWith(u"//")) {
        text = text.sliced(2);
        const auto slash = text.indexOf(u'/');
        parts.authority = slash < 0 ? text : text.first(slash);
        text = slash < 0 ? QStringView() : text.sliced(slash);
    }
    parts.path = text;
    return parts;
}

void removeLastSegment(QString& output) {
    output.truncate(std::max<qsizetype>(output.lastIndexOf(u'/'), 0));
}

/// RFC 3986, section 5.2.4. A prefix that a step shortens keeps its last slash, so the input only
/// ever loses characters at its front.
QString removeDotSegments(QStringView input) {
    QString output;
    output.reserve(input.size());
    while (!input.isEmpty()) {
        if (input.startsWith(u"../")) {
            input = input.sliced(3);
        } else if (input.startsWith(u"./") || input.startsWith(u"/./")) {
            input = input.sliced(2);
        } else if (input == u"/.") {
            input = input.first(1);
        } else if (input.startsWith(u"/../")) {
            input = input.sliced(3);
            removeLastSegment(output);
        } else if (input == u"/..") {
            input = input.first(1);
            removeLastSegment(output);
        } else if (input == u"." || input == u"..") {
            break;
        } else {
            const auto slash = input.indexOf(u'/', 1);
            const auto length = slash < 0 ? input.size() : slash;
            output += input.first(length);
            input = input.sliced(length);
        }
    }
    return output;
}

/// RFC 3986, section 5.2.3.
QString mergedPath(const Components& base, QStringView path) {
    if (base.authority && base.path.isEmpty()) return u'/' + path.toString();
    QString merged = base.path.first(base.path.lastIndexOf(u'/') + 1).toString();
    return merged += path;
}

/// RFC 3986, section 5.3.
QString recompose(const Components& parts, QStringView path) {
    QString text;
    if (parts.scheme) (text += *parts.scheme) += u':';
    if (parts.authority) (text += u"//") += *parts.authority;
    text += path;
    if (parts.query) (text += u'?') += *parts.query;
    if (parts.fragment) (text += u'#') += *parts.fragment;
    return text;
}

/// RFC 3986, section 5.2.2.
QString resolve(QStringView relative, QStringView baseText) {
    const Components base = split(baseText);
    Components target = split(relative);
    if (target.scheme) return recompose(target, removeDotSegments(target.path));
    target.scheme = base.scheme;
    if (target.authority) return recompose(target, removeDotSegments(target.path));
    target.authority = base.authority;
    if (target.path.isEmpty()) {
        if (!target.query) target.query = base.query;
        return recompose(target, base.path);
    }
    if (target.path.startsWith(u'/')) return recompose(target, removeDotSegments(target.path));
    return recompose(target, removeDotSegments(mergedPath(base, target.path)));
}

}  // namespace

QString URL::resolved(const QString& relative, const URL& base) {
    return resolve(relative, base.absoluteString());
}

}  // namespace foundation
