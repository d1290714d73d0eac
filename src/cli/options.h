#pragma once
// SPDX-License-Identifier: MIT
//
// What vell-export is to do, from its arguments.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "cli/standard_streams.h"
#include "export/format.h"
#include "foundation/calendar.h"

namespace vell {

struct Options {
    bool checks = false;             ///< instead of writing documents
    const Format* format = nullptr;  ///< never null
    QStringList files;               ///< or folders; "-" is standard input
    QString output;                  ///< "-" is standard output
    bool outputIsFolder = false;     ///< by its name, whether or not it exists
    bool force = false;
    bool update = false;  ///< only what is newer than its document
    bool merges = false;  ///< a document for each person and year
    bool index = false;   ///< a page that leads to all documents
    QString report;       ///< where the report goes; empty for none
    bool expand = false;  ///< also out of all proportion
    bool byteOrderMark = false;
    Pictures pictures = Pictures::embed;
    QString attachments;  ///< the folder for pictures and files; empty for none
    /// Whether something is written beside documents.
    [[nodiscard]] bool writesAttachments() const {
        return !attachments.isEmpty() || (pictures == Pictures::folder && format->showsPictures);
    }
    bool verbose = false;
    bool quiet = false;
    bool printsLoadLog = false;
    bool recovers = false;  ///< what is left of damaged files
    QStringList contacts;   ///< vCard files
    foundation::Calendar calendar;
    QByteArray dateLocale;
};

/// Reads the arguments, the program's name not among them, and the list of files that they name.
/// Throws UsageError or Information.
[[nodiscard]] Options parseOptions(const QStringList& arguments);

}  // namespace vell
