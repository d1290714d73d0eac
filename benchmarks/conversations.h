#pragma once
// SPDX-License-Identifier: MIT
//
// Long transcripts that look like people's: three of them, who write in bursts and pause for hours.
// The same arguments give the same bytes.

#include <QByteArray>
#include <cstddef>

namespace benchmarks {

enum class Form { keyed, nonKeyed };

/// Messages of 50 characters, one in ten with a link.
[[nodiscard]] QByteArray conversation(std::size_t messages, Form form);

/// A keyed transcript that consists of pictures of a megabyte each, and hardly anything else.
[[nodiscard]] QByteArray pictures(std::size_t megabytes);

}  // namespace benchmarks
