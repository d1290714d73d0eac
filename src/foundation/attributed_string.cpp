// SPDX-License-Identifier: MIT
#include "foundation/attributed_string.h"

#include <algorithm>
#include <utility>

#include "foundation/checked.h"

namespace foundation {

AttributedString::AttributedString(QString text, std::vector<Run> runs) : text_(std::move(text)) {
    qsizetype covered = 0;
    for (const Run& run : runs) {
        if (run.length < 1) fatal("an attribute run without characters");
        covered = checkedAdd(covered, run.length);
    }
    if (covered != text_.size()) fatal("attribute runs do not cover their text");
    if (runs.size() == 1)
        only_ = std::move(runs.front());
    else
        several_ = std::move(runs);
}

void AttributeRunBuilder::add(quint64 length, std::shared_ptr<const Attributes> attributes) {
    const auto clamped = static_cast<qsizetype>(std::min(length, static_cast<quint64>(remaining_)));
    if (clamped == 0) return;
    remaining_ -= clamped;
    runs_.push_back({clamped, std::move(attributes)});
}

std::vector<AttributedString::Run> AttributeRunBuilder::finish() {
    if (remaining_ > 0) add(static_cast<quint64>(remaining_), nullptr);
    return std::move(runs_);
}

}  // namespace foundation
