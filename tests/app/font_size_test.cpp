// SPDX-License-Identifier: MIT
#include "app/windows/font_size.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <limits>

#include "foundation/print.h"

namespace {

using vell::FontAction;
using vell::fontSizeAfter;

TEST(FontSize, OnlyStepsAndThePanelChangeIt) {
    struct Case {
        FontAction action;
        qint64 size;
        QStringList printed;
    };
    const Case cases[] = {
        {FontAction::viaPanel, 13, {}},
        {FontAction::sizeUp, 17, {}},
        {FontAction::sizeDown, 15, {}},
        {FontAction::addTrait, 16, {QStringLiteral("ADD traits")}},
        {FontAction::removeTrait, 16, {QStringLiteral("ADD traits")}},
        {FontAction::heavier, 16, {QStringLiteral("CHANGE FONT: 5")}},
    };
    for (const Case& c : cases) {
        QStringList printed;
        foundation::setPrintFunction([&](QStringView line) { printed.append(line.toString()); });
        EXPECT_EQ(fontSizeAfter(c.action, 16, 13.7), c.size) << int(c.action);
        foundation::setPrintFunction({});
        EXPECT_EQ(printed, c.printed) << int(c.action);
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
