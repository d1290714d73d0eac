#pragma once
// SPDX-License-Identifier: MIT
//
// QuitSignals: lets SIGHUP, SIGINT and SIGTERM quit the program in order, so that windows and
// places are remembered. One object for the whole run; does nothing on systems without these
// signals.

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
