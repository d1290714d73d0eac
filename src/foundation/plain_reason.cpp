// SPDX-License-Identifier: MIT
#include "foundation/plain_reason.h"

#include <new>
#include <system_error>

#include "foundation/error.h"

namespace foundation {

using namespace Qt::StringLiterals;

QString plainReason(const std::exception& error) {
    if (dynamic_cast<const std::bad_alloc*>(&error)) return u"there is not enough memory"_s;
    if (const auto* system = dynamic_cast<const std::system_error*>(&error))
        return QString::fromStdString(system->code().message());
    const auto* archive = dynamic_cast<const Error*>(&error);
    if (!archive) return QString::fromUtf8(error.what());
    QString text = archive->debugDescription().isEmpty() ? archive->description()
                                                         : archive->debugDescription();
    const bool isUnreadable = archive->code() == static_cast<qint64>(CoderErrorCode::readCorrupt) ||
                              archive->code() == static_cast<qint64>(CoderErrorCode::valueNotFound);
    if (!isUnreadable) return text;
    // The name of the platform's function in front means nothing to users.
    const auto prefix = text.startsWith(u"*** -[") ? text.indexOf(u"]: ") : -1;
    return u"not a transcript, or damaged: "_s + (prefix < 0 ? text : text.mid(prefix + 3));
}

}  // namespace foundation
