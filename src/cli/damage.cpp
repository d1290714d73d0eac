// SPDX-License-Identifier: MIT
#include "cli/damage.h"

#include <QtEndian>

#include "foundation/plain_reason.h"
#include "foundation/plist/binary_property_list.h"
#include "inspector/archive_text.h"
#include "library/transcript_probe.h"

namespace vell {

using namespace Qt::StringLiterals;

namespace {

using foundation::BinaryPropertyList;
using Kind = BinaryPropertyList::Kind;

/// The end of a binary property list, where its table of objects is described.
struct Trailer {
    explicit Trailer(QByteArrayView bytes) {
        if (bytes.size() < size) return;
        const char* start = bytes.last(size).data();
        offsetSize = static_cast<quint8>(start[6]);
        count = qFromBigEndian<quint64>(start + 8);
        table = qFromBigEndian<quint64>(start + 24);
        const auto room = static_cast<quint64>(bytes.size() - size);
        isWhole = offsetSize > 0 && offsetSize <= 8 && table < room && count > 0 &&
                  count <= (room - table) / offsetSize;
    }
    static constexpr qsizetype size = 32;
    bool isWhole = false;
    quint64 offsetSize = 0;
    quint64 count = 0;
    quint64 table = 0;
};

/// The first object that the table places elsewhere than before itself.
QString misplacedObject(QByteArrayView bytes, const Trailer& trailer) {
    for (quint64 object = 0; object < trailer.count; ++object) {
        const quint64 entry = trailer.table + object * trailer.offsetSize;
        quint64 offset = 0;
        for (quint64 i = 0; i < trailer.offsetSize; ++i)
            offset = offset << 8 | static_cast<quint8>(bytes[static_cast<qsizetype>(entry + i)]);
        if (offset >= trailer.table)
            return u"its table of objects is overwritten at byte %1, of object %2"_s.arg(entry).arg(
                object);
    }
    return u"the last %1 of its %2 bytes are overwritten"_s.arg(Trailer::size).arg(bytes.size());
}

bool isBroken(const BinaryPropertyList& list, quint64 object) {
    const BinaryPropertyList::Node node = list.node(object);
    if (node.kind() == Kind::invalid) return true;
    const bool isDictionary = node.kind() == Kind::dictionary;
    if (!isDictionary && node.kind() != Kind::array && node.kind() != Kind::set) return false;
    for (quint64 i = 0; i < node.count() * (isDictionary ? 2 : 1); ++i)
        if (list.element(node, i) >= list.objectCount()) return true;
    return false;
}

/// Empty where no object is.
QString brokenObject(const BinaryPropertyList& list) {
    // Broken lists may share the bytes of containers.
    auto itemsLeft = static_cast<quint64>(list.data().size());
    for (quint64 object = 0; object < list.objectCount(); ++object) {
        if (isBroken(list, object))
            return u"object %1 is overwritten, at byte %2"_s.arg(object).arg(list.offset(object));
        const quint64 items = list.node(object).count();
        if (items > itemsLeft) break;
        itemsLeft -= items;
    }
    return {};
}

QString damageInBinary(const foundation::Data& bytes) {
    const Trailer trailer(bytes.view());
    if (!trailer.isWhole)
        return u"at its end, byte %1, is no table of objects: cut short or overwritten"_s.arg(
            bytes.size());
    const auto list = BinaryPropertyList::open(bytes);
    return list ? brokenObject(*list) : misplacedObject(bytes.view(), trailer);
}

}  // namespace

QString damageIn(const foundation::Data& bytes, const std::exception& error) {
    if (bytes.isEmpty()) return u"it is empty"_s;
    if (!beginsLikeArchive(bytes.view())) return u"it begins like no archive"_s;
    QString where;
    if (bytes.view().startsWith("bplist")) where = damageInBinary(bytes);
    if (bytes.view().startsWith('\x04')) where = inspector::writeArchive(bytes, [](auto) {});
    if (!where.isEmpty()) return where;
    const QString reason = foundation::plainReason(error);
    const QString known = u"not a transcript, or damaged: "_s;
    return reason.startsWith(known) ? reason.sliced(known.size()) : reason;
}

}  // namespace vell
