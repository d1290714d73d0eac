// SPDX-License-Identifier: MIT
//
// The plug-in's side: the desktop's address-book service through libebook. It has a thread and a
// main context of its own, on which all of the service's objects live. No Qt here: its headers and
// GLib's don't mix.
//
//     changes   view of a book ─┐
//               list of books  ─┼─ noteChange ── after a short delay, once ── changed()
//               bus name back  ─┘
//     reading   enumerate() ── collect() on the thread ── cards ── handle() on the caller's thread
//
// When the service's process dies, its objects here stop working without notice. So the bus name is
// watched: when it vanishes, the books are dropped; when it is back, a change is reported, and the
// read that follows connects again.
#include "identity/service/service_plugin.h"

#include <libebook/libebook.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "identity/service/glib.h"

namespace {

using vell::glib::Failure;
using vell::glib::Ref;

/// Matches everything. The shorter forms that the service documents are refused or break views.
constexpr const char* everyContact = R"((contains "x-evolution-any-field" ""))";
constexpr const char* busNames = "org.gnome.evolution.dataserver";
constexpr const char* addressBookName = "org.gnome.evolution.dataserver.AddressBook";
constexpr guint burstMilliseconds = 200;
constexpr std::chrono::seconds serviceTimeout{10};

struct Card {
    std::string book;
    std::string uid;
    std::string text;
};

struct Collection {
    std::vector<Card> cards;
    size_t books = 0;
    size_t unreadBooks = 0;
    std::string problem;  ///< of the last book that could not be read
};

class Service {
  public:
    Service(void (*changed)(void*), void* context) : changed_(changed), changedContext_(context) {}
    ~Service();
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    /// An empty text, or what is wrong.
    std::string open();
    bool enumerate(int (*handle)(void*, const VellServiceContact*), void* context,
                   std::string& error);

  private:
    struct Book {
        Ref<EClient> client;
        Ref<EBookClientView> view;
    };

    void run(std::promise<std::string> opened);
    void post(std::function<void()> function);

    // On the service's thread:
    std::string connectService();
    void listenToSources();
    void listenToBus();
    std::vector<Ref<ESource>> enabledBooks() const;
    void collect(Collection& result);
    void collectBook(const std::string& uid, EClient* client, Collection& result);
    void connectBooks(Collection& result);
    bool connectBook(ESource* source, Failure& failure);
    void dropBooks();
    void noteChange();
    void noteSources();
    void noteBusName(const char* newOwner);

    void (*const changed_)(void*);
    void* const changedContext_;
    GMainContext* context_ = g_main_context_new();
    GMainLoop* loop_ = g_main_loop_new(context_, FALSE);
    const Ref<GCancellable> cancellable_{g_cancellable_new()};
    std::atomic<bool> isClosing_ = false;
    std::thread thread_;

    Ref<GDBusConnection> bus_;
    guint busSubscription_ = 0;
    Ref<ESourceRegistry> registry_;
    std::map<std::string, Book> books_;  ///< by identifier, which is the order they are read in
    bool areBooksConnected_ = false;
    GSource* burst_ = nullptr;
};

Service::~Service() {
    isClosing_ = true;
    g_cancellable_cancel(cancellable_.get());
    if (thread_.joinable()) {
        post([this] { g_main_loop_quit(loop_); });
        thread_.join();
    }
    g_main_loop_unref(loop_);
    g_main_context_unref(context_);
}

std::string Service::open() {
    std::promise<std::string> opened;
    std::future<std::string> result = opened.get_future();
    thread_ =
        std::thread([this, promise = std::move(opened)]() mutable { run(std::move(promise)); });
    if (result.wait_for(serviceTimeout) == std::future_status::ready) return result.get();
    return "The address-book service doesn't answer.";
}

void Service::run(std::promise<std::string> opened) {
    g_main_context_push_thread_default(context_);
    opened.set_value(connectService());
    g_main_loop_run(loop_);

    dropBooks();
    if (burst_) g_source_destroy(burst_);
    if (busSubscription_) g_dbus_connection_signal_unsubscribe(bus_.get(), busSubscription_);
    if (registry_) g_signal_handlers_disconnect_by_data(registry_.get(), this);
    registry_.reset();
    bus_.reset();
    while (g_main_context_iteration(context_, FALSE)) {
    }
    g_main_context_pop_thread_default(context_);
}

void Service::post(std::function<void()> function) {
    GSource* source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    g_source_set_callback(
        source,
        [](gpointer posted) {
            (*static_cast<std::function<void()>*>(posted))();
            return G_SOURCE_REMOVE;
        },
        new std::function<void()>(std::move(function)),
        [](gpointer posted) { delete static_cast<std::function<void()>*>(posted); });
    g_source_attach(source, context_);
    g_source_unref(source);
}

std::string Service::connectService() {
    Failure failure;
    bus_.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable_.get(), failure.out()));
    if (!bus_) return {};  // no session, no address book
    // Else the program would be ended together with the bus.
    g_dbus_connection_set_exit_on_close(bus_.get(), FALSE);
    registry_.reset(e_source_registry_new_sync(cancellable_.get(), failure.out()));
    if (!registry_) return failure.isAbsence() ? std::string() : failure.text();
    listenToSources();
    listenToBus();
    return {};
}

void Service::listenToSources() {
    const auto note = +[](ESourceRegistry*, ESource*, gpointer service) {
        static_cast<Service*>(service)->noteSources();
    };
    for (const char* signal :
         {"source-added", "source-removed", "source-changed", "source-enabled", "source-disabled"})
        g_signal_connect(registry_.get(), signal, reinterpret_cast<GCallback>(note), this);
}

void Service::listenToBus() {
    busSubscription_ = g_dbus_connection_signal_subscribe(
        bus_.get(), "org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged",
        "/org/freedesktop/DBus", busNames, G_DBUS_SIGNAL_FLAGS_MATCH_ARG0_NAMESPACE,
        [](GDBusConnection*, const char*, const char*, const char*, const char*,
           GVariant* parameters, gpointer service) {
            const char *name = nullptr, *newOwner = nullptr;
            g_variant_get(parameters, "(&s&s&s)", &name, nullptr, &newOwner);
            if (g_str_has_prefix(name, addressBookName))
                static_cast<Service*>(service)->noteBusName(newOwner);
        },
        this, nullptr);
}

/// Where nothing was dropped, the name has come because this very program asked for a book.
void Service::noteBusName(const char* newOwner) {
    if (*newOwner == '\0') {
        dropBooks();
    } else if (!areBooksConnected_) {
        noteChange();
    }
}

/// Called for many changes that don't affect which books there are.
void Service::noteSources() {
    std::vector<std::string> known, enabled;
    for (const auto& [uid, book] : books_)
        known.push_back(uid);
    for (const auto& source : enabledBooks())
        enabled.emplace_back(e_source_get_uid(source.get()));
    if (known == enabled) return;
    dropBooks();
    noteChange();
}

void Service::noteChange() {
    if (burst_) return;
    burst_ = g_timeout_source_new(burstMilliseconds);
    g_source_set_callback(
        burst_,
        [](gpointer data) {
            auto* service = static_cast<Service*>(data);
            service->burst_ = nullptr;
            service->changed_(service->changedContext_);
            return G_SOURCE_REMOVE;
        },
        this, nullptr);
    g_source_attach(burst_, context_);
    g_source_unref(burst_);
}

std::vector<Ref<ESource>> Service::enabledBooks() const {
    std::vector<Ref<ESource>> sources;
    if (!registry_) return sources;
    GList* list = e_source_registry_list_enabled(registry_.get(), E_SOURCE_EXTENSION_ADDRESS_BOOK);
    for (GList* item = list; item; item = item->next)
        sources.emplace_back(static_cast<ESource*>(item->data));
    g_list_free(list);
    std::sort(sources.begin(), sources.end(), [](const Ref<ESource>& a, const Ref<ESource>& b) {
        return std::string_view(e_source_get_uid(a.get())) < e_source_get_uid(b.get());
    });
    return sources;
}

void Service::dropBooks() {
    for (auto& [uid, book] : books_) {
        if (book.view) g_signal_handlers_disconnect_by_data(book.view.get(), this);
        g_signal_handlers_disconnect_by_data(book.client.get(), this);
    }
    books_.clear();
    areBooksConnected_ = false;
}

void Service::connectBooks(Collection& result) {
    dropBooks();
    const auto sources = enabledBooks();
    result.books = sources.size();
    for (const auto& source : sources) {
        Failure failure;
        if (connectBook(source.get(), failure)) continue;
        result.unreadBooks++;
        result.problem = failure.text();
    }
    areBooksConnected_ = true;
}

bool Service::connectBook(ESource* source, Failure& failure) {
    // Any number of seconds would be waited in full, connected or not.
    constexpr auto dontWait = static_cast<guint32>(-1);
    Book book;
    book.client.reset(
        e_book_client_connect_sync(source, dontWait, cancellable_.get(), failure.out()));
    if (!book.client) return false;
    auto* client = reinterpret_cast<EBookClient*>(book.client.get());
    const auto died = +[](EClient*, gpointer service) {
        static_cast<Service*>(service)->dropBooks();
        static_cast<Service*>(service)->noteChange();
    };
    g_signal_connect(client, "backend-died", reinterpret_cast<GCallback>(died), this);

    EBookClientView* view = nullptr;
    // A book without changes is better than no book.
    if (e_book_client_get_view_sync(client, everyContact, &view, cancellable_.get(),
                                    failure.out())) {
        book.view.reset(view);
        const auto note = +[](EBookClientView*, gpointer, gpointer service) {
            static_cast<Service*>(service)->noteChange();
        };
        for (const char* signal : {"objects-added", "objects-modified", "objects-removed"})
            g_signal_connect(view, signal, reinterpret_cast<GCallback>(note), this);
        e_book_client_view_set_flags(view, E_BOOK_CLIENT_VIEW_FLAGS_NONE, failure.out());
        e_book_client_view_start(view, failure.out());
    }
    books_.emplace(e_source_get_uid(source), std::move(book));
    return true;
}

void Service::collect(Collection& result) {
    if (!isClosing_) g_cancellable_reset(cancellable_.get());
    // The second attempt is for a service that died unnoticed.
    for (int attempt = 0; attempt < 2; attempt++) {
        const bool wereConnected = areBooksConnected_;
        result = {};
        if (wereConnected) {
            result.books = books_.size();
        } else {
            connectBooks(result);
        }
        for (const auto& [uid, book] : books_)
            collectBook(uid, book.client.get(), result);
        if (result.unreadBooks == 0) return;
        dropBooks();
        if (!wereConnected) return;
    }
}

void Service::collectBook(const std::string& uid, EClient* client, Collection& result) {
    Failure failure;
    GSList* contacts = nullptr;
    if (!e_book_client_get_contacts_sync(reinterpret_cast<EBookClient*>(client), everyContact,
                                         &contacts, cancellable_.get(), failure.out())) {
        result.unreadBooks++;
        result.problem = failure.text();
        return;
    }
    const auto first = static_cast<std::ptrdiff_t>(result.cards.size());
    for (GSList* item = contacts; item; item = item->next) {
        auto* contact = static_cast<EContact*>(item->data);
        const auto* contactUid =
            static_cast<const char*>(e_contact_get_const(contact, E_CONTACT_UID));
        char* text = e_vcard_to_string(reinterpret_cast<EVCard*>(contact), EVC_FORMAT_VCARD_30);
        if (contactUid && text) result.cards.push_back({uid, contactUid, text});
        g_free(text);
    }
    g_slist_free_full(contacts, g_object_unref);
    std::sort(result.cards.begin() + first, result.cards.end(),
              [](const Card& a, const Card& b) { return a.uid < b.uid; });
}

bool Service::enumerate(int (*handle)(void*, const VellServiceContact*), void* context,
                        std::string& error) {
    struct Job {
        Collection collection;
        std::promise<void> done;
    };
    const auto job = std::make_shared<Job>();
    const std::future<void> done = job->done.get_future();
    post([this, job] {
        collect(job->collection);
        job->done.set_value();
    });
    if (done.wait_for(serviceTimeout) != std::future_status::ready) {
        g_cancellable_cancel(cancellable_.get());
        error = "The address-book service doesn't answer.";
        return false;
    }
    const Collection& collection = job->collection;
    if (collection.unreadBooks > 0) error = collection.problem;
    if (collection.books > 0 && collection.unreadBooks == collection.books) return false;
    for (const Card& card : collection.cards) {
        const VellServiceContact contact{card.book.c_str(), card.uid.c_str(), card.text.c_str()};
        if (!handle(context, &contact)) break;
    }
    return true;
}

void copyText(const std::string& text, char* buffer, unsigned size) {
    std::snprintf(buffer, size, "%s", text.c_str());
}

void* open(void (*changed)(void*), void* context, char* error, unsigned errorSize) {
    auto service = std::make_unique<Service>(changed, context);
    const std::string problem = service->open();
    copyText(problem, error, errorSize);
    return problem.empty() ? service.release() : nullptr;
}

int enumerate(void* service, int (*handle)(void*, const VellServiceContact*), void* context,
              char* error, unsigned errorSize) {
    std::string problem;
    const bool isRead = static_cast<Service*>(service)->enumerate(handle, context, problem);
    copyText(problem, error, errorSize);
    return isRead ? 1 : 0;
}

void close(void* service) {
    delete static_cast<Service*>(service);
}

constexpr VellContactsService interface = {vellContactsServiceVersion, open, enumerate, close};

}  // namespace

extern "C" __attribute__((visibility("default"))) const VellContactsService* vellContactsService() {
    return &interface;
}
