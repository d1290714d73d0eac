// SPDX-License-Identifier: MIT
#include "paper/paper_context.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QGuiApplication>

#include "paper/light_emoji.h"
#include "timeline/text/laid_out_text.h"

namespace vell {
namespace {

constexpr int messageSize = 16;  // points of the layout, as the window's default
constexpr int otherSize = 15;
constexpr qreal letterSpacing = 1.0 / 64;
constexpr int decodingTimeout = 20'000;  // milliseconds

QFont paperFont(QFont font) {
    font.setPixelSize(otherSize);
    // Paper has no grid of pixels that letters would have to fit.
    font.setHintingPreference(QFont::PreferNoHinting);
    // Nothing that is seen; but letters then share no glyphs, which makes lines cheap to write.
    font.setLetterSpacing(QFont::AbsoluteSpacing, letterSpacing);
    return font;
}

QPalette paperPalette() {
    QPalette palette(Qt::white);
    palette.setColor(QPalette::Text, Qt::black);
    palette.setColor(QPalette::Base, Qt::white);
    return palette;
}

}  // namespace

PaperSetup currentPaperSetup(const TesselChatLog& chatlog, const ContactsStore& contacts,
                             const QString& title, const PaperFormat& format) {
    BubbleColors::shared().present(chatlog);
    return {format,
            title,
            QGuiApplication::font(),
            QGuiApplication::layoutDirection(),
            contacts.addressToContact(),
            BubbleColors::shared()};
}

PaperContext::PaperContext(const PaperSetup& setup)
    : contacts_(setup.contacts),
      colors_(setup.colors),
      rows_{RowFonts::make(paperFont(setup.font), messageSize),
            RowColors::make(paperPalette()),
            PaperFormat::ratio,
            setup.direction,
            contacts_,
            colors_,
            backgrounds_,
            tiles_,
            pictures_} {
    rows_.fonts.emojiFamily = lightEmojiFamily();
}

RowLayout PaperContext::measure(const TimelineRowView& view, int width) {
    RowLayout layout = view.measure(rows_, width);
    const auto* image = std::get_if<ImageBubbleView>(&view.content());
    if (image && !layout.text && !picture(*image, layout.content.size()))
        layout = view.measure(rows_, width);
    if (layout.text && layout.text->isLong()) {
        for (auto block = layout.text->firstEstimated(); block;
             block = layout.text->firstEstimated(*block))
            layout.text->measureBlock(*block);
        layout.fitText();
    }
    return layout;
}

const QImage* PaperContext::picture(const ImageBubbleView& view, QSize pixels) {
    const foundation::Picture& picture = view.image.image();
    const QImage* found = pictures_.image(picture, pixels);
    QEventLoop loop;
    const QDeadlineTimer deadline(decodingTimeout);
    while (!found && pictures_.isBusy() && !deadline.hasExpired()) {
        loop.processEvents(QEventLoop::WaitForMoreEvents);
        found = pictures_.image(picture, pixels);
    }
    return found;
}

QImage PaperContext::icon(const TesselUserID& sender) {
    const auto known = icons_.constFind(sender.userID);
    if (known != icons_.cend()) return *known;
    const QSize pixels = SenderIconView::size(rows_);
    const auto contact = contacts_.addressToContact().constFind(sender.userID);
    const bool hasPicture = contact != contacts_.addressToContact().cend() && contact->image;
    const QImage icon =
        hasPicture ? contact->image->scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                   : identicons_.icon(sender.userID, PaperFormat::ratio);
    return *icons_.insert(sender.userID, icon);
}

}  // namespace vell
