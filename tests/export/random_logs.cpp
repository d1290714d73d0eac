// SPDX-License-Identifier: MIT
#include "export/random_logs.h"

#include <QStringList>

#include "export/log_builder.h"

namespace vell::test {

using namespace Qt::StringLiterals;

namespace {

/// Separated by "§".
const QStringList fragments =
    u"hello§two words§*§**bold**§_§__§_it_§a_b§`§``code``§```§~~~§~~gone~~§\\§\\\\§[§]§"
    u"[a](b)§[a]: b§![x](y)§!§<§<b>§<!-- x -->§</pre>§<http://a.b>§&§&amp;§&copy§&#65;§"
    u"&notanentity;§#§# one§###### six§+§+ plus§- minus§---§===§=§> quote§>§1. one§1)§"
    u"12345678901. x§2009.§|§| a | b |\n|---|---|§:-)§http://example.org/a_b_c§"
    u"me@example.org§\t§    four§ §  §\u00a0§\u3000§\u2003x§\n§\n\n§\r\n§\r§\r\r\n§\v§\f§"
    u"\u0085§\u2028§\u2029§\u001b[31m§\u0001§\u007f§\ufeff§\u200b§\u202e§\U0001F600§"
    u"e\u0301§\u05d0\u05d1§$x$§www.example.org§:§\u00e4"_s.split(u'§');

/// The halves of a pair, and NUL.
const QList<QChar> oddUnits{QChar(0xD83D), QChar(0xDE00), QChar(u'\0')};

int below(std::mt19937& random, int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
}

QString nasty(std::mt19937& random) {
    QString text;
    for (int count = below(random, 6); count > 0; --count) {
        const auto pick = below(random, static_cast<int>(fragments.size() + oddUnits.size()));
        text +=
            pick < fragments.size() ? fragments[pick] : QString(oddUnits[pick - fragments.size()]);
    }
    return text;
}

bool fitsXml(char16_t unit) {
    return unit >= 0x20 || unit == u'\t' || unit == u'\n';
}

/// What a reader has to find for this text.
QString asRead(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isPair =
            text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair) {
            ++i;
        } else if (text[i].isSurrogate() || !fitsXml(text[i].unicode())) {
            text[i] = QChar::ReplacementCharacter;
        }
    }
    return text;
}

QString headingAsRead(const QString& name) {
    QString text = name;
    text.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    return asRead(text.replace(u'\r', u' ').replace(u'\n', u' ').trimmed());
}

/// A random body of one message: a text, or a text, a link and a text; texts may come in two
/// pieces.
void addBody(std::mt19937& random, LogBuilder& builder, const Sender& sender, Block& block) {
    const auto addText = [&] {
        const QString text = nasty(random);
        const auto half = below(random, static_cast<int>(text.size()) + 1);
        builder.text(sender, text.left(half));
        if (half < text.size()) builder.joined().text(sender, text.mid(half));
        block.text += asRead(text);
    };
    addText();
    if (below(random, 3) > 0) return;
    QString address = QStringLiteral("http://example.org/?a=") + QString::number(random());
    if (below(random, 2) == 0) address += QStringLiteral("&b=<c>&amp;\\d(e)f g*_`[]");
    const QString title = nasty(random);
    builder.joined().link(sender, address, title).joined();
    block.text += asRead(title.isEmpty() ? address : title);
    block.destinations += address;
    addText();
}

}  // namespace

ExpectedLog nastyLog(std::mt19937& random) {
    LogBuilder builder;
    ContactsStore::Table contacts;
    std::vector<Block> blocks;
    const Sender senders[] = {QStringLiteral("me"), QStringLiteral("bob"), nasty(random) + u'x'};
    const QString nick = nasty(random) + u'.';
    contacts.insert(senders[1], {QStringLiteral("1"), senders[1], QStringLiteral("Bob"), nick});
    const auto nameOf = [&](const Sender& s) { return s == senders[1] ? nick : s; };
    Sender headed;
    Sender previous;
    for (int count = 2 + below(random, 8); count > 0; --count) {
        builder.wait(1);
        const bool isSystem = below(random, 4) == 0;
        const Sender sender = isSystem ? Sender() : senders[below(random, 3)];
        if (!previous.isEmpty() && sender != previous) {
            builder.user(previous);
            headed.clear();
        }
        previous = sender;
        Block block;
        if (isSystem) {
            block.kind = Block::Kind::system;
            addBody(random, builder, {}, block);
            blocks.push_back({Block::Kind::rule, {}, {}});
            blocks.push_back(block);
            headed.clear();
            continue;
        }
        if (headed != sender) {
            blocks.push_back({Block::Kind::senderHeading, headingAsRead(nameOf(sender)), {}});
        }
        headed = sender;
        const bool isOwn = sender == senders[0];
        block.kind = isOwn ? Block::Kind::paragraph : Block::Kind::quote;
        addBody(random, builder, sender, block);
        const bool isNothing = block.text.isEmpty() && block.destinations.isEmpty();
        if (!isOwn || !isNothing) blocks.push_back(block);
    }
    return {builder.log(), contacts, blocks};
}

ExpectedLog disorderlyLog(std::mt19937& random) {
    LogBuilder builder;
    std::vector<Block> blocks;
    const Sender senders[] = {QStringLiteral("me"), QStringLiteral("bob"), QStringLiteral("eve")};
    for (int count = 5 + below(random, 30); count > 0; --count) {
        const Sender sender = senders[below(random, 3)];
        const QString number = QString::number(count);
        if (below(random, 3) > 0) builder.wait(1);
        switch (below(random, 9)) {
            case 0:
                builder.newDay();
                break;
            case 1:
                builder.newMinute();
                break;
            case 2:
                builder.user(sender);
                break;
            case 3:
                builder.system(u'/' + number);
                blocks.push_back({Block::Kind::system, u'/' + number, {}});
                break;
            case 4:
                builder.link({}, QStringLiteral("a:b"), u'/' + number);
                blocks.push_back({Block::Kind::system, u'/' + number, {QStringLiteral("a:b")}});
                break;
            default:
                builder.text(sender, sender + u'/' + number);
                blocks.push_back(
                    {sender == senders[0] ? Block::Kind::paragraph : Block::Kind::quote,
                     sender + u'/' + number,
                     {}});
        }
    }
    return {builder.log(), {}, blocks};
}

}  // namespace vell::test
