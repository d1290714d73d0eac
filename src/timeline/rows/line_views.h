#pragma once
// SPDX-License-Identifier: MIT
//
// The rows that are one plain text: a system message, and the line that stands for a file.

#include <memory>

#include "foundation/file_wrapper.h"
#include "timeline/rows/row_context.h"
#include "timeline/rows/row_layout.h"

namespace vell {

/// Text without a sender: centred and grey.
struct SystemMessageView {
    QString message;

    [[nodiscard]] RowLayout measure(const RowContext& context, int width) const;
    void paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
               const RowPaint& what) const;
};

/// An attached file: "File: " and the wrapper's description, without a bubble.
struct FileView {
    std::shared_ptr<const foundation::FileWrapper> wrapper;  ///< never null

    [[nodiscard]] QString text() const;
    [[nodiscard]] RowLayout measure(const RowContext& context, int width) const;
    void paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
               const RowPaint& what) const;
};

}  // namespace vell
