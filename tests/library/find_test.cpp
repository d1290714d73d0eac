// SPDX-License-Identifier: MIT
//
// vell-find as people and scripts use it: each row is a command line in a folder with two chats.
#include <gtest/gtest.h>

#include <QProcess>

#include "library/fixture.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;

struct Case {
    const char* command;  // f is the program
    int status;
    const char* output;
    const char* error = "";  // is part of what it said; nothing is said if empty
};

const char bothPlums[] =
    "ann:2001-01-01 00:02 ann: red plum\n"
    "ben:2001-01-01 00:00 ben: blue plum\n";

const Case cases[] = {
    {"f plum", 0, bothPlums},
    {"f --no-index plum", 0, bothPlums},
    {"f plum -- .", 0,
     "./ann:2001-01-01 00:02 ann: red plum\n./ben:2001-01-01 00:00 ben: blue plum\n"},
    {"f plum -- ben ann", 0, bothPlums},
    {"f plum -- ben", 0, "ben:2001-01-01 00:00 ben: blue plum\n"},
    {"f --from ann -c re", 0, "2\n"},
    {"f -c --with ben plum", 0, "1\n"},
    {"f -c --before 2001 plum", 1, "0\n"},
    {"f -c --after 2000 plum from:ben", 0, "1\n"},
    {"f grape", 1, ""},
    {"f -C1 green", 0,
     "ann-2001-01-01 00:00 ann- red apple\n"
     "ann:2001-01-01 00:01 ann: green pear\n"
     "ann-2001-01-01 00:02 ann- red plum\n"},
    {"f -C1 red", 0,
     "ann:2001-01-01 00:00 ann: red apple\n"
     "ann-2001-01-01 00:01 ann- green pear\n"
     "ann:2001-01-01 00:02 ann: red plum\n"},
    {"f --json 'apple ' | sed 's/\"sequence\":[0-9]*/S/'", 0,
     R"({"path":"ann",S,"timestamp":"2001-01-01T00:00:00.000Z","sender":{"serviceID":"AIM",)"
     R"("userID":"ann"},"kind":"plainText","text":"red apple"})"
     "\n"},
    {"f --best apple", 0,
     "ann:2001-01-01 00:00 ann: red apple\n"
     "ben:2001-01-01 00:01 ben: applet\n"},
    {"f --contacts people.vcf -c --from Annabel plum", 0, "1\n"},
    {"join ben eve && f -c --from eve plum", 0, "1\n"},
    {"join ben eve && f -c --no-index --with eve plum", 0, "1\n"},
    {"join eve carl; f --contacts people.vcf -c --from carl plum", 0, "1\n"},
    {"join eve carl; f -c --from carl plum", 1, "0\n"},
    {"f", 2, "", "no word given"},
    {"f --after never plum", 2, "", "not a day, month or year: never"},
    {"f plum -- missing", 2, "", "missing: No such file or directory"},
    {"f plum > /dev/full", 2, "", "standard output: "},
};

/// What the library's window does with two addresses.
const char join[] =
    "join() { mkdir -p \"$XDG_CONFIG_HOME/quillmark\"\n"
    "printf '[Library]\\nAliases=joined AIM:%s AIM:%s\\n' $* "
    "> \"$XDG_CONFIG_HOME/quillmark/vell.conf\"; }\n";

TEST(Find, WorksAsInAShell) {
    const test::Fixture fixture;
    fixture.chat(u"ann"_s, {u"red apple"_s, u"green pear"_s, u"red plum"_s});
    fixture.chat(u"ben"_s, {u"blue plum"_s, u"applet"_s});
    fixture.write(u"broken.ichat"_s, "nothing");
    fixture.write(
        u"people.vcf"_s,
        "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Annabel\r\nX-AIM:ann\r\nX-AIM:eve\r\nEND:VCARD\r\n");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"XDG_CACHE_HOME"_s, fixture.place.path());
    environment.insert(u"XDG_CONFIG_HOME"_s, fixture.place.path());
    environment.insert(u"TZ"_s, u"UTC"_s);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.command);
        QProcess shell;
        shell.setProcessEnvironment(environment);
        shell.setWorkingDirectory(QString::fromStdString(fixture.chats));
        shell.start(u"/bin/sh"_s,
                    {u"-c"_s, u"f() { '"_s + QStringLiteral(VELL_FIND) + u"' \"$@\"; }\n"_s +
                                  QLatin1String(join) + QString::fromLatin1(c.command)});
        ASSERT_TRUE(shell.waitForFinished());
        EXPECT_EQ(shell.exitCode(), c.status);
        EXPECT_EQ(shell.readAllStandardOutput().toStdString(), c.output);
        const QByteArray error = shell.readAllStandardError();
        EXPECT_TRUE(*c.error ? error.contains(c.error) : error.isEmpty()) << error.toStdString();
    }
}

}  // namespace
}  // namespace vell
