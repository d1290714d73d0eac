// SPDX-License-Identifier: MIT
//
// Small keyed archives of enormous graphs: each budget stops the one that exceeds it, and only
// that.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/keyed_fixture.h"
#include "writers/file_wrapper_writer.h"
#include "writers/property_list_writer.h"

namespace foundation::test {
namespace {

using writers::PropertyListWriter;
using Node = PropertyListWriter::Node;

/// An archive whose references take one byte each, however often they come: the archiver's own form
/// has an object for each of them.
class DenseArchive {
  public:
    Node string(const QString& text) { return list_.string(text); }
    Node data(const QByteArray& bytes) { return list_.data(bytes); }
    /// The reference to a new object.
    Node add(Node object) {
        objects_.push_back(object);
        return list_.uid(quint32(objects_.size()));
    }
    Node instance(const char* className, std::vector<std::pair<const char*, Node>> members) {
        const Node record = add(
            list_.dictionary({{list_.string(u"$classname"), list_.string(QString(className))}}));
        std::vector<std::pair<Node, Node>> pairs{{list_.string(u"$class"), record}};
        for (const auto& [key, value] : members)
            pairs.emplace_back(list_.string(QString(key)), value);
        return add(list_.dictionary(pairs));
    }
    /// The elements, all of them so many times over.
    Node array(const std::vector<Node>& elements, std::size_t times) {
        std::vector<Node> all;
        for (std::size_t i = 0; i < times; ++i)
            all.insert(all.end(), elements.begin(), elements.end());
        return instance("NSArray", {{"NS.objects", list_.array(all)}});
    }
    QByteArray bytes(Node root) {
        std::vector<Node> objects{list_.string(u"$null")};
        objects.insert(objects.end(), objects_.begin(), objects_.end());
        return list_.binary(list_.dictionary(
            {{list_.string(u"$version"), list_.integer(100000)},
             {list_.string(u"$top"), list_.dictionary({{list_.string(u"root"), root}})},
             {list_.string(u"$objects"), list_.array(objects)}}));
    }

  private:
    PropertyListWriter list_;
    std::vector<Node> objects_;
};

class KeyedBudgetsTest : public KeyedArchiveTest {};

/// One element, many times over.
QByteArray longArray(std::size_t count) {
    DenseArchive archive;
    const Node element = archive.add(archive.string(QStringLiteral("x")));
    return archive.bytes(archive.array({element}, count));
}

/// Arrays of arrays of 4,000 elements, one array after the other.
QByteArray manyArrays(int arrays) {
    DenseArchive archive;
    const Node element = archive.add(archive.string(QStringLiteral("x")));
    std::vector<Node> all;
    const std::vector<Node> few(1, element);
    for (int i = 0; i < arrays; ++i)
        all.push_back(archive.array(few, 4000));
    return archive.bytes(archive.array(all, 1));
}

/// So many texts, each with `runs` runs described by the same bytes.
QByteArray sharedRuns(int texts, int runs, int length) {
    DenseArchive archive;
    const Node text = archive.add(archive.string(QString(runs * length + 1, u'x')));
    const Node dictionaries = archive.array({archive.instance("NSDictionary", {})}, 1);
    QByteArray info;
    for (int i = 0; i < runs; ++i)
        info.append(char(length)).append('\0');
    const Node runInfo = archive.add(archive.data(info));
    std::vector<Node> all;
    for (int i = 0; i < texts; ++i)
        all.push_back(archive.instance(
            "NSAttributedString",
            {{"NSString", text}, {"NSAttributes", dictionaries}, {"NSAttributeInfo", runInfo}}));
    return archive.bytes(archive.array(all, 1));
}

/// Short texts in turn, more than the table keeps.
QByteArray repeatedTexts(std::size_t times) {
    DenseArchive archive;
    std::vector<Node> texts;
    for (int i = 0; i < 50; ++i)
        texts.push_back(archive.add(archive.string(QString(50 + i % 13, QChar(u'a' + i)))));
    return archive.bytes(archive.array(texts, times));
}

/// Attachments of one folder with many files.
QByteArray repeatedFolder(std::size_t files, int times) {
    DenseArchive archive;
    const std::vector<writers::FileDraft> children(files, {.name = QStringLiteral("f")});
    const Node folder = archive.add(archive.data(
        writers::serializedFileWrapper({.name = QStringLiteral("d"), .children = children})));
    std::vector<Node> all;
    for (int i = 0; i < times; ++i)
        all.push_back(archive.instance("NSFileWrapper", {{"NSFileWrapperData", folder}}));
    return archive.bytes(archive.array(all, 1));
}

/// Different addresses, each relative to one long base.
QByteArray longAddresses(int count) {
    DenseArchive archive;
    const Node base = archive.instance(
        "NSURL", {{"NS.relative", archive.add(archive.string(QString(100'000, u'x') + u'/'))}});
    std::vector<Node> all;
    for (int i = 0; i < count; ++i) {
        const Node relative = archive.add(archive.string(QString::number(i)));
        all.push_back(archive.instance("NSURL", {{"NS.relative", relative}, {"NS.base", base}}));
    }
    return archive.bytes(archive.array(all, 1));
}

TEST_F(KeyedBudgetsTest, EachStopsWhatExceedsIt) {
    const auto nested = [this](int levels) {
        Uid inner = archive_.string("x");
        for (int i = 0; i < levels; ++i)
            inner = archive_.array({inner});
        return withRoot(inner);
    };
    const auto basedOnEachOther = [this](int levels) {
        Uid url = KeyedArchiveWriter::nil;
        for (int i = 0; i < levels; ++i)
            url = archive_.url(QStringLiteral("x"), url);
        return withRoot(url);
    };
    const struct {
        const char* what;
        QByteArray within;
        QByteArray beyond;
    } rows[] = {
        {"levels of nesting", nested(512), nested(513)},
        {"levels of nesting", basedOnEachOther(512), basedOnEachOther(513)},
        {"elements in one collection", longArray(4000), longArray(5000)},
        {"elements", manyArrays(2), manyArrays(5)},
        {"attribute runs", sharedRuns(60, 200, 1), sharedRuns(60, 50'000, 1)},
        {"references", sharedRuns(20, 50'000, 0), sharedRuns(70, 50'000, 0)},
        {"strings and data", repeatedTexts(10), repeatedTexts(80)},
        {"files", repeatedFolder(100, 200), repeatedFolder(20'000, 1)},
        {"addresses and names", longAddresses(100), longAddresses(400)},
    };
    for (const auto& row : rows) {
        EXPECT_NO_THROW(read(row.within)) << row.what;
        EXPECT_EQ(errorOf(row.beyond),
                  std::string("4864 *** -[NSKeyedUnarchiver decodeObjectForKey:]: the archive has "
                              "more ") +
                      row.what + " than its size can hold");
    }
}

}  // namespace
}  // namespace foundation::test
