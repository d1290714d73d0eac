#pragma once
// SPDX-License-Identifier: MIT
//
// What must hold of any decoded graph: it can be walked and described, and texts are covered by
// their runs. Ends the program where it doesn't.

#include <cstdlib>
#include <unordered_set>

#include "foundation/attributed_string.h"

namespace fuzz {

class ValueCheck {
  public:
    void check(const foundation::Value& value) {
        if (value.description().size() > 16'000'000) std::abort();
        const auto object = value.object<foundation::Object>();
        // Shared parts are checked once: walking each path to them could take forever.
        if (!object || !seen_.insert(object.get()).second) return;
        if (const auto array = value.object<foundation::Array>()) {
            for (const auto& element : array->elements)
                check(element);
        } else if (const auto dictionary = value.object<foundation::Dictionary>()) {
            for (const auto& [key, held] : dictionary->pairs) {
                check(key);
                check(held);
            }
        } else if (const auto string = value.object<foundation::AttributedString>()) {
            checkRuns(*string);
        }
    }

  private:
    std::unordered_set<const foundation::Object*> seen_;

    void checkRuns(const foundation::AttributedString& string) {
        qsizetype covered = 0;
        for (const auto& run : string.runs()) {
            covered += run.length;
            if (!run.attributes) continue;
            check(run.attributes->link);
            check(run.attributes->attachment);
            check(run.attributes->inlineFilePath);
        }
        if (covered != string.text().size()) std::abort();
    }
};

}  // namespace fuzz
