// SPDX-License-Identifier: MIT
#include "export/html_style.h"

#include <QBuffer>

#include "identity/contacts/contacts_store.h"
#include "identity/contacts/sender_name.h"
#include "identity/identicons/identicon.h"
#include "toolkit/participant_styles.h"
#include "transcript/chat_log.h"

namespace vell {
namespace {

/// Later senders have no picture, so that a crowd doesn't outweigh its messages.
constexpr int mostPictures = 200;
constexpr qreal pixelsPerPoint = 2;

constexpr char fixedRules[] = R"(
:root{color-scheme:light dark;--ground:#fff;--text:#000;--faint:#737373;--line:#d4d4d4}
@media (prefers-color-scheme:dark){:root{--ground:#1e1e20;--text:#fff;--faint:#9d9d9d;--line:#454547}}
*{box-sizing:border-box}
body{margin:0 auto;padding:0 16px 32px;max-width:800px;background:var(--ground);color:var(--text);font:16px/1.5 "Helvetica Neue",Helvetica,"Noto Sans",Arial,sans-serif;overflow-wrap:anywhere}
header{margin:24px 0 8px;text-align:center}
h1{margin:0;font-size:20px;line-height:1.3}
.minute,.file,.system{color:var(--faint)}
h2{display:flex;align-items:center;gap:8px;margin:20px 0 8px;font-size:13px;line-height:20px;color:var(--faint)}
h2::before,h2::after{content:"";flex:1;border-top:1px solid var(--line)}
.session{margin-top:32px;font-size:16px;color:inherit}
.minute{margin:6px 0;font-size:13px;line-height:20px;text-align:center}
.system{margin:8px 48px;text-align:center;white-space:pre-wrap}
.message{position:relative;display:flex;flex-direction:column;align-items:flex-start;gap:4px;margin:8px 0;padding-inline:46px 12%;scroll-margin-top:16px}
.own{align-items:flex-end;padding-inline:12% 46px}
.message::before{content:"";position:absolute;bottom:0;inset-inline-start:0;width:38px;height:38px;background-size:38px 38px}
.own::before{inset-inline:auto 0}
.last{margin-bottom:14px}
.last::before{bottom:26px}
.label{position:absolute;width:1px;height:1px;margin:0;overflow:hidden;clip-path:inset(50%);white-space:nowrap}
.last .label{position:static;order:1;width:auto;height:22px;margin-inline:-46px;max-width:100%;overflow:hidden;text-overflow:ellipsis;clip-path:none;font-size:12px;line-height:22px}
.label b{font-weight:normal}
.last .label span{position:absolute;width:1px;height:1px;overflow:hidden;clip-path:inset(50%)}
.bubble{position:relative;isolation:isolate;max-width:100%;min-height:40px;margin-inline:4px;padding:8px 18px;border-radius:20px;background:linear-gradient(var(--top),var(--bottom));color:var(--ink);text-shadow:0 1px 1px var(--halo);white-space:pre-wrap;filter:drop-shadow(0 1px 2px rgb(0 0 0/.5))}
.bubble::before{content:"";position:absolute;z-index:-1;inset:0;border-radius:20px;background:linear-gradient(rgb(255 255 255/.6),rgb(255 255 255/.3) 50%,transparent) content-box;padding:2px;box-shadow:inset 0 0 4px 1px rgb(255 255 255/.35)}
.bubble::after{content:"";position:absolute;z-index:-2;bottom:0;left:-4px;width:25px;height:16px;background:var(--bottom);clip-path:path("M5 0A19 19 0 0 0 24 15L25 16C20 16 16 16 11 12C8 15 4 16 0 16C0 16 4 15 4 5V0Z")}
html[dir=rtl] .message:not(.own) .bubble::after,html[dir=ltr] .own .bubble::after{left:auto;right:-4px;transform:scaleX(-1)}
.bubble a{color:inherit}
.picture{padding:6px}
.picture img{display:block;max-width:100%;max-height:75vh;width:auto;height:auto;border-radius:16px}
.file{font-size:13px}
:target .bubble{outline:3px solid Highlight;outline-offset:2px}
@media print{body{max-width:none;padding:0}.message,.system,.picture{break-inside:avoid}h2,.minute{break-after:avoid}.bubble,.message::before{print-color-adjust:exact;-webkit-print-color-adjust:exact}.bubble{filter:none}}
)";

QByteArray cssColor(const QColor& color) {
    return "rgb(" + QByteArray::number(color.red()) + ' ' + QByteArray::number(color.green()) +
           ' ' + QByteArray::number(color.blue()) + '/' +
           QByteArray::number(color.alphaF(), 'g', 2) + ')';
}

QByteArray colorRule(Style::Aqua aqua) {
    const Style::ColorPair& colors = Style::colors(aqua);
    return ".c" + QByteArray::number(static_cast<int>(aqua)) + "{--top:" + cssColor(colors.top) +
           ";--bottom:" + cssColor(colors.bottom) + ";--ink:" + cssColor(Style::textColor(aqua)) +
           ";--halo:" + cssColor(Style::textShadow(aqua).color) + "}\n";
}

}  // namespace

HtmlStyle::HtmlStyle(const TesselChatLog& log, const ContactsStore& contacts) : css_(fixedRules) {
    for (int color = 0; color < Style::aquaCount; ++color)
        css_ += colorRule(static_cast<Style::Aqua>(color));
    std::size_t others = 0;
    for (const TesselChatLog::Event& event : log.events()) {
        if (!event.sender || senders_.contains(event.sender)) continue;
        const int number = static_cast<int>(senders_.size());
        const Style::Aqua color = log.isOwn(event.sender)
                                      ? Style::Aqua::blueberry
                                      : participantStyles[others++ % participantStyles.size()];
        senders_.insert(event.sender, {number, color, senderName(*event.sender, contacts)});
        if (number < mostPictures) addPicture(*event.sender, number, contacts);
    }
}

const HtmlSender& HtmlStyle::sender(const SharedUserID& user) const {
    static const HtmlSender none;
    const auto known = senders_.constFind(user);
    return known == senders_.cend() ? none : *known;
}

void HtmlStyle::addPicture(const TesselUserID& user, int number, const ContactsStore& contacts) {
    std::optional<QImage> picture = contacts.addressToContact().value(user.userID).image;
    if (!picture) picture = Identicon().icon(user.userID, Style::userIconSize, pixelsPerPoint);
    QBuffer png;
    if (!picture || !png.open(QIODevice::WriteOnly) || !picture->save(&png, "PNG")) return;
    css_ += ".u" + QByteArray::number(number) +
            "::before{background-image:url(data:image/png;base64," + png.data().toBase64() + ")}\n";
}

}  // namespace vell
