// SPDX-License-Identifier: MIT
#include "foundation/keyed/string_table.h"

#include <QtEndian>

namespace foundation::keyed {
namespace {

/// Shorter texts are not worth an entry in the map.
constexpr quint64 shortestShared = 64;

}  // namespace

QString StringTable::string(const Node& node) {
    Recent& recent = recent_[(reinterpret_cast<quintptr>(node.payload()) >> 4) % recent_.size()];
    if (recent.payload == node.payload() && quint64(recent.text.size()) == node.count())
        return recent.text;
    const std::tuple key(node.payload(), node.count(), node.kind());
    const bool isShared = decoded_ > fileSize_ && node.count() >= shortestShared;
    if (isShared)
        if (const auto found = shared_.find(key); found != shared_.end()) return found->second;
    bytes_.spend(valueOverhead + 2 * node.count());
    decoded_ += node.count();
    recent.payload = node.payload();
    recent.text = decode(node);
    if (isShared) shared_.emplace(key, recent.text);
    return recent.text;
}

QString StringTable::decode(const Node& node) {
    const auto size = qsizetype(node.count());
    if (node.kind() == Kind::utf16String) {
        QString text(size, Qt::Uninitialized);
        qFromBigEndian<char16_t>(node.payload(), size, text.data());
        return text;
    }
    const QLatin1StringView bytes(node.payload(), size);
    return QtPrivate::isAscii(bytes) ? QString(bytes)
                                     : QString::fromUtf8(QByteArrayView(node.payload(), size));
}

}  // namespace foundation::keyed
