// SPDX-License-Identifier: MIT
#include "export/commonmark.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <ostream>

namespace vell::test {
namespace {

struct Node {
    QString name;
    QXmlStreamAttributes attributes;
    QString text;
    std::vector<Node> children;
};

/// The element that the reader has just begun.
Node readElement(QXmlStreamReader& xml) {
    Node node{xml.name().toString(), xml.attributes(), {}, {}};
    while (!xml.atEnd() && xml.readNext() != QXmlStreamReader::EndElement) {
        if (xml.isStartElement()) node.children.push_back(readElement(xml));
        if (xml.isCharacters()) node.text += xml.text();
    }
    return node;
}

/// Adds the words below a node. Returns false when there is something else.
bool collect(const Node& node, Block& block) {
    bool good = true;
    for (const Node& child : node.children) {
        if (child.name == u"text") {
            block.text += child.text;
        } else if (child.name == u"linebreak") {
            block.text += u'\n';
        } else if (child.name == u"link" || child.name == u"image") {
            block.destinations +=
                child.attributes.value(QLatin1StringView("destination")).toString();
            good = collect(child, block) && good;
        } else {
            good = good && child.name == u"html_inline" && child.text == u"<!-- -->";
        }
    }
    return good;
}

Block blockOf(const Node& node) {
    const bool isEmphasis = node.children.size() == 1 && node.children[0].name == u"emph";
    const Node& content = isEmphasis || node.name == u"block_quote" ? node.children[0] : node;
    Block block;
    const bool isGood = collect(content, block);
    if (!isGood) return block;
    if (node.name == u"paragraph" && !isEmphasis) block.kind = Block::Kind::paragraph;
    if (node.name == u"paragraph" && isEmphasis && block.text.endsWith(u':')) {
        block.kind = Block::Kind::senderHeading;
        block.text.chop(1);
    }
    if (node.name == u"heading") {
        const bool isSystem =
            isEmphasis && node.attributes.value(QLatin1StringView("level")) == u"2";
        block.kind = isSystem ? Block::Kind::system : Block::Kind::heading;
    }
    if (node.name == u"block_quote" && content.name == u"paragraph") {
        block.kind = Block::Kind::quote;
    }
    return block;
}

std::vector<Block> blocksOf(const QString& xml) {
    std::vector<Block> blocks;
    QXmlStreamReader reader(xml);
    reader.readNextStartElement();
    for (const Node& node : readElement(reader).children) {
        if (node.name == u"thematic_break") {
            blocks.push_back({Block::Kind::rule, {}, {}});
        } else if (node.children.empty()) {
            const bool isQuote = node.name == u"block_quote";
            blocks.push_back({isQuote ? Block::Kind::quote : Block::Kind::other, {}, {}});
        } else if (node.name == u"block_quote" && node.children.size() > 1) {
            blocks.push_back({Block::Kind::other, QStringLiteral("several blocks"), {}});
        } else {
            blocks.push_back(blockOf(node));
        }
    }
    return blocks;
}

}  // namespace

void PrintTo(const Block& block, std::ostream* out) {
    static const char* const names[] = {"sender",    "heading", "system", "quote",
                                        "paragraph", "rule",    "other"};
    *out << names[static_cast<int>(block.kind)] << " \"" << block.text.toStdString() << "\" -> "
         << block.destinations.join(QStringLiteral(" | ")).toStdString();
}

bool hasMarkdownReader() {
    return !QStandardPaths::findExecutable(QStringLiteral("cmark")).isEmpty();
}

std::vector<std::vector<Block>> readMarkdown(const QStringList& texts) {
    const QTemporaryDir directory;
    QStringList names;
    for (const QString& text : texts) {
        names += directory.filePath(QString::number(names.size()));
        QFile file(names.last());
        if (file.open(QFile::WriteOnly)) file.write(text.toUtf8());
    }
    QProcess shell;
    shell.start(QStringLiteral("sh"),
                QStringList{QStringLiteral("-c"),
                            QStringLiteral("for f; do cmark -t xml \"$f\" || exit 1; done"),
                            QStringLiteral("sh")} +
                    names);
    shell.waitForFinished(-1);
    std::vector<std::vector<Block>> result;
    const QString output = QString::fromUtf8(shell.readAllStandardOutput());
    for (const QString& xml : output.split(QStringLiteral("<?xml"), Qt::SkipEmptyParts)) {
        result.push_back(blocksOf(QStringLiteral("<?xml") + xml));
    }
    return result;
}

}  // namespace vell::test
