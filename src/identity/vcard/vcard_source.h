#pragma once
// SPDX-License-Identifier: MIT
//
// VCardSource: the contacts in vCard files and folders of them. What isn't there has no contacts.
// A file that can't be read is logged as an error, a malformed card by the module "vCard"; both are
// left out.

#include <QStringList>
#include <memory>

#include "identity/contacts/contacts_source.h"
#include "identity/contacts/contacts_store.h"
#include "toolkit/console.h"

namespace vell {

class FileWatch;
class CallbackGuard;

class VCardSource final : public ContactsSource {
    Q_OBJECT

  public:
    /// Whether the user pointed to these very paths.
    enum class Chosen { byUser, byCustom };

    explicit VCardSource(QStringList paths, Chosen chosen,
                         std::shared_ptr<Logger> log = console::defaultConsole());
    ~VCardSource() override;

    /// The folders where address books keep cards: "contacts" in the user's data folder and
    /// "~/.contacts".
    [[nodiscard]] static QStringList customaryFolders();

    [[nodiscard]] const QStringList& paths() const { return paths_; }
    void setPaths(const QStringList& paths);

    void requestAccess(Answer answer) override { answer(true, std::nullopt); }
    [[nodiscard]] Enumeration enumeration() override;
    [[nodiscard]] bool hasFreeContacts() const override {
        return chosen_ == Chosen::byUser && !paths_.isEmpty();
    }

  private:
    QStringList paths_;
    const Chosen chosen_;
    const std::shared_ptr<Logger> log_;
    const std::shared_ptr<Logger> cardLog_;
    const std::shared_ptr<CallbackGuard> callbacks_;
    std::shared_ptr<FileWatch> watch_;  ///< from the first enumeration on
};

/// The contacts of some files by address, without pictures. Throws ContactsError when one can't be
/// read or holds no card.
[[nodiscard]] ContactsStore::Table readContactTable(const QStringList& files,
                                                    const std::shared_ptr<Logger>& log);

}  // namespace vell
