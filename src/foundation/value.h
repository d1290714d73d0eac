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
#include <new>
#include <optional>
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
    Value() {}
    Value(Number number) : number_(number), kind_(Kind::number) {}
    Value(QString string) : string_(std::move(string)), kind_(Kind::string) {}
    Value(Date date) : date_(date), kind_(Kind::date) {}
    /// Bytes are boxed: they are rare among values and would make every value larger.
    Value(Data data) : data_(std::make_shared<const Data>(std::move(data))), kind_(Kind::data) {}
    template <class T>
    requires std::is_base_of_v<Object, T> Value(std::shared_ptr<T> object) {
        if (!object) return;
        new (&object_) std::shared_ptr<const Object>(std::move(object));
        kind_ = Kind::object;
    }
    Value(const Value& other) { construct(other); }
    Value(Value&& other) noexcept { construct(std::move(other)); }
    Value& operator=(const Value& other) {
        if (this != &other) *this = Value(other);
        return *this;
    }
    Value& operator=(Value&& other) noexcept {
        if (this == &other) return *this;
        destroy();
        construct(std::move(other));
        return *this;
    }
    ~Value() { destroy(); }

    [[nodiscard]] bool isNothing() const { return kind_ == Kind::nothing; }
    [[nodiscard]] const Number* number() const {
        return kind_ == Kind::number ? &number_ : nullptr;
    }
    [[nodiscard]] const QString* string() const {
        return kind_ == Kind::string ? &string_ : nullptr;
    }
    [[nodiscard]] const Date* date() const { return kind_ == Kind::date ? &date_ : nullptr; }
    [[nodiscard]] const Data* data() const { return kind_ == Kind::data ? data_.get() : nullptr; }
    /// The object when it is a T (or derived from it), else null.
    template <class T>
    [[nodiscard]] std::shared_ptr<const T> object() const& {
        return isA<T>() ? std::static_pointer_cast<const T>(object_) : nullptr;
    }
    /// The same, taken out of a value that nobody needs any more.
    template <class T>
    [[nodiscard]] std::shared_ptr<const T> object() && {
        return isA<T>() ? std::static_pointer_cast<const T>(std::move(object_)) : nullptr;
    }

    /// The archived class name: "NSString", "NSNumber" …; "nil" for nothing.
    [[nodiscard]] QByteArray className() const;
    /// One line for diagnostics, without addresses.
    [[nodiscard]] QString description() const;

  private:
    enum class Kind : quint8 { nothing, number, string, date, data, object };

    // A variant by hand: readers make, move and copy values by the million, and std::variant does
    // each of these through a table of functions.
    union {
        Number number_;
        QString string_;
        Date date_;
        std::shared_ptr<const Data> data_;
        std::shared_ptr<const Object> object_;
    };
    Kind kind_ = Kind::nothing;

    template <class T>
    [[nodiscard]] bool isA() const {
        if (kind_ != Kind::object || !object_) return false;
        const Object& held = *object_;
        if constexpr (std::is_same_v<T, Object>)
            return true;
        else if constexpr (std::is_final_v<T>)
            return typeid(held) == typeid(T);
        else
            return dynamic_cast<const T*>(&held) != nullptr;
    }
    /// Takes the content of a const Value& or a Value&&; this value must hold none.
    template <class Other>
    void construct(Other&& other) {
        switch (other.kind_) {
            case Kind::nothing:
                break;
            case Kind::number:
                new (&number_) Number(other.number_);
                break;
            case Kind::string:
                new (&string_) QString(std::forward<Other>(other).string_);
                break;
            case Kind::date:
                new (&date_) Date(other.date_);
                break;
            case Kind::data:
                new (&data_) std::shared_ptr<const Data>(std::forward<Other>(other).data_);
                break;
            case Kind::object:
                new (&object_) std::shared_ptr<const Object>(std::forward<Other>(other).object_);
                break;
        }
        kind_ = other.kind_;
    }
    void destroy() {
        if (kind_ == Kind::string)
            string_.~QString();
        else if (kind_ == Kind::data)
            data_.~shared_ptr();
        else if (kind_ == Kind::object)
            object_.~shared_ptr();
        kind_ = Kind::nothing;
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

/// An object whose content nobody asks for (fonts, colours, unknown classes): only its class.
class OpaqueObject final : public Object {
  public:
    explicit OpaqueObject(QByteArray className) : className_(std::move(className)) {}
    [[nodiscard]] QByteArray className() const override { return className_; }

  private:
    QByteArray className_;
};

}  // namespace foundation
