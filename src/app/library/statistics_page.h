#pragma once
// SPDX-License-Identifier: MIT
//
// StatisticsPage: how much was written with somebody, when and by whom, in the right column.

#include <QScrollArea>
#include <memory>

#include "app/library/library_thread.h"
#include "library/library_statistics.h"

class QLabel;

namespace vell {

class BarChart;

class StatisticsPage final : public QScrollArea {
    Q_OBJECT

  public:
    explicit StatisticsPage(const QByteArray& database, QWidget* parent = nullptr);

    /// Of one partner, or of all when it is -1.
    void show(const std::shared_ptr<const LibraryPeople>& people, int partner);

  private:
    void take(const LibraryPeople& people, const LibraryStatistics& statistics);
    [[nodiscard]] static QString facts(const LibraryStatistics& statistics);
    void fillCharts(const LibraryPeople& people, const LibraryStatistics& statistics);

    QLabel* title_;
    QLabel* facts_;
    BarChart* years_;
    BarChart* hours_;
    BarChart* writers_;
    LibraryThread reading_;
};

}  // namespace vell
