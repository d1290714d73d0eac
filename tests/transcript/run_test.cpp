// SPDX-License-Identifier: MIT
#include "transcript/run.h"

#include <gtest/gtest.h>

#include "transcript/fixture.h"

namespace vell {
namespace {

using namespace Qt::StringLiterals;
using foundation::AttributedString;
using foundation::Attributes;
using foundation::FileWrapper;
using foundation::TextAttachment;
using foundation::Value;

constexpr char gifBytes[] = "GIF89a\x02\0\x03\0\x80\0\0\xff\xff\xff\0\0\0;";

foundation::Data gif() {
    return QByteArray(gifBytes, sizeof(gifBytes) - 1);
}

struct Piece {
    QString text;
    std::shared_ptr<const Attributes> attributes;
};

AttributedString string(const std::vector<Piece>& pieces) {
    QString text;
    std::vector<AttributedString::Run> runs;
    for (const Piece& piece : pieces) {
        text += piece.text;
        runs.push_back({piece.text.size(), piece.attributes});
    }
    return AttributedString(text, runs);
}

std::shared_ptr<const Attributes> link(Value value) {
    return std::make_shared<const Attributes>(Attributes{std::move(value), {}, {}});
}

std::shared_ptr<const Attributes> attachment(std::shared_ptr<FileWrapper> wrapper,
                                             std::optional<foundation::Data> contents = {},
                                             std::optional<QString> fileType = {},
                                             Value path = {}) {
    auto result = std::make_shared<TextAttachment>();
    result->fileWrapper = std::move(wrapper);
    result->contents = std::move(contents);
    result->fileType = std::move(fileType);
    return std::make_shared<const Attributes>(Attributes{{}, Value(result), std::move(path)});
}

std::shared_ptr<FileWrapper> file(foundation::Data contents, const char* name) {
    auto result = std::make_shared<FileWrapper>(std::move(contents));
    if (name) result->filename = QString::fromUtf8(name);
    return result;
}

std::string described(const Run& run) {
    struct Visitor {
        QString operator()(const PlainRun& v) const { return u"plain "_s + v.text; }
        QString operator()(const TesselChatLog::Link& v) const {
            return u"link "_s + v.url->absoluteString() + u' ' + v.title;
        }
        QString operator()(const TesselChatLog::Image& v) const {
            return u"image "_s + v.type() + u' ' + v.path().value_or(u"-"_s);
        }
        QString operator()(const FileRun& v) const {
            return u"file "_s + v.wrapper->description() + u' ' + v.path.value_or(u"-"_s);
        }
    };
    return std::visit(Visitor(), run).toStdString();
}

TEST(Runs, KindsAndMerging) {
    const auto url = std::make_shared<foundation::URL>(u"http://a/"_s);
    const auto bold = std::make_shared<const Attributes>();
    const auto folder = std::make_shared<FileWrapper>(FileWrapper::Kind::directory);
    folder->filename = u"d"_s;
    const foundation::Data bytes = QByteArray("abc");
    const QChar high(0xd83d);
    const QChar low(0xde00);
    struct Row {
        const char* name;
        std::vector<Piece> pieces;
        std::vector<std::string> runs;
    };
    const Row rows[] = {
        {"nothing", {}, {}},
        {"neighbouring plain ranges",
         {{u"Hello "_s, bold}, {u"world"_s, {}}},
         {"plain Hello world"}},
        {"no merging across a link",
         {{u"a"_s, {}}, {u"b"_s, link(url)}, {u"c"_s, {}}},
         {"plain a", "link http://a/ b", "plain c"}},
        {"an address as mere text is no link",
         {{u"a"_s, {}}, {u"b"_s, link(u"http://a/"_s)}},
         {"plain ab"}},
        {"links are never joined",
         {{u"a"_s, link(url)}, {u"b"_s, link(url)}},
         {"link http://a/ a", "link http://a/ b"}},
        {"a picture takes its file's name and the general type",
         {{u"\ufffc"_s, attachment(file(gif(), "a.gif"))}},
         {"image public.image a.gif"}},
        {"its source path wins",
         {{u"\ufffc"_s,
           attachment(file(gif(), "a.gif"), {}, u"com.compuserve.gif"_s, u"/b.gif"_s)}},
         {"image com.compuserve.gif /b.gif"}},
        {"a source path that is no string doesn't",
         {{u"\ufffc"_s, attachment(file(gif(), nullptr), {}, {}, foundation::Number(true))}},
         {"image public.image -"}},
        {"no picture: the file itself",
         {{u"\ufffc"_s, attachment(file(bytes, "a.gif"), {}, {}, u"/b"_s)}},
         {"file <FileWrapper: \"a.gif\" regular file, 3 bytes> /b"}},
        {"a folder",
         {{u"\ufffc"_s, attachment(folder, gif())}},
         {"file <FileWrapper: \"d\" directory, 0 entries> d"}},
        {"bare bytes of a picture",
         {{u"\ufffc"_s, attachment(nullptr, gif(), u"x"_s)}},
         {"image x -"}},
        {"bare bytes become a file named by the path",
         {{u"\ufffc"_s, attachment(nullptr, bytes, {}, u"p"_s)}},
         {"file <FileWrapper: \"p\" regular file, 3 bytes> p"}},
        {"ranges that split a character lose their text",
         {{u"a"_s, {}}, {u"b"_s + high, bold}, {low + u"c"_s, bold}, {u"d"_s, {}}, {u"e"_s, {}}},
         {"plain ade"}},
        {"links and attachments that split one",
         {{u"a"_s + high, link(url)},
          {low + u"b"_s, link(url)},
          {high, {}},
          {low, attachment(folder)}},
         {"link http://a/ ", "link http://a/ ", "plain ",
          "file <FileWrapper: \"d\" directory, 0 entries> d"}},
        {"a letter apart from its accent and halves of no pair stay",
         {{u"e"_s, {}}, {u"\u0301"_s, link(url)}, {low, {}}},
         {"plain e", "link http://a/ \u0301", "plain " + QString(low).toStdString()}},
        {"bare bytes without a path become a nameless file",
         {{u"\ufffc"_s, attachment(nullptr, foundation::Data())}},
         {"file <FileWrapper: regular file, 0 bytes> -"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const AttributedString whole = string(row.pieces);
        const Extraction extraction = extractRuns(whole);
        std::vector<std::string> runs;
        for (const vell::Run& run : extraction.runs)
            runs.push_back(described(run));
        EXPECT_EQ(runs, row.runs);
        EXPECT_EQ(countRuns(whole).runs, row.runs.size());
        EXPECT_TRUE(extraction.errors.isEmpty());
    }
}

TEST(Runs, EmptyAttachmentIsAnErrorAndStaysText) {
    const auto [runs, errors] =
        extractRuns(string({{u"a"_s, {}}, {u"\ufffc"_s, attachment(nullptr)}, {u"b"_s, {}}}));
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(described(runs[0]), "plain a");
    EXPECT_EQ(described(runs[1]),
              "plain \ufffc"
              "b");
    EXPECT_EQ(errors, QStringList{u"ERROR: unexpected attachment run: <NSTextAttachment>"_s});
}

TEST(Runs, WholeTextIsShared) {
    const AttributedString whole = string({{u"Hello "_s, {}}, {u"world"_s, {}}});
    EXPECT_EQ(std::get<PlainRun>(extractRuns(whole).runs[0]).text.constData(),
              whole.text().constData());
}

}  // namespace
}  // namespace vell
