#pragma once
// SPDX-License-Identifier: MIT
//
// Presentity: a participant as archived, an account and perhaps the service that it is on. Two
// participants are the same person when both agree; that question belongs to TesselUserID.

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
