#pragma once
// SPDX-License-Identifier: MIT
//
// Conversations made from a seed: all kinds of rows, texts of all lengths and both directions.

#include <QRandomGenerator>

#include "timeline/fixture.h"

namespace vell::test {

inline TesselChatLog randomLog(int count, quint32 seed) {
    QRandomGenerator random(seed);
    const auto words = [&](int most) {
        static const QStringList list{QStringLiteral("hello"), QStringLiteral("I"),
                                      QStringLiteral("שלום"),  QStringLiteral("conversation"),
                                      QStringLiteral("the"),   QStringLiteral("is it?"),
                                      QStringLiteral("and\n"), QStringLiteral("http://a.b/c")};
        QStringList text;
        for (int i = random.bounded(most); i >= 0; --i)
            text += list[random.bounded(list.size())];
        if (random.bounded(50) == 0) text += QStringLiteral("😀");
        return text.join(u' ');
    };
    LogBuilder log;
    for (int i = 0; i < count; ++i) {
        const auto sender = random.bounded(2) ? me : bob;
        const int kind = random.bounded(100);
        if (kind < 70) {
            log.text(sender, words(kind < 60 ? 12 : 90));
        } else if (kind < 80) {
            log.add({}, TesselChatLog::NewMinute());
        } else if (kind < 82) {
            log.add({}, TesselChatLog::NewDay());
        } else if (kind < 90) {
            log.add(sender, TesselChatLog::User());
        } else if (kind < 93) {
            log.add(sender, picture(QSize(1 + random.bounded(2000), 1 + random.bounded(2000))));
        } else if (kind < 96) {
            log.text({}, words(8));
        } else {
            log.add({}, TesselChatLog::User());  // shows nothing
        }
    }
    return log.log();
}

}  // namespace vell::test
