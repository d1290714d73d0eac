// SPDX-License-Identifier: MIT
#include "cli/find_options.h"

#include <QCommandLineParser>
#include <filesystem>

#include "foundation/local_path.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

const QString findHelp =
    u"Usage: vell-find [OPTION]… WORD… [-- FOLDER…]\n"
    "Finds messages in all transcripts below the folders, or below the current one.\n"
    "\n"
    "      --from WHO        what this person wrote (part of the account or the name)\n"
    "      --with WHO        in chats with this person\n"
    "      --after DAY       after this day, month or year: 2009-07-14, 2009-07, 2009\n"
    "      --before DAY      before it\n"
    "      --best            the best matches first, not the newest ones\n"
    "  -C, --context N       print N messages before and after each one\n"
    "  -c, --count           print only how many messages there are\n"
    "      --json            print an object a line\n"
    "      --contacts FILE   take the names of people from these vCards; may be repeated\n"
    "      --no-index        read all files, instead of keeping an index of their messages\n"
    "      --version         print the version\n"
    "  -h, --help            print this help\n"
    "\n"
    "All words must be in a message; of the last one the beginning is enough. Case and accents\n"
    "don't matter. Among the words may be: '\"in this order\"', from:WHO, with:WHO, after:DAY,\n"
    "before:DAY, in:DAY, has:picture, has:link, has:file. Exit status: 0 found, 1 nothing found,\n"
    "2 trouble.\n"_s;

struct FindArguments {
    const QCommandLineOption from{u"from"_s, {}, u"WHO"_s};
    const QCommandLineOption with{u"with"_s, {}, u"WHO"_s};
    const QCommandLineOption after{u"after"_s, {}, u"DAY"_s};
    const QCommandLineOption before{u"before"_s, {}, u"DAY"_s};
    const QCommandLineOption best{u"best"_s};
    const QCommandLineOption context{{u"C"_s, u"context"_s}, {}, u"N"_s, u"0"_s};
    const QCommandLineOption count{{u"c"_s, u"count"_s}};
    const QCommandLineOption json{u"json"_s};
    const QCommandLineOption contacts{u"contacts"_s, {}, u"FILE"_s};
    const QCommandLineOption noIndex{u"no-index"_s};
    const QCommandLineOption version{u"version"_s};
    const QCommandLineOption help{{u"h"_s, u"help"_s}};
    QCommandLineParser parser;

    explicit FindArguments(const QStringList& arguments) {
        parser.addOptions({from, with, after, before, best, context, count, json, contacts, noIndex,
                           version, help});
        // The parser takes its first argument for the program's name.
        if (!parser.parse(QStringList(u"vell-find"_s) + arguments))
            throw UsageError{parser.errorText()};
    }
};

Query chosenQuery(const FindArguments& given) {
    try {
        Query query = Query::parse(given.parser.positionalArguments().join(u' '));
        for (const auto* option : {&given.from, &given.with, &given.after, &given.before}) {
            for (const QString& value : given.parser.values(*option))
                query.addFilter(option->names().first(), value);
        }
        if (query.isEmpty()) throw UsageError{u"no word given"_s};
        return query;
    } catch (const QueryError& error) {
        throw UsageError{error.reason};
    }
}

SearchedFolder folderNamed(const QString& name) {
    const QByteArray given = foundation::pathBytes(name);
    std::error_code error;
    const auto canonical = std::filesystem::canonical(given.toStdString(), error);
    if (error) throw UsageError{name + u": "_s + QString::fromStdString(error.message())};
    return {given, canonical.native()};
}

int chosenContext(const FindArguments& given) {
    bool isNumber = false;
    const int context = given.parser.value(given.context).toInt(&isNumber);
    if (!isNumber || context < 0)
        throw UsageError{u"not a number of messages: "_s + given.parser.value(given.context)};
    return context;
}

}  // namespace

FindOptions parseFindOptions(const QStringList& arguments) {
    const qsizetype end = arguments.indexOf(u"--"_s);
    const FindArguments given(arguments.first(end < 0 ? arguments.size() : end));
    const QCommandLineParser& parser = given.parser;
    if (parser.isSet(given.help)) throw Information{findHelp};
    if (parser.isSet(given.version)) throw Information{u"vell-find " VELL_VERSION "\n"_s};
    FindOptions result{
        .query = chosenQuery(given),
        .folders = {},
        .contacts = parser.values(given.contacts),
        .context = chosenContext(given),
        .bestFirst = parser.isSet(given.best),
        .writesJson = parser.isSet(given.json),
        .counts = parser.isSet(given.count),
        .usesIndex = !parser.isSet(given.noIndex),
    };
    const QStringList folders = end < 0 ? QStringList() : arguments.sliced(end + 1);
    for (const QString& folder : folders)
        result.folders.push_back(folderNamed(folder));
    if (folders.isEmpty()) {
        result.folders.push_back(folderNamed(u"."_s));
        result.folders.back().given.clear();
    }
    return result;
}

}  // namespace vell
