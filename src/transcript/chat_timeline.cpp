// SPDX-License-Identifier: MIT
#include "transcript/chat_timeline.h"

#include <optional>
#include <tuple>
#include <type_traits>
#include <utility>

#include "foundation/keyed_unarchiver.h"
#include "foundation/print.h"
#include "foundation/printable.h"
#include "transcript/archived_classes.h"
#include "transcript/log_size.h"

namespace vell {

using namespace Qt::StringLiterals;
using foundation::Array;
using foundation::Value;

namespace {

constexpr qsizetype longestLoggedName = 200;

template <class T>
using Objects = std::vector<std::shared_ptr<const T>>;

/// Each conversion leaves the result empty when the value is of another type.
void convert(const Value& value, std::optional<QString>& result) {
    if (const QString* string = value.string()) result = *string;
}

void convert(const Value& value, std::optional<qint64>& result) {
    if (const foundation::Number* number = value.number()) result = number->toInt64();
}

/// An array converts when all of its elements do; empty ones are skipped.
template <class T>
void convert(const Value& value, std::optional<Objects<T>>& result) {
    const auto array = value.object<Array>();
    if (!array) return;
    Objects<T> objects;
    objects.reserve(array->elements.size());
    for (const Value& element : array->elements) {
        if (element.isNothing()) continue;
        auto object = element.object<T>();
        if (!object) return;
        objects.push_back(std::move(object));
    }
    result = std::move(objects);
}

/// The root array's element at an index, converted; nothing, without a diagnostic, if it has none.
template <class T>
std::optional<T> element(const Array& values, std::size_t index) {
    std::optional<T> result;
    if (index >= values.elements.size() || values.elements[index].isNothing()) return result;
    const Value& value = values.elements[index];
    convert(value, result);
    if (!result) {
        foundation::print(u"OTHER TYPE: "_s + value.description() + u' ' +
                          QString::fromUtf8(value.className()));
    }
    return result;
}

template <class ReadFourth>
iChatTimeline fromArray(const Array& values, ReadFourth readFourth) {
    iChatTimeline result;
    result.protocolName = element<QString>(values, 0).value_or(QString());
    result.unknown1 = element<QString>(values, 1).value_or(QString());
    result.unknown4 = readFourth(values);
    result.unknown5 = element<qint64>(values, 5).value_or(0);
    result.unknown6 = element<QString>(values, 6).value_or(QString());
    result.unknown7 = element<QString>(values, 7).value_or(QString());
    result.messages =
        element<Objects<InstantMessage>>(values, 2).value_or(Objects<InstantMessage>());
    result.participants = element<Objects<Presentity>>(values, 3).value_or(Objects<Presentity>());
    return result;
}

}  // namespace

const char* iChatTimeline::NoRootObjectError::what() const noexcept {
    return "NoRootObjectError: the keyed archive has no root object";
}
const char* iChatTimeline::UnexpectedRootObject::what() const noexcept {
    return "UnexpectedRootObject: the root object of the keyed archive is no array";
}
const char* iChatTimeline::NonKeyed::UnarchiverNotAvailable::what() const noexcept {
    return "UnarchiverNotAvailable: there is no reader for non-keyed archives";
}
const char* iChatTimeline::NonKeyed::UnarchiverNotAnNSObjectType::what() const noexcept {
    return "UnarchiverNotAnNSObjectType: the reader for non-keyed archives is no object class";
}
const char* iChatTimeline::NonKeyed::UnarchiverReturnedNil::what() const noexcept {
    return "UnarchiverReturnedNil: the non-keyed archive could not be read";
}
const char* iChatTimeline::NonKeyed::UnexpectedRootObject::what() const noexcept {
    return "UnexpectedRootObject: the root object of the non-keyed archive is no array";
}

iChatTimeline iChatTimeline::fromData(const foundation::Data& data, TesselLoadLog* log) {
    Value root;
    try {
        root = foundation::KeyedUnarchiver::unarchivedObject(data, allowedClassList(),
                                                             sharedClassRegistry());
    } catch (const foundation::Error& error) {
        if (log) log->logKeyedArchivedError(error);
        throw;
    }
    if (root.isNothing()) {
        if (log) log->writeln(u"No root object as unarchived!");
        throw NoRootObjectError();
    }
    auto values = root.object<Array>();
    if (!values) {
        if (log) log->writeln(u"The root object doesn't cast to [Any]: Optional<Any>");
        throw UnexpectedRootObject(std::move(root));
    }
    iChatTimeline result = fromValues(*values);
    values.reset();
    root = Value();
    try {
        result.measureLog(data.size());
    } catch (const foundation::Error& error) {
        if (log) log->logKeyedArchivedError(error);
        throw;
    }
    return result;
}

iChatTimeline iChatTimeline::fromNonKeyedData(const foundation::Data& data,
                                              const foundation::ClassRegistry& registry,
                                              TesselLoadLog* log) {
    const foundation::ClassInfo* unarchiver = registry.find("NSUnarchiver");
    if (!unarchiver) {
        if (log) log->writeln(u"NSUnarchiver is not available.");
        throw NonKeyed::UnarchiverNotAvailable();
    }
    if (!unarchiver->isObjectClass) {
        if (log) log->writeln(u"NSUnarchiver cannot be cast to NSObject.");
        throw NonKeyed::UnarchiverNotAnNSObjectType();
    }
    foundation::UnarchivedObject root{Value()};
    if (unarchiver->unarchiveObjectWithData) root = unarchiver->unarchiveObjectWithData(data);
    if (root.object.isNothing()) {
        if (log) log->writeln(u"NSUnarchiver.unarchiveObjectWithData failed.");
        throw NonKeyed::UnarchiverReturnedNil();
    }
    auto values = root.object.object<Array>();
    if (!values) {
        if (log) {
            log->writeln(
                u"The non-keyed root object doesn't cast to [Any]: "_s +
                foundation::printable(QString::fromUtf8(root.className), longestLoggedName));
        }
        throw NonKeyed::UnexpectedRootObject(std::move(root.object));
    }
    iChatTimeline result = fromNonKeyedValues(*values);
    values.reset();
    root.object = Value();
    try {
        result.measureLog(data.size());
    } catch (const foundation::Error& error) {
        if (log) log->writeln(error.description());
        throw;
    }
    return result;
}

/// The root array must be released before.
void iChatTimeline::measureLog(qsizetype fileSize) {
    constexpr quint64 budgetPerByte = 16;
    constexpr quint64 baseBudget = quint64(64) << 20;
    logSize = estimateLogSize(messages);
    if (logSize.bytes <= static_cast<quint64>(fileSize) * budgetPerByte + baseBudget) return;
    throw foundation::coderError(foundation::CoderErrorCode::readCorrupt,
                                 u"the messages expand to more than their data can hold"_s);
}

bool operator==(const iChatTimeline& a, const iChatTimeline& b) {
    const auto archived = [](const iChatTimeline& t) {
        return std::tie(t.protocolName, t.unknown1, t.unknown4, t.unknown5, t.unknown6, t.unknown7,
                        t.messages, t.participants);
    };
    return archived(a) == archived(b);
}

size_t iChatTimeline::hash(size_t seed) const {
    seed = qHashMulti(seed, protocolName, unknown1, unknown4, unknown5, unknown6, unknown7);
    for (const auto& message : messages)
        seed = qHash(message.get(), seed);
    for (const auto& participant : participants)
        seed = qHash(participant.get(), seed);
    return seed;
}

iChatTimeline iChatTimeline::fromValues(const Array& values) {
    return fromArray(values,
                     [](const Array& v) { return element<QString>(v, 4).value_or(QString()); });
}

iChatTimeline iChatTimeline::fromNonKeyedValues(const Array& values) {
    return fromArray(
        values, [](const Array& v) { return QString::number(element<qint64>(v, 4).value_or(-1)); });
}

}  // namespace vell
