// SPDX-License-Identifier: MIT
//
// Attributed strings with what hangs on them. Of their attributes only three are ever looked at;
// the values of all others are neither decoded nor checked.
#include <utility>

#include "foundation/file_wrapper.h"
#include "foundation/keyed/decoder.h"
#include "foundation/keyed/errors.h"

namespace foundation::keyed {
namespace {

/// Lets Attributes, which are no value of the graph, lie in the slot of their dictionary.
class AttributesBox final : public Object {
  public:
    explicit AttributesBox(std::shared_ptr<const Attributes> attributes)
        : attributes(std::move(attributes)) {}
    [[nodiscard]] QByteArray className() const override { return "NSDictionary"; }

    const std::shared_ptr<const Attributes> attributes;
};

/// The pairs of numbers that tell the runs: seven bits a byte, the lowest first.
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

Value Decoder::decodeAttributedString(const Instance& instance) {
    const Value text = decodePart(instance, "NSString", ClassKind::string);
    const QString characters = text.string() ? *text.string() : QString();
    return std::make_shared<AttributedString>(characters, decodeRuns(instance, characters.size()));
}

/// Three forms: no attributes; one dictionary for the whole text; an array of dictionaries, and
/// "NSAttributeInfo" with (length, index in the array) for every run. Anything else counts as no
/// attributes, from where it begins to make no sense.
std::vector<AttributedString::Run> Decoder::decodeRuns(const Instance& instance, qsizetype length) {
    AttributeRunBuilder runs(length);
    const auto attributes = instance.value("NSAttributes");
    if (!attributes || length == 0) return runs.finish();
    const bool isSplit = instance.value("NSAttributeInfo").has_value();
    if (!isSplit) {
        limits_.runs.spend(1);
        runs.add(quint64(length), decodeAttributes(*attributes));
        return runs.finish();
    }
    const auto array = instanceOfKind(*attributes, ClassKind::array, "NSAttributes");
    const Value info = decodePart(instance, "NSAttributeInfo", ClassKind::data);
    if (!array || !info.data()) return runs.finish();

    const auto list = array->value("NS.objects");
    const bool isList = list && list->kind == Kind::array;
    const std::vector<Node> numbered =
        isList ? std::vector<Node>() : numberedValues(*array, "NS.object.");
    const quint64 count = isList ? list->count : numbered.size();
    RunInfo pairs(info.data()->view());
    for (auto left = quint64(length); left > 0;) {
        const auto run = pairs.next();
        if (!run || run->second >= count) break;
        limits_.steps.spend(1);
        if (run->first == 0) continue;
        limits_.runs.spend(1);
        const Node dictionary =
            isList ? archive_.list().node(archive_.list().element(*list, run->second))
                   : numbered[run->second];
        runs.add(run->first, decodeAttributes(dictionary));
        left -= std::min(left, run->first);
    }
    return runs.finish();
}

std::shared_ptr<const Attributes> Decoder::decodeAttributes(const Node& value) {
    const auto uid = archive_.uid(value);
    if (!uid || *uid >= states_.size()) return nullptr;
    const State before = states_[*uid];
    if (before == State::inProgress) return nullptr;
    if (before == State::attributes) {
        const auto box = slots_[*uid].object<AttributesBox>();
        return box ? box->attributes : nullptr;
    }
    const auto dictionary = instanceOfKind(value, ClassKind::dictionary, "NSAttributes");
    if (!dictionary) return nullptr;
    if (depth_ >= depthLimit) throw excessError("levels of nesting");
    ++depth_;
    states_[*uid] = State::inProgress;
    auto attributes = buildAttributes(*dictionary);
    --depth_;
    if (before == State::unvisited) {
        states_[*uid] = State::attributes;
        // Most dictionaries hold none of the three and need no box to say so.
        if (attributes) slots_[*uid] = std::make_shared<AttributesBox>(attributes);
    } else {
        states_[*uid] = before;
    }
    return attributes;
}

std::shared_ptr<const Attributes> Decoder::buildAttributes(const Instance& instance) {
    const BinaryPropertyList& list = archive_.list();
    const auto names = instance.value("NS.keys");
    const auto values = instance.value("NS.objects");
    if (!names || names->kind != Kind::array || !values || values->kind != Kind::array)
        return nullptr;
    Attributes attributes;
    const quint64 count = std::min(names->count, values->count);
    limits_.steps.spend(count);
    for (quint64 i = 0; i < count; ++i) {
        Value* const slot = slotFor(list.node(list.element(*names, i)), attributes);
        if (!slot || !slot->isNothing()) continue;
        *slot =
            decodeValue(list.node(list.element(*values, i)), "NS.objects", Check::allowedClasses);
    }
    const bool isEmpty = attributes.link.isNothing() && attributes.attachment.isNothing() &&
                         attributes.inlineFilePath.isNothing();
    return isEmpty ? nullptr : std::make_shared<const Attributes>(std::move(attributes));
}

/// Where the value of an attribute belongs; null for the names that nobody asks for.
Value* Decoder::slotFor(const Node& name, Attributes& attributes) {
    const auto uid = archive_.uid(name);
    const QByteArrayView text = Archive::ascii(uid ? archive_.object(*uid) : name);
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
    if (!data.data()) return {};
    const auto wrapper = parseSerializedFileWrapper(*data.data());
    if (wrapper) limits_.files.spend(countOfFiles(*wrapper));
    return wrapper;
}

}  // namespace foundation::keyed
