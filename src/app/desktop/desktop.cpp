// SPDX-License-Identifier: MIT
#include "app/desktop/desktop.h"

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
            return {"SupportPageURL", VELL_SUPPORT_PAGE};
        case InfoAddress::supportMail:
            return {"SupportMailURL", "mailto:" VELL_SUPPORT_MAIL};
        case InfoAddress::publisher:
            return {"PublisherURL", VELL_PUBLISHER_PAGE};
        case InfoAddress::bugReporter:
            return {"BugReporterURL", VELL_BUG_REPORTER};
        case InfoAddress::identiconProject:
            return {"IdenticonProjectURL", VELL_IDENTICON_PROJECT};
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

QString menuText(const QString& text) {
    return text.simplified().replace(u'&', QStringLiteral("&&"));
}

}  // namespace vell
