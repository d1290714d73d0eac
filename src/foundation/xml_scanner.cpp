// SPDX-License-Identifier: MIT
#include "foundation/xml_scanner.h"

namespace foundation {

bool XmlScanner::skip(QByteArrayView text) {
    if (!rest_.startsWith(text)) return false;
    rest_ = rest_.sliced(text.size());
    return true;
}

void XmlScanner::skipBlanks() {
    while (!rest_.isEmpty() && isBlank(rest_.front()))
        rest_ = rest_.sliced(1);
}

bool XmlScanner::skipPast(QByteArrayView mark) {
    const qsizetype at = rest_.indexOf(mark);
    if (at < 0) return false;
    rest_ = rest_.sliced(at + mark.size());
    return true;
}

bool XmlScanner::skipMisc(bool mayHoldDocumentType) {
    while (true) {
        skipBlanks();
        bool isWhole = false;
        if (skip("<!--"))
            isWhole = skipPast("-->");
        else if (skip("<?"))
            isWhole = skipPast("?>");
        else if (mayHoldDocumentType && skip("<!DOCTYPE"))
            isWhole = skipDocumentType();
        else
            return true;
        if (!isWhole) return false;
    }
}

bool XmlScanner::skipQuoted() {
    const qsizetype close = rest_.indexOf(rest_.front(), 1);
    if (close < 0) return false;
    rest_ = rest_.sliced(close + 1);
    return true;
}

bool XmlScanner::skipDocumentType() {
    int brackets = 0;
    while (!rest_.isEmpty()) {
        const char c = rest_.front();
        if (c == '"' || c == '\'') {
            if (!skipQuoted()) return false;
        } else if (skip("<!--")) {
            if (!skipPast("-->")) return false;
        } else {
            rest_ = rest_.sliced(1);
            if (c == '[') ++brackets;
            if (c == ']') --brackets;
            if (c == '>' && brackets == 0) return true;
        }
    }
    return false;
}

QByteArrayView XmlScanner::readUntil(QByteArrayView characters) {
    qsizetype size = 0;
    while (size < rest_.size() && !characters.contains(rest_[size]))
        ++size;
    const QByteArrayView read = rest_.first(size);
    rest_ = rest_.sliced(size);
    return read;
}

std::optional<XmlScanner::Attribute> XmlScanner::readAttribute() {
    skipBlanks();
    Attribute attribute{readName(), {}};
    skipBlanks();
    if (attribute.name.isEmpty() || !skip("=")) return {};
    skipBlanks();
    if (!rest_.startsWith('"') && !rest_.startsWith('\'')) return {};
    const QByteArrayView quoted = rest_;
    if (!skipQuoted()) return {};
    attribute.value = quoted.sliced(1, quoted.size() - rest_.size() - 2);
    return attribute;
}

std::optional<bool> XmlScanner::skipTagEnd() {
    while (!rest_.isEmpty()) {
        const char c = rest_.front();
        if (c == '"' || c == '\'') {
            if (!skipQuoted()) return {};
            continue;
        }
        if (c == '<') return {};
        if (skip("/>")) return true;
        rest_ = rest_.sliced(1);
        if (c == '>') return false;
    }
    return {};
}

}  // namespace foundation
