#pragma once
// SPDX-License-Identifier: MIT
//
// What the programs without windows share: their arguments, standard streams and messages.

#include <QString>
#include <QStringList>

#include "identity/contacts/contacts_store.h"

namespace vell {

/// Why arguments make no sense.
struct UsageError {
    QString reason;
};

/// A text to print instead of doing anything: help or version.
struct Information {
    QString text;
};

/// To be called first; returns the arguments without the program's name. Files that are opened
/// later never become a standard stream that the shell has closed, and a file beyond the limit is
/// reported like a full disk.
[[nodiscard]] QStringList startProgram(int argc, char** argv);

/// The contacts in vCard files. Throws UsageError.
[[nodiscard]] ContactsStore::Table contactsIn(const QStringList& files);

/// Writes to standard error at once.
void writeError(const QString& text);
/// Writes to standard output. Throws WriteError.
void writeOutput(const QString& text);
/// On one line, with blanks for what moves a terminal's cursor or turns the direction of words.
[[nodiscard]] QString oneLine(QString text);

}  // namespace vell
