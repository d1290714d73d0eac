#pragma once
// SPDX-License-Identifier: MIT
//
// What of a row can be selected and copied, from its event alone: no row is laid out for it.

#include <QString>

#include "transcript/chat_log.h"

namespace vell {

/// Captions, and rows that show nothing, have no text to select.
[[nodiscard]] bool isSelectable(const TesselChatLog::Event& event);
/// The text as the row shows it; of a picture its file name, or what it is.
[[nodiscard]] QString rowText(const TesselChatLog::Event& event);
/// How many places of the row can be selected: the text's UTF-16 units; a picture is one.
[[nodiscard]] qsizetype selectableLength(const TesselChatLog::Event& event);
/// The file name a picture came with, without folders; empty when there is none.
[[nodiscard]] QString pictureName(const TesselChatLog::Image& image);

}  // namespace vell
