// SPDX-License-Identifier: MIT
#include "foundation/keyed_unarchiver.h"

#include "foundation/keyed/archive.h"
#include "foundation/keyed/decoder.h"

namespace foundation {

class KeyedUnarchiver::Impl {
  public:
    Impl(const Data& data, std::span<const ClassInfo* const> allowedClasses,
         const ClassRegistry& registry, Coder& coder)
        : archive(data), decoder(archive, allowedClasses, registry, coder) {}

    const keyed::Archive archive;
    keyed::Decoder decoder;
};

KeyedUnarchiver::KeyedUnarchiver(const Data& data, std::span<const ClassInfo* const> allowedClasses,
                                 const ClassRegistry& registry)
    : impl_(std::make_unique<Impl>(data, allowedClasses, registry, *this)) {}

KeyedUnarchiver::~KeyedUnarchiver() = default;

Value KeyedUnarchiver::unarchivedObject(const Data& data,
                                        std::span<const ClassInfo* const> allowedClasses,
                                        const ClassRegistry& registry) {
    return KeyedUnarchiver(data, allowedClasses, registry).impl_->decoder.decodeTop("root");
}

Value KeyedUnarchiver::decodeObject(std::string_view key) {
    return impl_->decoder.decodeKey(key);
}

Value KeyedUnarchiver::decodeObject() {
    return {};
}

std::optional<quint32> KeyedUnarchiver::decodeUInt32() {
    return std::nullopt;
}

std::optional<quint32> KeyedUnarchiver::objectNumber() const {
    return impl_->decoder.currentUid();
}

QString KeyedUnarchiver::withoutPrefix(const QString& text, qsizetype length) {
    return impl_->decoder.withoutPrefix(text, length);
}

QString KeyedUnarchiver::description() const {
    return QStringLiteral("<NSKeyedUnarchiver>");
}

}  // namespace foundation
