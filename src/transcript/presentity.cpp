// SPDX-License-Identifier: MIT
#include "transcript/presentity.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

std::optional<QString> stringFrom(const foundation::Value& value) {
    const QString* string = value.string();
    return string ? std::optional(*string) : std::nullopt;
}

}  // namespace

foundation::Value Presentity::initWithCoder(foundation::Coder& coder) {
    std::optional<QString> account;
    std::optional<QString> service;
    if (coder.isKeyed()) {
        account = stringFrom(coder.decodeObject("ID"));
        service = stringFrom(coder.decodeObject("ServiceName"));
    } else {
        service = stringFrom(coder.decodeObject());
        account = stringFrom(coder.decodeObject());
    }
    auto result = std::make_shared<Presentity>(account.value_or(QString()), std::move(service));
    // An e-mail account of this one service carries a marker of its kind in front.
    if (result->serviceName == u"iMessage" && result->accountName.startsWith(u"e:"))
        result->accountName.remove(0, 2);
    return result;
}

QString Presentity::description() const {
    const QString service = serviceName ? u" service="_s + *serviceName : QString();
    return u"<Presentity: "_s + accountName + service + u'>';
}

}  // namespace vell
