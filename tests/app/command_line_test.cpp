// SPDX-License-Identifier: MIT
#include "app/command_line.h"

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;
using vell::CommandLine;

TEST(CommandLine, FilesArePathsOrAddresses) {
    const QStringList paths[] = {{u"a.ichat"_s, u"/home/a.ichat"_s},
                                 {u"../b#%20.ichat"_s, u"/b#%20.ichat"_s},
                                 {u"/c//d"_s, u"/c/d"_s},
                                 {u"-"_s, u"-"_s},
                                 {u"FILE:///e%20f"_s, u"/e f"_s}};
    for (const QStringList& path : paths)
        EXPECT_EQ(vell::argumentPath(path[0], u"/home"_s), path[1]);
}

TEST(CommandLine, MistakesExitWithTwo) {
    const auto parse = [](const QStringList& arguments) {
        return CommandLine::parse(QStringList{u"vell"_s} + arguments);
    };
    for (const QStringList& arguments : {QStringList{u"--nonsense"_s},
                                         {u"--render"_s, u"x.png"_s},
                                         {u"--render"_s, u"x.png"_s, u"a"_s, u"b"_s}})
        EXPECT_EQ(parse(arguments).reply.value().exitCode, 2) << arguments.join(u' ').toStdString();
    EXPECT_EQ(parse({u"--help"_s}).reply.value().exitCode, 0);
    const CommandLine line = parse({u"--new-instance"_s, u"--dark"_s, u"--"_s, u"--help"_s});
    EXPECT_FALSE(line.reply);
    EXPECT_TRUE(line.newInstance && line.isDark && !line.renderTarget);
    EXPECT_EQ(line.files, QStringList{u"--help"_s});
}

}  // namespace
