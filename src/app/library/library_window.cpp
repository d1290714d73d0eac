// SPDX-License-Identifier: MIT
#include "app/library/library_window.h"

#include <QCloseEvent>
#include <QFileDialog>
#include <QLabel>
#include <QLocale>
#include <QMenuBar>
#include <QPushButton>
#include <QSettings>
#include <QSignalBlocker>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <utility>

#include "app/documents/chat_pane.h"
#include "app/documents/dates/time_zones.h"
#include "app/library/conversation_list.h"
#include "app/library/folders_dialog.h"
#include "app/library/found_list.h"
#include "app/library/library.h"
#include "app/library/library_status.h"
#include "app/library/people_list.h"
#include "app/library/search_bar.h"
#include "app/library/shown_facts.h"
#include "app/library/statistics_page.h"
#include "app/windows/commands.h"
#include "app/windows/common_commands.h"
#include "app/windows/icons.h"
#include "app/windows/widgets.h"
#include "app/windows/window_geometry.h"
#include "foundation/local_path.h"
#include "timeline/timeline_view.h"

namespace vell {
namespace {

constexpr QSize libraryWindowSize(1180, 760);
const QList<int> idealWidths{250, 330, 600};
constexpr int narrowestPeople = 180;
constexpr int narrowestMiddle = 220;
constexpr int foundDelay = 60;  // milliseconds
const QString geometryKey = QStringLiteral("Library/Geometry");
const QString splitterKey = QStringLiteral("Library/Columns");

}  // namespace

void chooseLibraryFolders(Library& library, QWidget& window) {
    auto* dialog = new QFileDialog(&window, LibraryWindow::tr("Add a Folder to the Library"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    QObject::connect(dialog, &QFileDialog::filesSelected, &library, &Library::addFolders);
    dialog->open();
}

LibraryWindow::LibraryWindow(Commands& commands, const Services& services, Library& library)
    : commands_(commands),
      services_(services),
      library_(library),
      found_(library, services.contacts),
      chat_(new ChatPane(services_)) {
    setObjectName(QStringLiteral("libraryWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Library"));
    buildContent();
    buildMenus();
    restorePlace();
    connectColumns();
    connectSearch();
    showFolders();
    showPeople();
    people_->focusList();
}

LibraryWindow::~LibraryWindow() = default;

void LibraryWindow::buildContent() {
    searchBar_ = new SearchBar;
    people_ = new PeopleList(services_.contacts);
    conversations_ = new ConversationList(library_.database());
    foundList_ = new FoundList(found_, services_.contacts);
    middle_ = new QStackedWidget;
    middle_->addWidget(conversations_);
    middle_->addWidget(foundList_);
    statistics_ = new StatisticsPage(library_.database());
    right_ = new QStackedWidget;
    right_->addWidget(chat_);
    right_->addWidget(statistics_);
    splitter_ = new QSplitter;
    splitter_->setObjectName(QStringLiteral("libraryColumns"));
    splitter_->setChildrenCollapsible(false);
    for (QWidget* column : std::initializer_list<QWidget*>{people_, middle_, right_})
        splitter_->addWidget(column);
    splitter_->setStretchFactor(2, 1);
    people_->setMinimumWidth(narrowestPeople);
    middle_->setMinimumWidth(narrowestMiddle);
    status_ = new LibraryStatus(library_);

    auto* columns = new QWidget;
    auto* layout = new QVBoxLayout(columns);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(searchBar_);
    layout->addWidget(splitter_, 1);
    layout->addWidget(status_);
    pages_ = new QStackedWidget;
    pages_->addWidget(emptyPage());
    pages_->addWidget(columns);
    setCentralWidget(pages_);
}

void LibraryWindow::connectColumns() {
    connect(&library_, &Library::peopleChanged, this, &LibraryWindow::showPeople);
    connect(&library_, &Library::foldersChanged, this, &LibraryWindow::showFolders);
    connect(people_, &PeopleList::chosenChanged, this, [this] {
        searchBar_->clear();
        showPartner();
    });
    connect(people_, &PeopleList::joinRequested, &library_, &Library::join);
    connect(people_, &PeopleList::separateRequested, &library_, &Library::separate);
    connect(conversations_, &ConversationList::chosenChanged, this,
            [this](const QByteArray& path) { showConversation(path, 0, {}); });
    connect(conversations_, &ConversationList::opened, this, &LibraryWindow::open);
    connect(chat_, &ChatPane::sessionOpened, this, &LibraryWindow::open);
    connect(status_, &LibraryStatus::opened, this, &LibraryWindow::open);
    connect(chat_, &ChatPane::noticed, status_, &LibraryStatus::showNotice);
    connect(chat_, &ChatPane::shown, this, [this] {
        if (std::exchange(isEntering_, false)) chat_->timeline()->setFocus();
    });
}

void LibraryWindow::connectSearch() {
    foundTimer_.setSingleShot(true);
    foundTimer_.setInterval(foundDelay);
    connect(&foundTimer_, &QTimer::timeout, this, &LibraryWindow::showFound);
    connect(searchBar_, &SearchBar::changed, this, &LibraryWindow::search);
    connect(searchBar_, &SearchBar::left, this, [this] {
        foundList_->chooseFirst();
        middle_->currentWidget()->setFocus(Qt::TabFocusReason);
    });
    connect(searchBar_, &SearchBar::entered, this, &LibraryWindow::enterFound);
    connect(foundList_, &FoundList::entered, this, &LibraryWindow::enterFound);
    connect(foundList_, &FoundList::left, searchBar_, &SearchBar::takeFocus);
    connect(foundList_, &FoundList::chosenChanged, &foundTimer_, qOverload<>(&QTimer::start));
    connect(&found_, &FoundMessages::stateChanged, this, &LibraryWindow::showSearchState);
}

QWidget* LibraryWindow::emptyPage() {
    auto* page = new QWidget;
    page->setAutoFillBackground(true);
    page->setBackgroundRole(QPalette::Base);
    auto* icon = new QLabel;
    icon->setPixmap(peopleIcon().pixmap(64, 64));
    auto* title = new QLabel(tr("All your chats in one place"));
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    large.setBold(true);
    title->setFont(large);
    auto* text = secondaryLabel(
        tr("Add the folders that your transcripts are in, or drop them here. The files stay where "
           "they are and are only read."));
    text->setWordWrap(true);
    text->setAlignment(Qt::AlignCenter);
    text->setMaximumWidth(420);
    auto* add = new QPushButton(tr("&Add Folder …"));
    add->setDefault(true);
    connect(add, &QPushButton::clicked, this, &LibraryWindow::addFolder);
    auto* layout = new QVBoxLayout(page);
    layout->setSpacing(defaultPadding);
    layout->addStretch();
    for (QWidget* widget : std::initializer_list<QWidget*>{icon, title, text, add})
        layout->addWidget(widget, 0, Qt::AlignHCenter);
    layout->addStretch();
    return page;
}

void LibraryWindow::buildMenus() {
    QMenu& file = *menuBar()->addMenu(tr("&File"));
    addOpeningCommands(file, commands_, services_.recentFiles, *this);
    file.addSeparator();
    addCommand(file, tr("&Add Folder …"), {}, [this] { addFolder(); });
    addCommand(file, tr("&Library Folders …"), {}, [this] { showFoldersDialog(library_, *this); });
    file.addSeparator();
    chat_->addSaveCommand(file);
    file.addSeparator();
    addClosingCommands(file, commands_, *this);
    QMenu& edit = *menuBar()->addMenu(tr("&Edit"));
    chat_->addEditCommands(edit);
    edit.addSeparator();
    addCommand(edit, tr("&Search All Chats"), {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F)},
               [this] { searchBar_->takeFocus(); });
    chat_->addFontCommands(*menuBar()->addMenu(tr("F&ormat"))->addMenu(tr("&Font")));
    QMenu& view = *menuBar()->addMenu(tr("&View"));
    chat_->addSharedCommand(view);
    view.addMenu(new TimeZoneMenu(services_.settings, *this));
    view.addSeparator();
    statisticsAction_ = addCommand(view, tr("&Statistics"),
                                   {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S)}, [] {});
    statisticsAction_->setCheckable(true);
    statisticsAction_->setIcon(chartIcon());
    statisticsAction_->setIconVisibleInMenu(false);
    connect(statisticsAction_, &QAction::toggled, this, &LibraryWindow::showStatistics);
    searchBar_->addTool(*statisticsAction_);
    QMenu& go = *menuBar()->addMenu(tr("&Go"));
    chat_->addGoCommands(go);
    go.addSeparator();
    chat_->addSessionCommands(go);
    addWindowMenu(*menuBar(), commands_, *this);
    addHelpMenu(*menuBar(), commands_);
}

void LibraryWindow::open(const QByteArray& path) {
    commands_.open({foundation::pathFromArgument(path.constData())});
}

void LibraryWindow::addFolder() {
    chooseLibraryFolders(library_, *this);
}

void LibraryWindow::showFolders() {
    pages_->setCurrentIndex(library_.folders().isEmpty() ? 0 : 1);
}

void LibraryWindow::showPeople() {
    {
        const QSignalBlocker quiet(people_);
        people_->setPeople(library_.people());
    }
    searchBar_->setPeople(library_.people());
    conversations_->refresh(library_.people(), people_->chosen());
    showChat();
    if (!searchBar_->text().isEmpty() && found_.rowCount() == 0) search();
}

void LibraryWindow::showPartner() {
    conversations_->show(library_.people(), people_->chosen());
    showChat();
}

void LibraryWindow::showChat() {
    const int partner = people_->chosen();
    if (partner != PeopleModel::everybody) showChatWith(partner);
    if (statisticsAction_->isChecked()) statistics_->show(library_.people(), partner);
}

void LibraryWindow::showChatWith(int partner) {
    const LibraryPeople& people = *library_.people();
    chat_->showSessions(people.partners[static_cast<std::size_t>(partner)].name,
                        people.pathsOf(partner));
}

void LibraryWindow::showConversation(const QByteArray& path, qint64 sequence,
                                     const QStringList& words) {
    const int conversation = library_.people()->conversationAt(path);
    if (conversation < 0) return;  // the file has vanished meanwhile
    showChatWith(library_.people()->partnerOf(conversation));
    chat_->goTo(path, sequence, words);
    statisticsAction_->setChecked(false);
}

void LibraryWindow::search() {
    const bool isSearched = !searchBar_->text().trimmed().isEmpty();
    middle_->setCurrentWidget(isSearched ? static_cast<QWidget*>(foundList_) : conversations_);
    try {
        if (isSearched)
            found_.search(searchBar_->text(), searchBar_->isBestFirst());
        else
            found_.clear();
    } catch (const QueryError&) {
        found_.clear();
        searchBar_->showState(
            tr("Dates are written 2009-07-14, 2009-07 or 2009; “has:” is followed by picture, link "
               "or file"));
    }
}

void LibraryWindow::showSearchState() {
    if (!found_.count()) return searchBar_->showState(tr("Searching …"));
    const QString count = shownMessages(*found_.count());
    searchBar_->showState(*found_.count() > FoundMessages::mostListed
                              ? tr("%1, the first %2 are listed")
                                    .arg(count, QLocale().toString(FoundMessages::mostListed))
                              : count);
}

void LibraryWindow::showFound() {
    if (const FoundMessages::Row* row = foundList_->chosen())
        showConversation(row->path, row->sequence, found_.words());
}

void LibraryWindow::enterFound() {
    if (searchBar_->text().isEmpty()) return;
    foundList_->chooseFirst();
    foundTimer_.stop();
    isEntering_ = true;
    showFound();
    if (chat_->timeline()) chat_->timeline()->setFocus();
}

void LibraryWindow::showStatistics(bool isShown) {
    right_->setCurrentWidget(isShown ? static_cast<QWidget*>(statistics_) : chat_);
    if (isShown) statistics_->show(library_.people(), people_->chosen());
}

void LibraryWindow::restorePlace() {
    const QSettings settings;
    resize(libraryWindowSize);
    splitter_->setSizes(idealWidths);
    restoreWindow(*this, settings.value(geometryKey).toByteArray());
    splitter_->restoreState(settings.value(splitterKey).toByteArray());
    splitter_->setHandleWidth(1);
}

void LibraryWindow::closeEvent(QCloseEvent* event) {
    QSettings settings;
    settings.setValue(geometryKey, saveGeometry());
    settings.setValue(splitterKey, splitter_->saveState());
    QMainWindow::closeEvent(event);
}

void LibraryWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) library_.lookAgain();
}

}  // namespace vell
