#pragma once
// SPDX-License-Identifier: MIT
//
// RecoveryBar: the row above a timeline that says how much of a damaged transcript it shows.

#include <QWidget>

#include "recovery/recovery.h"

namespace vell {

class RecoveryBar final : public QWidget {
    Q_OBJECT

  public:
    explicit RecoveryBar(const recovery::Extent& extent, QWidget* parent = nullptr);
};

}  // namespace vell
