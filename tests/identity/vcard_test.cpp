// SPDX-License-Identifier: MIT
//
// Cards as they occur: of three versions, from old address books, damaged and hostile.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

#include "identity/log_lines.h"
#include "identity/vcard/vcard_contacts.h"

namespace {

using namespace vell;
using namespace Qt::StringLiterals;

struct Reading {
    std::string contacts;  ///< one line a contact
    std::string log;
};

std::string summary(const ContactRecord& contact) {
    QString line = contact.name.value_or(QStringLiteral("-"));
    if (!contact.nickname.isEmpty()) line += u'/' + contact.nickname;
    if (!contact.identifier.startsWith(u"file#")) line += " id="_L1 + contact.identifier;
    for (const auto& address : contact.instantMessageAddresses)
        line += " "_L1 + address.service + u'=' + address.userName;
    for (const auto& number : contact.phoneNumbers)
        line += " tel="_L1 + number.stringValue;
    for (const QString& address : contact.emailAddresses)
        line += " mail="_L1 + address;
    for (const QByteArray& photo : contact.thumbnails)
        line += " photo="_L1 + QString::fromLatin1(photo.toHex());
    return line.replace(u'\n', u'|').toStdString();
}

Reading read(std::string_view file) {
    test::LogLines log;
    Reading result;
    readVCards(QByteArray(file.data(), static_cast<qsizetype>(file.size())), QStringLiteral("file"),
               ContactPictures::wanted, log,
               [&](const ContactRecord& contact) { result.contacts += summary(contact) + '\n'; });
    result.log = log.take().join(u'\n').toStdString();
    return result;
}

std::string card(std::string_view version, std::string_view lines) {
    return "BEGIN:VCARD\r\nVERSION:" + std::string(version) + "\r\n" + std::string(lines) +
           "END:VCARD\r\n";
}

std::string utf16(std::u16string_view text, bool bigEndian) {
    std::string bytes;
    for (const char16_t unit : text) {
        const char low = static_cast<char>(unit & 0xff), high = static_cast<char>(unit >> 8);
        bytes += bigEndian ? high : low;
        bytes += bigEndian ? low : high;
    }
    return bytes;
}

std::string repeated(std::string_view text, size_t count) {
    std::string result;
    for (size_t i = 0; i < count; i++)
        result += text;
    return result;
}

struct Row {
    const char* what;
    std::string file;
    std::string contacts;
    std::string log = {};
};

std::string skipped(int line, const char* reason) {
    return "WARN:  Skipped a malformed contact card: file:" + std::to_string(line) + ' ' + reason;
}

void expectRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        const Reading reading = read(row.file);
        EXPECT_EQ(reading.contacts, row.contacts) << row.what;
        EXPECT_EQ(reading.log, row.log) << row.what;
    }
}

TEST(VCard, ReadsWhatAddressBooksWrite) {
    expectRows({
        {"2.1: bare parameters, quoted-printable with soft breaks, a character set",
         card("2.1",
              "N;CHARSET=ISO-8859-1;QUOTED-PRINTABLE:M=FCller;J=F6rg;;Dr.\r\n"
              "NICKNAME;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:J=C3=B6=\r\n"
              "rg=C3=\r\n"
              "=A9=20x\r\n"
              "TEL;CELL;VOICE:+49 170-1\r\n"),
         "Dr. Jörg Müller/Jörgé x tel=+49 170-1\n"},
        {"2.1: bytes of a Cyrillic character set",
         card("2.1", "FN;CHARSET=windows-1251:\xc0\xed\xed\xe0\r\nX-ICQ:12345\r\n"),
         "Анна ICQ=12345\n"},
        {"2.1: multi-byte text whose second byte is a backslash",
         card("2.1", "N;CHARSET=SHIFT_JIS:\x83\x5c;\x94\x5c\r\n"), "能 ソ\n"},
        {"2.1: a picture in indented and in bare lines, ended by an empty line",
         card("2.1", "PHOTO;ENCODING=BASE64;JPEG:\r\n  /9j/\r\n4AAQ\r\nSkZJRg==\r\n\r\nFN:P\r\n"),
         "P photo=ffd8ffe000104a464946\n"},
        {"2.1: folded in front of a space, backslashes that are no escapes",
         card("2.1", "FN:Anna\r\n  C:\\new\\;x\r\n"), "Anna C:\\new;x\n"},
        {"2.1: the card of an agent",
         "BEGIN:VCARD\nVERSION:2.1\nFN:Boss\nAGENT:\nBEGIN:VCARD\nFN:Agent\nTEL:1\nEND:VCARD\n"
         "EMAIL:boss@example.org\nEND:VCARD\n",
         "Boss mail=boss@example.org\n"},
        {"2.1: an agent in the same line",
         card("2.1", "AGENT:BEGIN:VCARD\r\nFN:Agent\r\nEND:VCARD\r\nFN:Boss\r\n"), "Boss\n"},
        {"3.0: groups, escapes, lists, folding inside a character",
         card("3.0",
              "item1.FN:O\\'Hara\\, Se\xc3\r\n \xa1n\\nJr\r\nNICKNAME:,Shay\\,,Other\r\n"
              "item2.TEL;type=CELL;type=pref:(555) 01.00\r\nitem2.X-ABLabel:_$!<Mobile>!$_\r\n"
              "A.B.email;TYPE=INTERNET: sean@example.org \r\nUID:ABC-1\r\n"),
         "O\\'Hara, Seán Jr/Shay, id=ABC-1 tel=(555) 01.00 mail=sean@example.org\n"},
        {"3.0: every property of a messaging service, in order",
         card("3.0",
              "FN:M\nX-AIM;type=HOME:aol user\nX-JABBER:j@x.org\nX-ICQ:1\nX-MSN:m@x.org\n"
              "X-YAHOO:y\nX-SKYPE:live:s\nX-GOOGLE-TALK:g@x.org\nx-aim:\n"),
         "M AIM=aol user Jabber=j@x.org ICQ=1 MSN=m@x.org Yahoo=y Skype=live:s "
         "GoogleTalk=g@x.org\n"},
        {"3.0 and 4.0: messaging addresses as URIs",
         card("3.0",
              "FN:U\r\nitem1.IMPP;X-SERVICE-TYPE=AIM;type=HOME;type=pref:aim:bob%20smith\r\n"
              "IMPP;X-SERVICE-TYPE=\"GoogleTalk\":xmpp:g%40x.org\r\n"
              "IMPP:xmpp:j@x.org/Home?message\r\nIMPP:ymsgr:sendIM?yuri\r\n"
              "IMPP:AIM:goim?screenname=carl&message=hi\r\nIMPP;X-SERVICE-TYPE=QQ:x-apple:77\r\n"
              "IMPP;X-SERVICE-TYPE=Skype:live:dora\r\nIMPP:skype:live:emil?chat\r\nIMPP:\r\n"),
         "U AIM=bob smith GoogleTalk=g@x.org Jabber=j@x.org Yahoo=yuri AIM=carl QQ=77 "
         "Skype=live:dora Skype=live:emil\n"},
        {"4.0: telephone numbers and e-mail as URIs, a data: picture",
         card("4.0",
              "FN:V\r\nTEL;VALUE=uri;TYPE=\"voice,home\":tel:+1-555-555-5555;ext=5\r\n"
              "TEL;VALUE=text:0 30/1\r\nEMAIL:mailto:v%2B1@x.org?subject=hi\r\n"
              "PHOTO:data:image/jpeg;base64,/9j/\r\n 4A==\r\nUID:urn:uuid:1\r\n"),
         "V id=urn:uuid:1 tel=+1-555-555-5555 tel=0 30/1 mail=v+1@x.org photo=ffd8ffe0\n"},
        {"a data: picture with escaped punctuation, one in percent encoding, one elsewhere",
         card("3.0", "FN:A\nPHOTO;VALUE=uri:data:image/png\\;base64\\,iVBO\n") +
             card("4.0", "FN:B\nPHOTO:data:image/png,%89PN\n") +
             card("3.0", "FN:C\nPHOTO;VALUE=URL:http://example.org/c.png\n"),
         "A photo=89504e\nB photo=89504e\nC\n"},
        {"names: from parts, an organisation, a nickname, none",
         card("3.0", "FN:\nN:Public;John;Quinlan;Mr.;Esq.\nTEL:1\n") +
             card("3.0", "ORG:Example\\; Inc.;Unit\nTEL:2\n") +
             card("2.1", "NICKNAME:Nick, the\nTEL:3\n") + card("3.0", "N:;;;;\nTEL:4\n"),
         "Mr. John Quinlan Public Esq. tel=1\nExample; Inc. tel=2\nNick, the/Nick, the tel=3\n"
         "- tel=4\n"},
        {"groups and lists are not people, even when they contain each other",
         card("4.0", "KIND:group\nFN:G\nUID:g\nMEMBER:urn:uuid:h\nEMAIL:g@x.org\n") +
             card("3.0",
                  "X-ADDRESSBOOKSERVER-KIND:group\nFN:H\nUID:h\n"
                  "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:g\n") +
             card("3.0", "FN:L\nX-EVOLUTION-LIST:TRUE\nEMAIL:a@x.org\n") +
             card("4.0", "KIND:individual\nFN:I\n"),
         "I\n"},
        {"UTF-16, big-endian with a mark, beyond the basic plane",
         utf16(u"\ufeffBEGIN:VCARD\r\nVERSION:3.0\r\nFN:Zo\u00eb \U0001f600\r\nEND:VCARD\r\n",
               true),
         "Zoë 😀\n"},
        {"UTF-16, little-endian without a mark",
         utf16(u"BEGIN:VCARD\nFN;CHARSET=UTF-16:Zo\u00eb\nEND:VCARD\n", false), "Zoë\n"},
        {"UTF-16 without a mark, an empty line and small letters first",
         utf16(u"\r\nbegin:vcard\nFN:A\nend:vcard\n", false) +
             utf16(u"BEGIN:VCARD\nFN:B\nEND:VCARD\n", false),
         "A\nB\n"},
        {"UTF-8 with a mark, joined with another such",
         "\xef\xbb\xbf" + card("3.0", "FN:A\n") + "\xef\xbb\xbf" + card("3.0", "FN:B\n"), "A\nB\n"},
        {"services of a program's own, several addresses in one value",
         card("3.0",
              "FN:K\nX-messaging/aim-All:anna b\xee\x80\x80 anna2\nX-messaging/xmpp-All:a@j.org\n"
              "X-messaging/sms-All:5\nX-MS-IMADDRESS:a@m.org\nX-messaging:none\n"),
         "K AIM=anna b AIM=anna2 Jabber=a@j.org =5 =a@m.org\n"},
        {"2.1: addresses folded where they have no space",
         card("2.1", "FN:A\nEMAIL:anna@exam\n ple.org\nX-JABBER:anna@\n  j.org\nX-AIM:an\n na\n"),
         "A Jabber=anna@j.org AIM=an na mail=anna@example.org\n"},
        {"a plus for a space, and one in a number",
         card("3.0",
              "FN:A\nIMPP:aim:goim?screenname=bob+s&message=a+b\nIMPP:aim:bob+smith\n"
              "IMPP:aim:+15551234\nIMPP:xmpp:a+b@x.org\n"),
         "A AIM=bob s AIM=bob smith AIM=+15551234 Jabber=a+b@x.org\n"},
        {"lists in names, where the version knows them",
         card("4.0", "N:Smith\\,Wesson;John;Quinlan,Paul;Dr.,Prof.;Jr.,M.D.\n") +
             card("2.1", "N:Smith, Inc\n"),
         "Dr. Prof. John Quinlan Paul Smith,Wesson Jr. M.D.\nSmith, Inc\n"},
        {"4.0: the most preferred, pictures too; earlier versions don't rank",
         card("4.0",
              "FN:B\nFN;PREF=1:A\nFN;PREF=\"2\":C\nNICKNAME;PREF=9:n\nNICKNAME;PREF=8:m\n"
              "PHOTO:data:,%02\nPHOTO;PREF=1:data:,%01\nPHOTO:data:,%03\n") +
             card("3.0", "FN:B\nFN;PREF=1:A\n"),
         "A/m photo=01 photo=02 photo=03\nB\n"},
        {"line ends of three kinds, spaces after the marks, no end of the last line",
         "begin:vcard \rfn:A\rend:vcard\rBEGIN : VCARD\nFN:B\n\nEND:VCARD\r\nBEGIN:VCARD\r\n"
         "FN:C\r\nEND:VCARD",
         "A\nB\nC\n"},
    });
}

TEST(VCard, SurvivesDamagedAndHostileFiles) {
    const std::string good = card("3.0", "FN:Good\n");
    const std::string megabyte(1 << 20, 'x');
    expectRows({
        {"no card at all", "hello\nworld", ""},
        {"nothing", "", ""},
        {"an end without a begin", "END:VCARD\n" + good, "Good\n"},
        {"no end: the next one begins", "BEGIN:VCARD\nFN:Lost\n" + good, "Good\n",
         skipped(1, "it has no end")},
        {"no end: the file is cut", good + "BEGIN:VCARD\r\nFN:Lost\r\nEND:VCAR", "Good\n",
         skipped(5, "it has no end")},
        {"text between cards", "x\n" + good + "FN:nobody\n" + good, "Good\nGood\n"},
        {"a folded end is no end", "BEGIN:VCARD\nFN:A\n END:VCARD\nEND:VCARD\n", "AEND:VCARD\n"},
        {"a soft break in front of the end", card("2.1", "FN:A\nNOTE;QUOTED-PRINTABLE:x=\n") + good,
         "A\nGood\n"},
        {"invalid quoted-printable", card("2.1", "FN;QUOTED-PRINTABLE:=4=XY=\xff=41=\n"),
         "=4=XY=ÿA\n"},
        {"truncated and dirty base64",
         card("3.0", "FN:A\nPHOTO;ENCODING=b:/9j/4\n") + card("3.0", "FN:B\nPHOTO;ENCODING=b:\n") +
             card("3.0", "FN:C\nPHOTO;ENCODING=b:/*9j/!!4A\n"),
         "A photo=ffd8ff\nB\nC photo=ffd8ffe0\n"},
        {"an unknown character set, a wrong one, none",
         card("2.1", "FN;CHARSET=x-nonsense:Zo\xc3\xab\n") +
             card("2.1", "FN;CHARSET=UTF-8:Zo\xeb \x80\n") + card("3.0", "FN:Zo\xeb\n"),
         "Zoë\nZoë €\nZoë\n"},
        {"NUL bytes", card("3.0", std::string("FN:A\0B\n\0\0\nX-AIM:b\0b\n", 20)), "AB AIM=bb\n"},
        {"quotes that never close",
         card("3.0", "FN:A\nTEL;X=\"a:1\nIMPP;X-SERVICE-TYPE=\"AIM:aim:b\n"), "A AIM=b tel=1\n"},
        {"a colon in quotes, a folded header",
         card("4.0", "FN:A\nTEL;X=\"a:b;c\":1\nTEL;TYPE=\n home\n :2\n"), "A tel=1 tel=2\n"},
        {"lines that are no properties", card("3.0", "FN:A\nnonsense\n:1\n;:2\n.:3\nTEL\nTEL:4\n"),
         "A tel=4\n"},
        {"escapes at the end", card("3.0", "FN:A\\\nN:B\\;C\\\nNICKNAME:D\\\\\n"), "A\\/D\\\n"},
        {"a megabyte of name", card("3.0", "FN:" + megabyte + "\n"), megabyte + "\n"},
        {"endless folding", card("3.0", "FN:A\n" + repeated(" \n", 200000) + " B\n"), "AB\n"},
        {"endless soft breaks", card("2.1", "FN;QUOTED-PRINTABLE:A" + repeated("=\n", 200000)),
         "A\n"},
        {"endless parameters", card("3.0", "FN" + repeated(";X=\"", 200000) + ":A\n"), "A\n"},
        {"endless parts", card("3.0", "N:" + repeated("a;", 200000) + "\n"), "a a a a a\n"},
        {"a line without end outside of cards", repeated(megabyte, 3) + "\n" + good, "Good\n"},
        {"cards within cards within cards",
         "BEGIN:VCARD\nFN:A\n" + repeated("AGENT:\nBEGIN:VCARD\n", 1000) +
             repeated("END:VCARD\n", 1000) + "TEL:1\nEND:VCARD\n" + good,
         "A tel=1\nGood\n"},
    });
}

TEST(VCard, TakesTimeInProportionToTheFile) {
    const auto seconds = [](const std::string& file) {
        const std::clock_t start = std::clock();
        (void)read(file);
        return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    };
    const struct {
        const char* what;
        std::string unit;
    } rows[] = {
        {"old line ends", "BEGIN:VCARD\rFN:A\rTEL:1\rEND:VCARD\r"},
        {"folds", "BEGIN:VCARD\nFN:A\n" + repeated(" b\n", 50) + "END:VCARD\n"},
        {"beginnings", "BEGIN:VCARD\n"},
        {"bare base64", "BEGIN:VCARD\n" + repeated("PHOTO;B:A\nAA\n", 20) + "END:VCARD\n"},
    };
    for (const auto& row : rows) {
        const size_t units = 200000 / row.unit.size();
        const double one = seconds(repeated(row.unit, units));
        const double eight = seconds(repeated(row.unit, 8 * units));
        EXPECT_LT(eight, 16 * one + 0.05) << row.what;
    }
}

TEST(VCard, ReadsRegularFilesOnly) {
    const QTemporaryDir folder;
    test::LogLines log;
    int contacts = 0;
    const auto read = [&](const QString& path) {
        return readVCardFile(path, ContactPictures::unwanted, log, [&](const ContactRecord& one) {
            EXPECT_EQ(one.identifier, path + "#1"_L1);
            EXPECT_TRUE(one.thumbnails.empty()) << "unwanted";
            contacts++;
        });
    };
    EXPECT_EQ(read(folder.path()), u"Not a regular file"_s);
    for (const QByteArray bytes : {"", "hello", "BEGIN:VCARD\nFN:A\n"}) {
        QFile file(folder.filePath(u"no cards.vcf"_s));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
        file.close();
        EXPECT_EQ(read(file.fileName()), u"There is no contact card in it"_s);
    }
    (void)log.take();
    QFile vast(folder.filePath(u"vast.vcf"_s));
    ASSERT_TRUE(vast.open(QIODevice::WriteOnly) && vast.resize(qint64{200} << 30));
    EXPECT_EQ(read(vast.fileName()), u"Too large for an address book"_s);
    EXPECT_TRUE(read(folder.filePath(QStringLiteral("none.vcf"))));
    EXPECT_EQ(contacts, 0);

    QFile file(folder.filePath(QStringLiteral("one.vcf")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(card("3.0", "FN:A\nPHOTO;ENCODING=b:/9j/\n").c_str());
    file.close();
    EXPECT_FALSE(read(file.fileName()));
    EXPECT_EQ(contacts, 1);
    EXPECT_EQ(log.take(), QStringList());
}

}  // namespace
