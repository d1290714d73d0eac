// SPDX-License-Identifier: MIT
#include "paper/paper_format.h"

#include <algorithm>
#include <array>

namespace vell {

QSize PaperFormat::area() const {
    const QSizeF points = sheet - QSizeF(2 * margin, 2 * margin);
    return QSize(static_cast<int>(points.width() / scale),
                 static_cast<int>(points.height() / scale))
        .expandedTo(QSize(1, 1));
}

QPageSize usualPaper(const QLocale& locale) {
    // Some countries measure in metres and write on letter all the same.
    static constexpr std::array onLetter{
        QLocale::UnitedStates, QLocale::Canada,    QLocale::Mexico,    QLocale::PuertoRico,
        QLocale::Philippines,  QLocale::Colombia,  QLocale::Chile,     QLocale::Venezuela,
        QLocale::CostaRica,    QLocale::Guatemala, QLocale::Nicaragua, QLocale::Panama,
        QLocale::ElSalvador};
    const bool isLetter =
        locale.language() != QLocale::C &&
        std::find(onLetter.begin(), onLetter.end(), locale.territory()) != onLetter.end();
    return QPageSize(isLetter ? QPageSize::Letter : QPageSize::A4);
}

}  // namespace vell
