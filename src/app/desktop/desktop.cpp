// SPDX-License-Identifier: MIT
#include "app/desktop/desktop.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QEvent>
#include <QPalette>
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

/// Keeps its text in the placeholder colour of whatever palette it stands in.
class SecondaryLabel final : public QLabel {
  public:
    explicit SecondaryLabel(const QString& text) : QLabel(text) { setTextFormat(Qt::PlainText); }

  protected:
    void changeEvent(QEvent* event) override {
        QLabel::changeEvent(event);
        if (event->type() == QEvent::PaletteChange) update();
    }
    void showEvent(QShowEvent* event) override {
        setForegroundRole(QPalette::PlaceholderText);
        QLabel::showEvent(event);
    }
};

}  // namespace

QString address(InfoAddress which) {
    const AddressKey key = keyOf(which);
    const auto value = Bundle::main().info(QLatin1String(key.key));
    return value && isAddress(*value) ? *value : QString::fromLatin1(key.fallback);
}

QUrl reportBug() {
    return QUrl(address(InfoAddress::bugReporter));
}

QString versionLine(const ApplicationInfo& info) {
    return QCoreApplication::translate("Version", "Version: %1 (%2)").arg(info.version, info.build);
}

QLabel* secondaryLabel(const QString& text) {
    return new SecondaryLabel(text);
}

QLabel* linkLabel(const QString& text, const QString& address) {
    auto* label = new QLabel(
        QStringLiteral("<a href=\"%1\">%2</a>").arg(address.toHtmlEscaped(), text.toHtmlEscaped()));
    label->setTextFormat(Qt::RichText);
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    label->setAlignment(Qt::AlignCenter);
    label->setToolTip(address);
    label->setAccessibleName(text);
    QObject::connect(label, &QLabel::linkActivated, label,
                     [](const QString& link) { openWithDesktop(QUrl(link)); });
    return label;
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
