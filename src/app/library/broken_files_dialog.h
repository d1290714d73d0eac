#pragma once
// SPDX-License-Identifier: MIT
//
// The dialog that lists the library's files that couldn't be read, and why.

#include <functional>
#include <vector>

#include "library/file_list.h"

class QWidget;

namespace vell {

/// `open` tries to open one as a document, which fails with the load log.
void showBrokenFiles(const std::vector<BrokenFile>& files, QWidget& window,
                     const std::function<void(const QByteArray& path)>& open);

}  // namespace vell
