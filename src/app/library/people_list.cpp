// SPDX-License-Identifier: MIT
#include "app/library/people_list.h"

#include <QActionGroup>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QStyledItemDelegate>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/desktop/desktop.h"
#include "app/library/list_row.h"
#include "app/library/person_picture.h"
#include "app/windows/icons.h"
#include "identity/contacts/contacts_store.h"

namespace vell {
namespace {

constexpr int pictureSize = 34;
constexpr int mostJoinOffers = 24;

class PeopleDelegate final : public QStyledItemDelegate {
  public:
    PeopleDelegate(const PeopleModel& model, const ContactsStore& contacts, QObject* parent)
        : QStyledItemDelegate(parent), model_(model), contacts_(contacts) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        ListRow row(*painter, option);
        const QRect start = row.takeStart(pictureSize);
        QRect picture(0, 0, pictureSize, pictureSize);
        picture.moveCenter(start.center());
        const auto people = model_.pictured(index);
        if (people.empty())
            peopleIcon().paint(painter, picture.adjusted(5, 5, -5, -5), Qt::AlignCenter,
                               row.isHighlighted() ? QIcon::Selected : QIcon::Normal);
        else
            paintPeople(*painter, picture, people, contacts_);
        row.write(ListRow::Line::first, index.data().toString(), ListRow::Weight::strong);
        row.write(ListRow::Line::second, model_.details(index), ListRow::Weight::faded);
    }
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex&) const override {
        return {pictureSize, ListRow::height(option.font, pictureSize)};
    }

  private:
    const PeopleModel& model_;
    const ContactsStore& contacts_;
};

}  // namespace

PeopleList::PeopleList(const ContactsStore& contacts, QWidget* parent)
    : QWidget(parent), model_(new PeopleModel(this)), view_(new QListView) {
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
    const auto person = model_->person(view_->indexAt(place));
    if (!person) return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    addJoinMenu(*menu, *person);
    QAction* separate = menu->addAction(tr("&Separate Addresses"));
    separate->setEnabled(model_->people().addressesOf(*person).size() > 1);
    connect(separate, &QAction::triggered, this,
            [this, person = *person] { Q_EMIT separateRequested(person); });
    menu->popup(view_->viewport()->mapToGlobal(place));
}

void PeopleList::addJoinMenu(QMenu& menu, const TesselUserID& person) {
    QMenu* others = menu.addMenu(tr("&Join With"));
    int offers = 0;
    const LibraryPeople& people = model_->people();
    for (const LibraryPartner& partner : people.partners) {
        if (partner.persons.size() != 1 || offers == mostJoinOffers) continue;
        const TesselUserID other = people.addressAt(partner.persons.front());
        if (other == person) continue;
        ++offers;
        connect(others->addAction(menuText(partner.name)), &QAction::triggered, this,
                [this, person, other] { Q_EMIT joinRequested(other, person); });
    }
    others->setEnabled(offers > 0);
}

}  // namespace vell
