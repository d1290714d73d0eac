// SPDX-License-Identifier: MIT
#include "export/terminal_text.h"

#include <gtest/gtest.h>

#include "export/log_builder.h"
#include "identity/contacts/contacts_store.h"
#include "toolkit/date_formatters.h"

using namespace Qt::StringLiterals;

namespace vell::test {
namespace {

std::string terminalText(const LogBuilder& builder) {
    std::string text;
    writeTerminalText(builder.log(), ContactsStore(), [&text](QByteArrayView bytes) {
        text.append(bytes.data(), std::size_t(bytes.size()));
    });
    return text;
}

TEST(TerminalText, ShowsNamesTimesAndIndentedMessages) {
    LogBuilder log;
    log.newDay().text(u"bob"_s, u"Hi,\r\n\nare you there?"_s).wait(5).text(u"bob"_s, u"Hello?"_s);
    log.wait(60).user(u"bob"_s).newMinute().text(u"me"_s, u"see "_s);
    log.joined().link(u"me"_s, u"http://a.b"_s, u"this"_s).file(u"me"_s, u"a.pdf"_s, "1");
    log.joined().image(u"me"_s, u"/tmp/cat.png"_s).joined().text(u"me"_s, u"\nn\u2067o"_s);
    log.wait(60).newMinute().text(u"me"_s, u"So."_s).user(u"me"_s).wait(60).newMinute();
    log.system(u"User has left\nthe "_s).joined().link({}, u"a:b"_s, u"chat"_s);
    log.joined().text({}, u"."_s).wait(90000).newMinute().newDay().text(u"bob"_s, u""_s);
    const auto day = [](double at) { return daySeparatorFormatter().string({at}).toStdString(); };
    const auto time = [](double at) { return timeSeparatorFormatter().string({at}).toStdString(); };
    EXPECT_EQ(terminalText(log), day(0) +
                                     "\n"
                                     "\nbob:\n"
                                     "    Hi,\n"
                                     "\n"
                                     "      are you there?\n"
                                     "    Hello?\n"
                                     "\nme (" +
                                     time(65) +
                                     "):\n"
                                     "    see this <http://a.b>\n"
                                     "    [File: a.pdf (1 byte)]\n"
                                     "      [Picture: cat.png, /tmp/cat.png]\n"
                                     "      no\n"
                                     "\nme (" +
                                     time(125) +
                                     "):\n"
                                     "    So.\n"
                                     "\n* User has left\n"
                                     "  the chat <a:b>. (" +
                                     time(185) +
                                     ")\n"
                                     "\n\n" +
                                     day(90185) +
                                     "\n"
                                     "\nbob:\n"
                                     "\n");
    EXPECT_EQ(terminalText(LogBuilder()), "");
}

TEST(TerminalText, CannotCommandTheTerminal) {
    LogBuilder log;
    const QString all = [] {
        QString text;
        for (char16_t unit = 0; unit < 0x100; unit++)
            text += unit;
        return text + u"\u2028\u2029\u202a\u202b\u202c\u202d\u202e\u2066\u2067\u2068\u2069"_s +
               QChar(0xD800) + u"\U0001F600"_s + QChar(0xDC00);
    }();
    log.text(all, all).link(u"eve"_s, all, all).image(u"eve"_s, all).file(u"eve"_s, all, "");
    log.system(all);
    const QString text = QString::fromStdString(terminalText(log));
    for (const char32_t point : text.toUcs4()) {
        const bool isControl =
            (point < 0x20 && point != U'\n' && point != U'\t') || (point >= 0x7F && point < 0xA0) ||
            (point >= 0x2028 && point <= 0x202E) || (point >= 0x2066 && point <= 0x2069);
        EXPECT_FALSE(isControl) << static_cast<unsigned>(point);
    }
    EXPECT_TRUE(text.isValidUtf16());
    EXPECT_TRUE(text.contains(u"\u241b"));
    EXPECT_TRUE(text.contains(u"\U0001F600"));
    for (const QString& line : text.split(u'\n')) {
        EXPECT_FALSE(line.endsWith(u"  ")) << line.toStdString();
    }
}

}  // namespace
}  // namespace vell::test
