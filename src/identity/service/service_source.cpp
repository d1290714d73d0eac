// SPDX-License-Identifier: MIT
#include "identity/service/service_source.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLibrary>
#include <QUrl>
#include <array>
#include <mutex>
#include <utility>

#include "foundation/guarded.h"
#include "identity/service/service_plugin.h"
#include "identity/vcard/vcard_contacts.h"
#include "toolkit/callback_guard.h"
#include "toolkit/logger.h"

namespace vell {
namespace {

const QString pluginName = QStringLiteral("vell-contacts-service.so");
constexpr qint64 largestPicture = qint64{16} << 20;

/// The plug-in's functions; null when it isn't installed. Throws when it is another program's.
const VellContactsService* loadPlugin(const QStringList& folders) {
    for (const QString& folder : folders) {
        const QString path = folder + u'/' + pluginName;
        if (!QFileInfo::exists(path)) continue;
        QLibrary library(path);
        // Its thread and the service's types can't be taken out of the process again.
        library.setLoadHints(QLibrary::PreventUnloadHint);
        const auto entry = reinterpret_cast<const VellContactsService* (*)()>(
            library.resolve("vellContactsService"));
        if (!entry) continue;  // the service's own library is missing, most likely
        const VellContactsService* plugin = entry();
        if (plugin->version != vellContactsServiceVersion)
            throw ContactsError(QStringLiteral("The plug-in “%1” is of version %2, not %3.")
                                    .arg(path)
                                    .arg(plugin->version)
                                    .arg(int{vellContactsServiceVersion}));
        return plugin;
    }
    return nullptr;
}

/// The service keeps pictures in files of its own and returns their addresses.
QByteArray pictureAt(const QString& location) {
    const QUrl url(location);
    if (!url.isLocalFile()) return {};
    QFile file(url.toLocalFile());
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) return {};
    // The whole of what is asked for is allocated at once.
    const qint64 size = file.size();
    return size <= largestPicture ? file.read(size) : QByteArray();
}

struct Enumerator {
    const ContactHandler& handle;
    const std::stop_token& stop;

    static int take(void* context, const VellServiceContact* contact) {
        const auto& self = *static_cast<const Enumerator*>(context);
        if (self.stop.stop_requested()) return 0;
        std::optional<VCardContact> person = contactFromVCard(contact->card);
        if (!person) return 1;
        person->record.identifier =
            QString::fromUtf8(contact->book) + u'/' + QString::fromUtf8(contact->uid);
        if (person->record.thumbnails.empty() && !person->pictureLocation.isEmpty())
            person->record.thumbnails.push_back(pictureAt(person->pictureLocation));
        self.handle(person->record);
        return 1;
    }
};

}  // namespace

/// The open service, shared with enumerations that may outlive the source.
class ServiceSource::Connection {
  public:
    Connection(QStringList folders, std::shared_ptr<Logger> log, ServiceSource* source)
        : folders_(std::move(folders)), log_(std::move(log)), callbacks_(source), source_(source) {}
    ~Connection() {
        if (service_) plugin_->close(service_);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void closeCallbacks() { callbacks_.close(); }

    /// Any thread; does nothing when it is open. Throws what is wrong with the service.
    void open() {
        const std::lock_guard lock(mutex_);
        if (service_) return;
        if (!plugin_) plugin_ = loadPlugin(folders_);
        if (!plugin_) return;
        std::array<char, 512> error{};
        service_ = plugin_->open(&Connection::noteChange, this, error.data(), error.size());
        if (!service_) throw ContactsError(QString::fromUtf8(error.data()));
    }

    /// Any thread.
    void enumerate(const ContactHandler& handle, const std::stop_token& stop) {
        open();
        if (!service_) return;
        std::array<char, 512> error{};
        Enumerator enumerator{handle, stop};
        const bool isRead = plugin_->enumerate(service_, &Enumerator::take, &enumerator,
                                               error.data(), error.size());
        const QString problem = QString::fromUtf8(error.data());
        if (!isRead) throw ContactsError(problem);
        if (!problem.isEmpty()) log_->warn("Could not read an address book:", problem);
    }

  private:
    static void noteChange(void* context) {
        auto* connection = static_cast<Connection*>(context);
        // Runs only while the source exists.
        connection->callbacks_.post(
            [source = connection->source_] { Q_EMIT source->contactsChanged(); });
    }

    const QStringList folders_;
    const std::shared_ptr<Logger> log_;
    CallbackGuard callbacks_;
    ServiceSource* const source_;
    std::mutex mutex_;
    const VellContactsService* plugin_ = nullptr;
    void* service_ = nullptr;
};

ServiceSource::ServiceSource(QStringList pluginFolders, std::shared_ptr<Logger> log)
    : connection_(std::make_shared<Connection>(std::move(pluginFolders), std::move(log), this)) {}

ServiceSource::~ServiceSource() {
    connection_->closeCallbacks();
}

QStringList ServiceSource::customaryPluginFolders() {
    const QDir program(QCoreApplication::applicationDirPath());
    return {QDir::cleanPath(program.filePath(QStringLiteral("../lib"))),
            QDir::cleanPath(program.filePath(QStringLiteral(VELL_PLUGINS_FROM_PROGRAMS)))};
}

void ServiceSource::requestAccess(Answer answer) {
    auto open = [connection = connection_, answer] {
        std::optional<foundation::Error> error;
        try {
            connection->open();
        } catch (const foundation::Error& thrown) {
            error = thrown;
        }
        answer(true, error);
    };
    foundation::runDetached(std::move(open), [answer = std::move(answer)] {
        answer(true, ContactsError(QStringLiteral("Out of memory")));
    });
}

ContactsSource::Enumeration ServiceSource::enumeration() {
    return [connection = connection_](const ContactHandler& handle, const std::stop_token& stop) {
        connection->enumerate(handle, stop);
    };
}

}  // namespace vell
