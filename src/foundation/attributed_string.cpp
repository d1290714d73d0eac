// SPDX-License-Identifier: MIT
#include "foundation/attributed_string.h"

#include <algorithm>
#include <utility>

#include "foundation/checked.h"

namespace foundation {

AttributeRuns::AttributeRuns(std::vector<AttributeRun> runs) {
    if (runs.size() == 1)
        first_ = std::move(runs.front());
    else
        more_ = std::move(runs);
}

void AttributeRuns::append(AttributeRun run) {
    if (more_.empty() && first_.length == 0) {
        first_ = std::move(run);
        return;
    }
    if (more_.empty()) more_.push_back(std::exchange(first_, {}));
    more_.push_back(std::move(run));
}

AttributedString::AttributedString(QString text, AttributeRuns runs)
    : text_(std::move(text)), runs_(std::move(runs)) {
    qsizetype covered = 0;
    for (const Run& run : runs_.span()) {
        if (run.length < 1) fatal("an attribute run without characters");
        covered = checkedAdd(covered, run.length);
    }
    if (covered != text_.size()) fatal("attribute runs do not cover their text");
}

void AttributeRunBuilder::add(quint64 length, std::shared_ptr<const Attributes> attributes) {
    const auto clamped = static_cast<qsizetype>(std::min(length, static_cast<quint64>(remaining_)));
    if (clamped == 0) return;
    remaining_ -= clamped;
    runs_.append({clamped, std::move(attributes)});
}

AttributeRuns AttributeRunBuilder::finish() {
    if (remaining_ > 0) add(static_cast<quint64>(remaining_), nullptr);
    return std::move(runs_);
}

}  // namespace foundation
