#pragma once
// SPDX-License-Identifier: MIT
//
// PeopleList: the library's left column: whom conversations were held with, filtered by what is
// typed, by the last day or by name.

#include <QWidget>
#include <memory>

#include "app/library/people_model.h"

class QLineEdit;
class QListView;
class QMenu;

namespace vell {

class PeopleList final : public QWidget {
    Q_OBJECT

  public:
    explicit PeopleList(const ContactsStore& contacts, QWidget* parent = nullptr);

    void setPeople(std::shared_ptr<const LibraryPeople> people);
    /// An index of LibraryPeople::partners, or PeopleModel::everybody.
    [[nodiscard]] int chosen() const;
    void choose(int partner);
    void focusList();

  Q_SIGNALS:
    /// By the user, or because the one before has gone.
    void chosenChanged(int partner);
    void joinRequested(const vell::TesselUserID& person, const vell::TesselUserID& other);
    void separateRequested(const vell::TesselUserID& person);

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    [[nodiscard]] QWidget* buildHead();
    void showMenu(QPoint place);
    void addJoinMenu(QMenu& menu, const TesselUserID& person, const QString& name);

    const ContactsStore& contacts_;
    PeopleModel* model_;
    QListView* view_;
    QLineEdit* filter_;
};

}  // namespace vell
