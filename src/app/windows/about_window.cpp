// SPDX-License-Identifier: MIT
#include "app/windows/about_window.h"

#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QVBoxLayout>

#include "app/desktop/desktop.h"
#include "toolkit/application_info.h"

namespace vell {
namespace {

constexpr int defaultPadding = 16;
constexpr QSize iconSize(128, 128);

void addDivider(QVBoxLayout& layout) {
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    layout.addWidget(line);
}

}  // namespace

PanelWindow* makeAboutWindow(const ApplicationInfo& info) {
    auto* window =
        new PanelWindow(QStringLiteral("About Panel"), {320, 400}, PanelWindow::Sizing::fixed);
    window->setObjectName(QStringLiteral("aboutWindow"));
    window->setWindowTitle(PanelWindow::tr("About %1").arg(info.infoName));

    auto* icon = new QLabel;
    icon->setPixmap(ApplicationInfo::icon().pixmap(iconSize));
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
    addDivider(*layout);
    if (info.credits) layout->addWidget(linkLabel(*info.credits, address(InfoAddress::publisher)));
    layout->addWidget(
        linkLabel(PanelWindow::tr("Uses IGIdenticon."), address(InfoAddress::identiconProject)));
    if (info.copyright) {
        addDivider(*layout);
        layout->addWidget(linkLabel(*info.copyright, address(InfoAddress::publisher)));
    }
    layout->addStretch();
    return window;
}

}  // namespace vell
