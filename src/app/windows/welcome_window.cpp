// SPDX-License-Identifier: MIT
#include "app/windows/welcome_window.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/desktop/recent_files.h"
#include "app/windows/commands.h"
#include "app/windows/common_commands.h"
#include "app/windows/widgets.h"

namespace vell {
namespace {

constexpr int padding = 24;
constexpr QSize iconSize(96, 96);

}  // namespace

WelcomeWindow::WelcomeWindow(Commands& commands, RecentFiles& recentFiles)
    : QWidget(nullptr, Qt::Window), commands_(commands), recentFiles_(recentFiles) {
    setObjectName(QStringLiteral("welcomeWindow"));
    setWindowTitle(tr("Welcome to Vell"));
    resize(620, 400);

    auto* menuBar = new QMenuBar;
    QMenu& file = *menuBar->addMenu(tr("&File"));
    addOpeningCommands(file, commands_, recentFiles_, *this);
    file.addSeparator();
    addClosingCommands(file, commands_, *this);
    addHelpMenu(*menuBar, commands_);

    auto* layout = new QHBoxLayout(this);
    layout->setMenuBar(menuBar);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(padding);
    layout->addWidget(commandColumn(), 2);
    layout->addWidget(recentColumn(), 3);
    connect(&recentFiles_, &RecentFiles::changed, this, &WelcomeWindow::fill);
    fill();
}

QWidget* WelcomeWindow::commandColumn() {
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
    auto* find = new QPushButton(tr("F&ind iChat Files …"));
    find->setVisible(commands_.offersFindFiles());
    connect(open, &QPushButton::clicked, this, [this] { commands_.showOpenDialog(this); });
    connect(find, &QPushButton::clicked, this, [this] { commands_.findFiles(); });

    auto* column = new QWidget;
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins({});
    layout->addWidget(icon, 0, Qt::AlignHCenter);
    layout->addWidget(title, 0, Qt::AlignHCenter);
    layout->addWidget(explanation);
    layout->addStretch();
    layout->addWidget(open);
    layout->addWidget(find);
    return column;
}

QWidget* WelcomeWindow::recentColumn() {
    list_ = new QListWidget;
    list_->setAccessibleName(tr("Recent transcripts"));
    list_->setFrameShape(QFrame::NoFrame);
    connect(list_, &QListWidget::itemActivated, this, [this](const QListWidgetItem* item) {
        commands_.open({item->data(Qt::UserRole).toString()});
    });
    auto* column = new QWidget;
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins({});
    layout->addWidget(secondaryLabel(tr("Recent transcripts")));
    layout->addWidget(list_, 1);
    return column;
}

void WelcomeWindow::fill() {
    list_->clear();
    for (const QString& path : recentFiles_.paths()) {
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

}  // namespace vell
