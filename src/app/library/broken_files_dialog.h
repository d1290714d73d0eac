#pragma once
// SPDX-License-Identifier: MIT
//
// The dialog that lists the library's files that couldn't be read, and why.

#include <vector>

#include "library/file_list.h"

class QWidget;

namespace vell {

void showBrokenFiles(const std::vector<BrokenFile>& files, QWidget& window);

}  // namespace vell
