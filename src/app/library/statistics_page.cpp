// SPDX-License-Identifier: MIT
#include "app/library/statistics_page.h"

#include <QLabel>
#include <QLocale>
#include <QStyle>
#include <QTime>
#include <QVBoxLayout>

#include "app/library/bar_chart.h"
#include "app/library/shown_facts.h"
#include "app/windows/widgets.h"
#include "toolkit/date_formatters.h"

namespace vell {
namespace {

constexpr int widest = 720;
constexpr std::size_t mostWriters = 12;
constexpr double secondsPerDay = 86400;

/// On the side where lines begin in the user's language, whatever language the text is in.
void alignWithCharts(QLabel& label) {
    label.setAlignment(QStyle::visualAlignment(label.layoutDirection(), Qt::AlignLeft) |
                       Qt::AlignVCenter | Qt::AlignAbsolute);
}

QLabel* heading(const QString& text, qreal size) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    QFont font = label->font();
    if (font.pointSizeF() > 0) font.setPointSizeF(font.pointSizeF() * size);
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    alignWithCharts(*label);
    return label;
}

}  // namespace

StatisticsPage::StatisticsPage(const QByteArray& database, QWidget* parent)
    : QScrollArea(parent),
      title_(heading({}, 1.6)),
      facts_(secondaryLabel({})),
      years_(new BarChart(tr("Messages by year"), BarChart::Shape::columns)),
      hours_(new BarChart(tr("Messages by hour of the day"), BarChart::Shape::columns)),
      writers_(new BarChart(tr("Messages by person"), BarChart::Shape::rows)),
      reading_(database, this, [this](const QString& reason) { facts_->setText(reason); }) {
    setObjectName(QStringLiteral("libraryStatistics"));
    setFrameShape(NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    facts_->setWordWrap(true);
    alignWithCharts(*facts_);
    facts_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto* column = new QWidget;
    column->setMaximumWidth(widest);
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(28, 24, 28, 24);
    layout->setSpacing(8);
    layout->addWidget(title_);
    layout->addWidget(facts_);
    for (BarChart* chart : {years_, hours_, writers_}) {
        layout->addSpacing(defaultPadding);
        layout->addWidget(heading(chart->accessibleName(), 1));
        layout->addWidget(chart);
    }
    layout->addStretch();
    auto* page = new QWidget;
    page->setAutoFillBackground(true);
    page->setBackgroundRole(QPalette::Base);
    auto* middle = new QHBoxLayout(page);
    middle->setContentsMargins({});
    middle->addStretch(1);
    middle->addWidget(column, 100);
    middle->addStretch(1);
    setWidget(page);
}

void StatisticsPage::show(const std::shared_ptr<const LibraryPeople>& people, int partner) {
    title_->setText(partner < 0 ? tr("Everybody")
                                : people->partners[static_cast<std::size_t>(partner)].name);
    reading_.post(
        [this, callbacks = reading_.callbacks(), people, partner, calendar = sharedCalendar()](
            LibraryStore& store, const LibraryThread::IsCancelled& isCancelled) {
            const auto statistics =
                LibraryStatistics::read(store, *people, partner, calendar.withoutCache());
            if (isCancelled()) return;
            callbacks->post([this, people, statistics] { take(*people, statistics); });
        });
}

void StatisticsPage::take(const LibraryPeople& people, const LibraryStatistics& statistics) {
    facts_->setText(facts(statistics));
    fillCharts(people, statistics);
}

QString StatisticsPage::facts(const LibraryStatistics& statistics) {
    QStringList lines{shownMessages(statistics.messages)};
    if (statistics.span) {
        lines.append(tr("From %1 to %2")
                         .arg(shownDay(statistics.span->begin), shownDay(statistics.span->end)));
    }
    if (statistics.silence) {
        const auto& [begin, end] = *statistics.silence;
        const auto days = static_cast<qlonglong>(
            (end.secondsSinceReferenceDate - begin.secondsSinceReferenceDate) / secondsPerDay);
        if (days > 0) {
            lines.append(tr("Longest silence: %1 days, from %2 to %3")
                             .arg(QLocale().toString(days), shownDay(begin), shownDay(end)));
        }
    }
    return lines.join(u'\n');
}

void StatisticsPage::fillCharts(const LibraryPeople& people, const LibraryStatistics& statistics) {
    //: A bar of a chart and how high it is: "2009: 1,204 messages"
    const auto details = [](const QString& label, qint64 count) {
        return tr("%1: %2").arg(label, shownMessages(count));
    };
    std::vector<BarChart::Bar> bars;
    for (const auto& [year, count] : statistics.years) {
        const QString label = QString::number(year);
        bars.push_back({label, count, details(label, count)});
    }
    years_->setBars(std::move(bars));
    bars.clear();
    const QLocale locale;
    for (std::size_t hour = 0; hour < statistics.hours.size(); ++hour) {
        const int number = static_cast<int>(hour);
        const QString from = locale.toString(QTime(number, 0), QLocale::ShortFormat);
        bars.push_back({locale.toString(number), statistics.hours[hour],
                        details(from, statistics.hours[hour])});
    }
    hours_->setBars(std::move(bars));
    bars.clear();
    for (const auto& writer : statistics.writers) {
        if (bars.size() == mostWriters) break;
        const QString name = people.nameOf(writer.person);
        bars.push_back({name, writer.messages, details(name, writer.messages)});
    }
    writers_->setBars(std::move(bars));
}

}  // namespace vell
