#pragma once
// SPDX-License-Identifier: MIT
//
// A file to export, as it was read.

#include <sys/types.h>

#include <QString>
#include <optional>

#include "foundation/data.h"
#include "foundation/date.h"
#include "transcript/load_log.h"

namespace vell {

/// Why a file could not be read, in plain words.
struct ReadError {
    QString reason;
};

struct Input {
    QString name;                          ///< as given; "-" is standard input
    foundation::Data bytes;                ///< all of them
    qsizetype size = 0;                    ///< of the file, or of several files
    std::optional<foundation::Date> date;  ///< of its last change; unknown for "-"
    std::optional<mode_t> permissions;     ///< absent when it is no file on disk
};

/// Reads the whole file; links are followed. The log, if there is one, is started for this file,
/// and ends with the reason of a failure. Throws ReadError.
[[nodiscard]] Input readInput(const QString& name, TesselLoadLog* log);

}  // namespace vell
