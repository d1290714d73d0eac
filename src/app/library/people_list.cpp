// SPDX-License-Identifier: MIT
#include "app/library/people_list.h"

#include <QActionGroup>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/desktop/desktop.h"
#include "app/library/join_dialog.h"
#include "app/library/people_delegate.h"
#include "app/windows/icons.h"
#include "identity/contacts/contacts_store.h"

namespace vell {
namespace {

constexpr int mostJoinOffers = 16;

}  // namespace

PeopleList::PeopleList(const ContactsStore& contacts, QWidget* parent)
    : QWidget(parent), contacts_(contacts), model_(new PeopleModel(this)), view_(new QListView) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(buildHead());
    layout->addWidget(view_, 1);

    view_->setObjectName(QStringLiteral("libraryPeople"));
    view_->setAccessibleName(tr("People"));
    view_->setModel(model_);
    view_->setItemDelegate(new PeopleDelegate(*model_, contacts, view_));
    view_->setUniformItemSizes(true);
    view_->setFrameShape(QFrame::NoFrame);
    view_->viewport()->setAutoFillBackground(false);
    view_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    view_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view_->setContextMenuPolicy(Qt::CustomContextMenu);
    view_->setDragDropMode(QAbstractItemView::DragDrop);
    view_->setDefaultDropAction(Qt::LinkAction);
    connect(view_, &QWidget::customContextMenuRequested, this, &PeopleList::showMenu);
    connect(view_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this] { Q_EMIT chosenChanged(chosen()); });
    connect(model_, &PeopleModel::joinRequested, this, &PeopleList::joinRequested);
    filter_->installEventFilter(this);
}

QWidget* PeopleList::buildHead() {
    auto* head = new QWidget;
    auto* row = new QHBoxLayout(head);
    row->setContentsMargins(8, 8, 8, 4);
    row->setSpacing(4);
    filter_ = new QLineEdit;
    filter_->setPlaceholderText(tr("Filter people"));
    filter_->setAccessibleName(filter_->placeholderText());
    filter_->setClearButtonEnabled(true);
    connect(filter_, &QLineEdit::textChanged, model_, &PeopleModel::setFilter);
    auto* order = new QToolButton;
    order->setIcon(sortIcon());
    order->setToolTip(tr("Sort people"));
    order->setAccessibleName(order->toolTip());
    order->setAutoRaise(true);
    order->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(order);
    auto* group = new QActionGroup(menu);
    for (const auto& [text, value] : {std::pair(tr("By Last &Day"), PeopleModel::Order::recent),
                                      std::pair(tr("By &Name"), PeopleModel::Order::name)}) {
        QAction* action = menu->addAction(text);
        action->setCheckable(true);
        action->setChecked(value == model_->order());
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, value = value] {
            model_->setOrder(value);
            view_->scrollTo(view_->currentIndex());
        });
    }
    order->setMenu(menu);
    row->addWidget(filter_, 1);
    row->addWidget(order);
    return head;
}

void PeopleList::setPeople(std::shared_ptr<const LibraryPeople> people) {
    const bool wasEmpty = model_->rowCount() == 0;
    model_->setPeople(std::move(people));
    if (wasEmpty || !view_->currentIndex().isValid()) choose(PeopleModel::everybody);
}

int PeopleList::chosen() const {
    return model_->partner(view_->currentIndex());
}

void PeopleList::choose(int partner) {
    if (!model_->indexOf(partner).isValid()) filter_->clear();
    view_->setCurrentIndex(model_->indexOf(partner));
}

void PeopleList::focusList() {
    view_->setFocus(Qt::OtherFocusReason);
}

/// From the filter the keyboard goes on to what it has found.
bool PeopleList::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<const QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape && !filter_->text().isEmpty()) {
            filter_->clear();
            return true;
        }
        if (key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter) {
            if (model_->rowCount() > 0 && !filter_->text().isEmpty())
                view_->setCurrentIndex(model_->index(0));
            focusList();
            return true;
        }
    }
    return QWidget::eventFilter(object, event);
}

void PeopleList::showMenu(QPoint place) {
    const QModelIndex index = view_->indexAt(place);
    const auto person = model_->person(index);
    if (!person) return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    addJoinMenu(*menu, *person, index.data().toString());
    QAction* separate = menu->addAction(tr("&Separate Addresses"));
    separate->setEnabled(model_->people().addressesOf(*person).size() > 1);
    connect(separate, &QAction::triggered, this,
            [this, person = *person] { Q_EMIT separateRequested(person); });
    menu->popup(view_->viewport()->mapToGlobal(place));
}

void PeopleList::addJoinMenu(QMenu& menu, const TesselUserID& person, const QString& name) {
    QMenu* others = menu.addMenu(tr("&Join With"));
    int offers = 0;
    const LibraryPeople& people = model_->people();
    for (const LibraryPartner& partner : people.partners) {
        if (partner.persons.size() != 1) continue;
        const TesselUserID other = people.addressAt(partner.persons.front());
        if (other == person) continue;
        if (++offers > mostJoinOffers) break;
        connect(others->addAction(menuText(partner.name)), &QAction::triggered, this,
                [this, person, other] { Q_EMIT joinRequested(other, person); });
    }
    if (offers > mostJoinOffers) {
        others->addSeparator();
        connect(others->addAction(tr("&Somebody Else …")), &QAction::triggered, this,
                [this, person, name] {
                    askWhomToJoin(model_->sharedPeople(), person, name, contacts_, *this,
                                  [this, person](const TesselUserID& other) {
                                      Q_EMIT joinRequested(other, person);
                                  });
                });
    }
    others->setEnabled(offers > 0);
}

}  // namespace vell
