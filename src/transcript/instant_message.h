#pragma once
// SPDX-License-Identifier: MIT
//
// InstantMessage: one message as archived. Two messages are the same only when they are the same
// object.

#include <QString>
#include <memory>
#include <optional>

#include "foundation/attributed_string.h"
#include "foundation/coder.h"
#include "transcript/presentity.h"

namespace vell {

class InstantMessage final : public foundation::Object {
  public:
    explicit InstantMessage(std::optional<foundation::Date> date,
                            std::optional<QString> original = std::nullopt,
                            std::shared_ptr<const foundation::AttributedString> message = nullptr,
                            bool isRead = true,
                            std::shared_ptr<const foundation::Set> participantIds = nullptr,
                            std::shared_ptr<const Presentity> sender = nullptr,
                            std::shared_ptr<const Presentity> subject = nullptr, quint32 flags = 0);
    /// Reads either archive form; what is missing or of another type is left at its default.
    static foundation::Value initWithCoder(foundation::Coder& coder);

    std::optional<foundation::Date> date;                         ///< when it was sent
    std::optional<QString> originalMessage;                       ///< the plain text as typed
    std::shared_ptr<const foundation::AttributedString> message;  ///< the formatted body
    std::shared_ptr<const Presentity> sender;
    std::shared_ptr<const Presentity> subject;  ///< the addressee
    std::shared_ptr<const foundation::Set> participantIds;
    std::optional<quint32> archivedObject;  ///< its number in the archive
    quint32 flags = 0;                      ///< carried, not interpreted
    bool isRead = true;

    [[nodiscard]] QByteArray className() const override { return "InstantMessage"; }
    /// "<Message: alice "hi" date=… read>" with what is present.
    [[nodiscard]] QString description() const override;
};

}  // namespace vell
