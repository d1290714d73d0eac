#pragma once
// SPDX-License-Identifier: MIT
//
// What the program shows when it is started without a file: recent transcripts, and the two ways to
// others.

#include <QListWidget>
#include <QWidget>

namespace vell {

class Application;

class WelcomeWindow final : public QWidget {
    Q_OBJECT

  public:
    explicit WelcomeWindow(Application& application);

  private:
    void fill();
    [[nodiscard]] QWidget* commandColumn();
    [[nodiscard]] QWidget* recentColumn();

    Application& application_;
    QListWidget* list_ = nullptr;
};

}  // namespace vell
