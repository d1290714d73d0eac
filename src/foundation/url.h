#pragma once
// SPDX-License-Identifier: MIT
//
// URL: an address as archived, base and relative text kept apart. Nothing is parsed away, decoded
// or re-encoded; only at the moment of opening does anything else look at it.

#include <QString>
#include <memory>

#include "foundation/value.h"

namespace foundation {

class URL final : public Object {
  public:
    explicit URL(QString relative, std::shared_ptr<const URL> base = nullptr)
        : relative_(std::move(relative)), base_(std::move(base)) {}

    [[nodiscard]] const QString& relative() const { return relative_; }
    [[nodiscard]] const std::shared_ptr<const URL>& base() const { return base_; }
    /// The relative text resolved against the base (RFC 3986, section 5.2; nothing re-encoded);
    /// without a base the relative text itself.
    [[nodiscard]] QString absoluteString() const;

    [[nodiscard]] QByteArray className() const override { return "NSURL"; }
    /// The absolute string.
    [[nodiscard]] QString description() const override { return absoluteString(); }

    /// Equal absolute strings.
    friend bool operator==(const URL& a, const URL& b) {
        return a.absoluteString() == b.absoluteString();
    }

  private:
    QString relative_;
    std::shared_ptr<const URL> base_;
};

}  // namespace foundation
