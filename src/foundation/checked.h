#pragma once
// SPDX-License-Identifier: MIT
//
// Integer arithmetic that never wraps. For our own counters an overflow is a bug and stops the
// program; numbers read from a file are malformed then, and the result is empty.

#include <concepts>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace foundation {

/// Stops the program with a message: our own bug, never because of bad input.
[[noreturn]] inline void fatal(const char* message) {
    std::fprintf(stderr, "vell: internal error: %s\n", message);
    std::abort();
}

/// The sum, or nothing when it does not fit.
template <std::integral T>
[[nodiscard]] constexpr std::optional<T> tryAdd(T a, T b) {
    T result{};
    if (__builtin_add_overflow(a, b, &result)) return std::nullopt;
    return result;
}

/// The product, or nothing when it does not fit.
template <std::integral T>
[[nodiscard]] constexpr std::optional<T> tryMultiply(T a, T b) {
    T result{};
    if (__builtin_mul_overflow(a, b, &result)) return std::nullopt;
    return result;
}

/// The sum; an overflow stops the program.
template <std::integral T>
[[nodiscard]] constexpr T checkedAdd(T a, T b) {
    const auto result = tryAdd(a, b);
    if (!result) fatal("integer overflow in an addition");
    return *result;
}

/// The difference; an overflow stops the program.
template <std::integral T>
[[nodiscard]] constexpr T checkedSubtract(T a, T b) {
    T result{};
    if (__builtin_sub_overflow(a, b, &result)) fatal("integer overflow in a subtraction");
    return result;
}

}  // namespace foundation
