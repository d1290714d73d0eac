// SPDX-License-Identifier: MIT
#include "toolkit/log_value.h"

#include <QLocale>

namespace vell::log_detail {

QString printedReal(double value) {
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

}  // namespace vell::log_detail
