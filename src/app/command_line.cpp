// SPDX-License-Identifier: MIT
#include "app/command_line.h"

#include <QCommandLineParser>
#include <QDir>
#include <QUrl>

#include "app/documents/file_reader.h"
#include "foundation/local_path.h"
#include "toolkit/application_info.h"

namespace vell {

CommandLine CommandLine::parse(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Opens chat transcripts (.ichat) and never changes them."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Show this help."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Show the version."));
    const QCommandLineOption newInstance(QStringLiteral("new-instance"),
                                         QStringLiteral("Start a separate instance."));
    const QCommandLineOption render(
        QStringLiteral("render"),
        QStringLiteral("Save a picture of what the window would show, or the whole chat as a PDF, "
                       "without a display."),
        QStringLiteral("OUT.png|OUT.pdf"));
    const QCommandLineOption dark(
        QStringLiteral("dark"),
        QStringLiteral("With --render: use the colours of a dark desktop."));
    parser.addOptions({help, version, newInstance, render, dark});
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("A transcript, a folder to search, or - for "
                                                "standard input."),
                                 QStringLiteral("[FILE…]"));
    CommandLine result;
    if (!parser.parse(arguments)) {
        result.reply = Reply{QStringLiteral("vell: ") + parser.errorText(), 2};
        return result;
    }
    if (parser.isSet(help)) {
        result.reply = Reply{parser.helpText(), 0};
    } else if (parser.isSet(version)) {
        const ApplicationInfo info = applicationInfo();
        result.reply = Reply{info.appName + u' ' + info.version, 0};
    } else if (parser.isSet(render) && parser.positionalArguments().size() != 1) {
        result.reply = Reply{QStringLiteral("vell: --render takes exactly one file"), 2};
    }
    result.files = parser.positionalArguments();
    result.newInstance = parser.isSet(newInstance);
    result.isDark = parser.isSet(dark);
    if (parser.isSet(render)) result.renderTarget = parser.value(render);
    return result;
}

QString argumentPath(const QString& argument, const QString& folder) {
    if (isStandardInput(argument)) return argument;
    if (argument.startsWith(QLatin1String("file:"), Qt::CaseInsensitive)) {
        const QUrl url(argument);
        if (url.isLocalFile()) return QDir::cleanPath(foundation::pathFromUrl(url));
    }
    return QDir::cleanPath(QDir(folder).absoluteFilePath(argument));
}

}  // namespace vell
