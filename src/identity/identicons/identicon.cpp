// SPDX-License-Identifier: MIT
//
// How the bits of the number choose (0 is the lowest):
//
//     31 ─────── colour ─────── 16 15 14 13 ─ 10  9  8  7  6 ── 3  2  1  0
//                               └side┘ i   side  corner i  corner  i centre
//                                turn            turn
//
// Bit 16 is both the side's turn and the lowest bit of blue. i exchanges filled and empty.
#include "identity/identicons/identicon.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <cmath>
#include <initializer_list>

#include "foundation/checked.h"

namespace vell {
namespace {

constexpr qint64 type0[] = {0, 4, 24, 20};
constexpr qint64 type1[] = {0, 4, 20};
constexpr qint64 type2[] = {2, 24, 20};
constexpr qint64 type3[] = {0, 2, 20, 22};
constexpr qint64 type4[] = {2, 14, 22, 10};
constexpr qint64 type5[] = {0, 14, 24, 22};
constexpr qint64 type6[] = {2, 24, 22, 13, 11, 22, 2};
constexpr qint64 type7[] = {0, 14, 22};
constexpr qint64 type8[] = {6, 8, 18, 16};
constexpr qint64 type9[] = {4, 20, 10, 12};
constexpr qint64 type10[] = {0, 2, 12, 10};
constexpr qint64 type11[] = {10, 14, 22};
constexpr qint64 type12[] = {20, 12, 24};
constexpr qint64 type13[] = {10, 2, 12};
constexpr qint64 type14[] = {0, 2, 10};

struct DrawParameters {
    QPolygonF points;  ///< in the unit square, y upwards
    bool inverted = false;
    int turn = 0;  ///< quarter turns, counter-clockwise
};

struct Cell {
    int column, row, extraTurn;
};

DrawParameters drawParameters(qint64 type, bool inverted, quint32 turn) {
    constexpr auto count = static_cast<qint64>(Identicon::cellTypes.size());
    if (type >= count) {
        type %= count;
        inverted = !inverted;
    }
    DrawParameters result{{}, inverted, static_cast<int>(turn)};
    for (const qint64 p : Identicon::cellTypes[static_cast<size_t>(type)]) {
        const qint64 row = p / 5;
        result.points.append({static_cast<double>(p % 5) * 0.25, static_cast<double>(row) * 0.25});
    }
    return result;
}

void drawCell(QPainter& painter, const Cell& cell, QSizeF size, const QColor& color,
              const DrawParameters& parameters) {
    if (parameters.points.isEmpty()) return;
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    path.addPolygon(QTransform::fromScale(size.width(), size.height()).map(parameters.points));
    path.closeSubpath();

    painter.save();
    painter.translate(cell.column * size.width(), cell.row * size.height());
    if (parameters.inverted) {
        painter.fillRect(QRectF(QPointF(0, 0), size), color);
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
    }
    painter.translate(size.width() / 2, size.height() / 2);
    painter.rotate(90 * ((parameters.turn + cell.extraTurn) % 4));
    painter.translate(-size.width() / 2, -size.height() / 2);
    painter.fillPath(path, color);
    painter.restore();
}

}  // namespace

constinit const std::array<std::span<const qint64>, 15> Identicon::cellTypes = {
    type0, type1, type2,  type3,  type4,  type5,  type6, type7,
    type8, type9, type10, type11, type12, type13, type14};

QImage Identicon::icon(quint32 number, QSizeF size) const {
    const QSizeF cellSize(std::ceil(size.width() * 0.25), std::ceil(size.height() * 0.25));
    QImage canvas = iconCanvas(4 * cellSize.width(), 4 * cellSize.height());

    const DrawParameters center = drawParameters(centerCellTypes[number & 3], (number >> 2) & 1, 0);
    const DrawParameters corner =
        drawParameters((number >> 3) & 15, (number >> 7) & 1, (number >> 8) & 3);
    const DrawParameters side =
        drawParameters((number >> 10) & 15, (number >> 14) & 1, (number >> 15) & 3);
    const QColor ink = color(static_cast<quint16>(number >> 16));
    {
        QPainter painter(&canvas);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(0, canvas.height());  // y upwards from the lowest pixel
        painter.scale(1, -1);
        const auto draw = [&](const DrawParameters& parameters, std::initializer_list<Cell> cells) {
            for (const Cell& cell : cells)
                drawCell(painter, cell, cellSize, ink, parameters);
        };
        draw(center, {{1, 1, 0}, {2, 1, 0}, {2, 2, 0}, {1, 2, 0}});
        draw(corner, {{0, 0, 0}, {3, 0, 1}, {3, 3, 2}, {0, 3, 3}});
        draw(side, {{1, 0, 0},
                    {3, 1, 1},
                    {2, 3, 2},
                    {0, 2, 3},
                    {0, 1, 4},
                    {2, 0, 5},
                    {3, 2, 6},
                    {1, 3, 7}});
    }
    std::optional<QImage> scaled = scale(canvas, static_cast<int>(std::ceil(size.width())),
                                         static_cast<int>(std::ceil(size.height())));
    if (!scaled) foundation::fatal("an icon that can't be scaled");
    return *scaled;
}

}  // namespace vell
