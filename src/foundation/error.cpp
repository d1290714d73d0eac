// SPDX-License-Identifier: MIT
#include "foundation/error.h"

namespace foundation {

QString Error::description() const {
    const QString head = QStringLiteral("Error Domain=%1 Code=%2 ").arg(domain_).arg(code_);
    if (debugDescription_.isEmpty()) return head + QStringLiteral("\"(null)\"");
    // Joined by hand: the text may hold "%1".
    return head + u'"' + debugDescription_ + QStringLiteral("\" UserInfo={NSDebugDescription=") +
           debugDescription_ + u'}';
}

const char* Error::what() const noexcept {
    if (what_.empty()) what_ = description().toStdString();
    return what_.c_str();
}

Error coderError(CoderErrorCode code, QString debugDescription) {
    return {QStringLiteral("NSCocoaErrorDomain"), static_cast<qint64>(code),
            std::move(debugDescription)};
}

}  // namespace foundation
