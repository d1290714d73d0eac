#pragma once
// SPDX-License-Identifier: MIT
//
// Small pieces that several windows share: addresses from the information dictionary, links, the
// secondary label colour, opening things through the desktop.

#include <QLabel>
#include <QString>
#include <QUrl>

namespace vell {

struct ApplicationInfo;

/// Addresses that the information dictionary names.
enum class InfoAddress { support, supportMail, publisher, bugReporter, identiconProject };

/// The address from the information dictionary, or the built-in default when the key is missing, no
/// string or no valid address.
[[nodiscard]] QString address(InfoAddress which);

/// Where "Report Bug …" leads.
[[nodiscard]] QUrl reportBug();

/// "Version: 1.0 (17)".
[[nodiscard]] QString versionLine(const ApplicationInfo& info);

/// A label in the palette's secondary label colour, following palette changes.
[[nodiscard]] QLabel* secondaryLabel(const QString& text);

/// A label that opens the address when clicked or pressed.
[[nodiscard]] QLabel* linkLabel(const QString& text, const QString& address);

/// Shows the window in front of all others, with the keyboard in it.
void bringToFront(QWidget& window);

/// The text as a menu shows it to the letter, without mnemonics and shortcuts.
[[nodiscard]] QString menuText(QString text);

/// Opens the address with the desktop's own program; answers whether one took it.
bool openWithDesktop(const QUrl& url);

}  // namespace vell
