// SPDX-License-Identifier: MIT
#include "picture/svg_check.h"

#include <QXmlStreamReader>
#include <algorithm>
#include <initializer_list>

namespace vell {

using namespace Qt::StringLiterals;

namespace {

const QString otherFiles = u"that refer to other files are not drawn"_s;
const QString otherContent = u"that hold scripts or other documents are not drawn"_s;
const QString otherEncoding = u"in other encodings than UTF-8 and UTF-16 are not drawn"_s;
const QString documentType = u"with a document type are not drawn"_s;
const QString instructions = u"with processing instructions are not drawn"_s;

bool isOneOf(QStringView text, std::initializer_list<const char16_t*> names) {
    return std::any_of(names.begin(), names.end(), [&](const char16_t* name) {
        return text.compare(QStringView(name), Qt::CaseInsensitive) == 0;
    });
}

/// Whether each "url(…)" names a part of the same document. Escapes and comments could spell one
/// in many ways.
bool staysInside(QStringView style) {
    if (style.contains(u'\\') || style.contains(u"/*")) return false;
    if (style.contains(u"@import", Qt::CaseInsensitive)) return false;
    for (qsizetype at = 0; (at = style.indexOf(u"url", at, Qt::CaseInsensitive)) >= 0;) {
        at += 3;
        QStringView rest = style.sliced(at).trimmed();
        if (!rest.startsWith(u'(')) continue;
        rest = rest.sliced(1).trimmed();
        if (rest.startsWith(u'"') || rest.startsWith(u'\'')) rest = rest.sliced(1).trimmed();
        if (!rest.startsWith(u'#')) return false;
    }
    return true;
}

QString whyNotElement(const QXmlStreamReader& xml) {
    if (isOneOf(xml.name(), {u"image", u"feImage"})) return otherFiles;
    if (isOneOf(xml.name(), {u"script", u"foreignObject"})) return otherContent;
    for (const QXmlStreamAttribute& attribute : xml.attributes()) {
        const QStringView value = attribute.value().trimmed();
        const bool isReference = isOneOf(attribute.name(), {u"href", u"src"});
        if (isReference ? !value.startsWith(u'#') : !staysInside(value)) return otherFiles;
    }
    return {};
}

bool isUnicode(QStringView encoding) {
    return encoding.isEmpty() || isOneOf(encoding, {u"UTF-8", u"UTF-16", u"UTF-16LE", u"UTF-16BE"});
}

}  // namespace

QString whyNotToDraw(const QByteArray& svg) {
    QXmlStreamReader xml(svg);
    QString style;
    int styles = 0;
    while (!xml.atEnd()) {
        QString problem;
        switch (xml.readNext()) {
            case QXmlStreamReader::StartDocument:
                if (!isUnicode(xml.documentEncoding())) problem = otherEncoding;
                break;
            case QXmlStreamReader::DTD:
            case QXmlStreamReader::EntityReference:
                problem = documentType;
                break;
            case QXmlStreamReader::ProcessingInstruction:
                problem = instructions;
                break;
            case QXmlStreamReader::StartElement:
                problem = whyNotElement(xml);
                if (styles > 0 || isOneOf(xml.name(), {u"style"})) ++styles;
                break;
            case QXmlStreamReader::EndElement:
                if (styles > 0 && --styles == 0) {
                    if (!staysInside(style)) problem = otherFiles;
                    style.clear();
                }
                break;
            case QXmlStreamReader::Characters:
                if (styles > 0) style += xml.text();
                break;
            default:
                break;
        }
        if (!problem.isEmpty()) return problem;
    }
    if (!xml.hasError()) return {};
    // One that Qt doesn't know stops the reader at once.
    return isUnicode(xml.documentEncoding()) ? u"with malformed XML are not drawn"_s
                                             : otherEncoding;
}

}  // namespace vell
