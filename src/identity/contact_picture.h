#pragma once
// SPDX-License-Identifier: MIT
//
// Pictures of contacts, brought to the size that everything shows them at.

#include <QByteArray>
#include <QImage>
#include <optional>

namespace vell {

/// The picture stretched to Style::userIconSize, at two pixels a point; nothing when the bytes are
/// no picture that can be decoded. Any thread.
[[nodiscard]] std::optional<QImage> contactPicture(const QByteArray& encoded);

}  // namespace vell
