#pragma once
// SPDX-License-Identifier: MIT
//
// Presentity: a participant as archived, an account and, if known, its service. To compare
// people use TesselUserID.

#include <QString>
#include <optional>

#include "foundation/coder.h"

namespace vell {

class Presentity final : public foundation::Object {
  public:
    explicit Presentity(QString accountName, std::optional<QString> service = std::nullopt)
        : accountName(std::move(accountName)), serviceName(std::move(service)) {}
    /// Reads either archive form; what is missing or of another type is left at its default.
    static foundation::Value initWithCoder(foundation::Coder& coder);

    /// Screen name, e-mail address or phone number; empty when not archived.
    QString accountName;
    std::optional<QString> serviceName;

    [[nodiscard]] QByteArray className() const override { return "Presentity"; }
    /// "<Presentity: alice service=AIM>".
    [[nodiscard]] QString description() const override;
};

}  // namespace vell
