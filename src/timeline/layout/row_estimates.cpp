// SPDX-License-Identifier: MIT
#include "timeline/layout/row_estimates.h"

#include <QFontMetricsF>
#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

#include "timeline/rows/timeline_row_view.h"

namespace vell {
namespace {

using Event = TesselChatLog::Event;

constexpr int lengthClasses = 124;

enum : uint8_t {
    emptyClass,
    sessionClass,
    dayClass,
    minuteClass,
    captionClass,
    imageClass,
    fileClass,
    bubbleClass,  ///< and one for every length
    lineClass = bubbleClass + lengthClasses,
};

// Lengths have four classes to the octave, above the shortest ones.
constexpr size_t shortest = 16;
constexpr double typicalFileLine = 50;

int lengthClass(qsizetype length) {
    const auto n = static_cast<size_t>(length);
    if (n < shortest) return static_cast<int>(n / 4);
    const int exponent = std::bit_width(n) - 1;
    const int quarter = static_cast<int>((n >> (exponent - 2)) & 3);
    return std::min((exponent - 4) * 4 + quarter + 4, lengthClasses - 1);
}

double typicalLength(int lengthClass) {
    if (lengthClass < 4) return lengthClass * 4 + 2;
    const int exponent = (lengthClass - 4) / 4 + 4;
    return (4.5 + (lengthClass - 4) % 4) * std::exp2(exponent - 2);
}

uint8_t classOf(const Event& event) {
    const auto text = [](uint8_t first, qsizetype length) {
        return static_cast<uint8_t>(first + lengthClass(length));
    };
    struct Visitor {
        const Event& event;
        decltype(text)& textClass;
        uint8_t operator()(const TesselChatLog::PlainText& value) const {
            return textClass(event.sender ? bubbleClass : lineClass, value.text.size());
        }
        uint8_t operator()(const TesselChatLog::Link& value) const {
            return textClass(bubbleClass, value.title.size());
        }
        uint8_t operator()(const TesselChatLog::Image&) const { return imageClass; }
        uint8_t operator()(const TesselChatLog::File&) const { return fileClass; }
        uint8_t operator()(const TesselChatLog::Session&) const { return sessionClass; }
        uint8_t operator()(const TesselChatLog::NewDay&) const { return dayClass; }
        uint8_t operator()(const TesselChatLog::NewMinute&) const { return minuteClass; }
        uint8_t operator()(const TesselChatLog::User&) const {
            return event.sender ? captionClass : emptyClass;
        }
    };
    return std::visit(Visitor{event, text}, event.value);
}

RowLayout measured(Event::Value value, const RowContext& context, int rowWidth, bool hasSender) {
    Event event;
    if (hasSender) event.sender = TesselUserID();
    event.value = std::move(value);
    return TimelineRowView(event, false).measure(context, rowWidth);
}

/// How rows of one kind grow with their text, learnt from three of them.
class TextRows {
  public:
    TextRows(bool hasSender, const RowContext& context, int rowWidth)
        : character_(QFontMetricsF(context.fonts.message).averageCharWidth() * context.ratio) {
        const auto sample = [&](const QString& text) {
            return measured(TesselChatLog::PlainText{text}, context, rowWidth, hasSender);
        };
        const RowLayout one = sample(QStringLiteral("x"));
        const RowLayout ten = sample(QStringLiteral("x\n").repeated(9) + u'x');
        lowest_ = one.height;
        line_ = one.content.height();
        step_ = (ten.content.height() - line_) / 9;
        around_ = ten.height - ten.content.height();
        width_ = std::max(sample(QString(1000, u'x')).content.width(), 1);
    }

    [[nodiscard]] int height(double length) const {
        // Wrapped lines end a little before the edge.
        const double lines = std::clamp(std::ceil(length * character_ * 1.04 / width_), 1.0, 1e6);
        return std::max(lowest_, around_ + line_ + static_cast<int>(lines - 1) * step_);
    }

  private:
    double character_;
    int lowest_;
    int line_;
    int step_;
    int around_;
    int width_;
};

}  // namespace

RowEstimates::RowEstimates(const TesselChatLog& chatlog) {
    classes_.reserve(chatlog.events().size());
    for (const Event& event : chatlog.events())
        classes_.push_back(classOf(event));
}

bool RowEstimates::isCaption(qsizetype index) const {
    return classes_[static_cast<size_t>(index)] == captionClass;
}

bool RowEstimates::isEmpty(qsizetype index) const {
    return classes_[static_cast<size_t>(index)] == emptyClass;
}

void RowEstimates::prepare(const RowContext& context, int rowWidth) {
    const auto kind = [&](Event::Value value, bool hasSender) {
        return measured(std::move(value), context, rowWidth, hasSender).height;
    };
    heights_[emptyClass] = 0;
    heights_[sessionClass] = kind(TesselChatLog::Session{"x"}, false);
    heights_[dayClass] = kind(TesselChatLog::NewDay(), false);
    heights_[minuteClass] = kind(TesselChatLog::NewMinute(), false);
    heights_[captionClass] = kind(TesselChatLog::User(), true);
    heights_[imageClass] = std::min(rowWidth / 2, context.px(300));
    const TextRows bubbles(true, context, rowWidth);
    const TextRows lines(false, context, rowWidth);
    heights_[fileClass] = lines.height(typicalFileLine);
    for (int i = 0; i < lengthClasses; ++i) {
        heights_[bubbleClass + static_cast<size_t>(i)] = bubbles.height(typicalLength(i));
        heights_[lineClass + static_cast<size_t>(i)] = lines.height(typicalLength(i));
    }
}

}  // namespace vell
