// SPDX-License-Identifier: MIT
#include "app/library/search_bar.h"

#include <QActionGroup>
#include <QCalendarWidget>
#include <QCollator>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWidgetAction>
#include <algorithm>
#include <set>

#include "app/desktop/desktop.h"
#include "app/documents/chat_contents.h"
#include "app/library/shown_facts.h"
#include "app/windows/icons.h"
#include "library/library_people.h"
#include "library/query_terms.h"
#include "toolkit/date_formatters.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t mostPeopleOffered = 16;
constexpr int widestField = 520;

QToolButton* menuButton() {
    auto* button = new QToolButton;
    button->setAutoRaise(true);
    button->setPopupMode(QToolButton::InstantPopup);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    return button;
}

}  // namespace

SearchBar::SearchBar(QWidget* parent)
    : QWidget(parent),
      field_(new QLineEdit),
      filters_{{{u"from"_s, tr("From")},
                {u"with"_s, tr("With")},
                {u"after"_s, tr("After")},
                {u"before"_s, tr("Before")},
                {u"in"_s, tr("In")},
                {u"has"_s, tr("Has")}}} {
    field_->setObjectName(u"librarySearch"_s);
    field_->setPlaceholderText(tr("Search all chats"));
    field_->setAccessibleName(field_->placeholderText());
    field_->setClearButtonEnabled(true);
    field_->addAction(searchIcon(), QLineEdit::LeadingPosition);
    field_->setMaximumWidth(widestField);
    field_->installEventFilter(this);
    fieldRow_ = new QHBoxLayout;
    fieldRow_->addStretch(1);
    fieldRow_->addWidget(field_, 100);
    fieldRow_->addStretch(1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 6);
    layout->setSpacing(4);
    layout->addLayout(fieldRow_);
    layout->addWidget(buildFilters());
    connect(field_, &QLineEdit::textChanged, this, [this] {
        showFilters();
        Q_EMIT changed();
    });
    showFilters();
}

QWidget* SearchBar::buildFilters() {
    filterRow_ = new QWidget;
    auto* row = new QHBoxLayout(filterRow_);
    row->setContentsMargins({});
    row->setSpacing(2);
    for (Filter& filter : filters_) {
        filter.button = menuButton();
        filter.button->setObjectName(u"filter-"_s + filter.key);
        filter.button->setCheckable(true);
        auto* menu = new QMenu(filter.button);
        connect(menu, &QMenu::aboutToShow, this,
                [this, menu, key = filter.key] { fillMenu(*menu, key); });
        // The button is down while the query has such a filter.
        connect(menu, &QMenu::aboutToHide, this, &SearchBar::showFilters);
        filter.button->setMenu(menu);
        row->addWidget(filter.button);
    }
    state_ = new QLabel;
    state_->setObjectName(u"librarySearchState"_s);
    state_->setTextFormat(Qt::PlainText);
    state_->setForegroundRole(QPalette::PlaceholderText);
    state_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    state_->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
    row->addWidget(state_, 1);
    order_ = menuButton();
    order_->setAccessibleName(tr("Order of what was found"));
    auto* menu = new QMenu(order_);
    auto* group = new QActionGroup(menu);
    for (const auto& [text, isBest] :
         {std::pair(tr("Newest First"), false), std::pair(tr("Best First"), true)}) {
        QAction* action = menu->addAction(text);
        action->setCheckable(true);
        action->setChecked(isBest == isBestFirst_);
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, text = text, isBest = isBest] {
            isBestFirst_ = isBest;
            order_->setText(text);
            Q_EMIT changed();
        });
    }
    order_->setText(tr("Newest First"));
    order_->setMenu(menu);
    row->addWidget(order_);
    return filterRow_;
}

void SearchBar::setPeople(std::shared_ptr<const LibraryPeople> people) {
    people_ = std::move(people);
}

QString SearchBar::text() const {
    return field_->text();
}

void SearchBar::showState(const QString& text) {
    state_->setText(text);
    state_->setToolTip(text);
}

void SearchBar::addTool(QAction& action) {
    auto* button = new QToolButton;
    button->setDefaultAction(&action);
    button->setAutoRaise(true);
    fieldRow_->addWidget(button);
}

void SearchBar::takeFocus() {
    field_->setFocus(Qt::ShortcutFocusReason);
    field_->selectAll();
}

void SearchBar::clear() {
    field_->clear();
}

bool SearchBar::eventFilter(QObject* object, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(object, event);
    switch (static_cast<const QKeyEvent*>(event)->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            Q_EMIT entered();
            return true;
        case Qt::Key_Down:
            Q_EMIT left();
            return true;
        case Qt::Key_Escape:
            field_->clear();
            return true;
        default:
            return QWidget::eventFilter(object, event);
    }
}

QString SearchBar::shownValue(const QString& key, const QString& value) const {
    if (key != "has"_L1) return value;
    if (value == "picture"_L1) return tr("a picture");
    if (value == "link"_L1) return tr("a link");
    return value == "file"_L1 ? tr("a file") : value;
}

void SearchBar::showFilters() {
    filterRow_->setVisible(!field_->text().isEmpty());
    for (const Filter& filter : filters_) {
        QStringList values = termValues(field_->text(), filter.key);
        for (QString& value : values)
            value = shownValue(filter.key, value);
        //: A filter of a search and what it is set to: "From: anna"
        filter.button->setText(
            values.isEmpty() ? filter.title : tr("%1: %2").arg(filter.title, values.join(u", "_s)));
        filter.button->setChecked(!values.isEmpty());
    }
}

void SearchBar::setFilter(const QString& key, const QStringList& values) {
    field_->setText(withTerms(field_->text(), key, values));
    field_->setFocus();
}

void SearchBar::fillMenu(QMenu& menu, const QString& key) {
    menu.clear();
    if (key == "from"_L1 || key == "with"_L1) {
        fillPeople(menu, key);
    } else if (key == "in"_L1) {
        fillYears(menu, key);
    } else if (key == "has"_L1) {
        fillKinds(menu);
    } else {
        addCalendar(menu, key);
    }
    menu.addSeparator();
    QAction* none = menu.addAction(tr("Remove This Filter"));
    none->setEnabled(!termValues(field_->text(), key).isEmpty());
    connect(none, &QAction::triggered, this, [this, key] { setFilter(key, {}); });
}

void SearchBar::addValue(QMenu& menu, const QString& key, const QString& value,
                         const QString& text) {
    QAction* action = menu.addAction(menuText(text));
    action->setCheckable(true);
    action->setChecked(termValues(field_->text(), key).contains(value));
    connect(action, &QAction::triggered, this, [this, key, value] { setFilter(key, {value}); });
}

/// Those with the most messages.
void SearchBar::fillPeople(QMenu& menu, const QString& key) {
    if (!people_) return;
    std::vector<const LibraryPartner*> offered;
    for (const LibraryPartner& partner : people_->partners) {
        if (partner.persons.size() == 1) offered.push_back(&partner);
    }
    std::stable_sort(offered.begin(), offered.end(),
                     [](const auto* a, const auto* b) { return a->messages > b->messages; });
    if (offered.size() > mostPeopleOffered) offered.resize(mostPeopleOffered);
    std::sort(offered.begin(), offered.end(),
              [collator = QCollator()](const auto* a, const auto* b) {
                  return collator(a->name, b->name);
              });
    for (const LibraryPartner* partner : offered)
        addValue(menu, key, partner->name, partner->name);
}

void SearchBar::fillYears(QMenu& menu, const QString& key) {
    if (!people_) return;
    std::set<int, std::greater<>> years;
    const foundation::Calendar calendar = sharedCalendar();
    for (const LibraryConversation& conversation : people_->contents.conversations) {
        if (const auto day = localDate(conversation.begin, calendar)) years.insert(day->year());
    }
    for (const int year : years)
        addValue(menu, key, QString::number(year), QString::number(year));
}

void SearchBar::addCalendar(QMenu& menu, const QString& key) {
    auto* calendar = new QCalendarWidget;
    calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    const QDate chosen = QDate::fromString(termValues(field_->text(), key).value(0), Qt::ISODate);
    if (chosen.isValid()) {
        calendar->setSelectedDate(chosen);
    } else if (people_ && !people_->contents.conversations.empty()) {
        const auto last = localDate(people_->contents.conversations.front().end, sharedCalendar());
        if (last) calendar->setSelectedDate(*last);
    }
    auto* action = new QWidgetAction(&menu);
    action->setDefaultWidget(calendar);
    menu.addAction(action);
    const auto choose = [this, &menu, key](QDate day) {
        menu.close();
        setFilter(key, {day.toString(Qt::ISODate)});
    };
    connect(calendar, &QCalendarWidget::clicked, this, choose);
    connect(calendar, &QCalendarWidget::activated, this, choose);
}

/// A message may have to have several.
void SearchBar::fillKinds(QMenu& menu) {
    const QString key = u"has"_s;
    for (const auto& [kind, text] :
         {std::pair(u"picture"_s, tr("Picture")), std::pair(u"link"_s, tr("Link")),
          std::pair(u"file"_s, tr("File"))}) {
        QAction* action = menu.addAction(text);
        action->setCheckable(true);
        action->setChecked(termValues(field_->text(), key).contains(kind));
        connect(action, &QAction::triggered, this, [this, key, kind = kind](bool isWanted) {
            QStringList values = termValues(field_->text(), key);
            values.removeAll(kind);
            if (isWanted) values.append(kind);
            setFilter(key, values);
        });
    }
}

}  // namespace vell
