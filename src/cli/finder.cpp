// SPDX-License-Identifier: MIT
#include "cli/finder.h"

#include <signal.h>

#include <QSettings>
#include <atomic>
#include <optional>

#include "cli/find_options.h"
#include "cli/hit_printer.h"
#include "cli/progress_line.h"
#include "cli/sink.h"
#include "cli/standard_streams.h"
#include "foundation/print.h"
#include "identity/contacts/sender_name.h"
#include "library/direct_search.h"
#include "library/indexer.h"
#include "library/library_search.h"
#include "library/searched_names.h"
#include "toolkit/console.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

constexpr int exitFound = 0;
constexpr int exitNothing = 1;
constexpr int exitTrouble = 2;

std::atomic<bool> isStopped = false;
static_assert(std::atomic<bool>::is_always_lock_free);
std::atomic<int> stopSignal = 0;

/// Once is enough to stop; the second time the program ends at once.
void stopOnSignals() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) continue;
        action.sa_handler = [](int received) {
            stopSignal = received;
            isStopped = true;
        };
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        ::sigaction(signal, &action, nullptr);
    }
}

/// As the user has joined addresses in the library's window.
PersonAliases aliasesOfUser() {
    const QSettings settings(u"quillmark"_s, u"vell"_s);
    return PersonAliases::fromLines(settings.value(PersonAliases::settingsKey).toStringList());
}

class Finder {
  public:
    explicit Finder(const FindOptions& options)
        : options_(options),
          contacts_(contactsIn(options.contacts)),
          names_(aliasesOfUser(), contacts_.addressToContact()),
          printer_(options, [this](const TesselUserID& user) { return nameOf(user); }) {
        for (const SearchedFolder& folder : options.folders)
            scope_.folders.push_back(folder.canonical);
        scope_.bestFirst = options.bestFirst;
        scope_.context = options.context;
        scope_.nameOf = [this](const TesselUserID& user) { return names_.of(user); };
    }

    /// Whether something was found.
    bool run() {
        if (!options_.usesIndex || !searchInIndex()) readFiles();
        if (options_.counts && !isStopped) printer_.printCount(count_);
        printer_.finish();
        return count_ > 0;
    }

  private:
    const FindOptions& options_;
    const ContactsStore contacts_;
    const SearchedNames names_;
    HitPrinter printer_;
    SearchScope scope_;
    ProgressLine progress_;
    qint64 count_ = 0;

    [[nodiscard]] QString nameOf(const TesselUserID& user) const {
        return senderName(user, contacts_);
    }

    /// False when there is no index to search in; then nothing was printed.
    bool searchInIndex() {
        try {
            LibraryStore store(LibraryStore::defaultPath());
            if (store.wasDamaged()) say(u"the index was damaged, and is made again"_s);
            try {
                search(store);
            } catch (const DatabaseError& error) {
                if (error.kind() != DatabaseError::Kind::damaged) throw;
                store.startAnew();
                // What was printed can't be taken back.
                if (count_ > 0) throw;
                say(u"the index was damaged, and is made again"_s);
                search(store);
            }
            return true;
        } catch (const StoreRefusal& refusal) {
            sayWithout(refusal.reason);
        } catch (const DatabaseError& error) {
            if (count_ > 0) throw;
            sayWithout(QString::fromUtf8(error.what()));
        }
        return false;
    }

    void search(LibraryStore& store) {
        Indexer indexer(store);
        indexer.onFound = [this](qsizetype count) {
            progress_.show(u"Looking for transcripts: %1"_s.arg(count));
        };
        indexer.onProgress = [this](const Indexer::Progress& progress) {
            progress_.show(u"Indexing"_s, progress.done, progress.all, progress.secondsLeft);
        };
        indexer.update(scope_.folders, isStopped);
        progress_.clear();
        if (isStopped) return;
        LibrarySearch search(store, scope_);
        if (options_.counts)
            count_ = search.count(options_.query);
        else
            search.run(options_.query, [this](const SearchHit& hit) { return take(hit); });
    }

    void readFiles() {
        const auto onFile = [this](qsizetype done, qsizetype all) {
            progress_.show(u"Reading"_s, done, all, {});
        };
        directSearch(options_.query, scope_, isStopped, onFile, [this](const SearchHit& hit) {
            progress_.clear();
            return take(hit);
        });
        progress_.clear();
    }

    bool take(const SearchHit& hit) {
        ++count_;
        if (!options_.counts) printer_.print(hit);
        return !isStopped;
    }

    void say(const QString& text) {
        progress_.clear();
        writeError(u"vell-find: "_s + oneLine(text) + u'\n');
    }
    void sayWithout(const QString& reason) {
        say(u"the index can't be used, so the files are read: "_s + reason);
    }
};

int finish(const FindOptions& options) {
    stopOnSignals();
    const bool hasFound = Finder(options).run();
    if (stopSignal != 0) ::raise(stopSignal);
    return hasFound ? exitFound : exitNothing;
}

}  // namespace

int runFind(const QStringList& arguments) {
    foundation::setPrintTarget(stderr);
    console::setDefaultConsole(std::make_shared<Console2<>>(
        FileOutputStream(stderr), FileOutputStream(stderr), LogLevel::defaultLevel()));
    try {
        return finish(parseFindOptions(arguments));
    } catch (const Information& information) {
        try {
            writeOutput(information.text);
            return exitFound;
        } catch (const WriteError& error) {
            writeError(u"vell-find: standard output: "_s + error.reason + u'\n');
        }
    } catch (const WriteError& error) {
        writeError(u"vell-find: standard output: "_s + error.reason + u'\n');
    } catch (const DatabaseError& error) {
        writeError(u"vell-find: the index can't be used: "_s + QString::fromUtf8(error.what()) +
                   u'\n');
    } catch (const UsageError& error) {
        writeError(u"vell-find: "_s + oneLine(error.reason) +
                   u"\nTry 'vell-find --help' for more.\n"_s);
    }
    return exitTrouble;
}

}  // namespace vell
