#pragma once
// SPDX-License-Identifier: MIT
//
// The units in which people select text: characters as they read them, words, paragraphs. Only the
// neighbourhood of a place is looked at, so that a text of a million characters costs no more.

#include <QStringView>

#include "timeline/text/text_range.h"

namespace vell {

enum class TextUnit { character, word, paragraph };

/// The word or paragraph at an offset; for characters the place itself, nothing wide.
[[nodiscard]] TextRange unitAround(QStringView text, qsizetype offset, TextUnit unit);
/// The next place behind an offset at which a character or word ends; the text's end at most.
[[nodiscard]] qsizetype nextPlace(QStringView text, qsizetype offset, TextUnit unit);
/// The place before, at which a character or word starts; 0 at least.
[[nodiscard]] qsizetype previousPlace(QStringView text, qsizetype offset, TextUnit unit);

}  // namespace vell
