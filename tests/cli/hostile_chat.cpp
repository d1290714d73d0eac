// SPDX-License-Identifier: MIT
//
// hostile_chat FILE: writes a transcript whose names, texts, titles, addresses and file names try
// to be something else in every format: markup, formulas, quotation marks, line breaks.
// hostile_chat FILE MESSAGES [non-keyed]: so many messages of that kind, some of each year, and
// n00000n, n00001n … at their starts.
#include <QFile>

#include "writers/transcript_writer.h"

using namespace Qt::StringLiterals;

namespace {

const QStringList hostile{
    u"<script>alert(1)</script>"_s,
    u"\"><img src=x onerror=alert(1)>"_s,
    u"' onmouseover='alert(1)"_s,
    u"</style></title></textarea><svg onload=alert(1)>"_s,
    u"<!-- --><![CDATA[ ]]><?php ?>&amp;&lt;&#60;&notanentity;&"_s,
    u"<a href=\"javascript:alert(1)\">x</a>"_s,
    u"=1+1"_s,
    u"+cmd|' /C calc'!A0"_s,
    u"-2+3"_s,
    u"@SUM(A1)"_s,
    u"'=already"_s,
    u" \t=HYPERLINK(\"http://evil.example\")"_s,
    u"\uff1d1+1"_s,
    u"\uff20SUM(A1)"_s,
    u"\u200b=1+1"_s,
    u"a,b;c\td\"e\"\"f\"\r\ng\rh\ni"_s,
    u"\"\n\",\"\n"_s,
    u"עברית <b>מודגש</b> \"ציטוט\" ‮evil‬"_s,
    u"العربية <script>تنبيه</script> & ١٢٣"_s,
    u"中文<iframe src=//evil.example></iframe>，“引号”"_s,
    u"ไทย हिन्दी 한국어 кириллица ελληνικά"_s,
    u"\U0001f468\u200d\U0001f469\u200d\U0001f467 \U0001f1e9\U0001f1ea e\u0301"_s,
    u"\u2028\u2029\u0085\u000b\u000c\u001b[31m\u0007"_s,
    u"  two blanks  "_s,
    u"{{constructor.constructor('alert(1)')()}} ${alert(1)} `x`"_s,
};

const QStringList addresses{
    u"javascript:alert(1)"_s,
    u"JaVaScRiPt:alert(1)"_s,
    u"\u0001javascript:alert(1)"_s,
    u"java\nscript:alert(1)"_s,
    u"vbscript:msgbox(1)"_s,
    u"data:text/html,<script>1</script>"_s,
    u"file:///etc/passwd"_s,
    u"//evil.example/x"_s,
    u"relative.html"_s,
    u"http://a.example/\"><b>"_s,
    u"http://a.example/?a=1&b=2&copy=3"_s,
    u"https://b.example/ü ö"_s,
    u"mailto:ann@example.org"_s,
    u"xmpp:bob@example.org"_s,
};

writers::Transcript emptyChat() {
    writers::Transcript chat{.service = u"<AIM>&\""_s, .people = {}, .participants = {1}};
    for (const QString& name : hostile)
        chat.people.push_back({name});
    return chat;
}

writers::Transcript everythingHostile() {
    writers::Transcript chat = emptyChat();
    const QByteArray png = QByteArray::fromBase64(
        "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAIAAACQd1PeAAAADElEQVR4nGP4n2YMAAQAAZnapz5oAAAAAElF"
        "TkSuQmCC");
    const QByteArray svg =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" "
        "height=\"9\"><script>alert(1)</script>"
        "<image href=\"http://evil.example/x.png\"/></svg>";
    double time = 268433445;  // the second message is of the next day
    std::size_t sender = 0;
    const auto add = [&](std::vector<writers::Piece> body) {
        time += 7000;
        chat.messages.push_back(
            {.sender = sender++ % chat.people.size(), .date = time, .body = std::move(body)});
    };
    for (const QString& text : hostile) {
        add({writers::words(text)});
        add({writers::words(text), writers::linked(text, u"http://a.example/"_s),
             writers::words(text)});
        add({writers::attached(text + u".png"_s, png), writers::words(text)});
        add({writers::attached(text, svg), writers::attached(text, "no picture"),
             writers::words(text)});
        chat.messages.push_back({.date = time, .body = {writers::words(text)}});
    }
    add({writers::attached(u"large.svg"_s, svg + QByteArray(100'000, ' '))});
    for (const QString& address : addresses) {
        add({writers::linked(address, address)});
        add({writers::linked(u"title"_s, address)});
    }
    return chat;
}

std::vector<writers::Piece> numberedBody(int number) {
    const QString mark = u"n%1n"_s.arg(number, 5, 10, '0'_L1);
    const QString& text = hostile[number % hostile.size()];
    if (number % 1000 == 999) return {writers::words(mark + u"\nmore"_s.repeated(300))};
    switch (number % 5) {
        case 0:
            return {writers::attached(mark + u".txt"_s, "no picture")};
        case 1:
            return {writers::linked(mark + text, u"http://a.example/"_s), writers::words(text)};
        case 2:
            return {writers::words(mark), writers::attached(u"a"_s, "b"), writers::words(text)};
        default:
            return {writers::words(mark + u"\n\n"_s + text + u"\n\n"_s + text)};
    }
}

writers::Transcript numbered(int messages) {
    writers::Transcript chat = emptyChat();
    constexpr int messagesInAYear = 4000;
    constexpr double year = 365.0 * 86'400;
    for (int i = 0; i < messages; ++i) {
        writers::Message message{.date = 268405445 + 25.0 * i + i / messagesInAYear * year,
                                 .body = numberedBody(i)};
        if (i % 7 > 0) message.sender = static_cast<std::size_t>(i / 3 % hostile.size());
        chat.messages.push_back(std::move(message));
    }
    return chat;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    const auto chat = argc > 2 ? numbered(QByteArray(argv[2]).toInt()) : everythingHostile();
    const auto bytes =
        argc > 3 ? writers::nonKeyedTranscript(chat) : writers::keyedTranscript(chat);
    QFile file(QString::fromLocal8Bit(argv[1]));
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? 0 : 1;
}
