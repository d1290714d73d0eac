#pragma once
// SPDX-License-Identifier: MIT
//
// QuitSignals: makes the signals with which sessions and terminals end a program quit it in order,
// so that windows and places are remembered. One object for the whole run; does nothing where there
// are no such signals.

#include <QObject>

class QSocketNotifier;

namespace vell {

class QuitSignals final : public QObject {
    Q_OBJECT

  public:
    explicit QuitSignals(QObject* parent = nullptr);
    ~QuitSignals() override;

  private:
    QSocketNotifier* notifier_ = nullptr;
};

}  // namespace vell
