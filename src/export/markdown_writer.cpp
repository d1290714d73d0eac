// SPDX-License-Identifier: MIT
#include "export/markdown_writer.h"

#include <QByteArray>
#include <array>

namespace vell {
namespace {

/// The longest name of an HTML character reference has 31 letters.
constexpr qsizetype longestEntity = 31;
/// A number with more digits starts no list.
constexpr qsizetype longestListNumber = 9;

bool isAsciiAlphanumeric(char16_t unit) {
    return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'z') ||
           (unit >= u'A' && unit <= u'Z');
}

bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

/// The ASCII characters at which a scan stops: controls and what has a meaning in Markdown.
constexpr std::array<bool, 128> asciiStops = [] {
    std::array<bool, 128> stops{};
    for (std::size_t unit = 0; unit < 0x20; ++unit)
        stops[unit] = true;
    for (const char16_t unit : u"\\`*_[]<&~|!\x7f")
        stops[unit] = true;
    stops['\t'] = false;
    return stops;
}();

/// Headings, lists, rules and quotes, at a line's start.
bool startsBlock(char16_t unit) {
    return unit == u'#' || unit == u'+' || unit == u'-' || unit == u'=' || unit == u'>';
}

/// Beyond ASCII: controls, line and paragraph separators, and surrogates, which may be unpaired.
bool stopsScan(char16_t unit) {
    if (unit < 0x80) return asciiStops[unit];
    return unit < 0xA0 || unit == 0x2028 || unit == 0x2029 || QChar::isSurrogate(unit);
}

/// What an address must not contain literally.
bool isControl(char16_t unit) {
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == 0x2028 || unit == 0x2029;
}

qsizetype nextStop(QStringView text, qsizetype from) {
    const char16_t* const end = text.utf16() + text.size();
    const char16_t* at = text.utf16() + from;
    while (at != end && !stopsScan(*at))
        ++at;
    return at - text.utf16();
}

bool isSurrogatePair(QStringView text, qsizetype at) {
    return QChar::isHighSurrogate(text[at].unicode()) && at + 1 < text.size() &&
           QChar::isLowSurrogate(text[at + 1].unicode());
}

/// Whether an ampersand here would start a character reference.
bool startsEntity(QStringView text, qsizetype ampersand) {
    qsizetype at = ampersand + 1;
    if (at < text.size() && text[at] == u'#') return true;
    const qsizetype limit = qMin(text.size(), at + longestEntity);
    while (at < limit && isAsciiAlphanumeric(text[at].unicode()))
        ++at;
    return at > ampersand + 1 && at < text.size() && text[at] == u';';
}

/// Whether an underscore here stands inside a word, where it is no mark.
bool isInsideWord(QStringView text, qsizetype at) {
    return at > 0 && at + 1 < text.size() && isAsciiAlphanumeric(text[at - 1].unicode()) &&
           isAsciiAlphanumeric(text[at + 1].unicode());
}

/// scheme ":" and then anything but blanks, controls, "<" and ">".
bool isAutolink(QStringView address) {
    const qsizetype colon = address.indexOf(u':');
    if (colon < 2 || colon > 32 || !QChar(address[0]).isLetter()) return false;
    for (qsizetype i = 0; i < colon; ++i) {
        const char16_t unit = address[i].unicode();
        if (!isAsciiAlphanumeric(unit) && unit != u'+' && unit != u'.' && unit != u'-')
            return false;
    }
    for (qsizetype i = colon + 1; i < address.size(); ++i) {
        const char16_t unit = address[i].unicode();
        if (unit == u'<' || unit == u'>' || QChar::isSpace(unit) || unit < 0x20 ||
            (unit >= 0x7F && unit < 0xA0)) {
            return false;
        }
        if (unit == u'&' && startsEntity(address, i)) return false;
        if (QChar::isSurrogate(unit)) {
            if (!isSurrogatePair(address, i)) return false;
            ++i;
        }
    }
    return true;
}

}  // namespace

void MarkdownWriter::beginBlock(QStringView linePrefix) {
    prefix_ = linePrefix;
    out_ += prefix_;
    lineStart_ = sink_.size();
}

void MarkdownWriter::lineBreak() {
    out_ += u"\\\n";
    beginBlock(prefix_);
}

void MarkdownWriter::reference(char16_t unit) {
    out_ += u"&#";
    out_ += QString::number(unit);
    out_ += u';';
}

void MarkdownWriter::literal(QStringView text, Next next) {
    const qsizetype size = text.size();
    qsizetype lineBegin = 0;
    qsizetype clean = startLine(text, 0);  // everything before it has been written
    qsizetype at = clean;
    while (at < size) {
        at = nextStop(text, at);
        if (at == size) break;
        const char16_t unit = text[at].unicode();
        if (isSurrogatePair(text, at)) {
            at += 2;
            continue;
        }
        out_ += text.sliced(clean, at - clean);
        if (unit != u'\n' && unit != u'\r') {
            clean = at = escape(text, at, next);
            continue;
        }
        endLine(text, lineBegin, at);
        at += unit == u'\r' && at + 1 < size && text[at + 1] == u'\n' ? 2 : 1;
        lineBegin = at;
        // At the end of a block a backslash breaks no line.
        if (at == size && next == Next::blockEnd) {
            reference(u'\n');
            return;
        }
        lineBreak();
        clean = at = startLine(text, at);
    }
    out_ += text.sliced(clean);
    if (next != Next::more) endLine(text, lineBegin, size);
}

/// Escapes what has a meaning only at a line's start. Returns where to continue.
qsizetype MarkdownWriter::startLine(QStringView text, qsizetype at) {
    if (at >= text.size() || !isAtLineStart()) return at;
    const char16_t unit = text[at].unicode();
    if (unit == u'\n' || unit == u'\r') return at;
    if (QChar::isSpace(unit)) {
        reference(unit);
        return at + 1;
    }
    if (startsBlock(unit)) out_ += u'\\';
    if (!isDigit(unit)) return at;
    qsizetype end = at;
    while (end < text.size() && isDigit(text[end].unicode()))
        ++end;
    const bool isListNumber = end - at <= longestListNumber && end < text.size() &&
                              (text[end] == u'.' || text[end] == u')') &&
                              (end + 1 == text.size() || text[end + 1].isSpace());
    if (!isListNumber) return at;
    out_ += text.sliced(at, end - at);
    out_ += u'\\';
    return end;
}

/// Keeps white space that a reader would drop before a line's end.
void MarkdownWriter::endLine(QStringView text, qsizetype begin, qsizetype end) {
    if (end == begin) return;
    const QChar last = text[end - 1];
    if (!last.isSpace() || out_.back() != last) return;
    out_.chop(1);
    reference(last.unicode());
}

/// Writes the unit at which a scan has stopped. Returns where to continue.
qsizetype MarkdownWriter::escape(QStringView text, qsizetype at, Next next) {
    const char16_t unit = text[at].unicode();
    if (unit == 0 || QChar::isSurrogate(unit)) {
        out_ += QChar::ReplacementCharacter;
        return at + 1;
    }
    // Controls as well, so that the text can't command a terminal that shows it.
    if (unit < 0x20 || unit >= 0x7F) {
        reference(unit);
        return at + 1;
    }
    bool isPlain = false;
    if (unit == u'_') isPlain = isInsideWord(text, at);
    if (unit == u'&') isPlain = !startsEntity(text, at);
    // Only right before one of our links does it make it a picture.
    if (unit == u'!') isPlain = at + 1 < text.size() || next != Next::more;
    if (!isPlain) out_ += u'\\';
    out_ += unit;
    return at + 1;
}

void MarkdownWriter::link(const QString& address, const QString& title) {
    if (title.isEmpty() && isAutolink(address)) {
        out_ += u'<';
        out_ += address;
        out_ += u'>';
        return;
    }
    out_ += u'[';
    literal(title.isEmpty() ? address : title, Next::more);
    out_ += u']';
    destination(address);
}

void MarkdownWriter::image(const QString& name, const QString& path) {
    out_ += u"![";
    literal(name, Next::more);
    out_ += u']';
    destination(path);
}

void MarkdownWriter::destination(QStringView address) {
    out_ += u"(<";
    for (qsizetype at = 0; at < address.size(); ++at) {
        const QChar unit = address[at];
        const bool isEdge = at == 0 || at + 1 == address.size();
        if (isSurrogatePair(address, at)) {
            out_ += address.sliced(at++, 2);
        } else if (unit.isSurrogate()) {
            out_ += QChar::ReplacementCharacter;
        } else if (isControl(unit.unicode()) || (isEdge && unit == u' ')) {
            out_ += QLatin1StringView(QString(unit).toUtf8().toPercentEncoding());
        } else if (unit == u'&' && startsEntity(address, at)) {
            // Some readers look for references before they look for backslashes.
            out_ += u"&amp;";
        } else {
            if (unit == u'<' || unit == u'>' || unit == u'\\') out_ += u'\\';
            out_ += unit;
        }
    }
    out_ += u">)";
}

}  // namespace vell
