// SPDX-License-Identifier: MIT
#include "app/documents/recovery_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QVBoxLayout>

#include "app/windows/widgets.h"

namespace vell {
namespace {

QString described(const recovery::Extent& extent) {
    const auto shown = [](qint64 number) { return QLocale().toString(number); };
    const QString damage = shown(extent.damagedAfter);
    if (!extent.expected)
        return RecoveryBar::tr("Messages recovered: %1; the file is damaged after byte %2")
            .arg(shown(extent.found), damage);
    if (*extent.expected == 1)
        return RecoveryBar::tr("Recovered the only message; the file is damaged after byte %1")
            .arg(damage);
    return RecoveryBar::tr("Recovered %1 of about %2 messages; the file is damaged after byte %3")
        .arg(shown(extent.found), shown(*extent.expected), damage);
}

}  // namespace

RecoveryBar::RecoveryBar(const recovery::Extent& extent, QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("recoveryBar"));
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Window);

    auto* icon = new QLabel;
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size));
    auto* text = new QLabel(described(extent));
    text->setObjectName(QStringLiteral("recoveryText"));
    text->setTextFormat(Qt::PlainText);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    text->setWordWrap(true);

    auto* row = new QHBoxLayout;
    row->setContentsMargins(defaultPadding, defaultPadding / 2, defaultPadding, defaultPadding / 2);
    row->setSpacing(defaultPadding / 2);
    row->addWidget(icon);
    row->addWidget(text, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addLayout(row);
    layout->addWidget(divider());
}

}  // namespace vell
