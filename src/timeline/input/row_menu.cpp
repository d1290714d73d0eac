// SPDX-License-Identifier: MIT
#include "timeline/input/row_menu.h"

#include <QClipboard>
#include <QGuiApplication>

#include "timeline/input/selection_controller.h"
#include "timeline/rows/row_text.h"
#include "timeline/saving/data_item_provider.h"
#include "timeline/saving/saving.h"

namespace vell {

RowMenu::RowMenu(QWidget& parent, const SelectionController& selection,
                 const TesselChatLog::Event& event, const std::function<void()>& open)
    : QMenu(&parent), parent_(parent) {
    const QString text = rowText(event);
    const auto* image = std::get_if<TesselChatLog::Image>(&event.value);
    const bool isSession = std::holds_alternative<TesselChatLog::Session>(event.value);
    if (open) {
        addAction(image       ? tr("&Open Picture")
                  : isSession ? tr("&Open Chat Alone")
                              : tr("&Open Link"),
                  &parent, open);
    }
    if (!selection.isEmpty()) {
        addAction(tr("&Copy"), &parent, [&selection] { selection.copy(); });
    } else if (isSelectable(event) && !image) {
        addAction(tr("&Copy"), &parent, [text] { QGuiApplication::clipboard()->setText(text); });
    }
    if (const auto* link = std::get_if<TesselChatLog::Link>(&event.value)) {
        addAction(tr("Copy &Link Address"), &parent, [url = link->url] {
            QGuiApplication::clipboard()->setText(url->absoluteString());
        });
    }
    if (image) addPictureCommands(*image);
    if (const auto* file = std::get_if<TesselChatLog::File>(&event.value)) addFileCommands(*file);
}

void RowMenu::addPictureCommands(const TesselChatLog::Image& image) {
    addAction(tr("Copy &Picture"), &parent_, [image] {
        QGuiApplication::clipboard()->setMimeData(pictureForCopying(image).release());
    });
    addAction(tr("&Save Picture As …"), &parent_,
              [image, parent = &parent_] { savePicture(*parent, image); });
}

void RowMenu::addFileCommands(const TesselChatLog::File& file) {
    addAction(tr("&Save File As …"), &parent_, [wrapper = file.wrapper, parent = &parent_] {
        saveFile(*parent, wrapper);
    })->setEnabled(canSave(*file.wrapper));
}

}  // namespace vell
