// SPDX-License-Identifier: MIT
#include "recovery/recovery.h"

#include <QLocale>
#include <algorithm>
#include <utility>

#include "foundation/error.h"
#include "foundation/non_keyed/reader.h"
#include "foundation/non_keyed/stream_repair.h"
#include "foundation/print.h"
#include "recovery/messages.h"
#include "transcript/archived_classes.h"
#include "transcript/chat_timeline.h"
#include "transcript/conversion.h"

namespace vell::recovery {

using namespace Qt::StringLiterals;
using foundation::non_keyed::ClassShape;
using foundation::non_keyed::Reader;

namespace {

/// What is known of the classes in a transcript. Their names alone matter for most.
std::vector<ClassShape> classShapes() {
    const foundation::ClassRegistry& registry = sharedClassRegistry();
    const auto parts = [&](std::initializer_list<const char*> names) {
        std::vector<const foundation::ClassInfo*> result;
        for (const char* const name : names)
            result.push_back(registry.find(name));
        return result;
    };
    std::vector<ClassShape> result{
        {registry.find("InstantMessage"), parts({"Presentity", "NSDate", "NSAttributedString"})},
        {registry.find("Presentity"), parts({"NSString", "NSString"})},
        {registry.find("NSAttributedString"), parts({"NSString"})},
        {registry.find("NSMutableAttributedString"), parts({"NSString"})}};
    for (const foundation::ClassInfo* const info : allowedClassList())
        result.push_back({info, {}});
    return result;
}

/// Whether a message has such a part there.
bool fits(size_t index, const foundation::Value& part) {
    switch (index) {
        case 0:
            return part.object<Presentity>() != nullptr;
        case 1:
            return part.date() != nullptr;
        case 2:
            return part.object<foundation::AttributedString>() != nullptr;
        default:
            return true;
    }
}

std::optional<Messages> nonKeyedMessages(const foundation::Data& data) {
    const auto& registry = sharedClassRegistry();
    foundation::non_keyed::StreamRepair repair =
        foundation::non_keyed::repairStream(data.view(), registry, classShapes());
    try {
        Reader reader(foundation::Data(repair.bytes), registry);
        Reader::Salvage salvage =
            reader.salvage(*registry.find("InstantMessage"), std::move(repair.mended), fits);
        Messages result;
        for (const auto& [value, followsGap] : salvage.instances) {
            auto message = value.object<InstantMessage>();
            const bool isLost = !message || !isComplete(*message);
            if (followsGap || isLost) result.addGap();
            if (!isLost) result.slots.push_back(std::move(message));
        }
        if (salvage.endsInGap) result.addGap();
        if (const QString* service = salvage.first.string()) result.service = *service;
        result.expected = salvage.storedCount;
        result.damagedAfter = repair.firstBreak < 0 ? salvage.breakOffset : repair.firstBreak;
        return result;
    } catch (const foundation::non_keyed::MalformedArchive&) {
        return std::nullopt;
    }
}

QString number(qint64 value) {
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(value);
}

/// A message of no one's.
std::shared_ptr<const InstantMessage> note(const QString& text, foundation::Date date) {
    return std::make_shared<InstantMessage>(date, text);
}

}  // namespace

bool isComplete(const InstantMessage& message) {
    return (message.message || message.originalMessage) &&
           (!message.sender || !message.sender->accountName.isEmpty());
}

QString Extent::summary() const {
    const QString count =
        expected ? u"%1 of about %2"_s.arg(number(found), number(*expected)) : number(found);
    return u"Recovered %1 %2; the file is damaged after byte %3"_s.arg(
        count, expected.value_or(found) == 1 ? u"message"_s : u"messages"_s, number(damagedAfter));
}

std::optional<Recovered> recoverChatLog(const foundation::Data& data,
                                        std::optional<foundation::Date> fileDate,
                                        const foundation::Calendar& calendar) {
    const foundation::PrintingOfOneFile printing;
    auto messages = keyedMessages(data);
    if (!messages) messages = nonKeyedMessages(data);
    if (!messages) return std::nullopt;
    const auto found = std::count_if(messages->slots.begin(), messages->slots.end(),
                                     [](const auto& slot) { return slot != nullptr; });
    if (found == 0) return std::nullopt;

    if (messages->expected) messages->expected = std::max<qint64>(*messages->expected, found);
    const Extent extent{found, messages->expected, messages->damagedAfter};

    iChatTimeline timeline;
    timeline.protocolName = messages->service.value_or(QString());
    timeline.participants = std::move(messages->participants);
    const auto dated =
        std::find_if(messages->slots.begin(), messages->slots.end(),
                     [](const auto& slot) { return slot && slot->date.has_value(); });
    foundation::Date date =
        dated == messages->slots.end() ? foundation::Date::distantPast : *(*dated)->date;
    timeline.messages.push_back(note(extent.summary(), date));
    for (auto& slot : messages->slots) {
        if (slot && slot->date) date = *slot->date;
        timeline.messages.push_back(slot ? std::move(slot)
                                         : note(u"Messages are missing here."_s, date));
    }
    try {
        timeline.measureLog(data.size());
    } catch (const foundation::Error&) {
        return std::nullopt;
    }
    return Recovered{convertTimeline(std::move(timeline), data.size(), fileDate, calendar), extent};
}

std::optional<RepairedArchive> repairedArchive(const foundation::Data& data) {
    if (auto keyed = repairedKeyedArchive(data)) return keyed;
    auto repair =
        foundation::non_keyed::repairStream(data.view(), sharedClassRegistry(), classShapes());
    return RepairedArchive{foundation::Data(repair.bytes)};
}

}  // namespace vell::recovery
