#pragma once
// SPDX-License-Identifier: MIT
//
// InOrder: hands on results that come from several threads in the order of their jobs. Those that
// come early wait.

#include <functional>
#include <map>
#include <utility>

namespace vell {

/// Each result has its job.
template <class Result>
class InOrder {
  public:
    explicit InOrder(std::function<void(const Result&)> take) : take_(std::move(take)) {}

    void add(Result result) {
        const std::size_t number = result.job.number;
        waiting_.emplace(number, std::move(result));
        while (!waiting_.empty() && waiting_.begin()->first == next_) {
            take_(waiting_.begin()->second);
            waiting_.erase(waiting_.begin());
            ++next_;
        }
    }
    [[nodiscard]] bool has(std::size_t number) const {
        return number < next_ || waiting_.contains(number);
    }

  private:
    const std::function<void(const Result&)> take_;
    std::map<std::size_t, Result> waiting_;  // by number
    std::size_t next_ = 0;
};

}  // namespace vell
