#pragma once
// SPDX-License-Identifier: MIT
//
// Opens addresses with the desktop's own programs, and explains when that fails.

#include <QUrl>

class QWidget;

namespace vell {

/// Opens the address with the program that the desktop has for it. Where there is none, or it fails
/// at once, a message over the window says so.
void openWithDesktop(const QUrl& url, QWidget& window);

}  // namespace vell
