// SPDX-License-Identifier: MIT
#include "timeline/bubbles/bubble_colors.h"

#include <gtest/gtest.h>

namespace vell {
namespace {

using Style::Aqua;

TesselUserID user(const char* name, TesselServiceID service = TesselServiceID::aim) {
    return {std::move(service), QString::fromLatin1(name)};
}

TEST(BubbleColors, ParticipantsGetColoursInOrderOfAppearance) {
    BubbleColors colors;
    const struct {
        const char* fault;
        std::optional<TesselUserID> user;
        bool isOwn;
        Aqua expected;
    } asked[] = {
        {"own messages take a colour from the list", user("me"), true, Aqua::blueberry},
        {"nobody takes a colour from the list", std::nullopt, false, Aqua::graphite},
        {"first", user("a"), false, Aqua::lime},
        {"second", user("b"), false, Aqua::grape},
        {"asking again advances", user("a"), false, Aqua::lime},
        {"the service is ignored", user("a", TesselServiceID::jabber), false, Aqua::tangerine},
        {"fourth", user("d"), false, Aqua::indigo},
        {"fifth", user("e"), false, Aqua::ruby},
        {"sixth", user("f"), false, Aqua::bondi},
        {"the list doesn't start again", user("g"), false, Aqua::lime},
        {"a known one changes on the second round", user("b"), false, Aqua::grape},
    };
    for (const auto& row : asked) {
        EXPECT_EQ(colors.styleForUser(row.user, row.isOwn), row.expected) << row.fault;
    }
    EXPECT_EQ(colors.colorMap().size(), 7);
    EXPECT_EQ(colors.styleIdx(), 1);
}

TEST(BubbleColors, TextContrastsWithItsBubbleAndItsShadow) {
    for (int i = 0; i < Style::aquaCount; ++i) {
        const auto aqua = static_cast<Aqua>(i);
        const bool dark = aqua == Aqua::grape || aqua == Aqua::indigo || aqua == Aqua::ruby;
        EXPECT_EQ(Style::textColor(aqua), QColor(dark ? Qt::white : Qt::black)) << i;
        EXPECT_EQ(Style::textShadow(aqua).color.rgb(), QColor(dark ? Qt::black : Qt::white).rgb())
            << i;
    }
}

}  // namespace
}  // namespace vell
