// SPDX-License-Identifier: MIT
#include "foundation/file_wrapper.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <QtEndian>

#include "writers/file_wrapper_writer.h"

namespace {

using foundation::Data;
using foundation::FileWrapper;
using foundation::parseSerializedFileWrapper;
using writers::serializedFileWrapper;

QByteArray word(quint32 value) {
    QByteArray bytes(4, Qt::Uninitialized);
    qToLittleEndian(value, bytes.data());
    return bytes;
}

QByteArray bytesRecord(const QByteArray& contents) {
    return word(1) + word(static_cast<quint32>(contents.size())) + contents;
}

/// A directory record of names and blocks.
QByteArray directoryRecord(const std::vector<std::pair<QByteArray, QByteArray>>& entries) {
    QByteArray result = word(3) + word(static_cast<quint32>(entries.size()));
    for (const auto& [name, block] : entries)
        result += word(static_cast<quint32>(name.size())) + name;
    for (const auto& [name, block] : entries)
        result += word(static_cast<quint32>(block.size()));
    for (const auto& [name, block] : entries)
        result += block;
    return result;
}

QByteArray serialized(const QByteArray& record) {
    return "rtfd" + word(0) + record;
}

std::shared_ptr<FileWrapper> parsedDirectory(
    const std::vector<std::pair<QByteArray, QByteArray>>& entries) {
    return parseSerializedFileWrapper(serialized(directoryRecord(entries)));
}

TEST(FileWrapper, ReadsRegularFilesWithTheirBytesInPlace) {
    for (const auto padding :
         {std::optional<int>(), std::optional<int>(0), std::optional<int>(13)}) {
        const Data data(serializedFileWrapper(
            {.name = QStringLiteral("schön.png"), .contents = "abc", .padding = padding}));
        const auto wrapper = parseSerializedFileWrapper(data);
        ASSERT_TRUE(wrapper);
        EXPECT_EQ(wrapper->description(),
                  QStringLiteral("<FileWrapper: \"schön.png\" regular file, 3 bytes>"));
        EXPECT_EQ(wrapper->filename, wrapper->preferredFilename);
        const Data contents = *wrapper->contents->load();
        EXPECT_EQ(contents.view(), "abc");
        EXPECT_TRUE(contents.begin() > data.begin() && contents.end() <= data.end());
    }
    const auto empty = parseSerializedFileWrapper(serializedFileWrapper({}));
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->contents.has_value());
    EXPECT_EQ(empty->description(), QStringLiteral("<FileWrapper: regular file, 0 bytes>"));
}

TEST(FileWrapper, ReadsFoldersWithTheirEntriesInOrder) {
    const auto wrapper = parsedDirectory({{"__@PreferredName@__", bytesRecord("a.rtfd")},
                                          {"TXT.rtf", bytesRecord("text")},
                                          {"sub", directoryRecord({{"x", bytesRecord("1")}})}});
    ASSERT_TRUE(wrapper);
    EXPECT_EQ(wrapper->description(),
              QStringLiteral("<FileWrapper: \"a.rtfd\" directory, 2 entries>"));
    EXPECT_EQ(wrapper->children[0]->filename, QStringLiteral("TXT.rtf"));
    EXPECT_EQ(wrapper->children[0]->contents->load()->view(), "text");
    EXPECT_EQ(wrapper->children[1]->children.at(0)->filename, QStringLiteral("x"));
}

TEST(FileWrapper, MakesStoredNamesFileNames) {
    const auto nameOf = [](const std::vector<std::pair<QByteArray, QByteArray>>& names) {
        auto entries = names;
        entries.insert(entries.begin(), {"..", bytesRecord("x")});
        const auto wrapper = parsedDirectory(entries);
        return wrapper ? wrapper->filename.value_or(QStringLiteral("(none)"))
                       : QStringLiteral("(null)");
    };
    const QByteArray plain = "__@PreferredName@__";
    const QByteArray utf8 = "__@UTF8PreferredName@__";
    EXPECT_EQ(nameOf({{plain, bytesRecord("a?.txt")}, {utf8, bytesRecord("aé.txt")}}),
              QStringLiteral("aé.txt"));
    EXPECT_EQ(nameOf({{utf8, bytesRecord("aé.txt")}, {plain, bytesRecord("a?.txt")}}),
              QStringLiteral("aé.txt"));
    EXPECT_EQ(nameOf({{plain, bytesRecord("r\xDDsum\xDD")}}), QStringLiteral("résumé"));
    EXPECT_EQ(nameOf({{utf8, bytesRecord(QByteArray("../\0etc/passwd", 14))}}),
              QStringLiteral("..etcpasswd"));
    for (const char* noName : {"", ".", "..", "../", "///"})
        EXPECT_EQ(nameOf({{utf8, bytesRecord(noName)}}), QStringLiteral("(none)")) << noName;
    // A name that only decodes to a reserved one is an ordinary one.
    EXPECT_EQ(parsedDirectory({{QByteArray("..\0", 3), bytesRecord("x")}})->description(),
              QStringLiteral("<FileWrapper: directory, 1 entries>"));
}

TEST(FileWrapper, LeavesOutRecordsOfUnknownKinds) {
    const auto wrapper =
        parsedDirectory({{"link", word(7) + "target"}, {"file", bytesRecord("x")}, {".", word(9)}});
    ASSERT_TRUE(wrapper);
    ASSERT_EQ(wrapper->children.size(), 1u);
    EXPECT_EQ(wrapper->children[0]->filename, QStringLiteral("file"));
    const auto file = parsedDirectory({{"..", word(7)}, {"__@PreferredName@__", bytesRecord("a")}});
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->isRegularFile());
    EXPECT_FALSE(file->contents.has_value());
}

/// A table of attributes with these names and flags.
QByteArray attributes(const std::vector<std::pair<QByteArray, quint32>>& entries) {
    QByteArray table = word(static_cast<quint32>(entries.size()));
    for (const auto& [name, flags] : entries) {
        table += word(static_cast<quint32>(name.size())) + name;
        table += word(16) + word(0) + word(0777) + word(flags) + word(1);
    }
    return bytesRecord(table);
}

TEST(FileWrapper, RecognisesSymbolicLinksByTheirAttributes) {
    const auto link = [](const QByteArray& table) {
        const auto wrapper = parsedDirectory({{"..", bytesRecord("../Büro/a.txt")},
                                              {"__@PreferredName@__", bytesRecord("a")},
                                              {".", table}});
        return wrapper ? wrapper->description() : QString();
    };
    const auto isLink = QStringLiteral("<FileWrapper: \"a\" symbolic link to \"../Büro/a.txt\">");
    const auto isFile = QStringLiteral("<FileWrapper: \"a\" regular file, 14 bytes>");
    EXPECT_EQ(link(attributes({{"x", 0}, {"..", 6}})), isLink);
    EXPECT_EQ(link(attributes({{"..", 4}}).chopped(1)), isFile);
    EXPECT_EQ(link(attributes({{"..", 2}})), isFile);
    EXPECT_EQ(link(attributes({{"x", 4}})), isFile);
    const QByteArray table = word(2) + word(2) + ".." + word(8) + QByteArray(8, '\4') + word(2);
    EXPECT_EQ(link(bytesRecord(table)), isFile) << "a short record and a broken table";

    const auto folder = parsedDirectory(
        {{"to", bytesRecord("/etc")}, {"file", bytesRecord("x")}, {".", attributes({{"to", 4}})}});
    ASSERT_TRUE(folder);
    EXPECT_TRUE(folder->children.at(0)->isSymbolicLink());
    EXPECT_FALSE(folder->children.at(0)->contents);
    EXPECT_TRUE(folder->children.at(1)->isRegularFile());
}

TEST(FileWrapper, ShowsTheNamesOfChildrenWithoutTheirMarksAndIcons) {
    const auto folder = parsedDirectory({{"a.png.tiff", bytesRecord("icon")},
                                         {"a.png", bytesRecord("1")},
                                         {"12__#$!@%!#__a.png", bytesRecord("2")},
                                         {"__#$!@%!#__b", bytesRecord("3")},
                                         {"c.tiff", bytesRecord("4")},
                                         {"..tiff", bytesRecord("5")}});
    ASSERT_TRUE(folder);
    QStringList names;
    for (const auto& child : folder->children)
        names.append(child->filename.value_or(QString()));
    EXPECT_EQ(names.join(u' ').toStdString(), "a.png a.png __#$!@%!#__b c.tiff ..tiff");
}

TEST(FileWrapper, RefusesMalformedBytes) {
    const QByteArray good = directoryRecord({{"..", bytesRecord("abc")}});
    const auto nested = [](int depth) {
        QByteArray record = directoryRecord({});
        for (int i = 1; i < depth; ++i)
            record = directoryRecord({{"d", record}});
        return serialized(record);
    };
    ASSERT_TRUE(parseSerializedFileWrapper(serialized(good)));
    ASSERT_TRUE(parseSerializedFileWrapper(nested(64)));
    const std::pair<const char*, QByteArray> rows[] = {
        {"other magic", "rtfx" + word(0) + good},
        {"other version", "rtfd" + word(1) + good},
        {"bytes at the top", serialized(bytesRecord("abc"))},
        {"more entries than bytes", serialized(word(3) + word(0xffffffff))},
        {"name past the end", serialized(word(3) + word(1) + word(0xfffffff0) + word(0))},
        {"block past the end", serialized(word(3) + word(1) + word(1) + "a" + word(0x7fffffff))},
        {"block without a kind", serialized(directoryRecord({{"a", "xyz"}}))},
        {"bytes past their block", serialized(directoryRecord({{"..", word(1) + word(4) + "abc"},
                                                               {"b", bytesRecord("abc")}}))},
        {"padding past its block",
         serialized(directoryRecord(
             {{"a", word(1) + word(0x80000000) + word(1) + word(0xffffffff) + "a"}}))},
        {"nested too deep", nested(65)},
    };
    for (const auto& [fault, bytes] : rows)
        EXPECT_FALSE(parseSerializedFileWrapper(bytes)) << fault;
    const QByteArray whole = serialized(directoryRecord(
        {{"..", word(1) + word(0x80000000) + word(3) + word(2) + QByteArray(2, '\0') + "abc"},
         {"__@UTF8PreferredName@__", bytesRecord("abc")}}));
    for (qsizetype size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(parseSerializedFileWrapper(whole.first(size))) << size;
    EXPECT_TRUE(parseSerializedFileWrapper(whole));
}

TEST(FileWrapper, ComparesByContent) {
    const auto folder = [](const QByteArray& name, const QByteArray& contents) {
        return *parsedDirectory({{name, bytesRecord(contents)}});
    };
    const FileWrapper wrapper = folder("a", "1");
    EXPECT_TRUE(wrapper == folder("a", "1"));
    EXPECT_EQ(qHash(wrapper), qHash(folder("a", "1")));
    EXPECT_FALSE(wrapper == folder("a", "2"));
    for (const FileWrapper& other : {folder("a", "22"), folder("b", "1")}) {
        EXPECT_FALSE(wrapper == other);
        EXPECT_NE(qHash(wrapper), qHash(other));
    }
    EXPECT_FALSE(FileWrapper(Data()) == FileWrapper(FileWrapper::Kind::regularFile));
}

}  // namespace
