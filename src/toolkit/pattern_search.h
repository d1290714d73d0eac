#pragma once
// SPDX-License-Identifier: MIT
//
// PatternSearch: finds a regular expression in many texts. ICU's expressions count their steps,
// bound their memory and ask now and then whether to go on, so that no pattern can take longer than
// it may: other engines offer a limit that can't depend on a text's length, and no way to stop.
// One thread at a time.

#include <QString>
#include <atomic>
#include <vector>

#include "toolkit/text_search.h"

struct URegularExpression;

namespace vell {

class PatternSearch {
  public:
    /// `isCancelled` outlives it and ends searches from another thread.
    PatternSearch(const QString& pattern, SearchOptions options,
                  const std::atomic<bool>& isCancelled);
    ~PatternSearch();
    PatternSearch(const PatternSearch&) = delete;
    PatternSearch& operator=(const PatternSearch&) = delete;

    /// Why the pattern can't be used, for people; empty when it can.
    [[nodiscard]] const QString& problem() const { return problem_; }
    /// Appends all matches that hold something, in text order. False where that took too long: some
    /// may be missing then.
    [[nodiscard]] bool find(QStringView text, std::vector<TextMatch>& matches);

  private:
    SearchOptions options_;
    const std::atomic<bool>& isCancelled_;
    QString problem_;
    URegularExpression* expression_ = nullptr;  // null without a usable pattern
    qsizetype mostSteps_ = 0;                   // for the text at hand

    static signed char goesOn(const void* search, int steps);
};

}  // namespace vell
