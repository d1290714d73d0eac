// SPDX-License-Identifier: MIT
#include "transcript/fixture.h"

#include <QDateTime>

#include "foundation/print.h"
#include "transcript/archived_classes.h"

namespace vell::test {

using foundation::Array;
using foundation::Value;
using namespace Qt::StringLiterals;

std::shared_ptr<const Presentity> person(const char* account, std::optional<QString> service) {
    return std::make_shared<const Presentity>(QString::fromUtf8(account), std::move(service));
}

std::shared_ptr<const foundation::AttributedString> text(const QString& string) {
    std::vector<foundation::AttributedString::Run> runs;
    if (!string.isEmpty()) runs.push_back({string.size(), nullptr});
    return std::make_shared<const foundation::AttributedString>(string, std::move(runs));
}

foundation::Date at(const char* iso8601) {
    const QDateTime time = QDateTime::fromString(QString::fromLatin1(iso8601), Qt::ISODateWithMs);
    return foundation::Date::fromMillisecondsSinceEpoch(time.toMSecsSinceEpoch());
}

Value root(const QString& protocolName, const Messages& messages,
           const Presentities& participants) {
    std::vector<Value> first(messages.begin(), messages.end());
    std::vector<Value> second(participants.begin(), participants.end());
    return std::make_shared<const Array>(
        std::vector<Value>{protocolName, u"chat"_s, std::make_shared<const Array>(std::move(first)),
                           std::make_shared<const Array>(std::move(second))});
}

TesselChatLog convert(const Value& root, const char* zone,
                      std::optional<foundation::Date> fileDate) {
    foundation::ClassRegistry registry;
    foundation::registerValueClasses(registry);
    registerTranscriptClasses(registry);
    registry.add({.name = "NSUnarchiver",
                  .unarchiveObjectWithData = [&root](const foundation::Data&) { return root; }});
    // Large enough that no log is out of proportion to it.
    return TesselChatLog::fromData(QByteArray(1000, 'x'), fileDate,
                                   *foundation::Calendar::named(zone), nullptr, registry);
}

std::vector<std::string> summary(const TesselChatLog& log) {
    struct Tail {
        QString operator()(const TesselChatLog::PlainText& v) const { return u"text "_s + v.text; }
        QString operator()(const TesselChatLog::Image& v) const { return u"image "_s + v.type(); }
        QString operator()(const TesselChatLog::File& v) const {
            return u"file "_s + v.wrapper->filename.value_or(u"-"_s);
        }
        QString operator()(const TesselChatLog::Link& v) const {
            return u"link "_s + v.url->absoluteString() + u' ' + v.title;
        }
        QString operator()(const TesselChatLog::NewDay&) const { return u"day"_s; }
        QString operator()(const TesselChatLog::NewMinute&) const { return u"minute"_s; }
        QString operator()(const TesselChatLog::User&) const { return u"user"_s; }
        QString operator()(const TesselChatLog::Session& v) const {
            return u"session "_s + v.name();
        }
    };
    std::vector<std::string> result;
    for (const TesselChatLog::Event& event : log.events()) {
        const QString sender = event.sender ? event.sender->userID + u": "_s : QString();
        result.push_back((sender + std::visit(Tail(), event.value)).toStdString());
    }
    return result;
}

PrintedLines::PrintedLines() {
    foundation::setPrintFunction(
        [this](QStringView line) { lines.push_back(line.toString().toStdString()); });
}

PrintedLines::~PrintedLines() {
    foundation::setPrintFunction({});
}

}  // namespace vell::test
