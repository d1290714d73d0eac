// SPDX-License-Identifier: MIT
//
// What pages say by their classes, pictures and languages, and what an index counts.
#include <gmock/gmock.h>

#include <QImage>
#include <QRegularExpression>

#include "export/archive_index.h"
#include "export/format.h"
#include "export/html.h"
#include "export/log_builder.h"
#include "export/plain_lines.h"
#include "identity/contacts/contacts_store.h"

using namespace Qt::StringLiterals;

namespace vell::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const foundation::Calendar& calendar() {
    static const foundation::Calendar current = foundation::Calendar::current();
    return current;
}

QByteArray document(const char* format, DocumentSource source) {
    QByteArray all;
    findFormat(QString::fromLatin1(format))->write(source, [&](QByteArrayView bytes) {
        all += bytes;
    });
    return all;
}

QByteArray page(const TesselChatLog& log, const ContactsStore& contacts = ContactsStore(),
                const QByteArray& locale = "C") {
    const FormatContext context(calendar(), locale, contacts);
    return document("html", {.log = log, .context = context, .file = u"a.b.ichat"_s});
}

/// All that the first group of an expression matches.
QStringList found(const QByteArray& in, const QString& expression) {
    QStringList all;
    for (const auto& match : QRegularExpression(expression).globalMatch(QString::fromUtf8(in)))
        all.append(match.captured(1));
    return all;
}

/// The log of somebody who wrote as "me" and as "old".
TesselChatLog merged() {
    const TesselChatLog log = LogBuilder()
                                  .text(u"old"_s, u"1"_s)
                                  .user(u"old"_s)
                                  .text(u"bob"_s, u"2"_s)
                                  .newMinute()
                                  .text(u"bob"_s, u"3"_s)
                                  .user(u"bob"_s)
                                  .text(u"me"_s, u"4"_s)
                                  .text(u"eve"_s, u"5"_s)
                                  .log();
    return {
        log.serviceID(), log.ownUserID(), {}, log.events(), {}, {{TesselServiceID::aim, u"old"_s}}};
}

TEST(HtmlPage, ClassesSayWhoseAMessageIsAndWhetherItEndsARun) {
    EXPECT_THAT(
        found(page(merged()), u"<article class=\"message ([^\"]*)\""_s),
        ElementsAre(u"c0 u0 own last"_s, u"c1 u1"_s, u"c1 u1 last"_s, u"c0 u2 own"_s, u"c5 u3"_s));
}

TEST(HtmlPage, TitleLanguageDirectionAndTimesAreTheReaders) {
    const QByteArray english = page(merged());
    EXPECT_THAT(english.toStdString(), HasSubstr("<html lang=\"en\" dir=\"ltr\">"));
    EXPECT_THAT(english.toStdString(), HasSubstr("<title>a.b</title>"));
    EXPECT_EQ(english.count(" datetime=\"2001-01-01T00:00:00.000Z\""), 6);
    EXPECT_THAT(page(merged(), ContactsStore(), "he_IL").toStdString(),
                HasSubstr("<html lang=\"he\" dir=\"rtl\">"));
}

TEST(HtmlPage, CrowdsHaveFewerPicturesThanPeopleAndContactsTheirOwn) {
    LogBuilder crowd;
    for (int i = 0; i < 300; ++i)
        crowd.text(u"user %1"_s.arg(i), u"hello"_s);
    EXPECT_EQ(page(crowd.log()).count("background-image"), 200);
    QImage red(9, 9, QImage::Format_RGB32);
    red.fill(Qt::red);
    const ContactsStore contacts({{u"bob"_s, {u"1"_s, u"bob"_s, u"Bob"_s, std::nullopt, red}}});
    const QStringList pictures = found(page(merged(), contacts), u"png;base64,([^)]*)"_s);
    ASSERT_EQ(pictures.size(), 4);
    EXPECT_EQ(QImage::fromData(QByteArray::fromBase64(pictures[1].toLatin1())).pixelColor(4, 4),
              QColor(Qt::red));
}

TEST(HtmlPage, OnlyPicturesThatBrowsersKnowAndThatAreWantedAreShown) {
    const ContactsStore contacts;
    const FormatContext context(calendar(), "C", contacts);
    const auto written = [&](foundation::PictureFormat format, Pictures pictures, bool isTurned) {
        const foundation::Data data("bytes");
        const foundation::Picture picture{data, format, QSize(3, 4), {{.isTurned = isTurned}}};
        const TesselChatLog log = LogBuilder().log().withEvents(
            {{1, {0}, {}, TesselChatLog::Image(picture, data, u"public.image"_s, u"p"_s)}}, {});
        return found(document("html", {.log = log,
                                       .context = context,
                                       .file = {},
                                       .attachments = {{1, u"f/p"_s}},
                                       .pictures = pictures}),
                     u"<img alt=\"p\" ([^>]*)>"_s)
            .join(u'|');
    };
    using Format = foundation::PictureFormat;
    EXPECT_EQ(written(Format::png, Pictures::embed, false),
              u"width=\"3\" height=\"4\" src=\"data:image/png;base64,Ynl0ZXM=\""_s);
    EXPECT_EQ(written(Format::png, Pictures::folder, true), u"src=\"f/p\""_s);
    EXPECT_EQ(written(Format::png, Pictures::none, false), u""_s);
    EXPECT_EQ(written(Format::tiff, Pictures::embed, false), u""_s);
    EXPECT_EQ(written(Format::tiff, Pictures::folder, false), u""_s);
}

TEST(ArchiveIndex, CountsEverybodysMessagesByMonthAndKnowsThoseWhoOnlyWrote) {
    const ContactsStore contacts;
    const FormatContext context(calendar(), "C", contacts);
    EXPECT_EQ(partnersIn(merged(), contacts).names, u"bob, eve"_s);
    EXPECT_EQ(partnersIn(LogBuilder().text(u"me"_s, u"note"_s).log(), contacts).names, u"me"_s);
    const auto entry = [](const QString& name, const QString& file, int year, qint64 messages) {
        IndexEntry entry{file, {name, name}, {}};
        entry.months[{year, year > 0 ? 3 : 0}] = {messages, year > 0 ? 7 : 0, u"a"_s};
        return entry;
    };
    QByteArray index;
    writeArchiveIndex({entry(u"few"_s, u"1"_s, 0, 2), entry(u"many"_s, u"2"_s, 2009, 30),
                       entry(u"many"_s, u"3"_s, 2009, 1500)},
                      context, [&](QByteArrayView bytes) { index += bytes; });
    EXPECT_THAT(found(index, u"<li><a[^>]*>([^<]*)</a>"_s), ElementsAre(u"many"_s, u"few"_s));
    EXPECT_THAT(found(index, u"<summary>([^<]*)"_s), ElementsAre(u"1,530"_s));
    EXPECT_THAT(found(index, u"<td><a href=\"([^\"]*)"_s), ElementsAre(u"1#a"_s));
}

TEST(Formats, NamesOfFilesAndFurtherOwnersAreInTheJson) {
    auto wrapper = std::make_shared<foundation::FileWrapper>(foundation::Data("x"));
    wrapper->preferredFilename = u"preferred"_s;
    const TesselChatLog log = merged().withEvents({{1, {0}, {}, TesselChatLog::File{wrapper}}}, {});
    const ContactsStore contacts;
    const FormatContext context(calendar(), "C", contacts);
    const QByteArray json = document("json", {.log = log, .context = context, .file = {}});
    EXPECT_THAT(json.toStdString(), HasSubstr("\"furtherOwnUserIDs\":[{"));
    EXPECT_THAT(json.toStdString(), HasSubstr("\"fileName\":\"preferred\""));
    wrapper->preferredFilename.reset();
    const QByteArray text = document("text", {.log = log, .context = context, .file = {}});
    EXPECT_THAT(text.toStdString(), HasSubstr("[File: unnamed (1 byte)]"));
}

TEST(Clipboard, LinksThatAreNotSafeAreTextAndNothingPrecedesTheFirstDay) {
    QByteArray html, lines;
    const ContactsStore contacts;
    const TesselChatLog log = LogBuilder()
                                  .newDay()
                                  .link(u"bob"_s, u"javascript:alert(1)"_s, u"x"_s)
                                  .link(u"bob"_s, u"https://a/"_s, u"y"_s)
                                  .log();
    writeHtml(log, contacts, [&](QByteArrayView bytes) { html += bytes; });
    writePlainLines(log, contacts, [&](QByteArrayView bytes) { lines += bytes; });
    EXPECT_THAT(found(html, u"href=\"([^\"]*)"_s), ElementsAre(u"https://a/"_s));
    EXPECT_THAT(lines.toStdString(), testing::StartsWith("Jan 1, 2001"));
    EXPECT_THAT(lines.toStdString(), HasSubstr(": x (javascript:alert(1))\n"));
}

}  // namespace
}  // namespace vell::test
