#pragma once
// SPDX-License-Identifier: MIT
//
// Characters that look like others, by ICU's tables of confusable characters. Any thread.

#include <QString>

namespace vell {

/// The text with every character beyond ASCII that looks like ASCII replaced by what it looks like:
/// "раypal⁄x" with Cyrillic letters and a fraction slash becomes "paypal/x".
[[nodiscard]] QString withPlainLookAlikes(const QString& text);

}  // namespace vell
