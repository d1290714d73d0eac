// SPDX-License-Identifier: MIT
#include "transcript/run.h"

#include <utility>

#include "foundation/picture.h"
#include "foundation/print.h"

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

/// A plain stretch that is still growing while ranges are walked.
struct PlainStretch {
    qsizetype begin = 0;
    qsizetype length = 0;
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
    const auto& contents = wrapper ? wrapper->contents : attachment.contents;
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

std::vector<Run> extractRuns(const AttributedString& string) {
    std::vector<Run> result;
    extractRuns(string, result);
    return result;
}

void extractRuns(const AttributedString& string, std::vector<Run>& result) {
    const QString& text = string.text();
    std::optional<PlainStretch> plain;  // the last run so far, not yet cut
    const auto finishPlain = [&] {
        if (plain) result.emplace_back(PlainRun{slice(text, plain->begin, plain->length)});
        plain.reset();
    };

    qsizetype position = 0;
    for (const AttributedString::Run& range : string.runs()) {
        const qsizetype begin = position;
        position += range.length;
        if (range.attributes) {
            if (auto url = range.attributes->link.object<foundation::URL>()) {
                finishPlain();
                result.emplace_back(
                    TesselChatLog::Link{std::move(url), slice(text, begin, range.length)});
                continue;
            }
            if (const auto attachment = range.attributes->attachment.object<TextAttachment>()) {
                finishPlain();
                if (auto run = attachmentRun(*range.attributes, *attachment)) {
                    result.push_back(*std::move(run));
                } else {
                    foundation::print(u"ERROR: unexpected attachment run: "_s +
                                      attachment->description());
                    plain = {begin, range.length};
                }
                continue;
            }
        }
        if (!plain) plain = {begin, 0};
        plain->length += range.length;
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
