// SPDX-License-Identifier: MIT
#include "timeline/rows/row_text.h"

#include <QCoreApplication>
#include <variant>

#include "timeline/rows/line_views.h"
#include "toolkit/date_formatters.h"
#include "toolkit/shown_text.h"

namespace vell {
namespace {

struct Text {
    foundation::Date timestamp;

    QString operator()(const TesselChatLog::PlainText& value) const { return value.text; }
    QString operator()(const TesselChatLog::Link& value) const { return value.title; }
    QString operator()(const TesselChatLog::File& value) const {
        return FileView{value.wrapper}.text();
    }
    QString operator()(const TesselChatLog::Image& value) const {
        const QString name = pictureName(value);
        return name.isEmpty() ? QCoreApplication::translate("Timeline", "Picture") : name;
    }
    QString operator()(const TesselChatLog::Session& value) const {
        return shownText(value.name()).simplified();
    }
    QString operator()(const TesselChatLog::NewDay&) const {
        return daySeparatorFormatter().string(timestamp);
    }
    QString operator()(const TesselChatLog::NewMinute&) const {
        return timeSeparatorFormatter().string(timestamp);
    }
    QString operator()(const TesselChatLog::User&) const { return {}; }
};

}  // namespace

bool isSelectable(const TesselChatLog::Event& event) {
    return !std::holds_alternative<TesselChatLog::User>(event.value);
}

QString rowText(const TesselChatLog::Event& event) {
    return std::visit(Text{event.timestamp}, event.value);
}

qsizetype selectableLength(const TesselChatLog::Event& event) {
    if (std::holds_alternative<TesselChatLog::Image>(event.value)) return 1;
    return rowText(event).size();
}

QString pictureName(const TesselChatLog::Image& image) {
    return image.path() ? image.path()->section(u'/', -1) : QString();
}

}  // namespace vell
