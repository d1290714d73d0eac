#pragma once
// SPDX-License-Identifier: MIT
//
// The time zone that chats are shown in: what the menu and the status bar call it, and the menu to
// choose it from. All windows share one, as they share one font size.

#include <QMenu>
#include <QString>

namespace vell {

class Settings;

/// "Buenos Aires" for "America/Argentina/Buenos_Aires".
[[nodiscard]] QString cityOf(const QString& zone);

/// Makes dates be shown, and days be marked, in the zone; an empty or unknown one is the
/// computer's.
void useTimeZone(const QString& zone);

class TimeZoneMenu final : public QMenu {
    Q_OBJECT

  public:
    /// The settings must outlive the menu; dialogs stand over the window.
    TimeZoneMenu(Settings& settings, QWidget& window);

  private:
    void fill();
    void chooseOther();

    Settings& settings_;
    QWidget& window_;
};

}  // namespace vell
