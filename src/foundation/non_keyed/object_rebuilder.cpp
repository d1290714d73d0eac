// SPDX-License-Identifier: MIT
#include "foundation/non_keyed/object_rebuilder.h"

#include <QStringDecoder>
#include <algorithm>
#include <iterator>

#include "foundation/non_keyed/positional_coder.h"
#include "foundation/object_memory.h"
#include "foundation/url.h"

namespace foundation::non_keyed {

namespace {

using Kind = StreamValue::Kind;

/// How deep rebuilt objects may nest, by reference too: visiting and freeing them is recursive.
constexpr int maximumHeight = 250;

// What rebuilt values take in memory, roughly, allocation included.
constexpr quint64 objectSize = 80;  // of a small one
constexpr quint64 applicationObjectSize = 160;
constexpr quint64 fileWrapperSize = 208;

/// In place of an object's number: none.
constexpr quint32 noNumber = 0xffffffff;

constexpr QByteArrayView byteOrderMark = "\xEF\xBB\xBF";

/// UTF-8 with replacement of what is none. A byte-order mark is a character like any other: run
/// lengths count it.
QString decodedText(std::string_view bytes) {
    const QByteArrayView view(bytes);
    if (!view.startsWith(byteOrderMark)) return QString::fromUtf8(view);
    return QStringDecoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom)
        .decode(view);
}

const StreamValue* find(std::span<const StreamValue> values, auto matches) {
    const auto found = std::find_if(values.begin(), values.end(), matches);
    return found == values.end() ? nullptr : &*found;
}

const StreamValue* findInteger(std::span<const StreamValue> values) {
    return find(values, [](const StreamValue& value) { return value.kind == Kind::integer; });
}

Value number(std::span<const StreamValue> values) {
    for (const StreamValue& value : values) {
        if (value.kind == Kind::real) return Number(value.real);
        if (value.kind != Kind::integer) continue;
        if (value.type == 'B') return Number(value.integer != 0);
        if (value.type == 'Q') return Number(static_cast<quint64>(value.integer));
        return Number(value.integer);
    }
    return {};
}

Value date(std::span<const StreamValue> values) {
    const auto* seconds =
        find(values, [](const StreamValue& value) { return value.kind == Kind::real; });
    return seconds ? Value(Date{seconds->real}) : Value();
}

quint64 bytesOf(const std::optional<QString>& text) {
    return text ? static_cast<quint64>(text->size()) * sizeof(QChar) : 0;
}

quint64 wrapperSize(const FileWrapper& wrapper) {
    quint64 size = fileWrapperSize + bytesOf(wrapper.filename) + bytesOf(wrapper.preferredFilename);
    for (const auto& child : wrapper.children)
        size += wrapperSize(*child);
    return size;
}

}  // namespace

ObjectRebuilder::Needs ObjectRebuilder::needs(const ClassRecord& cls) {
    if (!cls.info) return Needs::nothing;
    switch (cls.info->kind) {
        case ClassKind::array:
        case ClassKind::set:
        case ClassKind::countedSet:
        case ClassKind::orderedSet:
            return Needs::elements;
        case ClassKind::none:
        case ClassKind::opaque:
        case ClassKind::null:
        case ClassKind::calendar:
            return Needs::nothing;
        default:
            return Needs::values;
    }
}

void ObjectRebuilder::rebuild(quint32 number, const ClassRecord& cls,
                              std::span<const StreamValue> values) {
    const quint8 height = heightOf(values);
    if (cls.info && cls.info->kind == ClassKind::dictionary)
        return addDictionary(number, values, height);
    Value result = rebuilt(number, cls, values);
    if (result.isNothing()) return;
    budget_.spendWorking(sizeof(Value));
    table_.set(number, {.kind = ObjectTable::Kind::object,
                        .height = height,
                        .index = static_cast<quint32>(rebuilt_.size())});
    rebuilt_.emplace_back(std::move(result));
}

Value ObjectRebuilder::rebuilt(quint32 number, const ClassRecord& cls,
                               std::span<const StreamValue> values) {
    switch (cls.info ? cls.info->kind : ClassKind::none) {
        case ClassKind::string:
            return string(values);
        case ClassKind::number:
            return non_keyed::number(values);
        case ClassKind::data:
            return data(values);
        case ClassKind::date:
            return date(values);
        case ClassKind::url:
            return url(values);
        case ClassKind::array:
            return std::make_shared<Array>(elements(values));
        case ClassKind::set:
        case ClassKind::countedSet:
        case ClassKind::orderedSet:
            return std::make_shared<Set>(elements(values));
        case ClassKind::attributedString:
            return attributedString(values);
        case ClassKind::textAttachment:
            return textAttachment(values);
        case ClassKind::fileWrapper:
            return fileWrapper(values);
        case ClassKind::application:
            if (cls.info->initWithCoder) return application(number, *cls.info, values);
            return opaque(cls);
        default:
            return opaque(cls);
    }
}

/// One for each name: two of them can't be told apart.
Value ObjectRebuilder::opaque(const ClassRecord& cls) {
    const auto [known, isNew] = opaqueByName_.try_emplace(cls.name.data());
    if (isNew) {
        budget_.spendKept(objectSize + cls.name.size());
        known->second = std::make_shared<OpaqueObject>(
            QByteArray(cls.name.data(), static_cast<qsizetype>(cls.name.size())));
    }
    return known->second;
}

Value ObjectRebuilder::string(std::span<const StreamValue> values) {
    const auto* text = find(values, [](const StreamValue& value) {
        return (value.kind == Kind::bytes && value.type == '+') || value.kind == Kind::text;
    });
    if (!text) return {};
    if (text->kind == Kind::bytes) return this->text(text->view());
    // A C string is stored once for all that have it.
    const auto known = textsBySource_.find(text->data);
    if (known != textsBySource_.end()) return known->second;
    return textsBySource_.emplace(text->data, this->text(text->view())).first->second;
}

QString ObjectRebuilder::text(std::string_view bytes) {
    // UTF-8 has a byte at least for each unit.
    budget_.spendKept(bytes.size() * sizeof(QChar) + 32);
    return decodedText(bytes);
}

QString ObjectRebuilder::withoutPrefix(const QString& text, qsizetype length) {
    return derivedTexts_.derived(text, nullptr, [&] {
        budget_.spendKept(static_cast<quint64>(text.size()) * sizeof(QChar) + 32);
        return text.sliced(length);
    });
}

Value ObjectRebuilder::data(std::span<const StreamValue> values) {
    const auto* bytes =
        find(values, [](const StreamValue& value) { return value.kind == Kind::bytes; });
    budget_.spendKept(objectSize);
    if (bytes) return slice(*bytes);
    // Empty data may have no group of bytes.
    const auto* length = findInteger(values);
    return length && length->integer == 0 ? Value(Data()) : Value();
}

Value ObjectRebuilder::url(std::span<const StreamValue> values) {
    std::optional<QString> relative;
    std::shared_ptr<const URL> base;
    for (const StreamValue& item : values) {
        const Value& object = value(item);
        if (const QString* text = object.string(); text && !relative) relative = *text;
        if (!base) base = object.object<URL>();
    }
    if (!relative) return {};
    budget_.spendKept(objectSize);
    if (!base) return std::make_shared<URL>(*std::move(relative));
    QString absolute = derivedTexts_.derived(*relative, base.get(), [&] {
        const auto size = relative->size() + base->absoluteString().size();
        budget_.spendKept(static_cast<quint64>(size) * sizeof(QChar) + 32);
        return URL::resolved(*relative, *base);
    });
    return std::make_shared<URL>(*std::move(relative), std::move(base), std::move(absolute));
}

/// The stored number of elements; a subclass may have added values of its own.
quint64 ObjectRebuilder::storedCount(std::span<const StreamValue> values) const {
    const auto* count = findInteger(values);
    if (!count) return 0;
    if (count->integer < 0 || count->integer > data_.size()) throw MalformedArchive();
    return static_cast<quint64>(count->integer);
}

std::vector<Value> ObjectRebuilder::elements(std::span<const StreamValue> values) {
    const quint64 wanted = std::min<quint64>(storedCount(values), values.size() - 1);
    budget_.spendKept(objectSize + wanted * sizeof(Value));
    std::vector<Value> result;
    result.reserve(wanted);
    for (const StreamValue& item : values) {
        if (result.size() == wanted) break;
        if (item.isObject()) result.push_back(value(item));
    }
    return result;
}

void ObjectRebuilder::addDictionary(quint32 number, std::span<const StreamValue> values,
                                    quint8 height) {
    const quint64 wanted = std::min<quint64>(storedCount(values) * 2, values.size());
    const auto first = static_cast<quint32>(members_.size());
    quint32 count = 0;
    for (const StreamValue& item : values) {
        if (count == wanted) break;
        if (!item.isObject()) continue;
        // What is absent now stays so, although the objects around this one will be finished.
        const bool isThere = item.kind == Kind::object &&
                             table_[item.number].kind != ObjectTable::Kind::absentObject;
        members_.emplace_back(isThere ? item.number : noNumber);
        ++count;
    }
    count &= ~1u;
    budget_.spendWorking(sizeof(ArchivedDictionary) + count * sizeof(quint32));
    table_.set(number, {.kind = ObjectTable::Kind::dictionary,
                        .height = height,
                        .index = static_cast<quint32>(dictionaries_.size())});
    dictionaries_.emplace_back(ArchivedDictionary{.firstMember = first,
                                                  .memberCount = count,
                                                  .attributes = attributesAmong(first, count),
                                                  .value = {}});
}

std::shared_ptr<const Attributes> ObjectRebuilder::attributesAmong(quint32 firstMember,
                                                                   quint32 memberCount) {
    Attributes found;
    bool isEmpty = true;
    for (quint32 i = 0; i < memberCount; i += 2) {
        const quint32 keyNumber = members_[firstMember + i];
        if (keyNumber == noNumber || table_[keyNumber].kind != ObjectTable::Kind::object) continue;
        const QString* key = rebuilt_[table_[keyNumber].index].string();
        if (!key) continue;
        Value* const attribute = *key == u"NSLink"              ? &found.link
                                 : *key == u"NSAttachment"      ? &found.attachment
                                 : *key == u"FezInlineFilePath" ? &found.inlineFilePath
                                                                : nullptr;
        if (!attribute) continue;
        *attribute = valueOf(members_[firstMember + i + 1]);
        isEmpty = isEmpty && attribute->isNothing();
    }
    if (isEmpty) return nullptr;
    budget_.spendKept(sizeof(Attributes) + 16);
    return std::make_shared<Attributes>(std::move(found));
}

const std::shared_ptr<const Attributes>* ObjectRebuilder::attributesOf(const StreamValue& value) {
    if (value.kind != Kind::object) return nullptr;
    const auto& entry = table_[value.number];
    if (entry.kind != ObjectTable::Kind::dictionary) return nullptr;
    return &dictionaries_[entry.index].attributes;
}

/// A text, then for each run the number of its attributes and its length. A number that is new is
/// followed by the dictionary.
Value ObjectRebuilder::attributedString(std::span<const StreamValue> values) {
    const auto* first = find(values, [](const StreamValue& value) { return value.isObject(); });
    if (!first) return {};
    const QString* text = value(*first).string();
    QString string = text ? *text : QString();
    AttributeRunBuilder builder(string.size());
    numberedAttributes_.clear();
    for (auto at = first + 1; at < values.data() + values.size();) {
        const StreamValue& attributesNumber = *at++;
        if (attributesNumber.kind != Kind::integer || at == values.data() + values.size()) continue;
        const StreamValue& length = *at++;
        const auto index = static_cast<quint64>(attributesNumber.integer) - 1;
        if (index == numberedAttributes_.size() && at < values.data() + values.size())
            numberedAttributes_.push_back(at->isObject() ? attributesOf(*at++) : nullptr);
        if (length.kind != Kind::integer) continue;
        const auto* attributes =
            index < numberedAttributes_.size() ? numberedAttributes_[index] : nullptr;
        builder.add(static_cast<quint32>(length.integer), attributes ? *attributes : nullptr);
    }
    auto result = builder.finish();
    budget_.spendKept(objectSize + result.span().size() * sizeof(AttributeRun));
    return makeObject<AttributedString>(std::move(string), std::move(result));
}

/// The order of what an attachment holds is not relied upon: each part is known by its class.
Value ObjectRebuilder::textAttachment(std::span<const StreamValue> values) {
    auto attachment = std::make_shared<TextAttachment>();
    for (const StreamValue& item : values) {
        const Value& object = value(item);
        if (!attachment->fileWrapper) attachment->fileWrapper = object.object<FileWrapper>();
        if (const Data* bytes = object.data(); bytes && !attachment->contents)
            attachment->contents = *bytes;
        if (const QString* type = object.string(); type && !attachment->fileType)
            attachment->fileType = *type;
    }
    // A folder beside contents of the attachment's own is the rich text around it, not what is
    // attached.
    if (attachment->contents && attachment->fileType && attachment->fileWrapper &&
        attachment->fileWrapper->isDirectory())
        attachment->fileWrapper = nullptr;
    budget_.spendKept(applicationObjectSize);
    return attachment;
}

Value ObjectRebuilder::fileWrapper(std::span<const StreamValue> values) {
    std::optional<Data> serialized;
    for (const StreamValue& item : values) {
        if (item.kind == Kind::bytes) serialized = slice(item);
        const Value& object = value(item);
        if (const Data* bytes = object.data()) serialized = *bytes;
        if (serialized) break;
    }
    if (!serialized) return {};
    // Many wrappers may name one data object; it is read once.
    const auto [known, isNew] = wrappersBySource_.try_emplace(serialized->begin());
    if (isNew) {
        budget_.spendWorking(objectSize + static_cast<quint64>(serialized->size()));
        known->second = parseSerializedFileWrapper(*serialized);
        if (known->second) budget_.spendKept(wrapperSize(*known->second));
    }
    return known->second;
}

Value ObjectRebuilder::application(quint32 number, const ClassInfo& info,
                                   std::span<const StreamValue> values) {
    budget_.spendKept(applicationObjectSize);
    PositionalCoder coder(*this, number, values);
    return info.initWithCoder(coder);
}

const Value& ObjectRebuilder::valueOf(quint32 number) {
    if (number == noNumber) return nothing_;
    const auto& entry = table_[number];
    if (entry.kind == ObjectTable::Kind::object) return rebuilt_[entry.index];
    if (entry.kind == ObjectTable::Kind::dictionary)
        return dictionaryValue(dictionaries_[entry.index]);
    return nothing_;
}

const Value& ObjectRebuilder::dictionaryValue(ArchivedDictionary& dictionary) {
    if (!dictionary.value.isNothing()) return dictionary.value;
    budget_.spendKept(objectSize + dictionary.memberCount * sizeof(Value));
    const auto member = [&](quint32 i) { return valueOf(members_[dictionary.firstMember + i]); };
    std::vector<std::pair<Value, Value>> pairs;
    pairs.reserve(dictionary.memberCount / 2);
    for (quint32 i = 0; i < dictionary.memberCount; i += 2)
        pairs.emplace_back(member(i), member(i + 1));
    dictionary.value = std::make_shared<Dictionary>(std::move(pairs));
    return dictionary.value;
}

quint8 ObjectRebuilder::heightOf(std::span<const StreamValue> values) {
    quint8 height = 0;
    for (const StreamValue& value : values)
        height = std::max(height, value.height);
    if (height == maximumHeight) throw MalformedArchive();
    return static_cast<quint8>(height + 1);
}

Data ObjectRebuilder::slice(const StreamValue& value) const {
    return data_.slice(value.data - data_.begin(), value.number);
}

}  // namespace foundation::non_keyed
