// SPDX-License-Identifier: MIT
//
// vell [FILE…]: opens transcripts in windows. With --render it saves a picture or a PDF of one
// instead.

#include <QApplication>
#include <QDir>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QTimer>
#include <QTranslator>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "app/application.h"
#include "app/command_line.h"
#include "app/desktop/quit_signals.h"
#include "app/render.h"
#include "foundation/local_path.h"

namespace {

void setNames() {
    QCoreApplication::setOrganizationName(QStringLiteral("quillmark"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("quillmark.dev"));
    QCoreApplication::setApplicationName(QStringLiteral("vell"));
    QGuiApplication::setDesktopFileName(QStringLiteral("dev.quillmark.vell"));
}

/// Needs an application object, but no display yet.
vell::CommandLine parse(int argc, char** argv) {
    const QCoreApplication core(argc, argv);
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(foundation::pathFromArgument(argv[i]));
    return vell::CommandLine::parse(arguments);
}

bool hasDisplay() {
#ifdef Q_OS_LINUX
    return !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
#else
    return true;
#endif
}

/// Messages of the toolkit while it connects to a display; printed once it has one.
QStringList heldBack;

/// Without a display the toolkit lists its plug-ins and aborts; this exits with one sentence
/// instead.
void holdBack(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type != QtFatalMsg) {
        heldBack.append(qFormatLogMessage(type, context, message));
        return;
    }
    QStringList tried;
    for (const char* name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"}) {
        if (!qEnvironmentVariableIsEmpty(name))
            tried.append(QLatin1String(name) + u'=' + qEnvironmentVariable(name));
    }
    std::fprintf(
        stderr, "vell: cannot connect to a display (%s); --render OUT.png FILE works without one\n",
        qUtf8Printable(tried.join(QStringLiteral(", "))));
    std::_Exit(1);
}

/// The desktop's language, for our texts and for the toolkit's own dialogs.
void installTranslations(QApplication& application) {
    for (const auto& [name, folder] :
         {std::pair(QStringLiteral("vell"), QStringLiteral(":/i18n")),
          std::pair(QStringLiteral("qtbase"),
                    QLibraryInfo::path(QLibraryInfo::TranslationsPath))}) {
        auto* translator = new QTranslator(&application);
        if (translator->load(QLocale(), name, QStringLiteral("_"), folder))
            QCoreApplication::installTranslator(translator);
    }
}

constexpr int iconDelay = 100;  // milliseconds

void setIcon() {
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/dev.quillmark.vell.svg")));
}

int run(int argc, char** argv) {
    setNames();
    const vell::CommandLine line = parse(argc, argv);
    if (line.reply) {
        std::fprintf(line.reply->exitCode == 0 ? stdout : stderr, "%s\n",
                     qUtf8Printable(line.reply->text));
        return line.reply->exitCode;
    }
    if (line.renderTarget) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    } else if (!hasDisplay()) {
        std::fputs("vell: there is no display; --render OUT.png FILE works without one\n", stderr);
        return 1;
    }

    QStringList paths;
    for (const QString& file : line.files)
        paths.append(vell::argumentPath(file, QDir::currentPath()));
    qInstallMessageHandler(holdBack);
    QApplication application(argc, argv);
    qInstallMessageHandler(nullptr);
    for (const QString& line : std::as_const(heldBack))
        std::fprintf(stderr, "%s\n", qUtf8Printable(line));
    installTranslations(application);
    QGuiApplication::setLayoutDirection(QLocale().textDirection());
    if (line.renderTarget) return vell::render(paths.first(), *line.renderTarget, line.isDark);

    const bool shared = !line.newInstance && !paths.contains(QStringLiteral("-"));
    if (shared && vell::SingleInstance::handOver(paths)) return 0;
    vell::Application vellApplication;
    const vell::QuitSignals quitSignals;
    // Another start may have been faster.
    if (shared && !vellApplication.listenForOtherStarts() && vell::SingleInstance::handOver(paths))
        return 0;
    if (paths.isEmpty()) {
        setIcon();
        vellApplication.openWithoutFiles();
    } else {
        // Rendering the icon takes a while, and the first window needn't wait for it.
        QTimer::singleShot(iconDelay, &application, setIcon);
        vellApplication.open(paths);
    }
    return QApplication::exec();
}

}  // namespace

// Threads that wait for a stalled disk are never joined, so static objects must not be destroyed.
int main(int argc, char** argv) {
    const int exitCode = run(argc, argv);
    std::fflush(nullptr);
    std::_Exit(exitCode);
}
