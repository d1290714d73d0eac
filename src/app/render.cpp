// SPDX-License-Identifier: MIT
#include "app/render.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QPalette>
#include <QSaveFile>
#include <cstdio>
#include <new>

#include "app/documents/document.h"
#include "app/documents/file_reader.h"
#include "export/expansion.h"
#include "export/markdown.h"
#include "export/message.h"
#include "foundation/local_path.h"
#include "identity/contacts/contacts_store.h"
#include "paper/pdf_document.h"
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

int cannotWrite(const QString& target, const QString& why) {
    std::fprintf(stderr, "vell: %s can't be written%s%s\n", qUtf8Printable(target),
                 why.isEmpty() ? "" : ": ", qUtf8Printable(why));
    return 1;
}

int renderPdf(const VellDocument& document, const QString& path, const QString& target) {
    const ContactsStore contacts;
    const auto limit = exportLimit(document.data().size());
    const bool isOutOfProportion = expandsBeyond(
        limit, document.expansion(), contacts,
        [&](const ByteSink& output) { writeMarkdown(document.chatlog(), contacts, output); });
    if (isOutOfProportion)
        return cannotWrite(target, QStringLiteral("it would be far larger than the transcript"));
    const QString title = isStandardInput(path) ? QString() : QFileInfo(path).completeBaseName();
    const PaperSetup setup = currentPaperSetup(document.chatlog(), contacts, title,
                                               PaperFormat::of(usualPaper(QLocale())));
    QSaveFile file(foundation::localPath(target));
    try {
        if (!file.open(QIODevice::WriteOnly)) return cannotWrite(target, file.errorString());
        const PdfResult written = writePdf(document.chatlog(), setup, file);
        if (written.messages != messageCount(document.chatlog()))
            return cannotWrite(target, QStringLiteral("messages are missing"));
        if (file.commit()) return 0;
    } catch (const PdfFile::WriteFailed&) {
    }
    return cannotWrite(target, file.errorString());
}

int renderPicture(const VellDocument& document, const QString& target) {
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
    return view.grab().save(target, "PNG") ? 0 : cannotWrite(target, {});
}

}  // namespace

int render(const QString& path, const QString& target, bool isDark) {
    if (isDark) QApplication::setPalette(darkPalette());
    try {
        const auto file = DiskFileReader().read(path);
        const VellDocument document = VellDocument::read(*file, [] {});
        const bool isPdf = target.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive);
        return isPdf ? renderPdf(document, path, target) : renderPicture(document, target);
    } catch (const foundation::Error& error) {
        const QString& known = error.debugDescription();
        std::fprintf(stderr, "vell: %s could not be opened: %s\n", qUtf8Printable(path),
                     qUtf8Printable(known.isEmpty() ? reason(path) : known));
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "vell: %s could not be opened: there is not enough memory\n",
                     qUtf8Printable(path));
    }
    return 1;
}

}  // namespace vell
