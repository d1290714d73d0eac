// SPDX-License-Identifier: MIT
#include "app/windows/about_window.h"

#include <QApplication>
#include <QLabel>
#include <QVBoxLayout>

#include "app/desktop/desktop.h"
#include "app/windows/widgets.h"
#include "toolkit/application_info.h"

namespace vell {
namespace {

constexpr QSize largeIconSize(128, 128);

}  // namespace

PanelWindow* makeAboutWindow(const ApplicationInfo& info) {
    auto* window =
        new PanelWindow(QStringLiteral("About Panel"), {320, 400}, PanelWindow::Sizing::fixed);
    window->setObjectName(QStringLiteral("aboutWindow"));
    window->setWindowTitle(PanelWindow::tr("About %1").arg(info.infoName));

    auto* icon = new QLabel;
    icon->setPixmap(ApplicationInfo::icon().pixmap(largeIconSize));
    icon->setAlignment(Qt::AlignCenter);
    auto* name = new QLabel(info.infoName);
    QFont large = name->font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    large.setBold(true);
    name->setFont(large);
    name->setAlignment(Qt::AlignCenter);
    QLabel* version = secondaryLabel(versionLine(info));
    version->setAlignment(Qt::AlignCenter);

    auto* layout = new QVBoxLayout(window);
    layout->setContentsMargins(defaultPadding, defaultPadding, defaultPadding, defaultPadding);
    layout->addStretch();
    layout->addWidget(icon);
    layout->addWidget(name);
    layout->addWidget(version);
    layout->addWidget(divider());
    const auto addLink = [layout](const QString& text, InfoAddress leadsTo) {
        // As wide as its text: beside it the window can be dragged.
        layout->addWidget(linkLabel(text, address(leadsTo), QPalette::PlaceholderText), 0,
                          Qt::AlignHCenter);
    };
    if (info.credits) addLink(*info.credits, InfoAddress::publisher);
    addLink(PanelWindow::tr("Uses IGIdenticon."), InfoAddress::identiconProject);
    if (info.copyright) {
        layout->addWidget(divider());
        addLink(*info.copyright, InfoAddress::publisher);
    }
    layout->addStretch();
    return window;
}

}  // namespace vell
