#pragma once
// SPDX-License-Identifier: MIT
//
// Settings: what the program remembers between sessions, one object shared by all windows, which
// its signals keep in step. Window thread only.

#include <QByteArray>
#include <QObject>
#include <QSettings>
#include <QStringList>
#include <optional>

namespace vell {

/// Lists of paths as settings keep them; names that aren't Unicode survive.
[[nodiscard]] QStringList storedPaths(const QSettings& store, const QString& key);
void storePaths(QSettings& store, const QString& key, const QStringList& paths);

class Settings final : public QObject {
    Q_OBJECT

  public:
    /// Where one transcript's window stood and how far it was scrolled.
    struct WindowPlace {
        QByteArray geometry;
        /// The row at the top of the view, and how many points of it are above.
        qint64 topRow = 0;
        double pointsAbove = 0;
    };

    explicit Settings(QObject* parent = nullptr);

    /// The timeline's font size in points, any integer; 16 until changed.
    [[nodiscard]] qint64 timelineFontSize() const;
    void setTimelineFontSize(qint64 points);

    /// Whether the windows of the last session are opened again; true until changed.
    [[nodiscard]] bool restoresWindows() const;
    void setRestoresWindows(bool restores);
    [[nodiscard]] QStringList lastWindows() const;
    void setLastWindows(const QStringList& paths);

    [[nodiscard]] std::optional<WindowPlace> windowPlace(const QString& path) const;
    /// Remembers a place; only the 500 most recent ones are kept.
    void setWindowPlace(const QString& path, const WindowPlace& place);

    /// vCard files and folders that the user has chosen.
    [[nodiscard]] QStringList contactsFiles() const;
    void setContactsFiles(const QStringList& paths);

    /// The folders of the library, and which addresses in it are one person, a line each.
    [[nodiscard]] QStringList libraryFolders() const;
    void setLibraryFolders(const QStringList& paths);
    [[nodiscard]] QStringList libraryAliases() const;
    void setLibraryAliases(const QStringList& lines);

    /// The name of the time zone that chats are shown in; empty for that of the computer.
    [[nodiscard]] QString timeZone() const;
    void setTimeZone(const QString& zone);
    /// Those that were chosen last, the latest first.
    [[nodiscard]] QStringList recentTimeZones() const;

  Q_SIGNALS:
    void timeZoneChanged(const QString& zone);
    void timelineFontSizeChanged(qint64 points);
    void contactsFilesChanged(const QStringList& paths);
    void libraryFoldersChanged();
    void libraryAliasesChanged();

  private:
    QSettings store_;
};

}  // namespace vell
