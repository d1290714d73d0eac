#pragma once
// SPDX-License-Identifier: MIT
//
// OpenFailures: the one dialog that lists which documents could not be opened, why, and what to do.
// It is not modal; documents that fail while it is open are added to it.

#include <QDialog>
#include <QStringList>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace vell {

class OpenFailures final : public QDialog {
    Q_OBJECT

  public:
    enum class Cause { damaged, beyondRecovery, missing, unreadable, tooLarge };

    OpenFailures();

    /// Adds a document and shows the dialog; `name` is the file's name as the user knows it. With a
    /// path the dialog offers to show what is left of a damaged one.
    void add(const QString& name, const QString& path, Cause cause);

  Q_SIGNALS:
    void recoveryRequested(const QStringList& paths);

  private:
    void place();

    QStringList sentences_;
    QStringList damaged_;
    bool expectsLog_ = false;
    QLabel* text_;
    QLabel* remedy_;
    QPlainTextEdit* list_;
    QPushButton* recover_;
};

}  // namespace vell
