// SPDX-License-Identifier: MIT
#include "app/render.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QPalette>
#include <cstdio>
#include <new>

#include "app/documents/document.h"
#include "app/documents/file_reader.h"
#include "foundation/local_path.h"
#include "identity/contacts/contacts_store.h"
#include "timeline/pictures/picture_cache.h"
#include "timeline/timeline_view.h"

namespace vell {
namespace {

constexpr QSize windowSize(520, 720);
constexpr int decodingTimeout = 10'000;  // milliseconds

QPalette darkPalette() {
    QPalette palette(QColor(53, 53, 56), QColor(44, 44, 47));
    palette.setColor(QPalette::Base, QColor(30, 30, 32));
    return palette;
}

QString reason(const QString& path) {
    const QFileInfo info(foundation::localPath(path));
    if (info.exists() && !info.isFile()) return QStringLiteral("it isn't a file");
    QFile file;
    if (!isStandardInput(path) && !foundation::openForReading(file, path))
        return file.errorString();
    return QStringLiteral("the file is damaged or not a transcript");
}

}  // namespace

int render(const QString& path, const QString& target, bool isDark) {
    if (isDark) QApplication::setPalette(darkPalette());
    try {
        const auto file = DiskFileReader().read(path);
        const VellDocument document = VellDocument::read(*file, [] {});
        ContactsStore contacts;
        PictureCache pictures;
        TimelineView view(document.sharedChatlog(), contacts, pictures);
        view.resize(windowSize);
        view.show();
        // Painting requests pictures, and one that can't be drawn may bring another row into view.
        QElapsedTimer total;
        total.start();
        do {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
            view.grab();
        } while (pictures.isBusy() && !total.hasExpired(decodingTimeout));
        if (view.grab().save(target, "PNG")) return 0;
        std::fprintf(stderr, "vell: %s can't be written\n", qUtf8Printable(target));
    } catch (const foundation::Error& error) {
        const QString known = error.debugDescription();
        std::fprintf(stderr, "vell: %s could not be opened: %s\n", qUtf8Printable(path),
                     qUtf8Printable(known.isEmpty() ? reason(path) : known));
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "vell: %s could not be opened: there is not enough memory\n",
                     qUtf8Printable(path));
    }
    return 1;
}

}  // namespace vell
