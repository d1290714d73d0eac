// SPDX-License-Identifier: MIT
#include "app/documents/dates/time_zone_dialog.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTimeZone>
#include <QVBoxLayout>

#include "app/documents/dates/time_zones.h"

namespace vell {
namespace {

constexpr int zoneRole = Qt::UserRole;
constexpr QSize listSize(320, 280);

/// "Tokyo — Asia"; names without a region are those of former times, but for UTC.
QStandardItemModel* allZones(QObject* parent) {
    auto* model = new QStandardItemModel(parent);
    for (const QByteArray& id : QTimeZone::availableTimeZoneIds()) {
        const QString zone = QString::fromLatin1(id);
        const QString region = zone.section(u'/', 0, -2);
        if (region.isEmpty() ? zone != QLatin1String("UTC") : region == QLatin1String("Etc"))
            continue;
        auto* item = new QStandardItem(
            region.isEmpty() ? zone : cityOf(zone) + QStringLiteral(" — ") + region);
        item->setData(zone, zoneRole);
        model->appendRow(item);
    }
    return model;
}

}  // namespace

TimeZoneDialog::TimeZoneDialog(const QString& current, QWidget* parent)
    : QDialog(parent),
      edit_(new QLineEdit),
      list_(new QListView),
      zones_(new QSortFilterProxyModel(this)) {
    setObjectName(QStringLiteral("timeZone"));
    setWindowTitle(tr("Time Zone"));
    edit_->setPlaceholderText(tr("City or region"));
    edit_->setAccessibleName(edit_->placeholderText());
    edit_->setClearButtonEnabled(true);
    zones_->setSourceModel(allZones(this));
    zones_->setFilterCaseSensitivity(Qt::CaseInsensitive);
    zones_->setSortCaseSensitivity(Qt::CaseInsensitive);
    zones_->sort(0);
    list_->setModel(zones_);
    list_->setUniformItemSizes(true);
    list_->setEditTriggers(QListView::NoEditTriggers);
    list_->setMinimumSize(listSize);
    list_->setAccessibleName(windowTitle());
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    ok_ = buttons->button(QDialogButtonBox::Ok);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(edit_);
    layout->addWidget(list_, 1);
    layout->addWidget(buttons);
    edit_->installEventFilter(this);
    connect(edit_, &QLineEdit::textChanged, this, &TimeZoneDialog::filter);
    connect(list_, &QListView::doubleClicked, this, &TimeZoneDialog::choose);
    connect(buttons, &QDialogButtonBox::accepted, this, &TimeZoneDialog::choose);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    select(current);
}

void TimeZoneDialog::select(const QString& zone) {
    const QModelIndexList found =
        zones_->match(zones_->index(0, 0), zoneRole, zone, 1, Qt::MatchExactly);
    list_->setCurrentIndex(found.isEmpty() ? zones_->index(0, 0) : found.front());
    list_->scrollTo(list_->currentIndex(), QListView::PositionAtCenter);
    ok_->setEnabled(list_->currentIndex().isValid());
}

void TimeZoneDialog::filter(const QString& text) {
    const QString zone = list_->currentIndex().data(zoneRole).toString();
    zones_->setFilterFixedString(text.trimmed());
    select(zone);
}

void TimeZoneDialog::choose() {
    const QString zone = list_->currentIndex().data(zoneRole).toString();
    if (zone.isEmpty()) return;
    accept();
    Q_EMIT chosen(zone);
}

// Up and down move through the list while one types.
bool TimeZoneDialog::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp ||
            key == Qt::Key_PageDown) {
            QCoreApplication::sendEvent(list_, event);
            return true;
        }
    }
    return QDialog::eventFilter(object, event);
}

}  // namespace vell
