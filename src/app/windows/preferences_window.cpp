// SPDX-License-Identifier: MIT
#include "app/windows/preferences_window.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/desktop/settings.h"
#include "app/windows/widgets.h"
#include "identity/contacts/contacts_store.h"
#include "identity/contacts/system_contacts.h"

namespace vell {

PreferencesWindow::PreferencesWindow(Settings& settings, ContactsStore& contacts,
                                     SystemContacts& access, QWidget* parent)
    : QDialog(parent), settings_(settings), contacts_(contacts), access_(access) {
    setObjectName(QStringLiteral("preferences"));
    setWindowTitle(tr("Preferences"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    buttons->button(QDialogButtonBox::Close)->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(contactsBox());
    layout->addWidget(windowsBox());
    layout->addWidget(buttons);
    resize(480, sizeHint().height());
}

QWidget* PreferencesWindow::contactsBox() {
    auto* box = new QGroupBox(tr("Contacts"));
    QCheckBox* allow = accessCheckBox();
    QLabel* explanation = secondaryLabel(
        tr("This is the desktop’s address book and the vCard files in your contacts folders. "
           "Nothing is ever written to them."));
    explanation->setWordWrap(true);

    files_ = new QListWidget;
    files_->setAccessibleName(tr("vCard files"));
    files_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    files_->setMaximumHeight(120);

    auto* layout = new QVBoxLayout(box);
    layout->addWidget(allow);
    layout->addWidget(explanation);
    layout->addWidget(new QLabel(tr("vCard files that are always read:")));
    layout->addWidget(files_);
    layout->addLayout(fileButtons());

    connect(&settings_, &Settings::contactsFilesChanged, this, &PreferencesWindow::fillFiles);
    fillFiles();
    return box;
}

QCheckBox* PreferencesWindow::accessCheckBox() {
    auto* allow = new QCheckBox(tr("Read names and pictures from the &address book"));
    allow->setObjectName(QStringLiteral("allowContacts"));
    const auto showAccess = [this, allow] {
        const QSignalBlocker quiet(allow);
        allow->setChecked(access_.access().value_or(false));
    };
    showAccess();
    connect(&contacts_, &ContactsStore::contactsAvailableChanged, allow, showAccess);
    connect(&contacts_, &ContactsStore::didRequestABAccessChanged, allow, showAccess);
    connect(allow, &QCheckBox::toggled, this, [this](bool allowed) {
        access_.setAccess(allowed);
        contacts_.requestAccess();
    });
    return allow;
}

QLayout* PreferencesWindow::fileButtons() {
    auto* addFiles = new QPushButton(tr("Add &Files …"));
    auto* addFolder = new QPushButton(tr("Add F&older …"));
    auto* remove = new QPushButton(tr("&Remove"));
    for (QPushButton* button : {addFiles, addFolder, remove})
        button->setAutoDefault(false);  // Return closes the window
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(addFiles);
    buttons->addWidget(addFolder);
    buttons->addStretch();
    buttons->addWidget(remove);

    connect(addFiles, &QPushButton::clicked, this, [this] {
        auto* dialog = contactsDialog(tr("Choose vCard Files"), QFileDialog::ExistingFiles);
        dialog->setNameFilters({tr("vCard files (*.vcf *.vcard)"), tr("All files (*)")});
        dialog->open();
    });
    connect(addFolder, &QPushButton::clicked, this, [this] {
        contactsDialog(tr("Choose a Folder of vCard Files"), QFileDialog::Directory)->open();
    });
    connect(remove, &QPushButton::clicked, this, &PreferencesWindow::removeSelected);
    connect(files_, &QListWidget::itemSelectionChanged, remove,
            [this, remove] { remove->setEnabled(!files_->selectedItems().isEmpty()); });
    remove->setEnabled(false);
    return buttons;
}

QFileDialog* PreferencesWindow::contactsDialog(const QString& title, QFileDialog::FileMode mode) {
    auto* dialog = new QFileDialog(this, title);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(mode);
    connect(dialog, &QFileDialog::filesSelected, this, &PreferencesWindow::addContacts);
    return dialog;
}

QWidget* PreferencesWindow::windowsBox() {
    auto* box = new QGroupBox(tr("Windows"));
    auto* restore = new QCheckBox(tr("Reopen &windows from the last session"));
    restore->setChecked(settings_.restoresWindows());
    connect(restore, &QCheckBox::toggled, &settings_, &Settings::setRestoresWindows);
    auto* layout = new QVBoxLayout(box);
    layout->addWidget(restore);
    return box;
}

void PreferencesWindow::addContacts(const QStringList& paths) {
    QStringList files = settings_.contactsFiles();
    files.append(paths);
    files.removeDuplicates();
    settings_.setContactsFiles(files);
}

void PreferencesWindow::removeSelected() {
    QStringList files = settings_.contactsFiles();
    for (const QListWidgetItem* item : files_->selectedItems())
        files.removeAll(item->data(Qt::UserRole).toString());
    settings_.setContactsFiles(files);
}

void PreferencesWindow::fillFiles() {
    files_->clear();
    for (const QString& path : settings_.contactsFiles()) {
        auto* item = new QListWidgetItem(QDir::toNativeSeparators(path), files_);
        item->setData(Qt::UserRole, path);
    }
}

}  // namespace vell
