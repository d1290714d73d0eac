#pragma once
// SPDX-License-Identifier: MIT
//
// MarkdownWriter: appends to a Markdown text such that a CommonMark reader finds exactly the given
// words, whatever they contain. It knows where the current line began, since most marks have a
// meaning only there. Lines that it begins inside a block start with a prefix: "> " in a quote.

#include <QString>
#include <QStringView>

#include "export/text_sink.h"

namespace vell {

class MarkdownWriter {
  public:
    /// What comes after a literal.
    enum class Next {
        more,      ///< something on the same line
        line,      ///< another line of the same block
        blockEnd,  ///< nothing more in this block
    };

    /// The sink outlives the writer, which ends no pieces.
    explicit MarkdownWriter(TextSink& sink) : sink_(sink), out_(sink.text()) {}

    /// Starts a block and its first line; all its lines start with the prefix.
    void beginBlock(QStringView linePrefix);
    /// Literal text. CR LF, CR and LF are line breaks; NUL and unpaired surrogates become U+FFFD.
    void literal(QStringView text, Next next);
    /// A break between two lines of the same block.
    void lineBreak();
    /// Whether nothing is on the current line yet.
    [[nodiscard]] bool isAtLineStart() const { return sink_.size() == lineStart_; }
    /// An empty title: the address alone, in the short form where the syntax allows it.
    void link(const QString& address, const QString& title);
    void image(const QString& name, const QString& path);

  private:
    TextSink& sink_;
    QString& out_;
    QStringView prefix_;
    qsizetype lineStart_ = -1;

    void reference(char16_t unit);
    qsizetype startLine(QStringView text, qsizetype at);
    void endLine(QStringView text, qsizetype begin, qsizetype end);
    qsizetype escape(QStringView text, qsizetype at, Next next);
    void destination(QStringView address);
};

}  // namespace vell
