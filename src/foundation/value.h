#pragma once
// SPDX-License-Identifier: MIT
//
// Value: one decoded object of an archive. Small things are held in place, compound ones are shared
// and immutable. Nothing (std::monostate) stands for nil, for a missing key and for an object that
// is still being decoded, so decoded graphs never hold cycles.
//
//     if (const QString* text = value.string()) …
//     if (const auto message = value.object<InstantMessage>()) …

#include <QByteArray>
#include <QString>
#include <memory>
#include <optional>
#include <type_traits>
#include <typeinfo>
#include <variant>
#include <vector>

#include "foundation/data.h"
#include "foundation/date.h"

namespace foundation {

/// Base of everything shared: collections, attributed strings, wrappers, the archived classes.
class Object {
  public:
    virtual ~Object() = default;
    /// The name of the class as archives spell it, e.g. "NSArray".
    [[nodiscard]] virtual QByteArray className() const = 0;
    /// One line for diagnostics, without addresses.
    [[nodiscard]] virtual QString description() const;

  protected:
    Object() = default;
    Object(const Object&) = default;
    Object& operator=(const Object&) = default;
};

/// A number as archived: booleans, integers and reals stay apart.
class Number {
  public:
    explicit Number(bool value) : value_(value) {}
    explicit Number(qint64 value) : value_(value) {}
    explicit Number(quint64 value) : value_(value) {}
    explicit Number(double value) : value_(value) {}

    /// True for anything but false, 0 and NaN.
    [[nodiscard]] bool toBool() const;
    /// The integer when it is one, or a real without fraction that fits; booleans are 0 and 1.
    [[nodiscard]] std::optional<qint64> toInt64() const;
    [[nodiscard]] double toDouble() const;
    [[nodiscard]] QString description() const;

    friend bool operator==(const Number&, const Number&) = default;

  private:
    std::variant<bool, qint64, quint64, double> value_;
};

class Value {
  public:
    Value() = default;
    Value(Number number) : held_(number) {}
    Value(QString string) : held_(std::move(string)) {}
    Value(Date date) : held_(date) {}
    /// Bytes are boxed: they are rare among values and would make every value larger.
    Value(Data data) : held_(std::make_shared<const Data>(std::move(data))) {}
    template <class T>
    requires std::is_base_of_v<Object, T> Value(std::shared_ptr<T> object) {
        if (object) held_ = std::shared_ptr<const Object>(std::move(object));
    }

    [[nodiscard]] bool isNothing() const { return std::holds_alternative<std::monostate>(held_); }
    [[nodiscard]] const Number* number() const { return std::get_if<Number>(&held_); }
    [[nodiscard]] const QString* string() const { return std::get_if<QString>(&held_); }
    [[nodiscard]] const Date* date() const { return std::get_if<Date>(&held_); }
    [[nodiscard]] const Data* data() const {
        const auto* const box = std::get_if<DataBox>(&held_);
        return box ? box->get() : nullptr;
    }
    /// The object when it is a T (or derived from it), else null.
    template <class T>
    [[nodiscard]] std::shared_ptr<const T> object() const& {
        const auto* const held = std::get_if<ObjectPointer>(&held_);
        return isA<T>(held) ? std::static_pointer_cast<const T>(*held) : nullptr;
    }
    /// The same, moved out of a value that is no longer needed.
    template <class T>
    [[nodiscard]] std::shared_ptr<const T> object() && {
        auto* const held = std::get_if<ObjectPointer>(&held_);
        return isA<T>(held) ? std::static_pointer_cast<const T>(std::move(*held)) : nullptr;
    }

    /// The archived class name: "NSString", "NSNumber" …; "nil" for nothing.
    [[nodiscard]] QByteArray className() const;
    /// One line for diagnostics, without addresses.
    [[nodiscard]] QString description() const;

  private:
    using DataBox = std::shared_ptr<const Data>;
    using ObjectPointer = std::shared_ptr<const Object>;

    std::variant<std::monostate, Number, QString, Date, DataBox, ObjectPointer> held_;

    template <class T>
    [[nodiscard]] static bool isA(const ObjectPointer* pointer) {
        if (!pointer || !*pointer) return false;
        const Object& held = **pointer;
        if constexpr (std::is_same_v<T, Object>)
            return true;
        else if constexpr (std::is_final_v<T>)
            return typeid(held) == typeid(T);
        else
            return dynamic_cast<const T*>(&held) != nullptr;
    }
};

/// "NSArray" and its subclass: elements in order; an element may be nothing.
class Array final : public Object {
  public:
    explicit Array(std::vector<Value> elements) : elements(std::move(elements)) {}
    [[nodiscard]] QByteArray className() const override { return "NSArray"; }
    [[nodiscard]] QString description() const override;

    const std::vector<Value> elements;
};

/// "NSSet" and relatives, in archive order.
class Set final : public Object {
  public:
    explicit Set(std::vector<Value> elements) : elements(std::move(elements)) {}
    [[nodiscard]] QByteArray className() const override { return "NSSet"; }
    [[nodiscard]] QString description() const override;

    const std::vector<Value> elements;
};

/// "NSDictionary" and its subclass: pairs in archive order.
class Dictionary final : public Object {
  public:
    explicit Dictionary(std::vector<std::pair<Value, Value>> pairs) : pairs(std::move(pairs)) {}
    [[nodiscard]] QByteArray className() const override { return "NSDictionary"; }
    [[nodiscard]] QString description() const override;

    const std::vector<std::pair<Value, Value>> pairs;
};

/// An object whose content is never used (fonts, colours, unknown classes): only its class.
class OpaqueObject final : public Object {
  public:
    explicit OpaqueObject(QByteArray className) : className_(std::move(className)) {}
    [[nodiscard]] QByteArray className() const override { return className_; }

  private:
    QByteArray className_;
};

}  // namespace foundation
