// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QByteArray>
#include <QCoreApplication>

#include "toolkit/application_info.h"

using namespace Qt::StringLiterals;

namespace vell {
namespace {

Bundle bundle(const char* pairs) {
    return Bundle(QByteArray("<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>") + pairs +
                  "</dict></plist>");
}

TEST(ApplicationInfo, ReadsItsKeys) {
    const ApplicationInfo info(bundle(
        "<key>CFBundleName</key><string>Vell</string>"
        "<key>InfoPanelName</key><string>Vell &amp; Co</string>"
        "<key>CFBundleShortVersionString</key><string>1.2</string>"
        "<key>CFBundleVersion</key><string>77</string>"
        "<key>NSHumanReadableCopyright</key><string>© 2009</string>"
        "<key>InfoPanelCredits</key><string>All</string>"
        "<key>CFBundleDocumentTypes</key><array><dict>"
        "<key>CFBundleName</key><string>of a type, not of the program</string></dict></array>"));
    EXPECT_EQ(info.appName, u"Vell");
    EXPECT_EQ(info.infoName, u"Vell & Co");
    EXPECT_EQ(info.version, u"1.2");
    EXPECT_EQ(info.build, u"77");
    EXPECT_EQ(info.copyright, u"© 2009"_s);
    EXPECT_EQ(info.credits, u"All"_s);
}

TEST(ApplicationInfo, FillsInWhatIsMissingOrNoString) {
    QCoreApplication::setApplicationName(u"process"_s);
    const struct {
        const char* what;
        Bundle bundle;
        const char* name;
    } rows[] = {
        {"empty", bundle(""), "process"},
        {"other types",
         bundle("<key>CFBundleName</key><integer>1</integer><key>InfoPanelName</key><true/>"
                "<key>CFBundleShortVersionString</key><real>1.5</real>"
                "<key>CFBundleVersion</key><array><string>1</string></array>"),
         "process"},
        {"no panel name", bundle("<key>CFBundleName</key><string>Vell</string>"), "Vell"},
        {"malformed", Bundle(QByteArray("<plist><dict><key>CFBundleName</key><string>V</string>")),
         "process"},
        {"no file", Bundle(foundation::Data()), "process"},
    };
    for (const auto& row : rows) {
        const ApplicationInfo info(row.bundle);
        EXPECT_EQ(info.appName, QString::fromUtf8(row.name)) << row.what;
        EXPECT_EQ(info.infoName, info.appName) << row.what;
        EXPECT_EQ(info.version, u"0.42.0") << row.what;
        EXPECT_EQ(info.build, u"1337") << row.what;
        EXPECT_EQ(info.copyright, std::nullopt) << row.what;
        EXPECT_EQ(info.credits, std::nullopt) << row.what;
    }
}

TEST(ApplicationInfo, OfTheProgramIsBuiltIn) {
    const ApplicationInfo info = applicationInfo();
    EXPECT_EQ(info.appName, u"Vell");
    EXPECT_NE(info.version, u"0.42.0");
    EXPECT_NE(info.build, u"1337");
    EXPECT_GE(Bundle::main().infoInteger(u"CFBundleVersion"_s), 1);
}

TEST(Bundle, IntegersAreNumbersOrSpelledOut) {
    const Bundle all = bundle(
        "<key>number</key><integer>-42</integer><key>real</key><real>2.9</real>"
        "<key>text</key><string>-77</string><key>words</key><string>7 up</string>"
        "<key>blank</key><string> 7</string><key>nothing</key><string></string>"
        "<key>big</key><string>9223372036854775808</string><key>yes</key><true/>"
        "<key>huge</key><real>1e300</real><key>date</key><date>2009-07-04T13:04:05Z</date>");
    EXPECT_EQ(all.infoInteger(u"number"_s), -42);
    EXPECT_EQ(all.infoInteger(u"real"_s), 2);
    EXPECT_EQ(all.infoInteger(u"text"_s), -77);
    EXPECT_EQ(all.infoInteger(u"yes"_s), 1);
    for (const QString& key :
         {u"words"_s, u"blank"_s, u"nothing"_s, u"big"_s, u"huge"_s, u"date"_s, u"absent"_s}) {
        EXPECT_EQ(all.infoInteger(key), std::nullopt) << key.toStdString();
    }
    EXPECT_EQ(all.info(u"text"_s), u"-77"_s);
    EXPECT_EQ(all.info(u"number"_s), std::nullopt);
}

}  // namespace
}  // namespace vell
