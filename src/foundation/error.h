#pragma once
// SPDX-License-Identifier: MIT
//
// The platform's error value: a domain, a code and a text for people who debug. It is thrown where
// bytes turn out to be malformed and is what the load log prints.

#include <QString>
#include <exception>
#include <string>
#include <utility>
#include <vector>

namespace foundation {

/// Codes of the domain "NSCocoaErrorDomain" that readers report.
enum class CoderErrorCode : qint64 { readCorrupt = 4864, valueNotFound = 4865 };

class Error : public std::exception {
  public:
    Error(QString domain, qint64 code, QString debugDescription = {},
          std::vector<Error> underlyingErrors = {})
        : domain_(std::move(domain)),
          code_(code),
          debugDescription_(std::move(debugDescription)),
          underlyingErrors_(std::move(underlyingErrors)) {}

    [[nodiscard]] const QString& domain() const { return domain_; }
    [[nodiscard]] qint64 code() const { return code_; }
    [[nodiscard]] const QString& debugDescription() const { return debugDescription_; }
    [[nodiscard]] const std::vector<Error>& underlyingErrors() const { return underlyingErrors_; }
    /// `Error Domain=D Code=N "TEXT" UserInfo={NSDebugDescription=TEXT}`, or with "(null)" and no
    /// user info when there is no text.
    [[nodiscard]] QString description() const;
    /// description() as UTF-8.
    [[nodiscard]] const char* what() const noexcept override;

  private:
    QString domain_;
    qint64 code_;
    QString debugDescription_;
    std::vector<Error> underlyingErrors_;
    mutable std::string what_;
};

/// An error of the archive readers, in "NSCocoaErrorDomain".
[[nodiscard]] Error coderError(CoderErrorCode code, QString debugDescription);

}  // namespace foundation
