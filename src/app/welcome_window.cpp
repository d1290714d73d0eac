// SPDX-License-Identifier: MIT
#include "app/welcome_window.h"

#include <QApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/desktop.h"
#include "app/dropped_files.h"
#include "app/recent_files.h"

namespace vell {
namespace {

constexpr int padding = 24;
constexpr QSize iconSize(96, 96);

}  // namespace

WelcomeWindow::WelcomeWindow(RecentFiles& recent, bool offersSearch, QWidget* parent)
    : QWidget(parent, Qt::Window), recent_(recent) {
    setObjectName(QStringLiteral("welcomeWindow"));
    setWindowTitle(tr("Welcome to Vell"));
    setAcceptDrops(true);
    resize(620, 380);

    auto* icon = new QLabel;
    icon->setPixmap(QApplication::windowIcon().pixmap(iconSize));
    auto* title = new QLabel(tr("Welcome to Vell"));
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 1.8);
    large.setBold(true);
    title->setFont(large);
    QLabel* explanation =
        secondaryLabel(tr("Vell opens chat transcripts (“.ichat”) and never changes them."));
    explanation->setWordWrap(true);
    auto* open = new QPushButton(tr("&Open …"));
    open->setDefault(true);
    auto* find = new QPushButton(tr("&Find iChat Files …"));
    find->setVisible(offersSearch);

    auto* left = new QVBoxLayout;
    left->addWidget(icon, 0, Qt::AlignHCenter);
    left->addWidget(title, 0, Qt::AlignHCenter);
    left->addWidget(explanation);
    left->addStretch();
    left->addWidget(open);
    left->addWidget(find);

    list_ = new QListWidget;
    list_->setAccessibleName(tr("Recent transcripts"));
    list_->setFrameShape(QFrame::NoFrame);
    auto* right = new QVBoxLayout;
    right->addWidget(secondaryLabel(tr("Recent transcripts")));
    right->addWidget(list_, 1);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(padding);
    layout->addLayout(left, 2);
    layout->addLayout(right, 3);

    connect(open, &QPushButton::clicked, this, &WelcomeWindow::openDialogRequested);
    connect(find, &QPushButton::clicked, this, &WelcomeWindow::findRequested);
    connect(list_, &QListWidget::itemActivated, this, [this](const QListWidgetItem* item) {
        Q_EMIT openRequested({item->data(Qt::UserRole).toString()});
    });
    connect(&recent_, &RecentFiles::changed, this, &WelcomeWindow::fill);
    fill();
}

void WelcomeWindow::fill() {
    list_->clear();
    for (const QString& path : recent_.paths()) {
        const QFileInfo file(path);
        auto* item = new QListWidgetItem(file.completeBaseName(), list_);
        item->setToolTip(QDir::toNativeSeparators(path));
        item->setData(Qt::UserRole, path);
    }
    if (list_->count() == 0) {
        auto* item = new QListWidgetItem(tr("None yet"), list_);
        item->setFlags(Qt::NoItemFlags);
    }
}

void WelcomeWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!droppedFiles(*event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void WelcomeWindow::dropEvent(QDropEvent* event) {
    Q_EMIT openRequested(droppedFiles(*event->mimeData()));
    event->acceptProposedAction();
}

}  // namespace vell
