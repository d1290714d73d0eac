#pragma once
// SPDX-License-Identifier: MIT
//
// URL: an address as archived, base and relative text kept apart. Nothing is normalised, decoded or
// re-encoded.

#include <QString>
#include <memory>

#include "foundation/value.h"

namespace foundation {

class URL final : public Object {
  public:
    explicit URL(QString relative, std::shared_ptr<const URL> base = nullptr)
        : relative_(std::move(relative)),
          base_(std::move(base)),
          absolute_(base_ ? resolved(relative_, *base_) : relative_) {}
    /// With the result of resolved() for both, so that many addresses can share it.
    URL(QString relative, std::shared_ptr<const URL> base, QString absolute)
        : relative_(std::move(relative)), base_(std::move(base)), absolute_(std::move(absolute)) {}

    [[nodiscard]] const QString& relative() const { return relative_; }
    [[nodiscard]] const std::shared_ptr<const URL>& base() const { return base_; }
    /// The relative text resolved against the base (RFC 3986, section 5.2; nothing re-encoded);
    /// without a base the relative text itself.
    [[nodiscard]] const QString& absoluteString() const { return absolute_; }
    /// The absolute string of a relative text and a base; at most one unit longer than
    /// the relative text and the base's absolute string together.
    [[nodiscard]] static QString resolved(const QString& relative, const URL& base);

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
    QString absolute_;
};

}  // namespace foundation
