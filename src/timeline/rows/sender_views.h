#pragma once
// SPDX-License-Identifier: MIT
//
// Who is speaking: the caption at the end of a run, and the picture beside each bubble.

#include "timeline/rows/row_context.h"
#include "timeline/rows/row_layout.h"
#include "transcript/user_id.h"

namespace vell {

/// The sender's name in small letters, on the side of the sender's bubbles.
struct SenderInfoView {
    TesselUserID sender;
    bool isOwn = false;

    [[nodiscard]] RowLayout measure(const RowContext& context, int width) const;
    void paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
               const RowPaint& what) const;
};

/// The contact's picture, else the identicon of the user id; nothing where there is neither.
struct SenderIconView {
    const TesselUserID& sender;

    /// Both sides of the picture, in device pixels.
    [[nodiscard]] static QSize size(const RowContext& context);
    void paint(QPainter& painter, const QRect& rect, const RowContext& context) const;
};

}  // namespace vell
