#pragma once
// SPDX-License-Identifier: MIT
//
// Stretches of text: within one text, and across the rows of a timeline. Offsets count UTF-16
// units.

#include <QtGlobal>
#include <compare>

namespace vell {

/// The offsets [from, to) of one text.
struct TextRange {
    qsizetype from = 0;
    qsizetype to = 0;
    friend bool operator==(const TextRange&, const TextRange&) = default;
};

/// A place in the text that a row shows.
struct TextPosition {
    qsizetype row = 0;  ///< index into the log's events
    qsizetype offset = 0;
    friend auto operator<=>(const TextPosition&, const TextPosition&) = default;
};

/// What lies between two places: a selection, or a match of a search.
struct TextSpan {
    TextPosition from;
    TextPosition to;
    friend bool operator==(const TextSpan&, const TextSpan&) = default;
};

}  // namespace vell
