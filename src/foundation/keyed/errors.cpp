// SPDX-License-Identifier: MIT
#include "foundation/keyed/errors.h"

#include <QString>
#include <QStringList>

#include "foundation/printable.h"

namespace foundation::keyed {
namespace {

/// What an error shows of an unknown class's name.
constexpr qsizetype longestName = 200;

Error corrupt(const QString& text) {
    return coderError(CoderErrorCode::readCorrupt, text);
}

Error unreadable(const QString& reason) {
    return corrupt(QStringLiteral("*** -[NSKeyedUnarchiver _initForReadingFromData:error:"
                                  "throwLegacyExceptions:]: ") +
                   reason);
}

QString text(std::string_view key) {
    return QString::fromUtf8(key.data(), qsizetype(key.size()));
}

}  // namespace

Error emptyDataError() {
    return unreadable(QStringLiteral(
        "data is empty; did you forget to send -finishEncoding to the NSKeyedArchiver?"));
}

Error nonKeyedArchiveError() {
    return unreadable(QStringLiteral("non-keyed archive cannot be decoded by NSKeyedUnarchiver"));
}

Error incomprehensibleArchiveError(const Data& data) {
    QStringList bytes;
    for (qsizetype i = 0; i < 8; ++i) {
        // Printed as a signed char that was widened: 0xe7 shows as 0xffffffe7.
        const int byte = i < data.size() ? static_cast<signed char>(data.begin()[i]) : 0;
        bytes.append(QStringLiteral("0x") + QString::number(static_cast<uint>(byte), 16));
    }
    return unreadable(QStringLiteral("incomprehensible archive (%1)").arg(bytes.join(u", ")));
}

Error missingKeyError(std::string_view key) {
    return coderError(CoderErrorCode::valueNotFound,
                      QStringLiteral("requested key: '%1'").arg(text(key)));
}

Error missingClassInformationError() {
    return corrupt(QStringLiteral("missing class information for object"));
}

Error unknownClassError(QByteArrayView className, std::string_view key) {
    const QString name = printable(QString::fromUtf8(className), longestName);
    return corrupt(QStringLiteral("*** -[NSKeyedUnarchiver decodeObjectForKey:]: cannot decode "
                                  "object of class (%1) for key (%2) because no class named \"%1\" "
                                  "was found; the class needs to be defined in source code or "
                                  "linked in from a library (ensure the class is part of the "
                                  "correct target). If the class was renamed, use "
                                  "setClassName:forClass: to add a class translation mapping to "
                                  "NSKeyedUnarchiver")
                       .arg(name, text(key)));
}

Error unexpectedClassError(const ClassInfo& info, std::string_view key,
                           std::span<const ClassInfo* const> allowedClasses) {
    QStringList allowed;
    for (const ClassInfo* each : allowedClasses)
        allowed.append(QStringLiteral("    \"'%1'\"").arg(QString::fromUtf8(each->name)));
    return corrupt(QStringLiteral("value for key '%1' was of unexpected class '%2'.\n"
                                  "Allowed classes are:\n {(\n%3\n)}")
                       .arg(text(key), QString::fromUtf8(info.name), allowed.join(u",\n")));
}

Error insecureClassError(const ClassInfo& info) {
    return corrupt(QStringLiteral("This decoder will only decode classes that adopt "
                                  "NSSecureCoding. Class '%1' does not adopt it.")
                       .arg(QString::fromUtf8(info.name)));
}

Error brokenValueError(std::string_view key) {
    return corrupt(
        QStringLiteral("*** -[NSKeyedUnarchiver decodeObjectForKey:]: the archive has no "
                       "readable value for key (%1)")
            .arg(text(key)));
}

Error excessError(const char* what) {
    return corrupt(QStringLiteral("*** -[NSKeyedUnarchiver decodeObjectForKey:]: the archive has "
                                  "more %1 than its size can hold")
                       .arg(QString::fromLatin1(what)));
}

}  // namespace foundation::keyed
