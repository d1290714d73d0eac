#pragma once
// SPDX-License-Identifier: MIT
//
// What windows ask of the desktop around them, and the addresses that the information dictionary
// names.

#include <QString>
#include <QUrl>

class QWidget;

namespace vell {

/// Addresses that the information dictionary names.
enum class InfoAddress { support, supportMail, publisher, bugReporter, identiconProject };

/// The address from the information dictionary, or the built-in default when the key is missing, no
/// string or no valid address.
[[nodiscard]] QString address(InfoAddress which);

/// Where "Report Bug …" leads.
[[nodiscard]] QUrl reportBug();

/// Shows the window in front of all others, with the keyboard in it.
void bringToFront(QWidget& window);

/// The text escaped for a menu, where it has no mnemonics and shortcuts.
[[nodiscard]] QString menuText(const QString& text);

}  // namespace vell
