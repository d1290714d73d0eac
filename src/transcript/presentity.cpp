// SPDX-License-Identifier: MIT
#include "transcript/presentity.h"

#include "foundation/elided.h"
#include "foundation/print.h"

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
    // An e-mail account of this one service carries a marker of its kind in front.
    if (service == u"iMessage" && account && account->startsWith(u"e:"))
        account = coder.withoutPrefix(*account, 2);
    return std::make_shared<Presentity>(account.value_or(QString()), std::move(service));
}

QString Presentity::description() const {
    const auto part = [](const QString& text) {
        return foundation::elided(text, foundation::longestPrintedLine);
    };
    const QString service = serviceName ? u" service="_s + part(*serviceName) : QString();
    return u"<Presentity: "_s + part(accountName) + service + u'>';
}

}  // namespace vell
