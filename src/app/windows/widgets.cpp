// SPDX-License-Identifier: MIT
#include "app/windows/widgets.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPalette>
#include <QUrl>

#include "app/desktop/desktop.h"
#include "toolkit/application_info.h"

namespace vell {
namespace {

/// Keeps its text in the placeholder colour of the palette, even if that changes.
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

QFrame* divider() {
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

}  // namespace vell
