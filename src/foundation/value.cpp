// SPDX-License-Identifier: MIT
#include "foundation/value.h"

#include <QLocale>
#include <QStringView>
#include <cmath>

#include "foundation/elided.h"

namespace foundation {
namespace {

/// A collection's description stops growing here: shared elements could otherwise make it
/// exponentially longer than the file it came from.
constexpr qsizetype descriptionLimit = 2000;
/// Bytes of a data value that its description shows.
constexpr qsizetype describedBytes = 24;

void appendDescription(QString& text, const Value& value);

void appendList(QString& text, const std::vector<Value>& elements, QLatin1StringView open,
                QLatin1StringView close) {
    text += open;
    bool first = true;
    for (const Value& element : elements) {
        if (text.size() > descriptionLimit) break;
        if (!first) text += u", ";
        first = false;
        appendDescription(text, element);
    }
    text += close;
}

void appendPairs(QString& text, const std::vector<std::pair<Value, Value>>& pairs) {
    text += u'{';
    for (const auto& [key, value] : pairs) {
        if (text.size() > descriptionLimit) break;
        if (!text.endsWith(u'{')) text += u' ';
        appendDescription(text, key);
        text += u" = ";
        appendDescription(text, value);
        text += u';';
    }
    text += u'}';
}

void appendDescription(QString& text, const Value& value) {
    if (const auto array = value.object<Array>())
        appendList(text, array->elements, QLatin1StringView("("), QLatin1StringView(")"));
    else if (const auto set = value.object<Set>())
        appendList(text, set->elements, QLatin1StringView("{("), QLatin1StringView(")}"));
    else if (const auto dictionary = value.object<Dictionary>())
        appendPairs(text, dictionary->pairs);
    else
        text += elided(value.description(), descriptionLimit);
}

/// Cuts what the last, perhaps long, element has added.
QString bounded(const QString& text) {
    return elided(text, descriptionLimit + 1);
}

QString dataDescription(const Data& data) {
    const qsizetype shown = qMin(data.size(), describedBytes);
    return QStringLiteral("{length = %1, bytes = 0x%2%3}")
        .arg(data.size())
        .arg(QString::fromLatin1(data.slice(0, shown).toByteArray().toHex()),
             shown < data.size() ? QStringLiteral("…") : QString());
}

template <class... Visitors>
struct Overloaded : Visitors... {
    using Visitors::operator()...;
};
template <class... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

}  // namespace

QString Object::description() const {
    return QStringLiteral("<%1>").arg(QString::fromUtf8(className()));
}

bool Number::toBool() const {
    return std::visit(Overloaded{[](double real) { return real != 0 && !std::isnan(real); },
                                 [](auto integer) { return integer != 0; }},
                      value_);
}

std::optional<qint64> Number::toInt64() const {
    return std::visit(Overloaded{[](bool value) -> std::optional<qint64> { return value ? 1 : 0; },
                                 [](qint64 value) -> std::optional<qint64> { return value; },
                                 [](quint64 value) -> std::optional<qint64> {
                                     if (value > quint64(INT64_MAX)) return std::nullopt;
                                     return qint64(value);
                                 },
                                 [](double value) -> std::optional<qint64> {
                                     // 2^63 is the first double past the largest integer.
                                     if (!(value >= -0x1p63 && value < 0x1p63)) return std::nullopt;
                                     const auto integer = static_cast<qint64>(value);
                                     if (double(integer) != value) return std::nullopt;
                                     return integer;
                                 }},
                      value_);
}

double Number::toDouble() const {
    return std::visit([](auto value) { return static_cast<double>(value); }, value_);
}

QString Number::description() const {
    return std::visit(Overloaded{[](bool value) { return QString(QChar(value ? u'1' : u'0')); },
                                 [](double value) {
                                     return QString::number(value, 'g',
                                                            QLocale::FloatingPointShortest);
                                 },
                                 [](auto value) { return QString::number(value); }},
                      value_);
}

QByteArray Value::className() const {
    return std::visit(Overloaded{
                          [](std::monostate) { return QByteArray("nil"); },
                          [](const Number&) { return QByteArray("NSNumber"); },
                          [](const QString&) { return QByteArray("NSString"); },
                          [](const Date&) { return QByteArray("NSDate"); },
                          [](const DataBox&) { return QByteArray("NSData"); },
                          [](const ObjectPointer& object) { return object->className(); },
                      },
                      held_);
}

QString Value::description() const {
    return std::visit(Overloaded{
                          [](std::monostate) { return QStringLiteral("nil"); },
                          [](const QString& string) { return string; },
                          [](const DataBox& data) { return dataDescription(*data); },
                          [](const ObjectPointer& object) { return object->description(); },
                          [](const auto& value) { return value.description(); },
                      },
                      held_);
}

QString Array::description() const {
    QString text;
    appendList(text, elements, QLatin1StringView("("), QLatin1StringView(")"));
    return bounded(text);
}

QString Set::description() const {
    QString text;
    appendList(text, elements, QLatin1StringView("{("), QLatin1StringView(")}"));
    return bounded(text);
}

QString Dictionary::description() const {
    QString text;
    appendPairs(text, pairs);
    return bounded(text);
}

}  // namespace foundation
