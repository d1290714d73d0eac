// SPDX-License-Identifier: MIT
#include "app/windows/font_size.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <limits>

#include "foundation/print.h"

namespace {

using vell::FontAction;
using vell::fontSizeAfter;

TEST(FontSize, OnlyAnotherSizeInThePanelChangesIt) {
    const auto font = [](double size, bool isBold, const QString& family = {}) {
        QFont font(family);
        font.setPointSizeF(size);
        font.setBold(isBold);
        return font;
    };
    struct Case {
        QFont before;
        QFont after;
        qint64 size;
        QStringList printed;
    };
    const Case cases[] = {
        {font(16, false), font(20.75, true), 20, {}},
        {font(16, false), font(16, true), 16, {QStringLiteral("ADD traits")}},
        {font(16, true), font(16, false), 16, {QStringLiteral("ADD traits")}},
        {font(16, false),
         font(16, false, QStringLiteral("Another")),
         16,
         {QStringLiteral("CHANGE FONT: 0")}},
    };
    for (const Case& c : cases) {
        QStringList printed;
        foundation::setPrintFunction([&](QStringView line) { printed.append(line.toString()); });
        const FontAction action = vell::panelAction(c.before, c.after);
        EXPECT_EQ(fontSizeAfter(action, 16, c.after.pointSizeF()), c.size) << int(action);
        foundation::setPrintFunction({});
        EXPECT_EQ(printed, c.printed) << int(action);
    }
}

TEST(FontSizeDeathTest, OverflowStopsTheProgram) {
    const double infinite = std::numeric_limits<double>::infinity();
    for (const double size : {infinite, -infinite, std::nan(""), 9223372036854775808.0, 1e300})
        EXPECT_DEATH((void)fontSizeAfter(FontAction::viaPanel, 16, size), "font size");
    EXPECT_DEATH((void)fontSizeAfter(FontAction::sizeUp, std::numeric_limits<qint64>::max(), 0),
                 "overflow");
    EXPECT_DEATH((void)fontSizeAfter(FontAction::sizeDown, std::numeric_limits<qint64>::min(), 0),
                 "overflow");
}

}  // namespace
