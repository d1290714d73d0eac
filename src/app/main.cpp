// SPDX-License-Identifier: MIT
//
// vell FILE…: one window a transcript, its events in a scrolling list.
// vell --render OUT.png FILE: what the window would show, painted into a picture without a display.

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QListWidget>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <vector>

#include "transcript/chat_log.h"

using vell::TesselChatLog;

namespace {

template <class... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};

/// What an event says, without its sender; nothing for the markers between events.
QString text(const TesselChatLog::Event::Value& value) {
    return std::visit(
        Overloaded{
            [](const TesselChatLog::PlainText& plain) { return plain.text; },
            [](const TesselChatLog::Image& image) {
                return QStringLiteral("[%1]").arg(image.path().value_or(image.type()));
            },
            [](const TesselChatLog::File& file) { return file.wrapper->description(); },
            [](const TesselChatLog::Link& link) {
                return link.title + QStringLiteral(" <%1>").arg(link.url->absoluteString());
            },
            [](const auto&) { return QString(); },
        },
        value);
}

std::unique_ptr<QListWidget> makeWindow(const QString& path, const TesselChatLog& log) {
    auto window = std::make_unique<QListWidget>();
    window->setWindowTitle(QFileInfo(path).fileName());
    window->setWordWrap(true);
    window->resize(520, 640);
    for (const TesselChatLog::Event& event : log.events()) {
        const QString words = text(event.value);
        if (words.isNull()) continue;
        window->addItem(event.sender ? event.sender->userID + QStringLiteral(": ") + words : words);
    }
    return window;
}

/// A platform plug-in without a display ends the program, so this is settled before there is an
/// application object.
void chooseHeadlessPlatform(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--render") == 0) qputenv("QT_QPA_PLATFORM", "offscreen");
    }
}

}  // namespace

int main(int argc, char** argv) {
    chooseHeadlessPlatform(argc, argv);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vell"));
    QCommandLineParser parser;
    const QCommandLineOption render(QStringLiteral("render"),
                                    QStringLiteral("Paint the window into a picture and quit."),
                                    QStringLiteral("OUT.png"));
    parser.addOption(render);
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("A transcript."),
                                 QStringLiteral("FILE…"));
    parser.process(application);

    std::vector<std::unique_ptr<QListWidget>> windows;
    bool failed = false;
    for (const QString& path : parser.positionalArguments()) {
        try {
            windows.push_back(
                makeWindow(path, TesselChatLog::fromFile(path, foundation::Calendar::current())));
        } catch (const std::exception& error) {
            std::fprintf(stderr, "vell: %s: %s\n", qUtf8Printable(path), error.what());
            failed = true;
        }
    }
    if (parser.isSet(render)) {
        const bool painted =
            !windows.empty() && windows.front()->grab().save(parser.value(render), "PNG");
        return failed || !painted ? 1 : 0;
    }
    for (const auto& window : windows)
        window->show();
    return windows.empty() ? (failed ? 1 : 0) : QApplication::exec();
}
