// SPDX-License-Identifier: MIT
#include "writers/hostile/hostile_files.h"

#include <QtEndian>
#include <functional>
#include <utility>
#include <vector>

#include "writers/file_wrapper_writer.h"
#include "writers/hostile/keyed_file.h"
#include "writers/non_keyed_archive_writer.h"

namespace writers {
namespace {

using namespace Qt::StringLiterals;

/// Half of a file is what is shared, the other half names it: this often, at this many bytes each.
int timesIn(qsizetype size, int bytes) {
    return static_cast<int>(size / 2 / bytes);
}

QString longText(qsizetype size) {
    return QString(size / 2, u'a');
}

/// A message of one unit for each of these attribute dictionaries.
QByteArray messageWith(KeyedFile& file, const std::vector<Uid>& attributes) {
    std::vector<KeyedArchiveWriter::Run> runs;
    for (const Uid each : attributes)
        runs.push_back({1, each});
    const Uid text = file.archive.string(QString(static_cast<qsizetype>(runs.size()), u'x'));
    file.message({{u"Sender"_s, file.person(file.archive.string(u"ann"_s))},
                  {u"MessageText"_s, file.archive.attributedString(text, runs)}});
    return file.bytes();
}

QByteArray keyedPeople(qsizetype size, const QString& prefix, const QString& service) {
    KeyedFile file;
    const Uid id = file.archive.string(prefix + longText(size));
    for (int i = 0; i < timesIn(size, 24); ++i)
        file.people.push_back(file.person(id, file.archive.string(service)));
    file.message({{u"Sender"_s, file.people.front()}, {u"OriginalMessage"_s, id}});
    return file.bytes();
}

QByteArray peopleOfOneLongName(qsizetype size) {
    return keyedPeople(size, {}, u"AIM"_s);
}

QByteArray prefixedPeople(qsizetype size) {
    return keyedPeople(size, u"e:"_s, u"iMessage"_s);
}

QByteArray peopleOnOneLongService(qsizetype size) {
    KeyedFile file;
    const Uid service = file.archive.string(longText(size));
    for (int i = 0; i < timesIn(size, 40); ++i)
        file.people.push_back(file.person(file.archive.string(QString::number(i)), service));
    return file.bytes();
}

/// A non-keyed transcript of nothing but people, each written by `person`.
QByteArray nonKeyedPeople(int count,
                          const std::function<void(NonKeyedArchiveWriter&, int index)>& person) {
    NonKeyedArchiveWriter archive;
    archive.array(4, [&] {
        archive.string(u"AIM"_s);
        archive.string({});
        archive.array(0, [] {});
        archive.array(count, [&] {
            for (int i = 0; i < count; ++i)
                person(archive, i);
        });
    });
    return archive.bytes();
}

QByteArray nonKeyedPrefixedPeople(qsizetype size) {
    std::pair<int, int> texts;
    return nonKeyedPeople(timesIn(size, 7), [&](NonKeyedArchiveWriter& archive, int index) {
        archive.object("Presentity", [&] {
            if (index == 0) {
                texts.first = archive.string(u"iMessage"_s);
                texts.second = archive.string(u"e:"_s + longText(size));
            } else {
                archive.reference(texts.first);
                archive.reference(texts.second);
            }
        });
    });
}

/// Strings that are archived as references to one long C string.
QByteArray nonKeyedSharedCStrings(qsizetype size) {
    const QByteArray text(size / 2, 'a');
    return nonKeyedPeople(timesIn(size, 10), [&](NonKeyedArchiveWriter& archive, int) {
        archive.object("Presentity", [&] {
            archive.nil();
            archive.object("NSString", [&] {
                archive.group("*");
                archive.cString(text);
            });
        });
    });
}

/// Attachments whose wrappers all name the same bytes: a folder of these entries.
QByteArray attachments(qsizetype size, int count, const QByteArray& name, const QByteArray& block,
                       const QByteArray& lastBlock) {
    QByteArray names;
    QByteArray sizes;
    QByteArray blocks;
    for (int i = 0; i < count; ++i) {
        const QByteArray& each = i + 1 < count ? block : lastBlock;
        names += word(static_cast<quint32>(name.size())) + name;
        sizes += word(static_cast<quint32>(each.size()));
        blocks += each;
    }
    KeyedFile file;
    KeyedArchiveWriter& archive = file.archive;
    const Uid bytes = archive.direct("rtfd" + word(0) + word(3) +
                                     word(static_cast<quint32>(count)) + names + sizes + blocks);
    std::vector<Uid> attributes;
    for (int i = 0; i < timesIn(size, 90); ++i) {
        const Uid wrapper = archive.object({u"NSFileWrapper"_s}, {{u"NSFileWrapperData"_s, bytes}});
        const Uid attachment =
            archive.object({u"NSTextAttachment"_s}, {{u"NSFileWrapper"_s, wrapper}});
        attributes.push_back(archive.dictionary({{archive.string(u"NSAttachment"_s), attachment}}));
    }
    return messageWith(file, attributes);
}

QByteArray wrappersThatFailAtTheirEnd(qsizetype size) {
    const QByteArray empty = word(1) + word(0);
    return attachments(size, timesIn(size, 16), {}, empty, {});
}

QByteArray wrappersOfUnknownRecords(qsizetype size) {
    return attachments(size, timesIn(size, 12), {}, word(9), word(9));
}

QByteArray wrappersOfOneLongName(qsizetype size) {
    const QByteArray name(size / 2, 'n');
    const QByteArray block = word(1) + word(static_cast<quint32>(name.size())) + name;
    return attachments(size, 1, "__@UTF8PreferredName@__", block, block);
}

QByteArray messagesOfOneLongText(qsizetype size) {
    KeyedFile file;
    const Uid text = file.archive.string(longText(size));
    const Uid sender = file.person(file.archive.string(u"bob"_s));
    for (int i = 0; i < timesIn(size, 30); ++i)
        file.message({{u"Sender"_s, sender}, {u"OriginalMessage"_s, text}});
    return file.bytes();
}

QByteArray messagesWithoutContent(qsizetype size) {
    KeyedFile file;
    const Uid sender = file.person(file.archive.string(longText(size)));
    for (int i = 0; i < timesIn(size, 24); ++i)
        file.message({{u"Sender"_s, sender}});
    return file.bytes();
}

/// Two senders in turn, whose names differ in the last letter.
QByteArray talkOfLongNames(qsizetype size) {
    KeyedFile file;
    const Uid hi = file.archive.string(u"hi"_s);
    const Uid speakers[] = {file.person(file.archive.string(longText(size / 2) + u'a')),
                            file.person(file.archive.string(longText(size / 2) + u'b'))};
    for (int i = 0; i < timesIn(size, 30); ++i)
        file.message({{u"Sender"_s, speakers[i % 2]}, {u"OriginalMessage"_s, hi}});
    return file.bytes();
}

QByteArray links(qsizetype size, bool areDifferent) {
    KeyedFile file;
    KeyedArchiveWriter& archive = file.archive;
    const Uid base = archive.url(u"http://h/"_s + longText(size) + u'/');
    std::vector<Uid> attributes;
    for (int i = 0; i < timesIn(size, 90); ++i) {
        const Uid url = archive.url(areDifferent ? QString::number(i) : u"x"_s, base);
        attributes.push_back(archive.dictionary({{archive.string(u"NSLink"_s), url}}));
    }
    return messageWith(file, attributes);
}

QByteArray equalLinksOnOneLongBase(qsizetype size) {
    return links(size, false);
}

QByteArray differentLinksOnOneLongBase(qsizetype size) {
    return links(size, true);
}

/// Many texts, all cut by the same long table of runs.
QByteArray textsOfOneRunTable(qsizetype size) {
    KeyedFile file;
    KeyedArchiveWriter& archive = file.archive;
    const int runs = timesIn(size, 4);
    const Uid text = archive.string(QString(runs, u'x'));
    const Uid info = archive.direct(QByteArray("\1\0", 2).repeated(runs));
    const Uid dictionaries = archive.array({archive.dictionary({})});
    for (int i = 0; i < timesIn(size, 60); ++i) {
        const Uid body = archive.object({u"NSAttributedString"_s, u"NSObject"_s},
                                        {{u"NSString"_s, text},
                                         {u"NSAttributes"_s, dictionaries},
                                         {u"NSAttributeInfo"_s, info}});
        file.message({{u"MessageText"_s, body}});
    }
    return file.bytes();
}

QByteArray peopleOfOneLongClassName(qsizetype size) {
    KeyedFile file;
    const Uid id = file.archive.string(u"ann"_s);
    const QString name = longText(size);
    for (int i = 0; i < timesIn(size, 60); ++i)
        file.people.push_back(
            file.archive.object({name, u"Presentity"_s, QString::number(i)}, {{u"ID"_s, id}}));
    return file.bytes();
}

QByteArray nonKeyedPeopleOfOneLongClassName(qsizetype size) {
    const QByteArray name(size / 2, 'a');
    return nonKeyedPeople(timesIn(size, 8), [&](NonKeyedArchiveWriter& archive, int) {
        archive.object({{name, 0}, {"NSObject", 0}}, [] {});
    });
}

constexpr int overlapStep = 8;

/// An object of which `overlapping` makes a long one.
Uid placeholder(KeyedArchiveWriter& archive, int number) {
    QByteArray bytes(4, '\0');
    qToBigEndian(number, bytes.data());
    return archive.direct("hold" + bytes);
}

/// The file, its placeholders being strings or data of a quarter of `size` that all lie in the same
/// bytes. `type` is the upper half of the first byte of such an object.
QByteArray overlapping(KeyedFile& file, int count, qsizetype size, char type) {
    QByteArray head(overlapStep, '\0');
    head[0] = static_cast<char>(type | 0x0f);
    head[1] = 0x12;
    qToBigEndian(static_cast<quint32>(size / 4), head.data() + 2);
    file.archive.direct(head.repeated(count) + QByteArray(size / 4, 'a'));
    QByteArray bytes = file.bytes();

    const auto begin = bytes.indexOf(head);
    const auto width = bytes[bytes.size() - 26];
    const auto table = qFromBigEndian<qint64>(bytes.constData() + bytes.size() - 8);
    for (auto entry = table; entry + width <= bytes.size() - 32; entry += width) {
        const auto offset = bytes.mid(entry, width).toHex().toLongLong(nullptr, 16);
        if (bytes.mid(offset + 1, 4) != "hold") continue;
        const auto number = qFromBigEndian<qint32>(bytes.constData() + offset + 5);
        QByteArray target(8, '\0');
        qToBigEndian(begin + number * overlapStep, target.data());
        bytes.replace(entry, width, target.right(width));
    }
    return bytes;
}

QByteArray namesThatOverlap(qsizetype size) {
    KeyedFile file;
    const int count = timesIn(size, 60);
    for (int i = 0; i < count; ++i)
        file.people.push_back(file.person(placeholder(file.archive, i)));
    return overlapping(file, count, size, 0x50);
}

QByteArray attachmentsThatOverlap(qsizetype size) {
    KeyedFile file;
    KeyedArchiveWriter& archive = file.archive;
    const int count = timesIn(size, 90);
    std::vector<Uid> attributes;
    for (int i = 0; i < count; ++i) {
        const Uid attachment =
            archive.object({u"NSTextAttachment"_s}, {{u"NS.contents"_s, placeholder(archive, i)}});
        attributes.push_back(archive.dictionary({{archive.string(u"NSAttachment"_s), attachment}}));
    }
    messageWith(file, attributes);
    return overlapping(file, count, size, 0x40);
}

constexpr HostileFile files[] = {
    {"people of one long name", peopleOfOneLongName},
    {"people of one long name with a prefix", prefixedPeople},
    {"the same, non-keyed", nonKeyedPrefixedPeople},
    {"strings that name one long C string", nonKeyedSharedCStrings},
    {"people on one long service", peopleOnOneLongService, true},
    {"wrappers that fail at their end", wrappersThatFailAtTheirEnd},
    {"wrappers of unknown records", wrappersOfUnknownRecords},
    {"wrappers of one long name", wrappersOfOneLongName},
    {"messages of one long text", messagesOfOneLongText},
    {"messages without content by a long name", messagesWithoutContent},
    {"a talk of two long names", talkOfLongNames},
    {"equal links on one long base", equalLinksOnOneLongBase},
    {"different links on one long base", differentLinksOnOneLongBase, true},
    {"texts of one table of runs", textsOfOneRunTable, true},
    {"people of one long class name", peopleOfOneLongClassName},
    {"the same, non-keyed, of no known class", nonKeyedPeopleOfOneLongClassName},
    {"names that overlap", namesThatOverlap, true},
    {"attachments that overlap", attachmentsThatOverlap},
};

}  // namespace

std::span<const HostileFile> hostileFiles() {
    return files;
}

}  // namespace writers
