// SPDX-License-Identifier: MIT
//
// Strings, numbers, data, dates, addresses and collections. Plain ones are in the property list
// itself; mutable ones, and those of other writers, are instances.
#include <algorithm>
#include <bit>
#include <charconv>

#include "foundation/keyed/decoder.h"
#include "foundation/keyed/errors.h"

namespace foundation::keyed {
namespace {

bool isNumber(const Node& node) {
    return node.kind() == Kind::boolean || node.kind() == Kind::integer ||
           node.kind() == Kind::hugeInteger || node.kind() == Kind::real;
}

/// The number behind a prefix: "NS.object.12".
std::optional<quint64> numberBehind(QByteArrayView name, std::string_view prefix) {
    const std::string_view text(name.data(), std::size_t(name.size()));
    // No longer than a number can be: many keys may share one name.
    if (!text.starts_with(prefix) || text.size() > prefix.size() + 20) return std::nullopt;
    quint64 number = 0;
    const auto [end, error] =
        std::from_chars(text.data() + prefix.size(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

}  // namespace

/// Nothing for containers, which are no values by themselves.
Value Decoder::scalar(const Node& node) {
    switch (node.kind()) {
        case Kind::boolean:
            return Number(node.value() != 0);
        case Kind::integer:
            return Number(qint64(node.value()));
        case Kind::hugeInteger:
            return Number(node.value());
        case Kind::real:
            return Number(std::bit_cast<double>(node.value()));
        case Kind::date:
            return Date{std::bit_cast<double>(node.value())};
        case Kind::data:
            budgets_.bytes.spend(valueOverhead);
            return archive_.list().slice(node);
        case Kind::asciiString:
        case Kind::utf16String:
            return strings_.string(node);
        default:
            return {};
    }
}

Value Decoder::decodeString(const Instance& instance) {
    static constexpr Key stringKey = "NS.string";
    static constexpr Key bytesKey = "NS.bytes";
    Value text = decodePart(instance, stringKey, ClassKind::string);
    if (text.string()) return text;
    const Node bytes = instance.value(bytesKey);
    return bytes.kind() == Kind::data ? strings_.string(bytes) : QString();
}

Value Decoder::decodeNumber(const Instance& instance) {
    for (const std::string_view key : {"NS.boolval", "NS.intval", "NS.dblval", "NS.number"}) {
        const Node value = instance.value(key);
        if (!isNumber(value)) continue;
        if (key == "NS.boolval") return Number(scalar(value).number()->toBool());
        return scalar(value);
    }
    return Number(qint64(0));
}

Value Decoder::decodeData(const Instance& instance) {
    for (const std::string_view key : {"NS.data", "NS.bytes"}) {
        Value bytes = decodePart(instance, key, ClassKind::data);
        if (bytes.data()) return bytes;
    }
    return Data();
}

Value Decoder::decodeDate(const Instance& instance) {
    static constexpr Key timeKey = "NS.time";
    const Node seconds = instance.value(timeKey);
    if (!isNumber(seconds)) return Date{};
    if (seconds.kind() == Kind::real) return Date{std::bit_cast<double>(seconds.value())};
    return Date{scalar(seconds).number()->toDouble()};
}

Value Decoder::decodeUrl(const Instance& instance) {
    static constexpr Key relativeKey = "NS.relative";
    static constexpr Key baseKey = "NS.base";
    const Value relative = decodePart(instance, relativeKey, ClassKind::string);
    if (!relative.string()) return {};
    const Value base = decodePart(instance, baseKey, ClassKind::url);
    auto baseUrl = base.object<URL>();
    if (!baseUrl) return std::make_shared<URL>(*relative.string());
    QString absolute = derivedTexts_.derived(*relative.string(), baseUrl.get(), [&] {
        const auto size =
            quint64(relative.string()->size()) + quint64(baseUrl->absoluteString().size());
        budgets_.derivedBytes.spend(valueOverhead + 2 * size);
        return URL::resolved(*relative.string(), *baseUrl);
    });
    return std::make_shared<URL>(*relative.string(), std::move(baseUrl), std::move(absolute));
}

Value Decoder::decodeDictionary(const Instance& instance) {
    const std::vector<Value> keys = decodeElements(instance, "NS.keys", "NS.key.");
    const std::vector<Value> values = decodeElements(instance, "NS.objects", "NS.object.");
    const std::size_t count = std::min(keys.size(), values.size());
    std::vector<std::pair<Value, Value>> pairs;
    pairs.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        pairs.emplace_back(keys[i], values[i]);
    return std::make_shared<Dictionary>(std::move(pairs));
}

/// The inline list under one key or else the values of numbered keys.
std::vector<Value> Decoder::decodeElements(const Instance& instance, const Key& listKey,
                                           std::string_view numberedPrefix) {
    const Node list = instance.value(listKey);
    const bool isList = list.kind() == Kind::array;
    const std::vector<Ref> numbered =
        isList ? std::vector<Ref>() : numberedValues(instance, numberedPrefix);
    const quint64 count = isList ? list.count() : numbered.size();
    if (count > elementLimit(archive_.fileSize())) throw excessError("elements in one collection");
    budgets_.elements.spend(count);

    std::vector<Value> values;
    values.reserve(count);
    for (quint64 i = 0; i < count; ++i) {
        const Ref value = isList ? archive_.list().element(list, i) : numbered[i];
        values.push_back(decodeValue(value, {listKey.name()}));
    }
    return values;
}

std::vector<Ref> Decoder::numberedValues(const Instance& instance, std::string_view prefix) {
    const Node dictionary = instance.dictionary();
    const BinaryPropertyList& list = archive_.list();
    budgets_.steps.spend(dictionary.count());
    std::vector<std::pair<quint64, quint64>> numbered;  // number, pair
    for (quint64 i = 0; i < dictionary.count(); ++i) {
        const QByteArrayView name = Archive::ascii(list.node(list.key(dictionary, i)));
        if (const auto number = numberBehind(name, prefix)) numbered.emplace_back(*number, i);
    }
    std::sort(numbered.begin(), numbered.end());
    std::vector<Ref> values;
    for (const auto& [number, pair] : numbered) {
        if (number > values.size()) break;
        if (number == values.size()) values.push_back(list.value(dictionary, pair));
    }
    return values;
}

}  // namespace foundation::keyed
