#pragma once
// SPDX-License-Identifier: MIT
//
// KeyedUnarchiver: reads a keyed archive (a binary or XML property list) on demand. Each object is
// decoded when it is first requested by key, and shared; all others are never looked at. The format
// as it is read here is described in docs/formats/keyed-archive.md.

#include <memory>
#include <span>

#include "foundation/class_registry.h"
#include "foundation/error.h"

namespace foundation {

class KeyedUnarchiver final : public Coder {
  public:
    /// The object under "root", restricted to the allowed classes and their subclasses; nothing
    /// when the archive's root is nil. Throws Error when the bytes are no keyed archive, when the
    /// archive names a class that is unknown or not allowed, or when it is malformed where it is
    /// decoded. Attachment bytes are slices of `data`.
    static Value unarchivedObject(const Data& data,
                                  std::span<const ClassInfo* const> allowedClasses,
                                  const ClassRegistry& registry);

    ~KeyedUnarchiver() override;

    [[nodiscard]] bool isKeyed() const override { return true; }
    Value decodeObject(std::string_view key) override;
    Value decodeObject() override;
    std::optional<quint32> decodeUInt32() override;
    [[nodiscard]] std::optional<quint32> objectNumber() const override;
    [[nodiscard]] QString withoutPrefix(const QString& text, qsizetype length) override;
    [[nodiscard]] QString description() const override;

  private:
    class Impl;
    KeyedUnarchiver(const Data& data, std::span<const ClassInfo* const> allowedClasses,
                    const ClassRegistry& registry);
    std::unique_ptr<Impl> impl_;
};

}  // namespace foundation
