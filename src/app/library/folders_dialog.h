#pragma once
// SPDX-License-Identifier: MIT
//
// The dialog with the library's folders, for adding and removing some.

class QWidget;

namespace vell {

class Library;

void showFoldersDialog(Library& library, QWidget& window);

}  // namespace vell
