// SPDX-License-Identifier: MIT
//
// The program as scripts use it: each row is a command line for the shell, in a fresh folder.
#include <gmock/gmock.h>
#include <signal.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <filesystem>

#include "cli/program.h"
#include "writers/transcript_writer.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;
using test::Result;

writers::Transcript shortChat(const QString& text) {
    writers::Transcript result{.service = u"AIM"_s, .people = {{u"ann"_s}}};
    result.messages.push_back({.sender = 0, .date = 1000, .body = {writers::words(text)}});
    return result;
}

QByteArray transcript(const QString& text) {
    return writers::keyedTranscript(shortChat(text));
}

QByteArray transcriptWithoutContent() {
    writers::Transcript result{.service = u"AIM"_s, .people = {{u"ann"_s}}};
    result.messages.push_back({.sender = 0});
    return writers::keyedTranscript(result);
}

/// One long text in many messages: 800 times as large when it is written out.
QByteArray transcriptThatExpands() {
    writers::Transcript result{.service = u"AIM"_s, .people = {{u"ann"_s}}};
    result.messages.resize(800, {.sender = 0, .originalText = QString(100'000, u'x')});
    return writers::keyedTranscript(result);
}

/// Two messages, of the last day of a year and of the first of the next.
QByteArray transcriptOfNewYear() {
    writers::Transcript result{.service = u"AIM"_s, .people = {{u"me"_s}, {u"../ann"_s}}};
    result.participants = {1};
    for (const double date : {-9.0, 9.0})
        result.messages.push_back({.sender = 1, .date = date, .body = {writers::words(u"bang"_s)}});
    return writers::keyedTranscript(result);
}

QByteArray transcriptWithFile() {
    writers::Transcript result{.service = u"AIM"_s, .people = {{u"ann"_s}}};
    result.messages.push_back(
        {.sender = 0, .date = 1000, .body = {writers::attached(u"../c t.txt"_s, "meow\n")}});
    return writers::keyedTranscript(result);
}

/// A folder with an empty folder "out" and some files to export.
class Shell : public testing::Test {
  protected:
    void TearDown() override { std::filesystem::remove_all(folder_.path().toStdString()); }

    /// In a folder as new. `v` is the program writing JSON.
    Result run(const char* command) {
        std::filesystem::remove_all(folder_.path().toStdString());
        QDir().mkpath(folder_.filePath(u"out"_s));
        QDir().mkpath(folder_.filePath(u"x"_s));
        const std::pair<const char*, QByteArray> files[] = {
            {"a.ichat", transcript(u"alpha"_s)},
            {"b.ichat", transcript(u"beta"_s)},
            {"x/a.ichat", transcript(u"beta"_s)},
            {"long", transcript(QString(200'000, u'x'))},
            {"warn.ichat", transcriptWithoutContent()},
            {"bad.ichat", "nothing"},
            {"file.ichat", transcriptWithFile()},
            {"new year", transcriptOfNewYear()},
            {"x/expands", expanding_},
            {"non-keyed", writers::nonKeyedTranscript(shortChat(u"alpha"_s))},
            {"x/empty", writers::keyedTranscript({.service = u"AIM"_s})},
            {"old", "old"}};
        for (const auto& [name, bytes] : files)
            test::writeFile(folder_.filePath(QString::fromUtf8(name)), bytes);
        return test::shell(
            "v() { vell-export -f json \"$@\"; }\n"
            "tree() { mkdir -p t/2009; cp a.ichat t/2009; cp b.ichat t; cp b.ichat t/b\n"
            "cp bad.ichat t; echo text > t/text; ln -s .. t/2009/loop; }\n"_ba +
                command,
            folder_.path());
    }

  private:
    const QByteArray expanding_ = transcriptThatExpands();
    QTemporaryDir folder_;
};

TEST_F(Shell, EachCommandDoesWhatItSays) {
    struct Row {
        const char* command;
        int status;
        const char* output;  // <a>, <b>: the documents of these files
        const char* error;   // a part of it; empty: all of it
    };
    static constexpr Row rows[] = {
        // Documents far larger than their files
        {"v -d new x/expands a.ichat; ls new", 0, "a.json\n",
         " MB, out of all proportion to the file (--expand allows it)\n"},
        {"v -f text --expand x/expands | tr -d x | grep -c '^    '", 0, "800\n", ""},
        // Usage
        {"vell-export", 2, "", "vell-export: no file given\n"},
        {"v --colour a.ichat", 2, "", "vell-export: Unknown option 'colour'.\n"},
        {"v -f pdf a.ichat", 2, "", "unknown format: pdf (known: markdown, text, "},
        {"v -v a.ichat", 0, "<a>", "vell-export: a.ichat: 1 message\n"},
        {"vell-export -f csv a.ichat b.ichat | wc -l", 0, "3\n", ""},
        {"v --time-zone CEST a.ichat", 2, "", "unknown time zone: CEST\n"},
        {"v --time-zone Mars/Olympus a.ichat", 2, "", "unknown time zone: Mars/Olympus\n"},
        {"v --time-zone CEST-2 a.ichat", 0, "<a>", ""},
        {"v --time-zone :US/Pacific a.ichat", 0, "<a>", ""},
        {"v --locale german a.ichat", 2, "", "unknown locale: german\n"},
        {"v --locale en_UK a.ichat", 2, "", "unknown locale: en_UK\n"},
        {"v --locale '' a.ichat", 2, "", "unknown locale: \n"},
        {"v --locale sr_RS@latin a.ichat && v --locale C.UTF-8 a.ichat", 0, "<a><a>", ""},
        {"v -o '' a.ichat", 2, "", "the output has no name\n"},
        {"v a.ichat ''", 2, "", "a file has no name\n"},
        {"v -d out -o new a.ichat", 2, "", "exclude each other\n"},
        {"vell-export --version | cut -d' ' -f1", 0, "vell-export\n", ""},
        {"vell-export -h > /dev/full", 1, "", "standard output: No space left on device\n"},
        // Standard streams, pipes and devices
        {"cp a.ichat ./-odd; v ./-odd; v -- -odd; v - < a.ichat", 0, "<a><a><a>", ""},
        {"v a.ichat b.ichat", 0, "<a><b>", ""},
        {"v -o - a.ichat; v --output=/dev/stdout a.ichat", 0, "<a><a>", ""},
        {"echo old > new; v -o /dev/stdout a.ichat >> new; cat new", 0, "old\n<a>", ""},
        {"v -o /dev/fd/3 a.ichat b.ichat 3> new; cat new", 0, "<a><b>", ""},
        {"v -o /dev/null a.ichat b.ichat; test -c /dev/null", 0, "", ""},
        {"mkfifo p; v -o p a.ichat b.ichat & cat p; wait", 0, "<a><b>", ""},
        {"mkfifo p; cat a.ichat > p & v p; wait", 0, "<a>", ""},
        {"vell-export -f txt --locale C a.ichat a.ichat | grep -c '^$'; vell-export -f md a.ichat"
         " | grep -c alpha",
         0, "3\n1\n", ""},
        {"v a.ichat <&-", 0, "<a>", ""},
        {"v x/empty | grep -c newDay; v - < x/empty | grep -c newDay", 1, "1\n0\n", ""},
        {"vell-export -f md a.ichat long | tail -c 3", 0, "xx\n", ""},
        {"v a.ichat >&-", 1, "", "standard output: Bad file descriptor\n"},
        {"mkfifo p; v -o p bad.ichat a.ichat 2>&- & cat p; wait", 0, "<a>", ""},
        {"v < /dev/null -", 1, "", "vell-export: stdin: it is empty\n"},
        {"{ v long; echo $? >&2; } | :", 0, "", "141\n"},
        {"(trap '' PIPE; v long a.ichat; echo $? >&2) | :", 0, "",
         "vell-export: long: standard output: Broken pipe\n1\n"},
        // Files and folders
        {"v -fjson -qo new a.ichat; cat new", 0, "<a>", ""},
        {"v -o new a.ichat b.ichat; ls", 0,
         "a.ichat\nb.ichat\nbad.ichat\nfile.ichat\nlong\nnew year\nnon-keyed\nold\nout\n"
         "warn.ichat\nx\n",
         "new is not a folder; several files need one (--output-dir)\n"},
        {"v -o new a.ichat a.ichat", 2, "", "new is not a folder"},
        {"v -o new/ a.ichat; cat new/a.json", 0, "<a>", ""},
        {"v -d new/er a.ichat; cat new/er/*", 0, "<a>", ""},
        {"cp a.ichat a-2.ichat; cp a.ichat .hid; cp a.ichat b.c.ichat; mkdir new\n"
         "v -o new a.ichat x/a.ichat a-2.ichat .hid b.c.ichat - long < b.ichat; ls -A new",
         0, ".hid.json\na-2-2.json\na-2.json\na.json\nb.c.json\nlong.json\nstdin.json\n", ""},
        {"n=$(printf 'Zo\\351 \\360\\237\\220\\210'); cp a.ichat \"$n.ichat\"; mkdir \"$n\"\n"
         "v -d out \"$n.ichat\" \"$n.ichat\"; v -o \"$n\" a.ichat; ls out; ls \"$n\"",
         0, "Zo\ufffd \U0001f408-2.json\nZo\ufffd \U0001f408.json\na.json\n", ""},
        {"printf 'a.ichat\\0b.ichat\\0' | v --files0-from -", 0, "<a><b>", ""},
        {"printf 'a.ichat\\0b.ichat' > l; v --files0-from=l -d out; ls out", 0, "a.json\nb.json\n",
         ""},
        {"v --files0-from /dev/null", 0, "", ""},
        {"v --files0-from nothing", 2, "", "the list of files can't be read: No such file"},
        {"v --files0-from old a.ichat", 2, "", "files are given as arguments and in a list\n"},
        {"printf '%s\\0' - | v --files0-from -", 2, "", "standard input can't be both"},
        // Folders. `tree` makes one, with a link back, a file that is none and one that lacks its
        // extension.
        {"tree; v -qd out t x/../t/2009/; (cd t && v -qd ../out/dot .); find out -type f | sort", 0,
         "out/2009/a.json\nout/dot/2009/a.json\nout/dot/b-2.json\nout/dot/b.json\n"
         "out/t/2009/a.json\nout/t/b-2.json\nout/t/b.json\n",
         "vell-export: t/bad.ichat: not a transcript, or damaged"},
        {"tree; v -d out t", 1, "",
         "\nConverted          3\nSkipped            0\nFailed             1\n"
         "                   1  not a transcript, or damaged: "},
        {"tree; vell-export -qf csv t | cut -d, -f1 | uniq -c | tr -s ' '; v -o new t", 2,
         " 1 file\n 1 \"t/2009/a.ichat\"\n 1 \"t/b\"\n 1 \"t/b.ichat\"\n",
         "new is not a folder; several files need one"},
        {"tree; rm t/bad.ichat; umask 022; chmod 700 t; chmod 750 t/2009; chmod 600 t/*/a.ichat\n"
         "v -qd out t; cd out; stat -c '%a %n' t t/2009 t/2009/a.json",
         0, "700 t\n750 t/2009\n600 t/2009/a.json\n", ""},
        {"tree; for i in $(seq 60); do cp b.ichat t/$i.ichat; cp t/bad.ichat t/$i-bad.ichat; done\n"
         "cp x/expands t/0.ichat; v -d out t 2>err; taskset -c 0 vell-export -f json "
         "-d one t 2>err1\ndiff -r out one && cmp err err1 && ls out/t | wc -l",
         0, "63\n", ""},
        {"mkfifo p; (sleep 0.3; cat bad.ichat >p) & v -d out p bad.ichat 2>&1 | cut -d: -f2", 0,
         " p\n bad.ichat\n", ""},
        // Going on where an earlier run has ended
        {"tree; rm t/bad.ichat; v -qd out t; rm out/t/b.json; touch t/2009/a.ichat\n"
         "v --update -d out t; v --update -d out -v t; cat out/t/2009/a.json",
         0, "<a>",
         "\nConverted          2\nSkipped            1\nFailed             0\nvell-export: t/2009"},
        {"tree; v -qd out t/2009; cp -p t/2009/a.ichat kept; cp b.ichat t/2009/a.ichat\n"
         "touch -d 2001-01-01 t/2009/a.ichat; v -qd out --update t/2009; cat out/2009/a.json",
         0, "<b>", ""},
        {"v --update a.ichat", 2, "", "--update needs files"},
        // Attachments
        {"chmod 640 file.ichat; mkdir t; cp -p file.ichat t; chmod 700 t; umask 022\n"
         "v -qd out --attachments x/new t; cat x/new/t/file/*; cd x/new; TZ=UTC stat -c '%a %n' t "
         "t/* t/*/*\n"
         "TZ=UTC stat -c %y t/*/* | cut -d. -f1; grep -o 'attachment\":\"[^\"]*' "
         "../../out/t/file.json",
         0,
         "meow\n700 t\n750 t/file\n640 t/file/c t.txt\n2001-01-01 00:16:40\n"
         "attachment\":\"../../x/new/t/file/c t.txt\n",
         ""},
        {"for i in 1 2 3; do v --attachments out file.ichat | grep -o 'attachment\":\"[^\"]*'\n"
         "test $i = 2 || echo MEOW > 'out/file/c t.txt'; done; head out/file/*",
         0,
         "attachment\":\"out/file/c t.txt\nattachment\":\"out/file/2 c t.txt\n"
         "attachment\":\"out/file/2 c t.txt\n==> out/file/2 c t.txt <==\nmeow\n\n"
         "==> out/file/c t.txt <==\nMEOW\n",
         ""},
        {"vell-export -f html --attachments out file.ichat | grep -o 'href=.*[)]'\n"
         "vell-export --attachments out file.ichat | grep File",
         0,
         "href=\"out/file/c%20t.txt\">File: ..c t.txt (5 bytes)\n"
         "[File: ..c t.txt (5 bytes)](<out/file/c%20t.txt>)\n",
         ""},
        {"v -d out --attachments old file.ichat; ls out", 0, "",
         "out/file.json: old/file: the folder can't be created: Not a directory\n"},
        {"vell-export -f html --pictures folder file.ichat", 2, "",
         "pictures in a folder need one"},
        // Merging
        {"mkdir t; cp a.ichat b.ichat bad.ichat 'new year' t; cp 'new year' t/again; cp a.ichat "
         "t/a2\n"
         "chmod 600 t/a.ichat; v --merge --time-zone UTC -d out t 2>err; grep ed err\n"
         "cd out; find . -type f | sort; grep -c bang ann/*; grep -o 'alpha\\|beta' */2001.json\n"
         "stat -c %a ann-2/2001.json",
         0,
         "vell-export: t/bad.ichat: not a transcript, or damaged: incomprehensible archive (0x6e, "
         "0x6f, 0x74, 0x68, 0x69, 0x6e, 0x67, 0x0)\n"
         "Converted          3\nSkipped            0\nFailed             1\n"
         "                   1  not a transcript, or damaged: incomprehensible archive (0x6e, "
         "0x6f, "
         "0x74, 0x68, 0x69, 0x6e, 0x67, 0x0)\n"
         "./ann-2/2001.json\n./ann/2000.json\n./ann/2001.json\nann/2000.json:1\nann/2001.json:1\n"
         "ann-2/2001.json:alpha\nann-2/2001.json:beta\n600\n",
         ""},
        {"v --merge a.ichat", 2, "", "--merge and --index need a folder"},
        {"v --merge --update -d out a.ichat", 2, "", "--force, not --update"},
        {"v --index -d out a.ichat", 2, "", "--index leads to pages"},
        {"echo old > out/index.html; cp a.ichat index.ichat\n"
         "vell-export -f html --index -d out index.ichat; ls out; vell-export -qf html --force "
         "--index "
         "-d out index.ichat; ls out; vell-export -f html --update --index -d out index.ichat\n"
         "grep -o 'href=\"[^#].*\">' out/index.html",
         0, "index.html\nindex-2.html\nindex.html\nhref=\"index-2.html#day-2001-01-01\">\n",
         "vell-export: out/index.html: the file exists"},
        // Reports
        {"tree; umask 022; v -qd out --report r t 2>&-; cat r; stat -c %a r; ls -A | grep -c vell",
         1,
         "{\"files\":[\n"
         "{\"file\":\"t/2009/a.ichat\",\"document\":\"out/t/2009/a.json\",\"result\":\"converted\","
         "\"messages\":1},\n"
         "{\"file\":\"t/b\",\"document\":\"out/t/"
         "b.json\",\"result\":\"converted\",\"messages\":1},\n"
         "{\"file\":\"t/b.ichat\",\"document\":\"out/t/b-2.json\",\"result\":\"converted\","
         "\"messages\":1},\n"
         "{\"file\":\"t/bad.ichat\",\"document\":\"out/t/bad.json\",\"result\":\"failed\","
         "\"reason\":\"not a transcript, or damaged: incomprehensible archive (0x6e, 0x6f, 0x74, "
         "0x68, "
         "0x69, 0x6e, 0x67, 0x0)\"}\n"
         "],\"converted\":3,\"skipped\":0,\"failed\":1,\"messages\":3}\n600\n0\n",
         ""},
        {"v --report no/such a.ichat", 1, "", "vell-export: no/such: No such file or directory\n"},
        // Checking
        {"tree; mkdir t/x; cp b.ichat t/x; head -c 300 a.ichat >t/cut.ichat; :>t/none.ichat\n"
         "cp t/cut.ichat t/x; cp warn.ichat t; cp t/text t/x/text.ichat; cp a.ichat \"$(printf "
         "'t/\\tz')\"\n"
         "cp t/text t/2009; vell-export --check t",
         5,
         "fine\tt/ z\t1 message\nduplicate\tt/2009/a.ichat\tt/ z\n"
         "fine\tt/b\t1 message\nduplicate\tt/b.ichat\tt/b\n"
         "not-a-transcript\tt/bad.ichat\tit begins like no archive\n"
         "damaged\tt/cut.ichat\tat its end, byte 300, is no table of objects: cut short or "
         "overwritten\ndamaged\tt/none.ichat\tit is empty\n"
         "fine\tt/warn.ichat\t1 message, 1 warning\n"
         "duplicate\tt/x/b.ichat\tt/b\ndamaged\tt/x/cut.ichat\tat its end, byte 300, is no table "
         "of objects: cut short or overwritten\n"
         "not-a-transcript\tt/x/text.ichat\tit begins like no archive\n",
         ""},
        {"c() { vell-export --check \"$@\"; echo $?; }; c -q a.ichat; c -q a.ichat a.ichat "
         "bad.ichat\n"
         "c old - a.ichat < b.ichat; head -c 99 a.ichat >y.ichat; c -q y.ichat; c -q nothing "
         "bad.ichat",
         0,
         "0\nduplicate\ta.ichat\ta.ichat\nnot-a-transcript\tbad.ichat\tit begins like no "
         "archive\n4\n"
         "not-a-transcript\told\tit begins like no archive\nfine\tstdin\t1 "
         "message\nfine\ta.ichat\t1 message\n4\n"
         "damaged\ty.ichat\tat its end, byte 99, is no table of objects: cut short or "
         "overwritten\n5\nunreadable\tnothing\tNo such file or "
         "directory\nnot-a-transcript\tbad.ichat\tit begins like no archive\n1\n",
         ""},
        {"poke() { cp a.ichat p; printf '\\377' | dd of=p bs=1 seek=$1 conv=notrunc 2>&-; "
         "vell-export "
         "--check p; }\n"
         "size=$(stat -c %s a.ichat); poke 9; poke $((size - 40)); poke $((size - 20))\n"
         "vell-export --check non-keyed; head -c 200 non-keyed > p; vell-export --check p",
         5,
         "damaged\tp\tobject 0 is overwritten, at byte 8\n"
         "damaged\tp\tits table of objects is overwritten at byte 872, of object 105\n"
         "damaged\tp\tat its end, byte 912, is no table of objects: cut short or overwritten\n"
         "fine\tnon-keyed\t1 message\ndamaged\tp\tit can't be read on after byte 200\n",
         ""},
        {"v --check a.ichat", 2, "", "--check writes no documents, so --format means nothing\n"},
        {"vell-export --check a.ichat > /dev/full", 1, "",
         "standard output: No space left on device\n"},
        // Recovering: the file ends inside the table behind its last object
        {"head -c -40 a.ichat >cut.ichat; r() { vell-export -q --recover -d out \"$@\" 2>e; echo "
         "$?; "
         "}\n"
         "r --report report cut.ichat b.ichat; cut -c 1-57 e; grep -o "
         "'[a-z]*ed\",\"messages\":[0-9]' "
         "report\n"
         "grep -c 'Recovered 1 of about 1 message;' out/cut.md out/b.md; r --force bad.ichat "
         "cut.ichat",
         0,
         "3\nvell-export: cut.ichat: Recovered 1 of about 1 message; t\n"
         "recovered\",\"messages\":2\nconverted\",\"messages\":1\nout/cut.md:1\nout/b.md:0\n1\n",
         ""},
        {"head -c -40 a.ichat >cut.ichat; v --recover --merge -d out --report r cut.ichat b.ichat "
         "2>&-\n"
         "echo $?; grep -o 'result.*' r",
         0, "3\nresult\":\"recovered\",\"messages\":3}\n", ""},
        // Failures
        {"v -d out bad.ichat nothing a.ichat; ls out", 0, "a.json\n",
         "vell-export: nothing: No such file or directory\n"},
        {"v bad.ichat", 1, "", ": not a transcript, or damaged: incomprehensible archive ("},
        {"n=$(printf 'bad\\nna\\033me'); cp bad.ichat \"$n\"; v \"$n\"", 1, "",
         "vell-export: bad na me: not a tr"},
        {"v -o no/such a.ichat", 1, "", "a.ichat: no/such: No such file or directory\n"},
        {"v -d old a.ichat", 2, "", "old is not a folder\n"},
        {"v -d old/new a.ichat", 1, "", "old/new: the folder can't be created: Not a directory\n"},
        {"v -o $(printf %0300d 0) a.ichat", 1, "", "0: File name too long\n"},
        {"n=$(printf %0255d 0); cp a.ichat $n; v -d out $n; ls -A out", 0, "",
         "0.json: File name too long\n"},
        {"v -o old a.ichat; cat old", 0, "old", "old: the file exists (--force replaces it)\n"},
        {"v --force -o old a.ichat; cat old; ls -A | grep -c vell-export", 1, "<a>0\n", ""},
        {"cp a.ichat a.json; v --force -d . a.json; v --force -o a.json a.json; cmp a.ichat a.json",
         0, "", "a.json: it is a transcript, which is never replaced\n"},
        {"cp a.ichat c; v c >> c; cmp a.ichat c", 0, "", "standard output: it is a transcript"},
        {"ln -s ../old out/a.json; chmod 600 a.ichat; v --force -d out a.ichat\n"
         "cat old out/a.json; stat -c %a out/a.json",
         0, "old<a>600\n", ""},
        {"mkdir out/a.json; v --force -d out a.ichat", 1, "", "it is not a regular file\n"},
        {"v long a.ichat > /dev/full", 1, "",
         "vell-export: long: standard output: No space left on device\n"},
        {"ulimit -f 8; v -d out long a.ichat; echo $?; ls -A out; cat out/*", 0, "1\na.json\n<a>",
         "vell-export: long: out/long.json: File too large\n"},
        // Permissions
        {"chmod 640 a.ichat; v -o new a.ichat; v -o 2 - < a.ichat; stat -c %a new 2", 0,
         "640\n640\n", ""},
        {"chmod 755 a.ichat; umask 077; v -o new a.ichat; cat a.ichat | v -o 2 -\n"
         "stat -c %a new 2",
         0, "644\n600\n", ""},
        {"chmod 604 old; chmod 600 a.ichat; v --force -o old a.ichat; stat -c %a old", 0, "604\n",
         ""},
        // Diagnostics
        {"v warn.ichat >/dev/null", 0, "", "\nWARN: Found no content in message: <Message: ann"},
        {"v a.ichat warn.ichat >/dev/null", 0, "", "\nwarn.ichat: WARN: Found no content in"},
        {"v -q warn.ichat a.ichat >/dev/null", 0, "", ""},
        {"v -q nothing", 1, "", "\nvell-export: nothing: No"},
        {"v --load-log a.ichat", 0, "<a>", ""},
        {"v --load-log nothing", 1, "",
         "\n---\n\n\nFailed to load the raw file into memory.\nNo such file or directory\n"},
        {"ln -s bad.ichat link.ichat; v --load-log link.ichat", 1, "",
         "\nOpening new file [name not exposed]:\n  not-a-dir\n  FILE\n  not-a-symlink\n"
         "  wrapper has filename\n  Extension: .ichat\n---\n\n\n"
         "### Attempt to load from data w/ size: 7\n\n"},
        {"ln -s nowhere link; v --load-log link", 1, "", "  not-a-file\n  SYMLINK\n"},
        {"truncate -s 200G new; v new a.ichat", 1, "<a>", "vell-export: new: it is larger than "},
        {"truncate -s 200G new; v --load-log new 2>&1 | tail -n 1 | cut -d ' ' -f 1-4", 0,
         "it is larger than\n", ""},
        {"v /dev/zero", 1, "", "vell-export: /dev/zero: it is a device, not a file\n"},
#if !defined(__SANITIZE_ADDRESS__)
        {"head -c 400M /dev/zero | (ulimit -v 700000; v -)", 1, "", "vell-export: stdin: "},
        // Where files can't be without a name
        {"strace -qqfo /dev/null -P out -e inject=openat:error=EOPNOTSUPP vell-export -f json -d "
         "out "
         "a.ichat 2>&-; cat out/*; ls -A out",
         0, "<a>a.json\n", ""},
#endif
    };
    const QByteArray a = run("v a.ichat").output;
    const QByteArray b = run("v b.ichat").output;
    EXPECT_TRUE(a.startsWith("{\"schema\":1,") && a.endsWith("]}\n"));
    EXPECT_TRUE(a.contains("\"alpha\"") && b.contains("\"beta\""));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.command);
        const Result result = run(row.command);
        EXPECT_EQ(result.status, row.status);
        EXPECT_EQ(result.output.toStdString(),
                  QByteArray(row.output).replace("<a>", a).replace("<b>", b).toStdString());
        const std::string error = '\n' + result.error.toStdString();
        if (*row.error == '\0')
            EXPECT_EQ(error, "\n");
        else
            EXPECT_THAT(error, testing::HasSubstr(row.error));
    }
}

/// Whether the program has a file open in the folder that isn't the one it reads.
bool isWriting(const QProcess& process, const QString& folder, const QString& input) {
    const QDir descriptors(u"/proc/%1/fd"_s.arg(process.processId()));
    const auto entries = descriptors.entryInfoList(QDir::Files | QDir::System);
    return std::any_of(entries.begin(), entries.end(), [&](const QFileInfo& entry) {
        const QString target = entry.symLinkTarget();
        return target.startsWith(folder + u'/') && target != folder + u'/' + input;
    });
}

TEST(Signals, LeaveNoTemporaryFileBehind) {
    const QTemporaryDir folder;
    // Quotation marks make writing take long enough to be interrupted.
    test::writeFile(folder.filePath(u"many"_s), transcript(u"x\""_s.repeated(500'000)));
    const auto entries = [&folder] {
        return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    };
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        QProcess process;
        process.setWorkingDirectory(folder.path());
        process.start(QStringLiteral(VELL_EXPORT), {u"-fjson"_s, u"-onew"_s, u"many"_s});
        bool isInterrupted = false;
        while (!isInterrupted && !process.waitForFinished(1))
            isInterrupted = isWriting(process, folder.path(), u"many"_s);
        EXPECT_TRUE(isInterrupted);
        ::kill(static_cast<pid_t>(process.processId()), signal);
        process.waitForFinished();
        EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
        EXPECT_EQ(process.exitCode(), signal);
        EXPECT_EQ(entries(), QStringList{u"many"_s});
    }
    // As below nohup.
    QProcess process;
    process.setWorkingDirectory(folder.path());
    process.start(u"sh"_s, {u"-c"_s, u"trap '' HUP; exec \"$0\" -f json -o new many"_s,
                            QStringLiteral(VELL_EXPORT)});
    while (!isWriting(process, folder.path(), u"many"_s) && !process.waitForFinished(1)) {
    }
    ::kill(static_cast<pid_t>(process.processId()), SIGHUP);
    process.waitForFinished();
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(entries(), (QStringList{u"many"_s, u"new"_s}));
}

TEST(Signals, RunsGoOnAfterBeingKilled) {
    const QTemporaryDir folder;
    QDir(folder.path()).mkdir(u"t"_s);
    constexpr int count = 30;
    for (int i = 0; i < count; ++i)
        test::writeFile(folder.filePath(u"t/%1"_s.arg(i)), transcript(u"x\""_s.repeated(100'000)));
    const QDir documents(folder.filePath(u"out/t"_s));
    const auto entries = [&documents] {
        return documents.entryList(QDir::Files | QDir::Hidden, QDir::Name);
    };
    QProcess process;
    process.setWorkingDirectory(folder.path());
    process.start(QStringLiteral(VELL_EXPORT), {u"-qfjson"_s, u"-dout"_s, u"t"_s});
    while (entries().size() < 5 && !process.waitForFinished(1)) {
    }
    process.kill();
    process.waitForFinished();
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    const auto written = entries();
    EXPECT_LT(written.size(), count);
    for (const QString& name : written) {
        EXPECT_FALSE(name.startsWith(u'.'));
        EXPECT_TRUE(test::readFile(documents.filePath(name)).endsWith("]}\n"));
    }
    const Result rest = test::shell("vell-export -f json --update -d out t", folder.path());
    EXPECT_EQ(rest.error,
              u"Converted%1\nSkipped  %2\nFailed             0\n"_s.arg(count - written.size(), 11)
                  .arg(written.size(), 11));
    EXPECT_EQ(entries().size(), count);
}

}  // namespace
}  // namespace vell
