#pragma once
// SPDX-License-Identifier: MIT
//
// The bubble colours of everybody but a chat's owner, in the order in which they are handed out,
// then again from the start.

#include <array>

#include "toolkit/style.h"

namespace vell {

inline constexpr std::array participantStyles{Style::Aqua::lime,      Style::Aqua::grape,
                                              Style::Aqua::tangerine, Style::Aqua::indigo,
                                              Style::Aqua::ruby,      Style::Aqua::bondi};

}  // namespace vell
