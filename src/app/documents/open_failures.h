#pragma once
// SPDX-License-Identifier: MIT
//
// OpenFailures: the one dialog that tells which documents could not be opened, why, and what can be
// done. It blocks nothing, and what fails while it is open joins the list instead of covering it.

#include <QDialog>
#include <QStringList>

class QLabel;
class QPlainTextEdit;

namespace vell {

class OpenFailures final : public QDialog {
    Q_OBJECT

  public:
    enum class Cause { damaged, missing, unreadable, tooLarge };

    OpenFailures();

    /// Adds a document; `name` is what the user knows the file by.
    void add(const QString& name, Cause cause);

  private:
    QStringList sentences_;
    QLabel* text_;
    QLabel* wayOn_;
    QPlainTextEdit* list_;
};

}  // namespace vell
