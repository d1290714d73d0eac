// SPDX-License-Identifier: MIT
#include "foundation/keyed/instance.h"

#include <QtEndian>

namespace foundation::keyed {
namespace {

// Both read whole words: the trailer follows, so that at least eight bytes behind a list belong to
// the file.

std::size_t hash(const char* bytes) {
    return std::size_t((qFromUnaligned<quint64>(bytes) * 0x9e3779b97f4a7c15u) >> 40);
}

bool isEqual(const char* a, const char* b, qsizetype size) {
    for (; size >= 8; a += 8, b += 8, size -= 8)
        if (qFromUnaligned<quint64>(a) != qFromUnaligned<quint64>(b)) return false;
    if (size == 0) return true;
    const quint64 difference = qFromBigEndian<quint64>(a) ^ qFromBigEndian<quint64>(b);
    return difference >> (64 - 8 * size) == 0;
}

}  // namespace

KeyLayouts::Layout& KeyLayouts::find(const Node& dictionary) {
    const QByteArrayView keyRefs = archive_.list().keyRefBytes(dictionary);
    Layout& layout = layouts_[hash(keyRefs.data()) % layouts_.size()];
    if (layout.keyRefs.size() != keyRefs.size() ||
        !isEqual(layout.keyRefs.data(), keyRefs.data(), keyRefs.size())) {
        layout.keyRefs = keyRefs;
        read(dictionary, layout);
    }
    return layout;
}

void KeyLayouts::read(const Node& dictionary, Layout& layout) {
    const BinaryPropertyList& list = archive_.list();
    budgets_.steps.spend(dictionary.count());
    ++layout.generation;
    layout.classIndex = none;
    layout.classUid = none;
    for (quint64 i = 0; i < dictionary.count(); ++i) {
        const QByteArrayView name = Archive::ascii(list.node(list.key(dictionary, i)));
        layout.keys[i] = std::string_view(name.data(), std::size_t(name.size()));
        if (layout.classIndex == none && name == "$class") layout.classIndex = i;
    }
}

Ref Instance::searched(std::string_view key) const {
    layouts_.budgets().steps.spend(count_);
    return layouts_.archive().find(dictionary_, key);
}

}  // namespace foundation::keyed
