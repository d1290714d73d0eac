// SPDX-License-Identifier: MIT
#include "foundation/url.h"

#include <gtest/gtest.h>

namespace {

using foundation::URL;

QString resolved(const char* base, const char* relative) {
    const auto baseUrl = std::make_shared<URL>(QString::fromUtf8(base));
    return URL(QString::fromUtf8(relative), baseUrl).absoluteString();
}

// From the examples of RFC 3986, sections 5.4.1 and 5.4.2: one for each step.
TEST(Url, ResolvesTheExamplesOfTheStandard) {
    static constexpr struct {
        const char* relative;
        const char* absolute;
    } rows[] = {
        {"g:h", "g:h"},
        {"g", "http://a/b/c/g"},
        {"/g", "http://a/g"},
        {"//g", "http://g"},
        {"?y", "http://a/b/c/d;p?y"},
        {"g?y", "http://a/b/c/g?y"},
        {"g;x?y#s", "http://a/b/c/g;x?y#s"},
        {"", "http://a/b/c/d;p?q"},
        {".", "http://a/b/c/"},
        {"..", "http://a/b/"},
        {"../g", "http://a/b/g"},
        {"../../g", "http://a/g"},
        {"../../../g", "http://a/g"},
        {"/../g", "http://a/g"},
        {"g..", "http://a/b/c/g.."},
        {"..g", "http://a/b/c/..g"},
        {"g/./h", "http://a/b/c/g/h"},
        {"g;x=1/./y", "http://a/b/c/g;x=1/y"},
        {"g?y/../x", "http://a/b/c/g?y/../x"},
        {"g#s/../x", "http://a/b/c/g#s/../x"},
        {"http:g", "http:g"},
    };
    for (const auto& [relative, absolute] : rows)
        EXPECT_EQ(resolved("http://a/b/c/d;p?q", relative), QLatin1StringView(absolute))
            << '"' << relative << '"';
}

TEST(Url, LeavesTextAsItIsWhereItIsNotMerged) {
    EXPECT_EQ(URL(QStringLiteral("http://a/./b/../ü %zz|^")).absoluteString(),
              QStringLiteral("http://a/./b/../ü %zz|^"));
    EXPECT_EQ(resolved("http://a/%7e x/y", "ä%2F b"), QStringLiteral("http://a/%7e x/ä%2F b"));
    // An authority without a path, a base that is relative itself, and a colon that ends no scheme.
    EXPECT_EQ(resolved("http://a?q", "g"), QStringLiteral("http://a/g"));
    EXPECT_EQ(resolved("b/c", "../g"), QStringLiteral("/g"));
    EXPECT_EQ(resolved("http://a/b", "1:2"), QStringLiteral("http://a/1:2"));
}

TEST(Url, ResolvesThroughAllBasesAndComparesTheResult) {
    const auto host = std::make_shared<URL>(QStringLiteral("http://a/"));
    const auto folder = std::make_shared<URL>(QStringLiteral("b/"), host);
    const URL page(QStringLiteral("c"), folder);
    EXPECT_EQ(page.absoluteString(), QStringLiteral("http://a/b/c"));
    EXPECT_TRUE(page == URL(QStringLiteral("http://a/b/c")));
    EXPECT_FALSE(page == URL(QStringLiteral("c")));
}

}  // namespace
