#pragma once
// SPDX-License-Identifier: MIT
//
// What timeline tests share: small logs made by hand, and a context for rows.

#include <QApplication>
#include <QPalette>
#include <optional>
#include <utility>
#include <vector>

#include "identity/contacts/contacts_store.h"
#include "timeline/bubbles/background_cache.h"
#include "timeline/bubbles/bubble_colors.h"
#include "timeline/pictures/picture_cache.h"
#include "timeline/rows/row_context.h"
#include "timeline/text/text_tiles.h"
#include "transcript/chat_log.h"

namespace vell::test {

inline const TesselUserID me{TesselServiceID::aim, QStringLiteral("me")};
inline const TesselUserID bob{TesselServiceID::aim, QStringLiteral("bob")};
inline const TesselUserID eve{TesselServiceID::aim, QStringLiteral("eve")};

/// Numbers the events as they come, one second apart.
class LogBuilder {
  public:
    LogBuilder& add(std::optional<TesselUserID> sender, TesselChatLog::Event::Value value) {
        const auto sequence = static_cast<qint64>(events_.size()) + 1;
        const foundation::Date date{700000000.0 + static_cast<double>(sequence)};
        events_.push_back({sequence, date, std::move(sender), std::move(value)});
        return *this;
    }
    LogBuilder& text(std::optional<TesselUserID> sender, const QString& text) {
        return add(std::move(sender), TesselChatLog::PlainText{text});
    }
    [[nodiscard]] TesselChatLog log() { return {TesselServiceID::aim, me, {bob, eve}, events_}; }

  private:
    std::vector<TesselChatLog::Event> events_;
};

/// A picture that no decoder here knows, so that it stays as large as told. Its bytes are never
/// freed: caches know pictures by their place.
inline TesselChatLog::Image picture(QSize pixels) {
    static std::vector<foundation::Data> kept;
    const foundation::Data& data = kept.emplace_back(QByteArray("no decoder looks at this"));
    return {{data, foundation::PictureFormat::photoshop, pixels},
            data,
            QStringLiteral("com.adobe.photoshop-image"),
            {}};
}

struct Context {
    explicit Context(qreal ratio = 1, Qt::LayoutDirection direction = Qt::LeftToRight,
                     qint64 fontSize = 16)
        : rows{RowFonts::make(QApplication::font(), fontSize),
               RowColors::make(QPalette()),
               ratio,
               direction,
               contacts,
               colors,
               backgrounds,
               tiles,
               pictures} {}

    ContactsStore contacts;
    BubbleColors colors;
    BackgroundCache backgrounds;
    TextTiles tiles;
    PictureCache pictures;
    RowContext rows;
};

}  // namespace vell::test
