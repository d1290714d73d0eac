#pragma once
// SPDX-License-Identifier: MIT
//
// LogValue: a borrowed reference to anything that can be printed, printed only when a log line is
// really written. It serves for a line's message and for the values after it. Strings, numbers,
// exceptions and everything with a description() or a QDebug operator can be printed; so can a
// callable without arguments that returns one of these, and an optional or a pointer to one, which
// prints as "<nil>" when it is absent.

#include <QDebug>
#include <QString>
#include <concepts>
#include <exception>
#include <memory>
#include <optional>
#include <string_view>
#include <type_traits>

namespace vell {
namespace log_detail {

template <class T>
concept Pointing = std::is_null_pointer_v<T> || requires(const T& value) {
    { value.has_value() } -> std::convertible_to<bool>;
    *value;
} || requires(const T& value) {
    { value == nullptr } -> std::convertible_to<bool>;
    *value;
};

template <class T>
concept Described = requires(const T& value) {
    { value.description() } -> std::convertible_to<QString>;
};

[[nodiscard]] QString printedReal(double value);

/// The text of a value in a log line.
template <class T>
[[nodiscard]] QString printed(const T& value) {
    if constexpr (std::is_null_pointer_v<T> || std::is_same_v<T, std::nullopt_t>) {
        return QStringLiteral("<nil>");
    } else if constexpr (std::is_convertible_v<const T&, QString>) {
        if constexpr (std::is_pointer_v<T>) {
            if (!value) return QStringLiteral("<nil>");
        }
        return value;
    } else if constexpr (std::is_convertible_v<const T&, QStringView>) {
        return QStringView(value).toString();
    } else if constexpr (std::is_convertible_v<const T&, std::string_view>) {
        const std::string_view text = value;
        return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    } else if constexpr (std::is_invocable_v<const T&>) {
        return printed(value());
    } else if constexpr (Pointing<T>) {
        return value ? printed(*value) : QStringLiteral("<nil>");
    } else if constexpr (Described<T>) {
        return value.description();
    } else if constexpr (std::is_same_v<T, bool>) {
        return value ? QStringLiteral("true") : QStringLiteral("false");
    } else if constexpr (std::is_floating_point_v<T>) {
        return printedReal(static_cast<double>(value));
    } else if constexpr (std::is_integral_v<T>) {
        return QString::number(value);
    } else if constexpr (std::is_base_of_v<std::exception, T>) {
        return QString::fromUtf8(value.what());
    } else {
        QString text;
        QDebug(&text).nospace().noquote() << value;
        return text;
    }
}

}  // namespace log_detail

class LogValue {
  public:
    /// Refers to the value, which must outlive this.
    template <class T>
    requires(!std::same_as<T, LogValue>) LogValue(const T& value)
        : object_(std::addressof(value)), print_([](const void* object) {
              return log_detail::printed(*static_cast<const T*>(object));
          }) {}

    /// Prints the value, calling it first when it is a callable.
    [[nodiscard]] QString text() const { return print_(object_); }

  private:
    const void* object_;
    QString (*print_)(const void*);
};

}  // namespace vell
