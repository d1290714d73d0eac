#pragma once
// SPDX-License-Identifier: MIT
//
// An archive as text, for those who look after such files: each value on a line of its own that
// says where it stands, so that lines can be searched, compared and cut out. Knows no classes.
//
//     #7 @531 InstantMessage
//     #7.Sender = #9
//     #9.ID = "ada"
//
// Objects are written once, in the order of their numbers, by which they are referred to.

#include <QByteArrayView>
#include <QString>
#include <functional>

#include "foundation/data.h"

namespace vell::inspector {

using Output = std::function<void(QByteArrayView)>;

/// Writes a keyed archive, another property list or a non-keyed archive, as far as it can be read.
/// Returns why that isn't to its end; empty if it is. Takes time in proportion to the file.
[[nodiscard]] QString writeArchive(const foundation::Data& data, const Output& output);

}  // namespace vell::inspector
