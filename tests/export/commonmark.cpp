// SPDX-License-Identifier: MIT
#include "export/commonmark.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <ostream>

namespace vell::test {
namespace {

struct Node {
    QString name;
    QString attributes;
    QString text;
    std::vector<Node> children;
};

QString decoded(QStringView xml) {
    QString text = xml.toString();
    text.replace(QStringLiteral("&lt;"), QStringLiteral("<"));
    text.replace(QStringLiteral("&gt;"), QStringLiteral(">"));
    text.replace(QStringLiteral("&quot;"), QStringLiteral("\""));
    return text.replace(QStringLiteral("&amp;"), QStringLiteral("&"));
}

QString attribute(const Node& node, QStringView name) {
    const QString start = name.toString() + QStringLiteral("=\"");
    const qsizetype at = node.attributes.indexOf(start);
    if (at < 0) return {};
    const qsizetype begin = at + start.size();
    return decoded(QStringView(node.attributes).sliced(begin).split(u'"').first());
}

/// The reader's XML is simpler than XML: no comments, no quotes around ">", text in leaves only.
class TreeParser {
  public:
    explicit TreeParser(QStringView xml) : rest_(xml) {}

    Node parse() {
        Node root;
        parseInto(root);
        return root;
    }

  private:
    QStringView rest_;

    void parseInto(Node& parent) {
        for (;;) {
            const qsizetype open = rest_.indexOf(u'<');
            const qsizetype close = rest_.indexOf(u'>', open);
            if (open < 0 || close < 0) return;
            const QStringView before = rest_.first(open);
            const QStringView tag = rest_.sliced(open + 1, close - open - 1);
            rest_ = rest_.sliced(close + 1);
            if (tag.startsWith(u'?') || tag.startsWith(u'!')) continue;
            if (tag.startsWith(u'/')) {
                if (parent.children.empty()) parent.text = decoded(before);
                return;
            }
            const bool isLeaf = tag.endsWith(u'/');
            Node node;
            node.name = tag.split(u' ').first().toString().remove(u'/');
            node.attributes = tag.toString();
            if (!isLeaf) parseInto(node);
            parent.children.push_back(std::move(node));
        }
    }
};

/// Adds the words below a node; false when there is something that is no word.
bool collect(const Node& node, Block& block) {
    bool good = true;
    for (const Node& child : node.children) {
        if (child.name == u"text") {
            block.text += child.text;
        } else if (child.name == u"linebreak") {
            block.text += u'\n';
        } else if (child.name == u"link" || child.name == u"image") {
            block.destinations += attribute(child, u"destination");
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
        const bool isSystem = isEmphasis && attribute(node, u"level") == u"2";
        block.kind = isSystem ? Block::Kind::system : Block::Kind::heading;
    }
    if (node.name == u"block_quote" && content.name == u"paragraph") {
        block.kind = Block::Kind::quote;
    }
    return block;
}

std::vector<Block> blocksOf(const QString& xml) {
    std::vector<Block> blocks;
    const Node root = TreeParser(xml).parse();
    for (const Node& node : root.children.at(0).children) {
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
