// SPDX-License-Identifier: MIT
//
// library-screenshots NAME [--dark]: saves NAME.png, the library's window, and
// NAME-search.png, what a search in it finds, without a display.
#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QListView>
#include <QPalette>
#include <QTemporaryDir>
#include <QTreeView>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include "app/desktop/recent_files.h"
#include "app/desktop/secondary_text.h"
#include "app/desktop/settings.h"
#include "app/documents/contacts_bar.h"
#include "app/library/library.h"
#include "app/library/library_window.h"
#include "app/windows/commands.h"
#include "chats.h"
#include "timeline/pictures/picture_cache.h"

namespace {

using namespace Qt::StringLiterals;

constexpr QSize windowSize(1200, 760);
constexpr int patience = 30'000;  // milliseconds
constexpr int settling = 600;     // milliseconds

class NoCommands final : public vell::Commands {
  public:
    void open(const QStringList&) override {}
    void showOpenDialog(QWidget*) override {}
    [[nodiscard]] bool offersFindFiles() const override { return true; }
    void findFiles() override {}
    void showLibrary() override {}
    [[nodiscard]] bool hasLibrary() const override { return true; }
    void addToLibrary(const QStringList&) override {}
    void showAbout() override {}
    void showPreferences() override {}
    void quit() override {}
    [[nodiscard]] QWidgetList windows() const override { return {}; }
};

QPalette darkPalette() {
    QPalette palette(QColor(53, 53, 56), QColor(44, 44, 47));
    palette.setColor(QPalette::Base, QColor(30, 30, 32));
    palette.setColor(QPalette::Highlight, QColor(48, 110, 190));
    return palette;
}

bool wait(int milliseconds, const std::function<bool()>& condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition() && !timer.hasExpired(milliseconds))
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return condition();
}

void choose(QAbstractItemView& view, const QString& text) {
    const auto found = view.model()->match(view.model()->index(0, 0), Qt::DisplayRole, text, 1,
                                           Qt::MatchStartsWith | Qt::MatchRecursive);
    if (!found.isEmpty()) view.setCurrentIndex(found.front());
    view.setFocus();
}

bool save(QWidget& window, const QString& path) {
    wait(settling, [] { return false; });
    return window.grab().save(path, "PNG");
}

bool takeScreenshots(const QString& target) {
    const QTemporaryDir chats;
    screenshots::writeChats(chats.path());
    vell::Settings settings;
    settings.setLibraryFolders({chats.path()});
    vell::RecentFiles recentFiles;
    vell::ContactsStore contacts(screenshots::contacts());
    vell::PictureCache pictures;
    vell::Library library(settings, contacts, (chats.path() + u"/index/library"_s).toUtf8());
    NoCommands commands;
    auto* window =
        new vell::LibraryWindow(commands, {settings, recentFiles, contacts, pictures}, library);
    // Nobody has to be asked for contacts.
    window->findChild<vell::ContactsBar*>()->setMaximumHeight(0);
    window->resize(windowSize);
    window->show();
    auto& people = *window->findChild<QListView*>(u"libraryPeople"_s);
    auto& found = *window->findChild<QListView*>(u"libraryFound"_s);
    if (!wait(patience, [&] { return people.model()->rowCount() > 6 && !library.indexing(); }))
        return false;
    choose(people, u"Jonas Holm"_s);
    choose(*window->findChild<QTreeView*>(u"libraryConversations"_s), u"Sun 3"_s);
    bool isSaved = save(*window, target + u".png"_s);
    window->findChild<QLineEdit*>(u"librarySearch"_s)->setText(u"after:2007 umbrella"_s);
    if (!wait(patience, [&] { return found.model()->rowCount() > 3; })) return false;
    found.setCurrentIndex(found.model()->index(0, 0));
    isSaved = save(*window, target + u"-search.png"_s) && isSaved;
    delete window;
    return isSaved;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: library-screenshots NAME [--dark]\n", stderr);
        return 2;
    }
    const QTemporaryDir home;
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "HOME"})
        qputenv(variable, home.path().toUtf8());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QGuiApplication::setLayoutDirection(QLocale().textDirection());
    if (application.arguments().contains(u"--dark"_s)) QApplication::setPalette(darkPalette());
    vell::repairSecondaryText();
    const bool isDone = takeScreenshots(QString::fromLocal8Bit(argv[1]));
    if (!isDone) std::fputs("library-screenshots: nothing was found in time\n", stderr);
    std::fflush(nullptr);
    std::_Exit(isDone ? 0 : 1);
}
