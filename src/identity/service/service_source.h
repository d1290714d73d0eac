#pragma once
// SPDX-License-Identifier: MIT
//
// ServiceSource: the desktop's address-book service, through a plug-in that is loaded when access
// is granted and never unloaded. Where plug-in or service are missing there are simply no contacts.

#include <QStringList>
#include <memory>

#include "identity/contacts/contacts_source.h"
#include "toolkit/module_logger.h"

namespace vell {

class ServiceSource final : public ContactsSource {
    Q_OBJECT

  public:
    /// Looks for the plug-in in these folders, in order.
    explicit ServiceSource(
        QStringList pluginFolders = customaryPluginFolders(),
        std::shared_ptr<Logger> log = ModuleLogger::defaultLogger(QStringLiteral("Contacts")));
    ~ServiceSource() override;

    /// Beside the program: in its build folder and where it is installed.
    [[nodiscard]] static QStringList customaryPluginFolders();

    /// Connects on another thread. An error is something wrong with a service that is there.
    void requestAccess(Answer answer) override;
    [[nodiscard]] Enumeration enumeration() override;

  private:
    class Connection;
    const std::shared_ptr<Connection> connection_;
};

}  // namespace vell
