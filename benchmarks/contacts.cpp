// SPDX-License-Identifier: MIT
//
// Measures how an address book of 20,000 vCards is read and filed, in ratios to reading the same
// bytes and computing their SHA-256, and what it costs the window thread and in memory. Prints each
// figure beside its limit and exits with 1 when one is exceeded. Each half runs in a process of its
// own.
//
//     vell-contacts-benchmark
#include <QBuffer>
#include <QCoreApplication>
#include <QCryptographicHash>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRandomGenerator>
#include <QSettings>
#include <QTemporaryDir>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "figures.h"
#include "identity/contacts/contact_table.h"
#include "identity/contacts/contacts_store.h"
#include "identity/vcard/vcard_contacts.h"
#include "identity/vcard/vcard_source.h"

namespace {

using namespace vell;
using benchmarks::peakBytes;
using benchmarks::processorMilliseconds;
using benchmarks::report;

constexpr int cards = 20'000;
constexpr int photos = 2'000;
constexpr int repetitions = 15;
constexpr double largestTimeRatio = 4;
constexpr double largestGrowth = 200;  // megabytes
constexpr double longestMerge = 50;    // milliseconds

/// A snapshot of a camera, hard to compress: some 25 kB.
QByteArray photo(QRandomGenerator& random) {
    QImage image(256, 256, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); y++)
        for (int x = 0; x < image.width(); x++) {
            const int noise = static_cast<int>(random.bounded(64));
            image.setPixel(x, y, qRgb(x / 2 + noise, y / 2 + noise, 128 + noise));
        }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "JPEG", 75);
    return bytes;
}

QByteArray folded(const QByteArray& text) {
    QByteArray lines;
    for (qsizetype i = 0; i < text.size(); i += 74)
        lines += (i > 0 ? "\r\n " : "") + text.mid(i, 74);
    return lines;
}

/// What an address book exports: three to seven addresses a person.
QByteArray addressBook(int withPhotos) {
    QRandomGenerator random(42);
    QByteArray file;
    for (int i = 0; i < cards; i++) {
        const QByteArray n = QByteArray::number(i);
        file +=
            "BEGIN:VCARD\r\nVERSION:3.0\r\nPRODID:-//Example//Address Book 6.1//EN\r\n"
            "N:Family" +
            n + ";Given" + n + ";;;\r\nFN:Given" + n + " Family" + n + "\r\n";
        if (i % 3 == 0) file += "NICKNAME:Nick" + n + "\r\n";
        file += "ORG:Example Company;Department " + QByteArray::number(i % 50) +
                "\r\n"
                "EMAIL;type=INTERNET;type=WORK;type=pref:given.family" +
                n +
                "@example.org\r\n"
                "TEL;type=CELL;type=VOICE;type=pref:+49 170 " +
                n + "-00\r\n";
        if (i % 2 == 0) file += "TEL;type=HOME;type=VOICE:(030) " + n + " 11\r\n";
        if (i % 2 == 1)
            file += "X-AIM;type=HOME;type=pref:aimuser" + n +
                    "\r\n"
                    "item1.IMPP;X-SERVICE-TYPE=AIM;type=HOME;type=pref:aim:aimuser" +
                    n + "\r\n";
        file += "item2.ADR;type=HOME;type=pref:;;Street " + n +
                ";Town;;12345;Country\r\n"
                "item2.X-ABADR:de\r\nNOTE:Met at the conference\\, likes tea.\r\n";
        if (i % (cards / photos) == 0 && withPhotos > 0)
            file += folded("PHOTO;ENCODING=b;TYPE=JPEG:" + photo(random).toBase64()) + "\r\n";
        file += "REV:2009-07-04T13:04:05Z\r\nUID:0000-" + n + "-ABPerson\r\nEND:VCARD\r\n";
    }
    return file;
}

/// The median processor time of a function in milliseconds, without freeing what it returns.
template <class Function>
double median(Function function) {
    std::vector<double> times;
    for (int i = 0; i < repetitions; i++) {
        const double start = processorMilliseconds();
        const auto result = function();
        times.push_back(processorMilliseconds() - start);
    }
    return benchmarks::quantile(times, 0.5);
}

bool measureReading(const QString& path) {
    const auto log = console::defaultConsole();
    const double baseline = median([&] {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) std::abort();
        return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256);
    });
    qsizetype filed = 0;
    const double reading = median([&] {
        ContactTable table(*log);
        (void)readVCardFile(path, ContactPictures::wanted, *log,
                            [&](const ContactRecord& contact) { table.file(contact); });
        ContactsStore::Table result = table.take();
        filed = result.size();
        return result;
    });
    std::printf("reading and SHA-256: %.1f ms; parsing and filing %lld addresses: %.1f ms\n",
                baseline, static_cast<long long>(filed), reading);
    return report("20,000 cards: parsing and filing / reading and SHA-256", reading / baseline,
                  largestTimeRatio, "");
}

/// Runs the event loop until the store publishes; returns the milliseconds of processor time this
/// thread took.
double publishing(ContactsStore& store, const std::function<void()>& start) {
    bool isPublished = false;
    const auto connection = QObject::connect(&store, &ContactsStore::addressToContactChanged,
                                             [&] { isPublished = true; });
    const double before = processorMilliseconds();
    start();
    while (!isPublished)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QObject::disconnect(connection);
    return processorMilliseconds() - before;
}

bool measureStore(const QString& path, const char* what) {
    QTemporaryDir folder;
    QSettings settings(folder.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    auto owned = std::make_unique<VCardSource>(QStringList(), VCardSource::Chosen::byUser);
    VCardSource& source = *owned;
    ContactsStore store(std::move(owned), settings);
    const double before = peakBytes();
    const double first = publishing(store, [&] { source.setPaths({path}); });
    const double again = publishing(store, [&] { Q_EMIT source.contactsChanged(); });
    const double growth = peakBytes() - before;
    std::printf("%s: %lld addresses\n", what,
                static_cast<long long>(store.addressToContact().size()));
    bool isMet = report("  window thread, first reading", first, longestMerge, "ms");
    isMet &= report("  window thread, merging the second one", again, longestMerge, "ms");
    isMet &= report("  growth of peak memory over both", growth / 1e6, largestGrowth, "MB");
    return isMet;
}

bool measureInOwnProcess(const QString& path, const QString& what) {
    std::fflush(stdout);
    return QProcess::execute(QCoreApplication::applicationFilePath(), {path, what}) == 0;
}

bool measureAll() {
    const QTemporaryDir folder;
    const QString plain = folder.filePath(QStringLiteral("plain.vcf"));
    const QString pictured = folder.filePath(QStringLiteral("pictured.vcf"));
    for (const auto& [path, withPhotos] : {std::pair(plain, 0), {pictured, photos}}) {
        QFile file(path);
        const QByteArray bytes = addressBook(withPhotos);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) return false;
        std::printf("%s: %.1f MB\n", qPrintable(path), 1e-6 * static_cast<double>(bytes.size()));
    }
    bool isMet = measureReading(plain);
    isMet &= measureInOwnProcess(plain, QStringLiteral("20,000 cards"));
    isMet &= measureInOwnProcess(pictured, QStringLiteral("20,000 cards, 2,000 with photos"));
    return isMet;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const bool isMet = argc == 3 ? measureStore(QFile::decodeName(argv[1]), argv[2]) : measureAll();
    return isMet ? 0 : 1;
}
