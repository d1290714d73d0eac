#pragma once
// SPDX-License-Identifier: MIT
//
// RecentFiles: the transcripts opened lately, newest first, in our settings and in the desktop's
// recently-used list.

#include <QObject>
#include <QSettings>
#include <QStringList>

namespace vell {

class RecentFiles final : public QObject {
    Q_OBJECT

  public:
    static constexpr int limit = 15;

    explicit RecentFiles(QObject* parent = nullptr);

    [[nodiscard]] QStringList paths() const;
    void add(const QString& path);
    void remove(const QString& path);
    /// Forgets our list, and what we wrote into the desktop's.
    void clear();

  Q_SIGNALS:
    void changed();

  private:
    QSettings store_;
};

}  // namespace vell
