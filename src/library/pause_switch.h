#pragma once
// SPDX-License-Identifier: MIT
//
// PauseSwitch: makes work wait that runs on other threads, and knows for how long it has.

#include <atomic>
#include <chrono>
#include <cstdint>

namespace vell {

class PauseSwitch {
  public:
    void set(bool isOn) {
        if (isOn_.exchange(isOn) == isOn) return;
        isOn ? since_ = now() : total_ += now() - since_;
    }
    [[nodiscard]] bool isOn() const { return isOn_; }
    /// Of all pauses that have ended.
    [[nodiscard]] std::chrono::milliseconds total() const {
        return std::chrono::milliseconds(total_);
    }

  private:
    std::atomic<bool> isOn_ = false;
    std::atomic<std::int64_t> since_ = 0;
    std::atomic<std::int64_t> total_ = 0;

    static std::int64_t now() {
        const auto time = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
    }
};

}  // namespace vell
