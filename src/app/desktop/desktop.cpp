// SPDX-License-Identifier: MIT
#include "app/desktop/desktop.h"

#include <QDesktopServices>
#include <QWidget>
#include <optional>

#include "toolkit/application_info.h"

namespace vell {
namespace {

struct AddressKey {
    const char* key;
    const char* fallback;
};

AddressKey keyOf(InfoAddress which) {
    switch (which) {
        case InfoAddress::support:
            return {"SupportPageURL", "https://example.org/vell/support"};
        case InfoAddress::supportMail:
            return {"SupportMailURL", "mailto:support@example.org"};
        case InfoAddress::publisher:
            return {"PublisherURL", "https://example.org/vell"};
        case InfoAddress::bugReporter:
            return {"BugReporterURL", "https://example.org/vell/issues"};
        case InfoAddress::identiconProject:
            return {"IdenticonProjectURL", "https://example.org/identicon"};
    }
    Q_UNREACHABLE();
}

bool isAddress(const QString& text) {
    const QUrl url(text, QUrl::StrictMode);
    return url.isValid() && !url.scheme().isEmpty();
}

}  // namespace

QString address(InfoAddress which) {
    const AddressKey key = keyOf(which);
    const auto value = Bundle::main().info(QLatin1String(key.key));
    return value && isAddress(*value) ? *value : QString::fromLatin1(key.fallback);
}

QUrl reportBug() {
    return QUrl(address(InfoAddress::bugReporter));
}

void bringToFront(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

QString menuText(QString text) {
    return text.simplified().replace(u'&', QStringLiteral("&&"));
}

bool openWithDesktop(const QUrl& url) {
    return QDesktopServices::openUrl(url);
}

}  // namespace vell
