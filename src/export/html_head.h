#pragma once
// SPDX-License-Identifier: MIT
//
// What every page begins with: its language and direction, a policy that keeps browsers from
// loading anything but what it names, and its styles.

#include <QByteArray>
#include <QLocale>
#include <QStringView>

#include "export/byte_buffer.h"

namespace vell {

/// "en-GB"; "C" and "POSIX" are English.
[[nodiscard]] QLocale pageLocale(const QByteArray& dateLocale);

/// Up to the end of the head. The sources of pictures are those of a policy: "data: 'self'".
void appendHtmlHead(ByteBuffer& out, const QLocale& locale, QStringView title,
                    const QByteArray& css, QByteArrayView pictureSources);

}  // namespace vell
