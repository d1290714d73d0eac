// SPDX-License-Identifier: MIT
//
// Attributed strings with what hangs on them. Of their attributes only three are ever looked at;
// the values of all others are neither decoded nor checked.
#include <utility>

#include "foundation/file_wrapper.h"
#include "foundation/keyed/decoder.h"
#include "foundation/keyed/errors.h"
#include "foundation/object_memory.h"

namespace foundation::keyed {
namespace {

/// Puts Attributes, which are no value of the graph, into the slot of their dictionary.
class AttributesBox final : public Object {
  public:
    explicit AttributesBox(std::shared_ptr<const Attributes> attributes)
        : attributes(std::move(attributes)) {}
    [[nodiscard]] QByteArray className() const override { return "NSDictionary"; }

    const std::shared_ptr<const Attributes> attributes;
};

/// The pairs of numbers that describe the runs: seven bits a byte, the lowest first.
class RunInfo {
  public:
    explicit RunInfo(QByteArrayView bytes) : rest_(bytes) {}

    /// Nothing at the end, and when the bytes break off or a number is beyond 63 bits.
    std::optional<std::pair<quint64, quint64>> next() {
        const auto length = number();
        const auto index = length ? number() : std::nullopt;
        if (!index) return std::nullopt;
        return std::pair(*length, *index);
    }

  private:
    QByteArrayView rest_;

    std::optional<quint64> number() {
        quint64 value = 0;
        for (unsigned shift = 0; shift < 63 && !rest_.isEmpty(); shift += 7) {
            const auto byte = static_cast<unsigned char>(rest_.front());
            rest_ = rest_.sliced(1);
            value |= quint64(byte & 0x7f) << shift;
            if (byte < 0x80) return value;
        }
        return std::nullopt;
    }
};

quint64 countOfFiles(const FileWrapper& wrapper) {
    quint64 count = 1;
    for (const auto& child : wrapper.children)
        count += countOfFiles(*child);
    return count;
}

}  // namespace

/// Three forms: no attributes; one dictionary for the whole text; an array of dictionaries, and
/// "NSAttributeInfo" that describes the runs. Anything else counts as no attributes.
Value Decoder::decodeAttributedString(const Instance& instance) {
    static constexpr Key stringKey = "NSString";
    static constexpr Key attributesKey = "NSAttributes";
    static constexpr Key infoKey = "NSAttributeInfo";
    const Value part = decodePart(instance, stringKey, ClassKind::string);
    if (requiresWhole_ && !part.string() && instance.ref(stringKey) != none)
        throw brokenValueError(stringKey.name());
    const QString text = part.string() ? *part.string() : QString();
    const Ref attributes = instance.ref(attributesKey);
    if (attributes == none || text.isEmpty()) return makeObject<AttributedString>(text, nullptr);
    if (instance.ref(infoKey) == none)
        return makeObject<AttributedString>(text, decodeAttributes(attributes));

    const Value info = decodePart(instance, infoKey, ClassKind::data);
    const auto dictionaries = info.data() ? partInstance(archive_.uid(attributes),
                                                         {attributesKey.name(), ClassKind::array})
                                          : std::nullopt;
    if (!dictionaries) return makeObject<AttributedString>(text, nullptr);
    AttributeRunBuilder runs(text.size());
    decodeRuns(*dictionaries, *info.data(), quint64(text.size()), runs);
    return makeObject<AttributedString>(text, runs.finish());
}

/// Adds runs until the text is covered, the bytes end or they make no sense.
void Decoder::decodeRuns(const Instance& dictionaries, const Data& info, quint64 length,
                         AttributeRunBuilder& runs) {
    const BinaryPropertyList& list = archive_.list();
    const Node array = dictionaries.value("NS.objects");
    const bool isList = array.kind() == Kind::array;
    const std::vector<Ref> numbered =
        isList ? std::vector<Ref>() : numberedValues(dictionaries, "NS.object.");
    const quint64 count = isList ? array.count() : numbered.size();
    RunInfo pairs(info.view());
    while (length > 0) {
        budgets_.steps.spend(1);
        const auto run = pairs.next();
        if (!run || run->second >= count) return;
        if (run->first == 0) continue;
        budgets_.runs.spend(1);
        const Ref dictionary = isList ? list.element(array, run->second) : numbered[run->second];
        runs.add(run->first, decodeAttributes(dictionary));
        length -= std::min(length, run->first);
    }
}

std::shared_ptr<const Attributes> Decoder::decodeAttributes(Ref value) {
    const quint64 uid = archive_.uid(value);
    if (uid >= states_.size()) return nullptr;
    const State before = states_[uid];
    if (before == State::inProgress) return nullptr;
    if (before == State::attributes) {
        // Most dictionaries hold none of the three and need no box to say so.
        const auto box = std::static_pointer_cast<const AttributesBox>(slots_[uid]);
        return box ? box->attributes : nullptr;
    }
    if (const auto known = sharedAttributes_.find(uid); known != sharedAttributes_.end())
        return known->second;
    const auto dictionary = partInstance(uid, {"NSAttributes", ClassKind::dictionary});
    if (!dictionary) return nullptr;
    if (depth_ >= depthLimit) throw excessError("levels of nesting");
    ++depth_;
    states_[uid] = State::inProgress;
    auto attributes = buildAttributes(*dictionary);
    --depth_;
    states_[uid] = before;
    if (before == State::unvisited) {
        states_[uid] = State::attributes;
        if (attributes) slots_[uid] = std::make_shared<AttributesBox>(attributes);
    } else {
        sharedAttributes_.emplace(uid, attributes);
    }
    return attributes;
}

std::shared_ptr<const Attributes> Decoder::buildAttributes(const Instance& instance) {
    const BinaryPropertyList& list = archive_.list();
    static constexpr Key namesKey = "NS.keys";
    static constexpr Key valuesKey = "NS.objects";
    const Node names = instance.value(namesKey);
    const Node values = instance.value(valuesKey);
    if (names.kind() != Kind::array || values.kind() != Kind::array) return nullptr;
    Attributes attributes;
    const quint64 count = std::min(names.count(), values.count());
    budgets_.steps.spend(count);
    for (quint64 i = 0; i < count; ++i) {
        Value* const slot = slotFor(list.element(names, i), attributes);
        if (!slot || !slot->isNothing()) continue;
        *slot = decodeValue(list.element(values, i), {"NS.objects"});
    }
    const bool isEmpty = attributes.link.isNothing() && attributes.attachment.isNothing() &&
                         attributes.inlineFilePath.isNothing();
    return isEmpty ? nullptr : std::make_shared<const Attributes>(std::move(attributes));
}

/// Where the value of an attribute belongs; null for all other names.
Value* Decoder::slotFor(Ref name, Attributes& attributes) {
    const quint64 uid = archive_.uid(name);
    const QByteArrayView text =
        Archive::ascii(uid == none ? archive_.list().node(name) : archive_.object(uid));
    if (text == "NSLink") return &attributes.link;
    if (text == "NSAttachment") return &attributes.attachment;
    if (text == "FezInlineFilePath") return &attributes.inlineFilePath;
    return nullptr;
}

/// Newer writers keep the file itself in contents and type; the wrapper beside them then holds
/// surrounding rich text as a directory, which is no attachment.
Value Decoder::decodeTextAttachment(const Instance& instance) {
    auto attachment = std::make_shared<TextAttachment>();
    const Value wrapper = decodePart(instance, "NSFileWrapper", ClassKind::fileWrapper);
    const Value contents = decodePart(instance, "NS.contents", ClassKind::data);
    const Value fileType = decodePart(instance, "NS.fileType", ClassKind::string);
    attachment->fileWrapper = wrapper.object<FileWrapper>();
    if (contents.data()) attachment->contents = *contents.data();
    if (fileType.string()) attachment->fileType = *fileType.string();
    if (attachment->contents && attachment->fileType && attachment->fileWrapper &&
        attachment->fileWrapper->isDirectory())
        attachment->fileWrapper = nullptr;
    return attachment;
}

Value Decoder::decodeFileWrapper(const Instance& instance) {
    const Value data = decodePart(instance, "NSFileWrapperData", ClassKind::data);
    return data.data() ? Value(fileWrapper(*data.data())) : Value();
}

/// Many wrappers may name the same bytes; they are read once, well-formed or not.
std::shared_ptr<const FileWrapper> Decoder::fileWrapper(const Data& data) {
    const auto [known, isNew] = fileWrappers_.try_emplace({data.begin(), data.size()});
    if (isNew) {
        budgets_.wrapperBytes.spend(quint64(data.size()));
        known->second = parseSerializedFileWrapper(data);
        if (known->second) budgets_.files.spend(countOfFiles(*known->second));
    }
    return known->second;
}

}  // namespace foundation::keyed
