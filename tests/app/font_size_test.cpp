// SPDX-License-Identifier: MIT
#include "app/windows/font_size.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <limits>

#include "foundation/print.h"

namespace {

using vell::FontAction;
using vell::fontSizeAfter;

TEST(FontSize, EachActionDoesItsOwn) {
    struct Case {
        FontAction action;
        qint64 before;
        double panel;
        qint64 after;
        QStringList printed;
    };
    const Case cases[] = {
        {FontAction::viaPanel, 16, 13.7, 13, {}},
        {FontAction::viaPanel, 16, -2.9, -2, {}},
        {FontAction::sizeUp, 16, 99, 17, {}},
        {FontAction::sizeDown, 0, 99, -1, {}},
        {FontAction::addTrait, 16, 99, 16, {QStringLiteral("ADD traits")}},
        {FontAction::removeTrait, 16, 99, 16, {QStringLiteral("ADD traits")}},
        {FontAction::noChange, 16, 99, 16, {QStringLiteral("CHANGE FONT: 0")}},
        {FontAction::heavier, 16, 99, 16, {QStringLiteral("CHANGE FONT: 5")}},
        {FontAction::lighter, 16, 99, 16, {QStringLiteral("CHANGE FONT: 6")}},
    };
    for (const Case& c : cases) {
        QStringList printed;
        foundation::setPrintFunction([&](QStringView line) { printed.append(line.toString()); });
        EXPECT_EQ(fontSizeAfter(c.action, c.before, c.panel), c.after) << int(c.action);
        foundation::setPrintFunction({});
        EXPECT_EQ(printed, c.printed) << int(c.action);
    }
}

TEST(FontSizeDeathTest, SizesThatAreNoIntegersStopTheProgram) {
    const double infinite = std::numeric_limits<double>::infinity();
    for (const double size : {infinite, -infinite, std::nan(""), 9223372036854775808.0, 1e300})
        EXPECT_DEATH((void)fontSizeAfter(FontAction::viaPanel, 16, size), "font size");
    EXPECT_DEATH((void)fontSizeAfter(FontAction::sizeUp, std::numeric_limits<qint64>::max(), 0),
                 "overflow");
    EXPECT_DEATH((void)fontSizeAfter(FontAction::sizeDown, std::numeric_limits<qint64>::min(), 0),
                 "overflow");
}

TEST(FontSize, ThePanelTellsSizeBeforeTraits) {
    QFont plain;
    plain.setPointSizeF(16);
    QFont bold = plain;
    bold.setBold(true);
    QFont larger = bold;
    larger.setPointSizeF(20);
    QFont otherFamily = plain;
    otherFamily.setFamilies({QStringLiteral("Another")});
    EXPECT_EQ(vell::panelAction(plain, larger), FontAction::viaPanel);
    EXPECT_EQ(vell::panelAction(plain, bold), FontAction::addTrait);
    EXPECT_EQ(vell::panelAction(bold, plain), FontAction::removeTrait);
    EXPECT_EQ(vell::panelAction(plain, otherFamily), FontAction::noChange);
}

}  // namespace
