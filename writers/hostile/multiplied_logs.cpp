// SPDX-License-Identifier: MIT
#include "writers/hostile/hostile_files.h"
#include "writers/hostile/keyed_file.h"
#include "writers/non_keyed_archive_writer.h"
#include "writers/property_list_writer.h"
#include "writers/transcript_writer.h"

namespace writers {
namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype mebibyte = 1 << 20;

/// Names `messages` in turn, `count` times, in a file of about this size.
QByteArray references(qsizetype size, int count, int messages, bool areAlike) {
    NonKeyedArchiveWriter archive;
    archive.array(4, [&] {
        archive.string(u"AIM"_s);
        archive.string(QString(size - 2 * count - 2000, u'x'));
        archive.array(count, [&] {
            std::vector<int> numbers;
            for (int i = 0; i < messages; ++i) {
                numbers.push_back(archive.object("InstantMessage", [&] {
                    archive.object("Presentity", [&] {
                        archive.string(u"AIM"_s);
                        archive.string(areAlike ? u"ann"_s : QString::number(i));
                    });
                    archive.date(areAlike ? 0 : i * 1e6);
                    archive.attributedString(u"hi"_s, {});
                    archive.group("I");
                    archive.integer(0);
                }));
            }
            for (int i = messages; i < count; ++i)
                archive.reference(numbers[static_cast<std::size_t>(i % messages)]);
        });
        archive.array(0, [] {});
    });
    return archive.bytes();
}

/// Many attributed strings over one long text, cut into a plain run and a link.
QByteArray textCutInTwo(qsizetype length, int count) {
    KeyedFile file;
    auto& archive = file.archive;
    const Uid sender = file.person(archive.string(u"ann"_s));
    const Uid text = archive.mutableString(QString(length, u'x') + u"%@"_s);
    const Uid plain = archive.dictionary({});
    const Uid link = archive.dictionary({{archive.string(u"NSLink"_s), archive.url(u"a:b"_s)}});
    for (int i = 0; i < count; ++i) {
        const Uid body =
            archive.attributedString(text, {{static_cast<quint64>(length), plain}, {2, link}});
        file.message({{u"Sender"_s, sender}, {u"MessageText"_s, body}});
    }
    return file.bytes();
}

/// One system text, whose placeholder is replaced, in many attributed strings.
QByteArray systemText(qsizetype length, int count) {
    KeyedFile file;
    auto& archive = file.archive;
    const Uid text = archive.mutableString(QString(length, u'x') + u"%@"_s);
    const Uid plain = archive.dictionary({});
    for (int i = 0; i < count; ++i) {
        const KeyedArchiveWriter::Run run{static_cast<quint64>(length), plain};
        file.message({{u"MessageText"_s, archive.attributedString(text, {run, {2, plain}})}});
    }
    return file.bytes();
}

/// Arrays of arrays …, each holding the next one many times over: a byte for each element, where an
/// archiver would write eight.
QByteArray nestedArrays(int levels, int width) {
    PropertyListWriter list;
    const auto objects = [&list, levels, width] {
        std::vector<PropertyListWriter::Node> result{list.string(u"$null")};
        const auto classUid = list.uid(static_cast<quint32>(levels) + 1);
        for (quint32 i = 0; i < static_cast<quint32>(levels); ++i) {
            const auto next = list.uid(i + 1 < static_cast<quint32>(levels) ? i + 2 : 0);
            const std::vector elements(static_cast<std::size_t>(width), next);
            result.push_back(list.dictionary({{list.string(u"NS.objects"), list.array(elements)},
                                              {list.string(u"$class"), classUid}}));
        }
        result.push_back(list.dictionary({{list.string(u"$classname"), list.string(u"NSArray")}}));
        return list.array(result);
    }();
    return list.binary(list.dictionary({
        {list.string(u"$version"), list.integer(100000)},
        {list.string(u"$top"), list.dictionary({{list.string(u"root"), list.uid(1)}})},
        {list.string(u"$objects"), objects},
    }));
}

/// One body of many empty runs, shared by many messages.
QByteArray emptyRuns(int runs, int messages) {
    KeyedFile file;
    const Uid attributes = file.archive.dictionary({});
    std::vector<KeyedArchiveWriter::Run> list(static_cast<std::size_t>(runs), {0, attributes});
    list.push_back({2, attributes});
    const Uid body = file.archive.attributedString(file.archive.string(u"hi"_s), list);
    for (int i = 0; i < messages; ++i)
        file.message({{u"MessageText"_s, body}});
    return file.bytes();
}

/// The most events that a writer gets into a byte: short texts, and a new sender and minute each.
Transcript densest(int messages) {
    Transcript result{.service = u"AIM"_s, .people = {{u"a"_s}, {u"b"_s}}};
    for (int i = 0; i < messages; ++i) {
        result.messages.push_back(
            {.sender = static_cast<size_t>(i % 2), .date = i * 60.0, .body = {words(u"x"_s)}});
    }
    return result;
}

constexpr HostileFile logs[] = {
    {"one message, as often as an array may be long",
     [](qsizetype size) { return references(size, static_cast<int>(size / 8), 1, true); }},
    {"one message, more often than that",
     [](qsizetype size) {
         return references(size / 4 + 4000, static_cast<int>(size / 8), 1, true);
     },
     true},
    {"two messages in turn, with markers between all of them",
     [](qsizetype size) { return references(2 * size, static_cast<int>(size / 4), 2, false); },
     true},
    {"a long text cut in two", [](qsizetype) { return textCutInTwo(mebibyte, 500); }, true},
    {"a long text cut in two, within bounds", [](qsizetype) { return textCutInTwo(1000, 3000); }},
    {"a long system text", [](qsizetype) { return systemText(mebibyte, 5000); }},
    {"arrays in arrays", [](qsizetype) { return nestedArrays(20, 50'000); }, true},
    {"empty runs in every message", [](qsizetype) { return emptyRuns(100'000, 1000); }},
    {"the densest honest transcript, keyed",
     [](qsizetype) { return keyedTranscript(densest(20'000)); }},
    {"the densest honest transcript, non-keyed",
     [](qsizetype) { return nonKeyedTranscript(densest(20'000)); }},
};

}  // namespace

std::span<const HostileFile> multipliedLogs() {
    return logs;
}

}  // namespace writers
