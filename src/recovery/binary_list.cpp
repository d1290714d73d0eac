// SPDX-License-Identifier: MIT
//
// Archivers write a property list's objects in the order of their numbers, without space between
// them. So the offset table, which stands at the end and is the first thing a cut takes away, can
// be made again from the objects, and each of both corrects the other where single bytes are wrong.
#include <QtEndian>
#include <algorithm>
#include <vector>

#include "recovery/names.h"
#include "recovery/repaired_list.h"

namespace vell::recovery {
namespace {

using foundation::BinaryPropertyList;
using foundation::Data;
using Kind = BinaryPropertyList::Kind;
using Ref = BinaryPropertyList::Ref;

constexpr quint64 magicSize = 8;
constexpr quint64 trailerSize = 32;
/// Offsets below the magic's end make an object invalid.
constexpr quint64 invalidOffset = 0;
/// Neighbours that an object's place is judged by.
constexpr quint64 lookAhead = 6;

quint64 load(const char* bytes, unsigned size) {
    quint64 value = 0;
    for (unsigned i = 0; i < size; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[i]);
    return value;
}

/// The bytes in which objects lie, and how wide their references are.
struct Objects {
    const char* bytes;
    quint64 end;
    unsigned refSize;

    /// Where the object ends; 0 if none begins there, or it isn't whole.
    [[nodiscard]] quint64 endOf(quint64 at) const {
        if (at < magicSize || at >= end) return 0;
        const auto marker = static_cast<unsigned char>(bytes[at]);
        const unsigned low = marker & 0x0f;
        switch (marker >> 4) {
            case 0x0:
                return marker == 0x00 || marker == 0x08 || marker == 0x09 ? at + 1 : 0;
            case 0x1:
                return low <= 4 ? within(at + 1, 1u << low, 1) : 0;
            case 0x2:
                return low == 2 || low == 3 ? within(at + 1, 1u << low, 1) : 0;
            case 0x3:
                return low == 3 ? within(at + 1, 8, 1) : 0;
            case 0x4:
            case 0x5:
                return items(at, low, 1);
            case 0x6:
                return items(at, low, 2);
            case 0x8:
                return low < 8 ? within(at + 1, low + 1, 1) : 0;
            case 0xa:
            case 0xc:
                return items(at, low, refSize);
            case 0xd:
                return items(at, low, 2 * refSize);
            default:
                return 0;
        }
    }

  private:
    [[nodiscard]] quint64 within(quint64 first, quint64 count, unsigned itemSize) const {
        return first <= end && count <= (end - first) / itemSize ? first + count * itemSize : 0;
    }
    [[nodiscard]] quint64 items(quint64 at, unsigned low, unsigned itemSize) const {
        if (low < 15) return within(at + 1, low, itemSize);
        if (at + 1 >= end) return 0;
        const unsigned size = 1u << (bytes[at + 1] & 7);
        if ((bytes[at + 1] & 0xf8) != 0x10 || size > 8 || size >= end - at - 1) return 0;
        return within(at + 2 + size, load(bytes + at + 2, size), itemSize);
    }
};

/// The whole objects from the front on.
std::vector<quint64> scanned(const Objects& objects, quint64& end) {
    std::vector<quint64> offsets;
    for (end = magicSize; end < objects.end;) {
        const quint64 next = objects.endOf(end);
        if (next == 0) break;
        offsets.push_back(end);
        end = next;
    }
    return offsets;
}

/// Corrects names among the objects whose places are known: keys, and in classes' records the names
/// of classes.
class Names {
  public:
    Names(QByteArray& bytes, const Objects& objects, const std::vector<quint64>& offsets)
        : bytes_(bytes), objects_(objects), offsets_(offsets), budget_(bytes.size()) {}

    void correct() {
        for (const quint64 offset : offsets_) {
            const Items pairs = items(offset, 0xd);
            for (quint64 i = 0; i < pairs.count; ++i)
                correct(ref(pairs, i), correctedKey);
        }
        for (const quint64 offset : offsets_) {
            const Items pairs = items(offset, 0xd);
            for (quint64 i = 0; i < pairs.count; ++i) {
                const QByteArrayView key = text(ref(pairs, i));
                const quint64 value = ref(pairs, pairs.count + i);
                if (key == "$classname") correct(value, correctedClass);
                if (key != "$classes" || value >= offsets_.size()) continue;
                const Items names = items(offsets_[value], 0xa);
                for (quint64 j = 0; j < names.count; ++j)
                    correct(ref(names, j), correctedClass);
            }
        }
    }

  private:
    struct Items {
        quint64 first = 0;
        quint64 count = 0;
    };

    QByteArray& bytes_;
    const Objects& objects_;
    const std::vector<quint64>& offsets_;
    quint64 budget_;  ///< references to look at: real objects don't overlap

    /// Of a container of that kind; none if it isn't one.
    Items items(quint64 at, unsigned kind) {
        const quint64 end = objects_.endOf(at);
        if (end == 0 || static_cast<unsigned char>(bytes_[at]) >> 4 != kind) return {};
        quint64 first = at + 1;
        if ((bytes_[at] & 0x0f) == 0x0f) first = at + 2 + (1u << (bytes_[at + 1] & 7));
        const quint64 count = (end - first) / objects_.refSize / (kind == 0xd ? 2 : 1);
        if (count > budget_) return {};
        budget_ -= count;
        return {first, count};
    }
    [[nodiscard]] quint64 ref(const Items& items, quint64 index) const {
        return load(bytes_.constData() + items.first + index * objects_.refSize, objects_.refSize);
    }
    /// Short ASCII only.
    [[nodiscard]] QByteArrayView text(quint64 ref) const {
        if (ref >= offsets_.size()) return {};
        const quint64 at = offsets_[ref];
        const quint64 end = objects_.endOf(at);
        if (end == 0 || static_cast<unsigned char>(bytes_[at]) >> 4 != 0x5) return {};
        const quint64 first = at + ((bytes_[at] & 0x0f) == 0x0f ? 3 : 1);
        return QByteArrayView(bytes_).sliced(qsizetype(first), qsizetype(end - first));
    }
    void correct(quint64 ref, QByteArrayView (*correction)(QByteArrayView)) {
        const QByteArrayView name = text(ref);
        const QByteArrayView right = correction(name);
        const qsizetype first = name.data() - bytes_.constData();
        if (right.data() != name.data())
            std::copy(right.begin(), right.end(), bytes_.data() + first);
    }
};

std::optional<RepairedList> opened(const Data& data, const Objects& objects,
                                   const std::vector<quint64>& offsets, quint64 damagedAfter) {
    const auto firstValid =
        std::find_if(offsets.begin(), offsets.end(), [](quint64 offset) { return offset > 0; });
    if (firstValid == offsets.end()) return std::nullopt;
    QByteArray bytes;
    bytes.reserve(qsizetype(objects.end + 8 * offsets.size() + trailerSize));
    bytes.append("bplist00").append(data.view().sliced(magicSize, qsizetype(objects.end) - 8));
    Names(bytes, objects, offsets).correct();
    const auto append = [&bytes](quint64 value) {
        const quint64 stored = qToBigEndian(value);
        bytes.append(reinterpret_cast<const char*>(&stored), sizeof stored);
    };
    for (const quint64 offset : offsets)
        append(offset);
    bytes.append(6, '\0').append(char(8)).append(char(objects.refSize));
    append(offsets.size());
    append(quint64(firstValid - offsets.begin()));
    append(objects.end);
    auto list = BinaryPropertyList::open(Data(bytes));
    if (!list) return std::nullopt;
    const auto array = objectsArray(*list);
    if (!array) return std::nullopt;
    return RepairedList{*std::move(list), *array, qint64(damagedAfter)};
}

/// With the archive's own offset table, each of whose entries may be wrong.
std::optional<RepairedList> fromTable(const Data& data) {
    const auto size = quint64(data.size());
    if (size < magicSize + 1 + trailerSize) return std::nullopt;
    const char* const trailer = data.end() - trailerSize;
    const unsigned offsetSize = static_cast<unsigned char>(trailer[6]);
    const unsigned refSize = static_cast<unsigned char>(trailer[7]);
    const auto count = qFromBigEndian<quint64>(trailer + 8);
    const auto tableOffset = qFromBigEndian<quint64>(trailer + 24);
    if (offsetSize < 1 || offsetSize > 8 || refSize < 1 || refSize > 8 || count < 1 ||
        tableOffset <= magicSize || tableOffset >= size - trailerSize || count > size ||
        count * offsetSize != size - trailerSize - tableOffset)
        return std::nullopt;
    const Objects objects{data.begin(), tableOffset, refSize};
    const auto stored = [&](quint64 i) {
        return i == count ? tableOffset
                          : load(data.begin() + tableOffset + i * offsetSize, offsetSize);
    };
    quint64 neighbours = 0;
    for (quint64 i = 0; i < count; ++i)
        if (objects.endOf(stored(i)) == stored(i + 1)) ++neighbours;
    const bool isDense = neighbours > count / 2;
    // Whether an object of that number can begin there, by where those behind it are.
    const auto leadsOn = [&](quint64 at, quint64 number) {
        for (quint64 i = 1; at != 0 && i <= lookAhead && number + i <= count; ++i) {
            at = objects.endOf(at);
            if (at == stored(number + i)) return true;
        }
        return false;
    };
    std::vector<quint64> offsets;
    offsets.reserve(count);
    quint64 damagedAfter = size;
    quint64 offset = stored(0);
    for (quint64 i = 0; i < count; ++i) {
        const quint64 end = objects.endOf(offset);
        quint64 next = stored(i + 1);
        bool isValid = end != 0 && offset < tableOffset;
        if (isDense && isValid && end != next && i + 1 < count) {
            if (leadsOn(next, i + 1))
                isValid = false;
            else
                next = end;
        }
        if (!isValid) damagedAfter = std::min(damagedAfter, std::max(offset, magicSize));
        offsets.push_back(isValid ? offset : invalidOffset);
        offset = next;
    }
    if (damagedAfter == size) damagedAfter = tableOffset;
    return opened(data, objects, offsets, damagedAfter);
}

}  // namespace

std::optional<Ref> objectsArray(const BinaryPropertyList& list) {
    std::optional<Ref> found;
    quint64 most = 0;
    for (Ref ref = 0; ref < list.objectCount(); ++ref) {
        const auto node = list.node(ref);
        if (node.kind() != Kind::array || node.count() <= most) continue;
        const auto first = list.node(list.element(node, 0));
        if (first.kind() != Kind::asciiString || first.count() != 5 ||
            QByteArrayView(first.payload(), 5) != "$null")
            continue;
        found = ref;
        most = node.count();
    }
    return found;
}

std::optional<RepairedList> repairedBinary(const Data& data) {
    if (auto result = fromTable(data)) return result;
    if (quint64(data.size()) <= magicSize) return std::nullopt;
    for (const unsigned refSize : {1u, 2u, 3u, 4u}) {
        const Objects objects{data.begin(), quint64(data.size()), refSize};
        quint64 end = 0;
        const std::vector<quint64> offsets = scanned(objects, end);
        if (auto result = opened(data, {data.begin(), end, refSize}, offsets, end)) return result;
    }
    return std::nullopt;
}

}  // namespace vell::recovery
