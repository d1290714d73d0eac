// SPDX-License-Identifier: MIT
#include "timeline/input/row_menu.h"

#include <QClipboard>
#include <QGuiApplication>

#include "timeline/rows/row_text.h"
#include "timeline/saving/data_item_provider.h"
#include "timeline/saving/saving.h"
#include "timeline/timeline_view.h"

namespace vell {

RowMenu::RowMenu(TimelineView& view, const TesselChatLog::Event& event)
    : QMenu(&view), view_(view) {
    const QString text = rowText(event);
    const auto* image = std::get_if<TesselChatLog::Image>(&event.value);
    if (view.hasSelection()) {
        addAction(tr("&Copy"), &view, [&view] { view.copySelection(); });
    } else if (isSelectable(event) && !image) {
        addAction(tr("&Copy"), &view, [text] { QGuiApplication::clipboard()->setText(text); });
    }
    if (const auto* link = std::get_if<TesselChatLog::Link>(&event.value)) {
        addAction(tr("Copy &Link Address"), &view, [url = link->url] {
            QGuiApplication::clipboard()->setText(url->absoluteString());
        });
    }
    if (image) addPictureCommands(*image);
    if (const auto* file = std::get_if<TesselChatLog::File>(&event.value)) addFileCommands(*file);
}

void RowMenu::addPictureCommands(const TesselChatLog::Image& image) {
    addAction(tr("Copy &Picture"), &view_, [image] {
        QGuiApplication::clipboard()->setMimeData(pictureForCopying(image).release());
    });
    addAction(tr("&Save Picture As …"), &view_,
              [image, view = &view_] { savePicture(*view, image); });
}

void RowMenu::addFileCommands(const TesselChatLog::File& file) {
    addAction(tr("&Save File As …"), &view_, [wrapper = file.wrapper, view = &view_] {
        saveFile(*view, wrapper);
    })->setEnabled(canSave(*file.wrapper));
}

}  // namespace vell
