#pragma once
// SPDX-License-Identifier: MIT
//
// How entries show values. They are null where values are skipped.

#include <QLocale>
#include <QString>

#include "inspector/archive.h"

namespace vell::inspector {

inline void showInteger(Entry* entry, qint64 value) {
    if (entry) entry->value = QString::number(value);
}

inline void showReal(Entry* entry, double value) {
    if (entry) entry->value = QString::number(value, 'g', QLocale::FloatingPointShortest);
}

inline void showNil(Entry* entry) {
    if (entry) entry->value = QStringLiteral("nil");
}

inline void refer(Entry* entry, quint32 number) {
    if (!entry) return;
    entry->value = u'#' + QString::number(number);
    entry->kind = Entry::Kind::reference;
    entry->target = number;
}

}  // namespace vell::inspector
