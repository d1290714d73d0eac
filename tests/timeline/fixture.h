#pragma once
// SPDX-License-Identifier: MIT
//
// What timeline tests share: small logs made by hand, and a context for rows.

#include <QApplication>
#include <QPalette>
#include <optional>
#include <utility>
#include <vector>

#include "identity/contacts_store.h"
#include "timeline/background_cache.h"
#include "timeline/bubble_colors.h"
#include "timeline/row_context.h"
#include "timeline/text_tiles.h"
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

inline TesselChatLog::Image picture(QSize pixels) {
    const foundation::Data data(QByteArray("no decoder looks at this"));
    return {{data, foundation::PictureFormat::png, pixels}, data, QStringLiteral("public.png"), {}};
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
               tiles} {}

    ContactsStore contacts;
    BubbleColors colors;
    BackgroundCache backgrounds;
    TextTiles tiles;
    RowContext rows;
};

}  // namespace vell::test
