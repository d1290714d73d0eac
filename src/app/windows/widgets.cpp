// SPDX-License-Identifier: MIT
#include "app/windows/widgets.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMouseEvent>
#include <QUrl>
#include <cstdlib>

#include "app/desktop/opening.h"
#include "toolkit/application_info.h"
#include "toolkit/mixed_color.h"

namespace vell {
namespace {

/// Of 255 shades of grey between a link and what is behind it.
constexpr int legibleDifference = 60;

/// Rich text has its colours written into it, so it is written anew for another palette.
class LinkLabel final : public QLabel {
  public:
    LinkLabel(const QString& text, const QString& address, QPalette::ColorRole color)
        : text_(text.toHtmlEscaped()), address_(address.toHtmlEscaped()), color_(color) {
        setTextFormat(Qt::RichText);
        setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
        setAlignment(Qt::AlignCenter);
        setToolTip(address);
        setAccessibleName(text);
        write();
        connect(this, &QLabel::linkActivated, this,
                [this](const QString& link) { openWithDesktop(QUrl(link), *window()); });
    }

  protected:
    void changeEvent(QEvent* event) override {
        QLabel::changeEvent(event);
        if (event->type() == QEvent::PaletteChange) write();
    }
    /// The window would take the press for the start of a drag.
    void mousePressEvent(QMouseEvent* event) override {
        QLabel::mousePressEvent(event);
        event->accept();
    }
    /// A second quick click is a click as well.
    void mouseDoubleClickEvent(QMouseEvent* event) override {
        QMouseEvent press(QEvent::MouseButtonPress, event->position(), event->globalPosition(),
                          event->button(), event->buttons(), event->modifiers());
        mousePressEvent(&press);
    }

  private:
    void write() {
        setText(QStringLiteral("<a style=\"color: %1\" href=\"%2\">%3</a>")
                    .arg(shownColor().name(), address_, text_));
    }
    /// Opaque; dark themes of the toolkit leave links a dark blue, which is made lighter.
    [[nodiscard]] QColor shownColor() const {
        const QColor window = palette().color(QPalette::Window);
        const QColor color = palette().color(color_);
        const QColor opaque = mixed(window, color, color.alphaF());
        const int difference = qGray(opaque.rgb()) - qGray(window.rgb());
        if (std::abs(difference) >= legibleDifference) return opaque;
        return mixed(opaque, palette().color(QPalette::WindowText), 0.5F);
    }

    QString text_;
    QString address_;
    QPalette::ColorRole color_;
};

}  // namespace

QString versionLine(const ApplicationInfo& info) {
    return QCoreApplication::translate("Version", "Version: %1 (%2)").arg(info.version, info.build);
}

QLabel* secondaryLabel(const QString& text) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

QLabel* linkLabel(const QString& text, const QString& address, QPalette::ColorRole color) {
    return new LinkLabel(text, address, color);
}

QFrame* divider() {
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

}  // namespace vell
