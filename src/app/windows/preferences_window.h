#pragma once
// SPDX-License-Identifier: MIT
//
// Preferences: whether the address book may be read, which vCard files are used, and whether the
// windows of the last session are reopened. Changes take effect at once.

#include <QDialog>
#include <QFileDialog>

class QCheckBox;
class QLayout;
class QListWidget;

namespace vell {

class ContactsStore;
class Settings;
class SystemContacts;

class PreferencesWindow final : public QDialog {
    Q_OBJECT

  public:
    PreferencesWindow(Settings& settings, ContactsStore& contacts, SystemContacts& access,
                      QWidget* parent = nullptr);

  private:
    QWidget* contactsBox();
    QCheckBox* accessCheckBox();
    QLayout* fileButtons();
    /// Adds what is chosen in it to the vCard files; not yet open, deleted on closing.
    QFileDialog* contactsDialog(const QString& title, QFileDialog::FileMode mode);
    QWidget* windowsBox();
    void addContacts(const QStringList& paths);
    void removeSelected();
    void fillFiles();

    Settings& settings_;
    ContactsStore& contacts_;
    SystemContacts& access_;
    QListWidget* files_ = nullptr;
};

}  // namespace vell
