#pragma once
// SPDX-License-Identifier: MIT
//
// Commands: the program as its windows see it. Window thread only.

#include <QCoreApplication>
#include <QStringList>
#include <QWidgetList>

namespace vell {

class Commands {
    Q_DECLARE_TR_FUNCTIONS(Commands)

  public:
    Commands() = default;
    virtual ~Commands() = default;
    Commands(const Commands&) = delete;
    Commands& operator=(const Commands&) = delete;

    /// Opens transcripts in windows of their own, folders in the search window; a file that is open
    /// already has its window raised. Absolute paths, or "-" for standard input.
    virtual void open(const QStringList& paths) = 0;
    virtual void showOpenDialog(QWidget* parent) = 0;
    /// Whether the saved search is among the program's resources.
    [[nodiscard]] virtual bool offersFindFiles() const = 0;
    virtual void findFiles() = 0;
    virtual void showLibrary() = 0;
    /// Whether the library has a folder.
    [[nodiscard]] virtual bool hasLibrary() const = 0;
    /// Shows the library, with these folders as well.
    virtual void addToLibrary(const QStringList& folders) = 0;
    virtual void showAbout() = 0;
    virtual void showPreferences() = 0;
    virtual void quit() = 0;
    /// All open windows: first those of transcripts, oldest first.
    [[nodiscard]] virtual QWidgetList windows() const = 0;
};

}  // namespace vell
