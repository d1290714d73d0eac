// SPDX-License-Identifier: MIT
#include "app/documents/load_log_window.h"

#include <QApplication>
#include <QEventLoopLocker>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QScreen>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <memory>

#include "app/desktop/desktop.h"
#include "app/documents/open_failures.h"
#include "app/windows/panel_window.h"
#include "app/windows/placement.h"
#include "app/windows/widgets.h"
#include "foundation/date.h"
#include "toolkit/application_info.h"
#include "transcript/load_log.h"

namespace vell {
namespace {

constexpr int presentationDelay = 800;  // milliseconds; the error dialog comes first
constexpr QSize headIconSize(64, 64);

std::vector<QWidget*>& openWindows() {
    static std::vector<QWidget*> windows;
    return windows;
}

/// Beside the dialog that names the file, and cascaded from other logs.
void place(QWidget& window) {
    QList<QRect> dialogs;
    for (const QWidget* other : QApplication::topLevelWidgets()) {
        if (other->isVisible() && qobject_cast<const OpenFailures*>(other))
            dialogs.append(expectedFrame(*other));
    }
    QList<QRect> logs;
    for (const QWidget* other : openWindows())
        logs.append(expectedFrame(*other));
    window.move(
        freePlace(expectedFrame(window), dialogs, logs, window.screen()->availableGeometry()));
}

void showWindow(const QString& log) {
    auto* window = new PanelWindow(QStringLiteral("Load Log Window"), loadLogSize,
                                   PanelWindow::Sizing::resizable);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setObjectName(QStringLiteral("loadLogWindow"));
    window->setWindowTitle(LoadLogView::tr("Vell Load Log"));
    auto* layout = new QVBoxLayout(window);
    layout->setContentsMargins({});
    layout->addWidget(new LoadLogView(applicationInfo(), log));

    place(*window);
    openWindows().push_back(window);
    QObject::connect(window, &QObject::destroyed, window,
                     [window] { std::erase(openWindows(), window); });
    window->show();
    window->raise();
    window->activateWindow();
}

QWidget* padded(QWidget* content, QPalette::ColorRole background = QPalette::Window) {
    auto* box = new QWidget;
    box->setAutoFillBackground(true);
    box->setBackgroundRole(background);
    auto* layout = new QHBoxLayout(box);
    layout->setContentsMargins(defaultPadding, defaultPadding, defaultPadding, defaultPadding);
    layout->addWidget(content);
    return box;
}

QWidget* titleRow(const ApplicationInfo& info) {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    auto* icon = new QLabel;
    icon->setPixmap(ApplicationInfo::icon().pixmap(headIconSize));
    auto* column = new QVBoxLayout;
    column->addWidget(new QLabel(info.appName), 0, Qt::AlignRight);
    column->addWidget(secondaryLabel(versionLine(info)), 0, Qt::AlignRight);
    layout->addWidget(icon);
    layout->addStretch();
    layout->addLayout(column);
    return row;
}

const QString& introText() {
    static const QString text =
        LoadLogView::tr(
            "It looks like loading the .ichat chatscript failed for some reason 😔. We'd love to "
            "debug this and collected some information while loading the file.\nWe would be very "
            "thankful if you could send us the file load information below. It does NOT contain "
            "the full file but only the first %1 bytes. Those should not contain any private "
            "information.\n\nIf you could send us a complete sample file which fails to load, that "
            "would also be very helpful. We understand that you might not want to share personal "
            "information. If you do, we promise to delete it immediatly after analysis and confirm "
            "the deletion to you by email.")
            .arg(tesselDataPrefixLogLength.load());
    return text;
}

QLabel* explanation() {
    auto* label = new QLabel(introText());
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QWidget* linksRow() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->addStretch();
    layout->addWidget(
        linkLabel(LoadLogView::tr("Open Brindle Support Page"), address(InfoAddress::support)));
    layout->addSpacing(defaultPadding);
    layout->addWidget(linkLabel(
        LoadLogView::tr("Open Email Panel"),
        address(InfoAddress::supportMail) + QStringLiteral("?subject=Vell%20Failed%20to%20open")));
    return row;
}

QString header(const ApplicationInfo& info) {
    return QStringLiteral("#  App Version: ") + info.version + QStringLiteral(" Build ") +
           info.build + QStringLiteral("\n## Date:        ") +
           foundation::Date::now().description() + QStringLiteral("\n---\n\n");
}

/// An editor, replaced by a sentence once its whole text has been deleted.
QWidget* output(const QString& text) {
    auto* editor = new QPlainTextEdit(text);
    editor->setObjectName(QStringLiteral("loadLogText"));
    editor->setAccessibleName(LoadLogView::tr("Load log"));
    editor->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    editor->setFrameShape(QFrame::NoFrame);
    editor->setLineWrapMode(QPlainTextEdit::NoWrap);
    editor->setLayoutDirection(Qt::LeftToRight);  // a log is, whatever the desktop's language
    auto* none = new QLabel(LoadLogView::tr("No log could be found 😔"));
    none->setAlignment(Qt::AlignCenter);
    auto* pages = new QStackedWidget;
    pages->addWidget(editor);
    pages->addWidget(none);
    QObject::connect(editor, &QPlainTextEdit::textChanged, pages, [pages, editor, none] {
        if (editor->document()->isEmpty()) pages->setCurrentWidget(none);
    });
    return pages;
}

}  // namespace

void presentLoadLogWindowIfNecessary() {
    const auto log = tesselLoadLog();
    if (!log) return;
    // Copied now: by the time the window opens, the log may be about another file.
    QMetaObject::invokeMethod(qApp, [text = log->grabLog()] {
        // Closing the last window meanwhile must not end the program.
        const auto running = std::make_shared<QEventLoopLocker>();
        QTimer::singleShot(presentationDelay, qApp, [text, running] { showWindow(text); });
    });
}

const std::vector<QWidget*>& logWindows() {
    return openWindows();
}

LoadLogView::LoadLogView(const ApplicationInfo& info, const QString& log) {
    setMinimumSize(640, 480);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(padded(titleRow(info)));
    layout->addWidget(divider());
    layout->addWidget(padded(explanation(), QPalette::Base));
    layout->addWidget(divider());
    layout->addWidget(padded(linksRow()));
    layout->addWidget(divider());
    layout->addWidget(padded(output(header(info) + log), QPalette::Base), 1);
}

}  // namespace vell
