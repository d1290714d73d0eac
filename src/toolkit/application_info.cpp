// SPDX-License-Identifier: MIT
#include "toolkit/application_info.h"

#include <QCoreApplication>
#include <QFile>
#include <QGuiApplication>
#include <cmath>
#include <limits>

#include "foundation/plist/xml_property_list_reader.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

using Reader = foundation::XmlPropertyListReader;
using Token = Reader::Token;

std::optional<qint64> signedInteger(quint64 magnitude, bool isNegative) {
    constexpr auto most = static_cast<quint64>(std::numeric_limits<qint64>::max());
    if (magnitude > most + (isNegative ? 1 : 0)) return std::nullopt;
    return static_cast<qint64>(isNegative ? 0 - magnitude : magnitude);
}

std::optional<qint64> truncated(double real) {
    constexpr double limit = 9223372036854775808.0;  // 2^63
    if (!(real >= -limit && real < limit)) return std::nullopt;
    return static_cast<qint64>(real);
}

foundation::Data embeddedInfo() {
    QFile file(u":/Info.plist"_s);
    return file.open(QFile::ReadOnly) ? foundation::Data(file.readAll()) : foundation::Data();
}

}  // namespace

Bundle::Bundle(const foundation::Data& propertyList) {
    Reader reader(propertyList);
    if (reader.next() != Token::beginDictionary) return;
    QString key;
    int depth = 1;
    for (Token token = reader.next(); token != Token::end; token = reader.next()) {
        if (token == Token::invalid) {
            info_.clear();
            return;
        }
        if (token == Token::beginDictionary || token == Token::beginArray) ++depth;
        if (token == Token::endDictionary || token == Token::endArray) --depth;
        if (depth != 1) continue;
        std::optional<qint64> number;
        if (token == Token::key) key = QString::fromUtf8(reader.text());
        if (token == Token::string) info_.insert(key, QString::fromUtf8(reader.text()));
        if (token == Token::integer || token == Token::boolean)
            number = signedInteger(reader.magnitude(), reader.isNegative());
        if (token == Token::real) number = truncated(reader.real());
        if (number) info_.insert(key, *number);
    }
}

const Bundle& Bundle::main() {
    static const Bundle bundle(embeddedInfo());
    return bundle;
}

std::optional<QString> Bundle::info(const QString& key) const {
    const auto at = info_.find(key);
    if (at == info_.end()) return std::nullopt;
    const auto* text = std::get_if<QString>(&*at);
    return text ? std::optional(*text) : std::nullopt;
}

std::optional<qint64> Bundle::infoInteger(const QString& key) const {
    const auto at = info_.find(key);
    if (at == info_.end()) return std::nullopt;
    if (const auto* number = std::get_if<qint64>(&*at)) return *number;
    const auto& text = std::get<QString>(*at);
    bool isInteger = false;
    const qint64 number = text.toLongLong(&isInteger);
    // Qt's reading passes over white space.
    return isInteger && text == text.trimmed() ? std::optional(number) : std::nullopt;
}

ApplicationInfo::ApplicationInfo(const Bundle& bundle)
    : appName(bundle.info(u"CFBundleName"_s).value_or(QCoreApplication::applicationName())),
      version(bundle.info(u"CFBundleShortVersionString"_s).value_or(u"0.42.0"_s)),
      build(bundle.info(u"CFBundleVersion"_s).value_or(u"1337"_s)),
      copyright(bundle.info(u"NSHumanReadableCopyright"_s)),
      credits(bundle.info(u"InfoPanelCredits"_s)) {
    infoName = bundle.info(u"InfoPanelName"_s).value_or(appName);
}

QIcon ApplicationInfo::icon() {
    return QGuiApplication::windowIcon();
}

ApplicationInfo applicationInfo() {
    return ApplicationInfo(Bundle::main());
}

}  // namespace vell
