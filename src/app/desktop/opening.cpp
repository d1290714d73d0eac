// SPDX-License-Identifier: MIT
#include "app/desktop/opening.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QFile>
#include <QMessageBox>
#include <QPointer>
#include <QProcess>
#include <QStandardPaths>
#include <QWidget>

namespace vell {
namespace {

// Milliseconds. An opener that runs longer has started a program, whose end means nothing.
constexpr qint64 longestStart = 10'000;

void explainFailure(const QUrl& url, QWidget* window) {
    auto* box = new QMessageBox(QMessageBox::Warning,
                                QCoreApplication::translate("Opening", "Open Address"), {},
                                QMessageBox::Ok, window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->setText(
        QCoreApplication::translate("Opening", "The desktop could not open this address."));
    box->setInformativeText(url.toString());
    box->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box->open();
}

/// The desktop's opener as a program; empty where it has none, or where it is out of reach.
QString openerProgram() {
#ifdef Q_OS_LINUX
    if (!QFile::exists(QStringLiteral("/.flatpak-info")))
        return QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
#endif
    return {};
}

}  // namespace

void openWithDesktop(const QUrl& url, QWidget& window) {
    const QString opener = openerProgram();
    if (opener.isEmpty()) {
        if (!QDesktopServices::openUrl(url)) explainFailure(url, &window);
        return;
    }
    // The toolkit starts the opener too, but doesn't see it fail. Without an owner, as quitting
    // must not end a browser that the opener has become.
    auto* process = new QProcess;
    process->setStandardInputFile(QProcess::nullDevice());
    process->setProcessChannelMode(QProcess::ForwardedChannels);
    QElapsedTimer sinceStart;
    sinceStart.start();
    const auto finish = [process, url, sinceStart, window = QPointer(&window)](bool isOpened) {
        process->deleteLater();
        if (!isOpened && window && !sinceStart.hasExpired(longestStart))
            explainFailure(url, window);
    };
    QObject::connect(process, &QProcess::finished, process,
                     [finish](int code, QProcess::ExitStatus status) {
                         finish(code == 0 && status == QProcess::NormalExit);
                     });
    QObject::connect(process, &QProcess::errorOccurred, process,
                     [finish](QProcess::ProcessError error) {
                         if (error == QProcess::FailedToStart) finish(false);
                     });
    process->start(opener, {url.toString(QUrl::FullyEncoded)});
}

}  // namespace vell
