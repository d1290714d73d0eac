// SPDX-License-Identifier: MIT
#include "timeline/rows/line_views.h"

#include <QCoreApplication>

#include "timeline/rows/line_layout.h"

namespace vell {

RowLayout SystemMessageView::measure(const RowContext& context, int width) const {
    return measureLine(message, context.fonts.message, LineSide::center, context, width);
}

void SystemMessageView::paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
                              const RowPaint& what) const {
    paintLine(painter, layout, context.colors.secondaryLabel, context, what);
}

QString FileView::text() const {
    QString text = QCoreApplication::translate("Timeline", "File: %@");
    return text.replace(QLatin1String("%@"), wrapper->description());
}

RowLayout FileView::measure(const RowContext& context, int width) const {
    return measureLine(text(), context.fonts.message, LineSide::center, context, width);
}

void FileView::paint(QPainter& painter, const RowLayout& layout, const RowContext& context,
                     const RowPaint& what) const {
    paintLine(painter, layout, context.colors.label, context, what);
}

}  // namespace vell
