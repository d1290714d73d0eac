#pragma once
// SPDX-License-Identifier: MIT
//
// LibraryWindow: all chats of the user's folders: people at the left, their conversations or what a
// search has found in the middle, the chat at the right. The library and the services must outlive
// it.

#include <QMainWindow>
#include <QTimer>

#include "app/documents/services.h"
#include "app/library/found_messages.h"

class QSplitter;
class QStackedWidget;

namespace vell {

class ChatPane;
class Commands;
class ConversationList;
class FoundList;
class Library;
class LibraryStatus;
class PeopleList;
class SearchBar;
class StatisticsPage;

class LibraryWindow final : public QMainWindow {
    Q_OBJECT

  public:
    LibraryWindow(Commands& commands, const Services& services, Library& library);
    ~LibraryWindow() override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void buildContent();
    void buildMenus();
    void connectColumns();
    void connectSearch();
    [[nodiscard]] QWidget* emptyPage();
    void showFolders();
    void showPeople();
    /// Of whom is chosen on the left.
    void showPartner();
    /// The chat, and the statistics, of whom is chosen.
    void showChat();
    void showChatWith(int partner);
    void showConversation(const QByteArray& path, qint64 sequence, const QStringList& words);
    void search();
    void showSearchState();
    void showFound();
    /// Goes on in the chat, at what was found.
    void enterFound();
    void showStatistics(bool isShown);
    /// In a window of its own.
    void open(const QByteArray& path);
    void addFolder();
    void restorePlace();

    Commands& commands_;
    Services services_;
    Library& library_;
    FoundMessages found_;
    QTimer foundTimer_;  // so that keys held down in the list don't wait for chats
    QStackedWidget* pages_ = nullptr;
    QSplitter* splitter_ = nullptr;
    SearchBar* searchBar_ = nullptr;
    PeopleList* people_ = nullptr;
    QStackedWidget* middle_ = nullptr;
    ConversationList* conversations_ = nullptr;
    FoundList* foundList_ = nullptr;
    QStackedWidget* right_ = nullptr;
    ChatPane* chat_;
    bool isEntering_ = false;  // the keyboard goes to the chat once it is there
    StatisticsPage* statistics_ = nullptr;
    QAction* statisticsAction_ = nullptr;
    LibraryStatus* status_ = nullptr;
};

/// Asks for folders and adds them to the library.
void chooseLibraryFolders(Library& library, QWidget& window);

}  // namespace vell
