#pragma once
// SPDX-License-Identifier: MIT
//
// PositionalCoder: the values of one object of a non-keyed archive, read one after another by its
// application class, whatever groups they were written in.

#include <span>

#include "foundation/non_keyed/object_rebuilder.h"

namespace foundation::non_keyed {

class PositionalCoder final : public Coder {
  public:
    PositionalCoder(ObjectRebuilder& rebuilder, quint32 number, std::span<const StreamValue> values)
        : rebuilder_(rebuilder), number_(number), rest_(values) {}

    [[nodiscard]] bool isKeyed() const override { return false; }
    Value decodeObject(std::string_view) override { return {}; }
    Value decodeObject() override {
        const StreamValue* next = take();
        return next ? rebuilder_.value(*next) : Value();
    }
    std::optional<quint32> decodeUInt32() override {
        const StreamValue* next = take();
        if (!next || next->kind != StreamValue::Kind::integer) return std::nullopt;
        return static_cast<quint32>(next->integer);
    }
    [[nodiscard]] std::optional<quint32> objectNumber() const override { return number_; }
    [[nodiscard]] QString withoutPrefix(const QString& text, qsizetype length) override {
        return rebuilder_.withoutPrefix(text, length);
    }
    [[nodiscard]] QString description() const override { return QStringLiteral("<NSUnarchiver>"); }

  private:
    /// A value of another type than the expected one uses up its position too.
    const StreamValue* take() {
        if (rest_.empty()) return nullptr;
        const StreamValue* next = &rest_.front();
        rest_ = rest_.subspan(1);
        return next;
    }

    ObjectRebuilder& rebuilder_;
    quint32 number_;
    std::span<const StreamValue> rest_;
};

}  // namespace foundation::non_keyed
