#pragma once
// SPDX-License-Identifier: MIT
//
// OpenFailures: the one dialog that lists which documents could not be opened, why, and what to do.
// It is not modal; documents that fail while it is open are added to it.

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

    /// Adds a document and shows the dialog; `name` is the file's name as the user knows it.
    void add(const QString& name, Cause cause);

  private:
    void place();

    QStringList sentences_;
    bool expectsLog_ = false;
    QLabel* text_;
    QLabel* remedy_;
    QPlainTextEdit* list_;
};

}  // namespace vell
