// SPDX-License-Identifier: MIT
#include "app/windows/welcome_window.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/desktop/file_drops.h"
#include "app/desktop/recent_files.h"
#include "app/windows/commands.h"
#include "app/windows/common_commands.h"
#include "app/windows/sample_chat.h"
#include "app/windows/widgets.h"

namespace vell {
namespace {

constexpr int pagePadding = 24;
constexpr int sampleWidth = 280;
constexpr QSize welcomeIconSize(72, 72);

/// Where files may be dropped, as they may anywhere else in the window.
class DropPlace final : public QLabel {
  public:
    DropPlace() : QLabel(WelcomeWindow::tr("Drop transcripts or folders here")) {
        setAlignment(Qt::AlignCenter);
        setForegroundRole(QPalette::PlaceholderText);
        setMinimumHeight(72);
    }
    bool eventFilter(QObject* window, QEvent* event) override {
        if (event->type() == QEvent::DynamicPropertyChange) update();
        return QLabel::eventFilter(window, event);
    }

  protected:
    void paintEvent(QPaintEvent* event) override {
        QLabel::paintEvent(event);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const bool isTarget = window()->property(isDropTargetProperty).toBool();
        QColor line = palette().color(isTarget ? QPalette::Highlight : QPalette::WindowText);
        if (isTarget) {
            QColor light = line;
            light.setAlphaF(0.15F);
            painter.setBrush(light);
        } else {
            line.setAlphaF(0.3F);
        }
        painter.setPen(QPen(line, 1.5, isTarget ? Qt::SolidLine : Qt::DashLine));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 10, 10);
    }
};

}  // namespace

WelcomeWindow::WelcomeWindow(Commands& commands, RecentFiles& recentFiles, ContactsStore& contacts,
                             PictureCache& pictures)
    : QWidget(nullptr, Qt::Window), commands_(commands), recentFiles_(recentFiles) {
    setObjectName(QStringLiteral("welcomeWindow"));
    setWindowTitle(tr("Welcome to Vell"));
    resize(800, 520);

    auto* sample = new QWidget;
    sample->setFixedWidth(sampleWidth);
    sample->setAutoFillBackground(true);
    sample->setBackgroundRole(QPalette::Base);
    auto* sampleLayout = new QVBoxLayout(sample);
    sampleLayout->setContentsMargins(0, pagePadding, 0, 0);
    sampleLayout->addWidget(sampleChat(contacts, pictures));
    auto* column = new QVBoxLayout;
    column->setContentsMargins(pagePadding, pagePadding, pagePadding, pagePadding);
    column->setSpacing(pagePadding / 2);
    column->addLayout(introduction());
    column->addSpacing(pagePadding / 2);
    column->addLayout(commandRow());
    column->addSpacing(pagePadding / 2);
    column->addWidget(secondaryLabel(tr("Recent transcripts")));
    column->addWidget(recentList(), 1);
    auto* dropPlace = new DropPlace;
    column->addWidget(dropPlace);
    installEventFilter(dropPlace);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(sample);
    layout->addLayout(column, 1);
    buildMenus(*layout);
    connect(&recentFiles_, &RecentFiles::changed, this, &WelcomeWindow::fill);
    fill();
}

void WelcomeWindow::buildMenus(QLayout& layout) {
    auto* menuBar = new QMenuBar;
    QMenu& file = *menuBar->addMenu(tr("&File"));
    addOpeningCommands(file, commands_, recentFiles_, *this);
    file.addSeparator();
    addClosingCommands(file, commands_, *this);
    addWindowMenu(*menuBar, commands_, *this);
    addHelpMenu(*menuBar, commands_);
    layout.setMenuBar(menuBar);
}

QLayout* WelcomeWindow::introduction() {
    auto* icon = new QLabel;
    icon->setPixmap(QApplication::windowIcon().pixmap(welcomeIconSize));
    auto* title = new QLabel(tr("Welcome to Vell"));
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 2);
    large.setBold(true);
    title->setFont(large);
    QLabel* explanation =
        secondaryLabel(tr("Vell opens chat transcripts (“.ichat”) and never changes them."));
    explanation->setWordWrap(true);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(4);
    texts->addStretch();
    texts->addWidget(title);
    texts->addWidget(explanation);
    texts->addStretch();
    auto* row = new QHBoxLayout;
    row->setSpacing(pagePadding * 2 / 3);
    row->addWidget(icon);
    row->addLayout(texts, 1);
    return row;
}

QLayout* WelcomeWindow::commandRow() {
    auto* open = new QPushButton(tr("&Open …"));
    open->setDefault(true);
    auto* find = new QPushButton(tr("F&ind iChat Files …"));
    connect(open, &QPushButton::clicked, this, [this] { commands_.showOpenDialog(this); });
    connect(find, &QPushButton::clicked, this, [this] { commands_.findFiles(); });
    auto* library = new QPushButton(commands_.hasLibrary() ? tr("&Library") : tr("&Add Folder …"));
    library->setToolTip(tr("All chats of your folders in one window"));
    connect(library, &QPushButton::clicked, this, [this] { openLibrary(); });
    auto* row = new QHBoxLayout;
    row->setSpacing(pagePadding / 2);
    for (QPushButton* button : {open, find, library}) {
        button->setMinimumHeight(button->sizeHint().height() + 6);
        row->addWidget(button, 1);
    }
    find->setVisible(commands_.offersFindFiles());
    return row;
}

void WelcomeWindow::openLibrary() {
    if (commands_.hasLibrary()) return commands_.showLibrary();
    auto* dialog = new QFileDialog(this, tr("Add a Folder to the Library"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    connect(dialog, &QFileDialog::filesSelected, this,
            [this](const QStringList& folders) { commands_.addToLibrary(folders); });
    dialog->open();
}

QWidget* WelcomeWindow::recentList() {
    list_ = new QListWidget;
    list_->setAccessibleName(tr("Recent transcripts"));
    list_->setTextElideMode(Qt::ElideMiddle);
    list_->setIconSize(QSize(24, 24));
    list_->setSpacing(2);
    connect(list_, &QListWidget::itemActivated, this, [this](const QListWidgetItem* item) {
        commands_.open({item->data(Qt::UserRole).toString()});
    });
    return list_;
}

void WelcomeWindow::fill() {
    list_->clear();
    for (const QString& path : recentFiles_.paths()) {
        const QFileInfo file(path);
        auto* item = new QListWidgetItem(file.completeBaseName(), list_);
        item->setIcon(QApplication::windowIcon());
        item->setToolTip(QDir::toNativeSeparators(path));
        item->setData(Qt::UserRole, path);
    }
    if (list_->count() == 0) {
        auto* item = new QListWidgetItem(tr("None yet"), list_);
        item->setFlags(Qt::NoItemFlags);
    }
}

}  // namespace vell
