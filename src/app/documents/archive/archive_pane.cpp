// SPDX-License-Identifier: MIT
#include "app/documents/archive/archive_pane.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QScopedValueRollback>
#include <QStyle>
#include <QToolButton>

#include "app/documents/archive/archive_model.h"
#include "app/documents/archive/archive_view.h"
#include "app/windows/widgets.h"
#include "foundation/guarded.h"
#include "recovery/recovery.h"
#include "timeline/rows/row_text.h"
#include "timeline/timeline_view.h"
#include "toolkit/callback_guard.h"

namespace vell {
namespace {

constexpr int narrowestArchive = 260;  // points
constexpr qsizetype mostMarks = 3;

inspector::Opening openedArchive(const ShownChat& chat) {
    const auto repaired = chat.isRecovered ? recovery::repairedArchive(chat.bytes) : std::nullopt;
    if (!repaired) return inspector::openArchive(chat.bytes);
    return inspector::openArchive(repaired->data, repaired->keepsPlaces
                                                      ? inspector::Offsets::known
                                                      : inspector::Offsets::unknown);
}

}  // namespace

struct ArchivePane::Reading {
    inspector::Opening opening;
    MessageLinks links;
};

ArchivePane::ArchivePane(const ShownChat& chat, TimelineView& timeline, QWidget* window)
    : QDockWidget(window),
      timeline_(timeline),
      callbacks_(std::make_shared<CallbackGuard>(this)),
      view_(new ArchiveView),
      problem_(new QLabel) {
    setObjectName(QStringLiteral("archivePane"));
    setWindowTitle(tr("Archive"));
    setFeatures(NoDockWidgetFeatures);
    setTitleBarWidget(buildTitle());
    problem_->setTextFormat(Qt::PlainText);
    problem_->setWordWrap(true);
    problem_->setMargin(defaultPadding / 2);
    problem_->hide();
    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(view_, 1);
    layout->addWidget(problem_);
    content->setMinimumWidth(narrowestArchive);
    setWidget(content);

    connect(view_, &ArchiveView::objectChosen, this, &ArchivePane::showMessage);
    connect(&timeline_, &TimelineView::currentRowChanged, this, &ArchivePane::showObject);
    connect(&timeline_, &TimelineView::selectionChanged, this, [this] {
        if (timeline_.caret()) showObject(timeline_.caret()->row);
    });
    const auto finish = [this](const std::shared_ptr<Reading>& reading) { take(*reading); };
    foundation::runDetached(
        [callbacks = callbacks_, chat, finish] {
            auto reading = std::make_shared<Reading>();
            reading->opening = openedArchive(chat);
            reading->links = MessageLinks(*chat.log);
            callbacks->post([finish, reading] { finish(reading); });
        },
        [callbacks = callbacks_, finish] {
            callbacks->post([finish] { finish(std::make_shared<Reading>()); });
        });
}

ArchivePane::~ArchivePane() {
    callbacks_->close();
}

QWidget* ArchivePane::buildTitle() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(defaultPadding / 2, 4, 4, 4);
    auto* close = new QToolButton;
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    close->setToolTip(tr("Close"));
    close->setAccessibleName(close->toolTip());
    close->setAutoRaise(true);
    layout->addWidget(new QLabel(windowTitle()), 1);
    layout->addWidget(close);
    connect(close, &QToolButton::clicked, this, &QWidget::close);
    return row;
}

void ArchivePane::take(Reading& reading) {
    links_ = std::move(reading.links);
    const bool isDamaged = !reading.opening.archive || !reading.opening.problem.isEmpty();
    problem_->setText(reading.opening.archive ? tr("The archive can be read in part only.")
                                              : tr("The archive can’t be read."));
    problem_->setVisible(isDamaged);
    if (!reading.opening.archive) return;
    view_->setArchive(new ArchiveModel(std::move(reading.opening.archive)));
    qsizetype row = timeline_.currentRow();
    if (row < 0) row = timeline_.scroller().topRow();
    // Marks come before the message.
    for (const qsizetype last = row + mostMarks; row < last && !links_.objectOf(row);)
        ++row;
    showObject(row);
}

void ArchivePane::setLog(const TesselChatLog& log) {
    links_ = MessageLinks(log);
}

void ArchivePane::showMessage(quint64 object) {
    const auto rows = links_.rowsOf(object);
    if (!rows) return;
    const QScopedValueRollback guard(isLeading_, true);
    const auto& last = timeline_.chatlog().event(rows->last);
    timeline_.setCurrentRow(rows->first);
    timeline_.select({{rows->first, 0}, {rows->last, selectableLength(last)}});
}

void ArchivePane::showObject(qsizetype row) {
    if (isLeading_ || !view_->archive()) return;
    const auto object = links_.objectOf(row);
    if (!object || view_->archive()->objectAt(view_->currentIndex()) == *object) return;
    view_->goToObject(*object);
}

void ArchivePane::focusTree() {
    view_->setFocus();
}

void ArchivePane::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT left();
    } else {
        QDockWidget::keyPressEvent(event);
    }
}

}  // namespace vell
