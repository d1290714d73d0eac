// SPDX-License-Identifier: MIT
#include "transcript/run.h"

#include <utility>

#include "foundation/picture.h"

namespace vell {

using namespace Qt::StringLiterals;
using foundation::AttributedString;
using foundation::FileWrapper;
using foundation::TextAttachment;

namespace {

/// Cuts a text; the whole of it is shared instead of copied.
QString slice(const QString& text, qsizetype begin, qsizetype length) {
    return length == text.size() ? text : text.sliced(begin, length);
}

/// Whether the place lies between the two halves of a character.
bool splitsCharacter(const QString& text, qsizetype place) {
    return place > 0 && place < text.size() && text[place].isLowSurrogate() &&
           text[place - 1].isHighSurrogate();
}

/// A plain run that grows while the ranges are read.
class PlainStretch {
  public:
    /// The range must lie behind those added before.
    void add(const QString& text, qsizetype begin, qsizetype length) {
        if (length == 0) return;
        if (length_ > 0 && begin != begin_ + length_) {
            before_ += text.sliced(begin_, length_);
            length_ = 0;
        }
        if (length_ == 0) begin_ = begin;
        length_ += length;
    }
    [[nodiscard]] QString cut(const QString& text) const {
        const QString last = slice(text, begin_, length_);
        return before_.isEmpty() ? last : before_ + last;
    }

  private:
    QString before_;  // what came before a gap
    qsizetype begin_ = 0;
    qsizetype length_ = 0;
};

/// The run of an attachment; nothing when it has neither wrapper nor contents.
std::optional<Run> attachmentRun(const foundation::Attributes& attributes,
                                 const TextAttachment& attachment) {
    std::optional<QString> path;
    if (const QString* stored = attributes.inlineFilePath.string())
        path = *stored;
    else if (attachment.fileWrapper)
        path = attachment.fileWrapper->filename;

    const auto& wrapper = attachment.fileWrapper;
    std::optional<foundation::Data> contents = attachment.contents;
    if (wrapper) contents = wrapper->contents ? wrapper->contents->load() : std::nullopt;
    if (contents && (!wrapper || wrapper->isRegularFile())) {
        if (auto picture = foundation::recognisePicture(*contents)) {
            return TesselChatLog::Image(*std::move(picture), *contents,
                                        attachment.fileType.value_or(u"public.image"_s),
                                        std::move(path));
        }
    }
    if (wrapper) return FileRun{wrapper, std::move(path)};
    if (!contents) return std::nullopt;
    auto made = std::make_shared<FileWrapper>(*contents);
    made->filename = path;
    return FileRun{std::move(made), std::move(path)};
}

}  // namespace

Extraction extractRuns(const AttributedString& string) {
    Extraction result;
    extractRuns(string, result);
    return result;
}

void extractRuns(const AttributedString& string, Extraction& extraction) {
    const QString& text = string.text();
    std::vector<Run>& result = extraction.runs;
    std::optional<PlainStretch> plain;  // the last run so far, not yet cut
    const auto finishPlain = [&] {
        if (plain) result.emplace_back(PlainRun{plain->cut(text)});
        plain.reset();
    };

    qsizetype position = 0;
    for (const AttributedString::Run& range : string.runs()) {
        const qsizetype begin = position;
        position += range.length;
        // A range that ends inside a character has no text of its own.
        const bool isWhole = !splitsCharacter(text, begin) && !splitsCharacter(text, position);
        const qsizetype length = isWhole ? range.length : 0;
        if (range.attributes) {
            if (auto url = range.attributes->link.object<foundation::URL>()) {
                finishPlain();
                result.emplace_back(
                    TesselChatLog::Link{std::move(url), slice(text, begin, length)});
                continue;
            }
            if (const auto attachment = range.attributes->attachment.object<TextAttachment>()) {
                finishPlain();
                if (auto run = attachmentRun(*range.attributes, *attachment)) {
                    result.push_back(*std::move(run));
                } else {
                    extraction.errors.append(u"ERROR: unexpected attachment run: "_s +
                                             attachment->description());
                    plain.emplace().add(text, begin, length);
                }
                continue;
            }
        }
        if (!plain) plain.emplace();
        plain->add(text, begin, length);
    }
    finishPlain();
}

RunCensus countRuns(const AttributedString& string) {
    RunCensus result;
    bool lastIsPlain = false;
    for (const AttributedString::Run& range : string.runs()) {
        const bool isPlain =
            !range.attributes || (!range.attributes->link.object<foundation::URL>() &&
                                  !range.attributes->attachment.object<TextAttachment>());
        if (!isPlain || !lastIsPlain) ++result.runs;
        lastIsPlain = isPlain;
    }
    if (result.runs > 1) result.copiedUnits = static_cast<std::size_t>(string.text().size());
    return result;
}

}  // namespace vell
