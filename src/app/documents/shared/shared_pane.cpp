// SPDX-License-Identifier: MIT
#include "app/documents/shared/shared_pane.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLocale>
#include <QStackedWidget>
#include <QStyle>
#include <QTabBar>
#include <QToolButton>

#include "app/documents/shared/shared_items.h"
#include "app/documents/shared/shared_view.h"

namespace vell {
namespace {

constexpr int narrowest = 220;  // points

QString tabTitle(SharedKind kind) {
    switch (kind) {
        case SharedKind::picture:
            return SharedPane::tr("Pictures");
        case SharedKind::link:
            return SharedPane::tr("Links");
        case SharedKind::file:
            return SharedPane::tr("Files");
    }
    return {};
}

QString whenEmpty(SharedKind kind) {
    switch (kind) {
        case SharedKind::picture:
            return SharedPane::tr("No pictures in this chat");
        case SharedKind::link:
            return SharedPane::tr("No links in this chat");
        case SharedKind::file:
            return SharedPane::tr("No files in this chat");
    }
    return {};
}

}  // namespace

SharedPane::SharedPane(const std::shared_ptr<const TesselChatLog>& log, PictureCache& pictures,
                       const ContactsStore& contacts, QWidget* window)
    : QDockWidget(window), tabs_(new QTabBar), pages_(new QStackedWidget) {
    setObjectName(QStringLiteral("sharedPane"));
    setWindowTitle(tr("Shared Items"));
    setFeatures(NoDockWidgetFeatures);
    setTitleBarWidget(buildTitle());
    for (const SharedKind kind : sharedKinds) {
        auto* items = new SharedItems(log, kind, contacts, nullptr);
        auto* view = new SharedView(items, pictures, whenEmpty(kind));
        view->setAccessibleName(tabTitle(kind));
        connect(view, &SharedView::chosen, this, &SharedPane::chosen);
        connect(view, &SharedView::opened, this, &SharedPane::opened);
        tabs_->addTab(tabTitle(kind));
        pages_->addWidget(view);
        views_[static_cast<size_t>(kind)] = view;
    }
    connect(tabs_, &QTabBar::currentChanged, pages_, &QStackedWidget::setCurrentIndex);
    pages_->setMinimumWidth(narrowest);
    setWidget(pages_);
}

QWidget* SharedPane::buildTitle() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 4, 4, 0);
    auto* close = new QToolButton;
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    close->setToolTip(tr("Close"));
    close->setAccessibleName(close->toolTip());
    close->setAutoRaise(true);
    tabs_->setDrawBase(false);
    tabs_->setExpanding(false);
    tabs_->setDocumentMode(true);
    layout->addWidget(tabs_, 1);
    layout->addWidget(close);
    connect(close, &QToolButton::clicked, this, &QWidget::close);
    return row;
}

void SharedPane::setContents(const ChatContents& contents) {
    int first = -1;
    for (const SharedKind kind : sharedKinds) {
        const auto& rows = contents.rows(kind);
        const int tab = static_cast<int>(kind);
        views_[static_cast<size_t>(kind)]->items().setRows(rows);
        //: "Pictures (120)"
        tabs_->setTabText(
            tab, tr("%1 (%2)").arg(tabTitle(kind), QLocale().toString(qlonglong(rows.size()))));
        if (first < 0 && !rows.empty()) first = tab;
    }
    tabs_->setCurrentIndex(std::max(first, 0));
}

void SharedPane::focusItems() {
    pages_->currentWidget()->setFocus();
}

void SharedPane::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT left();
    } else {
        QDockWidget::keyPressEvent(event);
    }
}

}  // namespace vell
