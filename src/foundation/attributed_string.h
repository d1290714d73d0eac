#pragma once
// SPDX-License-Identifier: MIT
//
// AttributedString: text and, for stretches of it, the three attributes that a transcript's
// reader looks at. Archived runs are kept as they are: never joined, empty ones left out.

#include <QString>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "foundation/file_wrapper.h"
#include "foundation/value.h"

namespace foundation {

/// What is kept of an attribute dictionary; each value as archived, of whatever class.
struct Attributes {
    Value link;            ///< "NSLink"
    Value attachment;      ///< "NSAttachment"
    Value inlineFilePath;  ///< "FezInlineFilePath"
};

/// A stretch of a text with the same attributes.
struct AttributeRun {
    qsizetype length = 0;  ///< UTF-16 units, at least 1
    /// Null when none of the three is set.
    std::shared_ptr<const Attributes> attributes;
};

/// Runs in text order. Most texts have one, which takes no memory of its own.
class AttributeRuns {
  public:
    AttributeRuns() = default;
    /// None when its length is 0.
    AttributeRuns(AttributeRun only) : first_(std::move(only)) {}
    AttributeRuns(std::vector<AttributeRun> runs);

    [[nodiscard]] std::span<const AttributeRun> span() const {
        return more_.empty() ? std::span(&first_, first_.length > 0) : std::span(more_);
    }
    void append(AttributeRun run);

  private:
    AttributeRun first_;
    std::vector<AttributeRun> more_;  ///< all of them, where there are several
};

class AttributedString final : public Object {
  public:
    using Run = AttributeRun;

    /// The runs must cover the text exactly.
    AttributedString(QString text, AttributeRuns runs);
    /// One run over the whole text.
    AttributedString(QString text, std::shared_ptr<const Attributes> attributes)
        : text_(std::move(text)), runs_({text_.size(), std::move(attributes)}) {}

    [[nodiscard]] const QString& text() const { return text_; }
    /// In text order; none for empty text.
    [[nodiscard]] std::span<const Run> runs() const { return runs_.span(); }

    [[nodiscard]] QByteArray className() const override { return "NSAttributedString"; }
    /// The text.
    [[nodiscard]] QString description() const override { return text_; }

  private:
    QString text_;
    AttributeRuns runs_;
};

/// Builds runs that cover a text whatever the archive says: clamps at its end, leaves out empty
/// runs, and leaves what is not covered without attributes.
class AttributeRunBuilder {
  public:
    explicit AttributeRunBuilder(qsizetype textLength) : remaining_(textLength) {}
    void add(quint64 length, std::shared_ptr<const Attributes> attributes);
    [[nodiscard]] AttributeRuns finish();

  private:
    qsizetype remaining_;
    AttributeRuns runs_;
};

/// "NSTextAttachment" and its subclasses.
class TextAttachment final : public Object {
  public:
    std::shared_ptr<const FileWrapper> fileWrapper;
    std::optional<Data> contents;
    /// A uniform type identifier.
    std::optional<QString> fileType;

    [[nodiscard]] QByteArray className() const override { return "NSTextAttachment"; }
};

}  // namespace foundation
