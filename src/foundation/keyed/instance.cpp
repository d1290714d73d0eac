// SPDX-License-Identifier: MIT
#include "foundation/keyed/instance.h"

#include <cstring>

namespace foundation::keyed {
namespace {

/// Of a list's first and last eight bytes; a header stands before and a trailer behind all lists.
std::size_t hash(QByteArrayView bytes) {
    quint64 first = 0;
    quint64 last = 0;
    std::memcpy(&first, bytes.begin(), sizeof first);
    std::memcpy(&last, bytes.end() - sizeof last, sizeof last);
    const quint64 mixed = (first ^ (last * 31)) * 0x9e3779b97f4a7c15u;
    return std::size_t(mixed >> 32) ^ std::size_t(bytes.size());
}

}  // namespace

const KeyLayouts::Layout& KeyLayouts::find(const Node& dictionary) {
    const BinaryPropertyList& list = archive_.list();
    const QByteArrayView keyRefs = list.keyRefBytes(dictionary);
    Layout& layout = layouts_[hash(keyRefs) % layouts_.size()];
    if (layout.keyRefs.size() == keyRefs.size() &&
        std::memcmp(layout.keyRefs.data(), keyRefs.data(), std::size_t(keyRefs.size())) == 0)
        return layout;

    limits_.steps.spend(dictionary.count);
    layout.keyRefs = keyRefs;
    ++layout.generation;
    for (quint64 i = 0; i < dictionary.count; ++i) {
        const QByteArrayView name = Archive::ascii(list.node(list.key(dictionary, i)));
        layout.names[i] = std::string_view(name.data(), std::size_t(name.size()));
    }
    return layout;
}

std::optional<Node> Instance::value(std::string_view key) const {
    const Archive& archive = layouts_.archive();
    if (dictionary_.count > KeyLayouts::keyLimit) {
        layouts_.limits().steps.spend(dictionary_.count);
        return archive.find(dictionary_, key);
    }
    if (dictionary_.count == 0) return std::nullopt;
    if (!layout_ || layout_->generation != generation_) {
        layout_ = &layouts_.find(dictionary_);
        generation_ = layout_->generation;
    }
    for (quint64 i = 0; i < dictionary_.count; ++i)
        if (layout_->names[i] == key)
            return archive.list().node(archive.list().value(dictionary_, i));
    return std::nullopt;
}

}  // namespace foundation::keyed
