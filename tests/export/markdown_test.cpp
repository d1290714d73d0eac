// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "export/commonmark.h"
#include "export/log_builder.h"
#include "export/markdown.h"
#include "identity/contacts/contacts_store.h"

using namespace Qt::StringLiterals;

namespace vell::test {
namespace {

std::string markdown(const LogBuilder& builder) {
    return generatePlainText(builder.log(), ContactsStore()).toStdString();
}

std::string day(double seconds) {
    return daySeparatorFormatter().string({seconds}).toStdString();
}

std::string time(double seconds) {
    return timeSeparatorFormatter().string({seconds}).toStdString();
}

TEST(Markdown, WholeTranscript) {
    LogBuilder log;
    log.newDay().text(u"bob"_s, u"Hi,\nare you there?"_s).wait(5).text(u"bob"_s, u"Hello?"_s);
    log.wait(60).user(u"bob"_s).newMinute().text(u"me"_s, u"Yes!"_s).wait(5).text(u"me"_s, u""_s);
    log.wait(5).text(u"me"_s, u"1. Sure."_s).wait(5).user(u"me"_s);
    log.system(u"User has left the chat."_s).system(u""_s).text(u"bob"_s, u""_s);
    EXPECT_EQ(markdown(log), "\n# " + day(0) +
                                 "\n"
                                 "\n*bob:*\n> Hi,\\\n> are you there?\n"
                                 "\n> Hello?\n"
                                 "\n*me:*\n"
                                 "\n### " +
                                 time(65) +
                                 "\n"
                                 "\nYes!\n"
                                 "\n1\\. Sure.\n"
                                 "\n---\n_User has left the chat._\n---\n\n"
                                 "\n---\n_<!-- -->_\n---\n\n"
                                 "\n*bob:*\n>\n");
}

TEST(Markdown, NothingIsWrittenBeforeTheFirstEventAndForMarkersAlone) {
    EXPECT_EQ(markdown(LogBuilder()), "");
    LogBuilder log;
    log.user(u"me"_s).system(u"x"_s).user(u"me"_s);
    EXPECT_EQ(markdown(log), "\n---\n_x_\n---\n\n");
}

TEST(Markdown, ASystemMessageHasItsRulesForAllItsRuns) {
    LogBuilder log;
    log.system(u"see "_s).joined().link({}, u"a:b"_s, u"here"_s).joined().file({}, u"f"_s, "1");
    log.joined().text({}, u""_s);
    log.link({}, u"cc:d"_s, u""_s);
    EXPECT_EQ(markdown(log),
              "\n---\n_see [here](<a:b>)\\\nFile: f (1 byte)_\n---\n\n"
              "\n---\n_<cc:d>_\n---\n\n");
}

TEST(Markdown, RunsOfOneMessageAreOneBody) {
    const struct {
        const char* what;
        LogBuilder log;
        const char* body;
    } rows[] = {
        {"text and links on one line",
         LogBuilder()
             .text(u"b"_s, u"see "_s)
             .joined()
             .link(u"b"_s, u"http://a.b/c_d"_s, u"http://a.b/c_d"_s)
             .joined()
             .text(u"b"_s, u" and "_s)
             .joined()
             .link(u"b"_s, u"page.html"_s, u""_s),
         "> see <http://a.b/c_d> and [page.html](<page.html>)\n"},
        {"an exclamation mark makes no picture of a link",
         LogBuilder().text(u"b"_s, u"wow!"_s).joined().link(u"b"_s, u"x:y"_s, u"t"_s),
         "> wow\\![t](<x:y>)\n"},
        {"pictures by name, with or without a path",
         LogBuilder()
             .image(u"b"_s, u"~/My Pictures/cat.png"_s)
             .joined()
             .text(u"b"_s, u"\n"_s)
             .joined()
             .image(u"b"_s, std::nullopt),
         "> ![cat.png](<~/My Pictures/cat.png>)\\\n> ![picture.png](<picture.png>)\n"},
        {"a file is on its own line",
         LogBuilder()
             .text(u"b"_s, u"here: "_s)
             .joined()
             .file(u"b"_s, u"a*b.pdf"_s, "1234")
             .joined()
             .text(u"b"_s, u"ok"_s),
         "> here:&#32;\\\n> File: a\\*b.pdf (4 bytes)\\\n> ok\n"},
        {"events at one instant are separate messages",
         LogBuilder().text(u"b"_s, u"one"_s).link(u"b"_s, u"xx:y"_s, u""_s).image(u"b"_s, u"z"_s),
         "> one\n\n> <xx:y>\n\n> ![z](<z>)\n"},
        {"adjacent texts of one message are escaped as one",
         LogBuilder()
             .text(u"b"_s, u"1"_s)
             .joined()
             .text(u"b"_s, u". x&am"_s)
             .joined()
             .text(u"b"_s, u"p;"_s),
         "> 1\\. x\\&amp;\n"},
        {"a message without any character",
         LogBuilder().text(u"b"_s, u""_s).joined().text(u"b"_s, u""_s), ">\n"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(markdown(row.log), std::string("\n*b:*\n") + row.body) << row.what;
    }
}

TEST(Markdown, AddressesThatFitNoAutolinkAreSpelledOut) {
    const struct {
        QString address;
        const char* link;
    } rows[] = {
        {u"http://a/b c"_s, "[http://a/b c](<http://a/b c>)"},
        {u"http://a/<b>\\"_s, "[http://a/\\<b>\\\\](<http://a/\\<b\\>\\\\>)"},
        {u"http://a/\n\u2028"_s, "[http://a/\\\n> &#8232;](<http://a/%0A%E2%80%A8>)"},
        {u"http://a/?b&lt;"_s, "[http://a/?b\\&lt;](<http://a/?b&amp;lt;>)"},
        {u"http://a/?b&lt=c"_s, "<http://a/?b&lt=c>"},
        {u" x:y "_s, "[ x:y ](<%20x:y%20>)"},
        {u"1x:y"_s, "[1x:y](<1x:y>)"},
        {u"\u00e4x:y"_s, "[\u00e4x:y](<\u00e4x:y>)"},
        {u"http://a/\u00e4"_s, "<http://a/\u00e4>"},
        {u""_s, "[](<>)"},
    };
    for (const auto& row : rows) {
        LogBuilder log;
        log.link(u"b"_s, row.address, u""_s);
        EXPECT_EQ(markdown(log), std::string("\n*b:*\n> ") + row.link + "\n");
    }
}

TEST(Markdown, SendersOfOneNameAreSeparate) {
    ContactsStore contacts({{u"b1"_s, {u"1"_s, u"b1"_s, u"Bob"_s, std::nullopt}},
                            {u"b2"_s, {u"2"_s, u"b2"_s, u"Robert"_s, u"Bob"_s}}});
    LogBuilder log;
    log.text(u"b1"_s, u"x"_s).user(u"b1"_s).text(u"b2"_s, u"y"_s);
    EXPECT_EQ(generatePlainText(log.log(), contacts), u"\n*Bob:*\n> x\n\n*Bob:*\n> y\n");
}

TEST(Markdown, ControlsAreReferences) {
    // XML can't carry them, so reading them back wouldn't distinguish them.
    LogBuilder log;
    log.text(u"me"_s, u"\v\f\u001b[0m\u0085"_s);
    EXPECT_EQ(markdown(log), "\n*me:*\n\n&#11;&#12;&#27;\\[0m&#133;\n");
}

}  // namespace
}  // namespace vell::test
