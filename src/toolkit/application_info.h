#pragma once
// SPDX-License-Identifier: MIT
//
// What the program says of itself: name, version, copyright and the like, from the information
// dictionary that is built into it. Values; any thread may read them.

#include <QHash>
#include <QIcon>
#include <QString>
#include <optional>
#include <variant>

#include "foundation/data.h"

namespace vell {

/// An application's bundle, of which only the information dictionary is asked for.
class Bundle {
  public:
    /// From an XML property list; malformed, it holds nothing.
    explicit Bundle(const foundation::Data& propertyList);
    /// The running program's own.
    static const Bundle& main();

    /// The value when it is a string.
    [[nodiscard]] std::optional<QString> info(const QString& key) const;
    /// The value when it is a number, its fraction cut off, or a string that spells an integer.
    [[nodiscard]] std::optional<qint64> infoInteger(const QString& key) const;

  private:
    QHash<QString, std::variant<QString, qint64>> info_;
};

struct ApplicationInfo {
    QString infoName;  ///< for the About window
    QString appName;
    QString version;
    QString build;
    std::optional<QString> copyright;
    std::optional<QString> credits;

    /// What the bundle leaves out is filled in: with the process name, and made-up versions.
    explicit ApplicationInfo(const Bundle& bundle);

    /// The running program's icon; null without windows.
    [[nodiscard]] static QIcon icon();

    friend bool operator==(const ApplicationInfo&, const ApplicationInfo&) = default;
};

/// Of the running program, built on each call.
[[nodiscard]] ApplicationInfo applicationInfo();

}  // namespace vell
