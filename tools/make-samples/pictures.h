#pragma once
// SPDX-License-Identifier: MIT
//
// What the people of the samples send each other, as files.

#include <QByteArray>

namespace samples {

/// A cat that sits in a bathtub (JPEG).
[[nodiscard]] QByteArray catInBathtub();
/// An evening by the lake (PNG).
[[nodiscard]] QByteArray eveningByTheLake();
/// A cat asleep, its tail awake (animated GIF).
[[nodiscard]] QByteArray sleepingCat();
/// A lighthouse at night (PNG).
[[nodiscard]] QByteArray lighthouse();
/// One page to hang on trees (PDF).
[[nodiscard]] QByteArray foundCatPoster();
/// How to make cinnamon rolls (plain text).
[[nodiscard]] QByteArray cinnamonRolls();

}  // namespace samples
