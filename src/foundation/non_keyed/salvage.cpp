// SPDX-License-Identifier: MIT
//
// Reading a damaged archive. The stream has no lengths and no index: behind a break its grammar is
// found again where an instance of the wanted class begins, since every one but the first begins
// with the same bytes. How many objects the break has swallowed is unknown, and so are the numbers
// of all that follow; an instance that refers to one of these is lost, not guessed.
#include <QtEndian>
#include <algorithm>

#include "foundation/non_keyed/reader.h"

namespace foundation::non_keyed {
namespace {

/// Bytes between two neighbouring elements: the type of the next one.
constexpr qsizetype longestSeparator = 3;
/// Attempts that fail may read this often the size of the archive before they are no longer begun
/// inside one another.
constexpr quint64 repeatedReading = 8;

}  // namespace

Reader::Salvage Reader::salvage(const ClassInfo& wanted, std::vector<qsizetype> mended, Fits fits) {
    wanted_ = &wanted;
    fits_ = std::move(fits);
    mended_ = std::move(mended);
    Salvage result;
    bool isWhole = false;
    try {
        const auto root = readRoot().object<Array>();
        if (root && !root->elements.empty()) result.first = root->elements.front();
        isWhole = true;
    } catch (const MalformedArchive&) {
        result.breakOffset = stream_.position() - data_.begin();
    }
    for (const Begun& begun : begun_) {
        if (isSound(begun))
            result.instances.push_back(
                {rebuilder_.value(StreamValue::of(StreamValue::Kind::object, '@', begun.number)),
                 result.endsInGap});
        result.endsInGap = !isSound(begun);
    }
    if (isWhole)
        result.storedCount = qint64(begun_.size());
    else
        noteCollection(result);
    if (!isWhole && !begun_.empty() && !isFinished(begun_.back())) salvageBehindBreak(result);
    return result;
}

/// Whether one of the bytes read since then was mended.
bool Reader::holdsMended(const char* start) const {
    const auto first = std::lower_bound(mended_.begin(), mended_.end(), start - data_.begin());
    return first != mended_.end() && *first < stream_.position() - data_.begin();
}

bool Reader::holdsMisfit(std::span<const StreamValue> values) {
    for (size_t i = 0; i < values.size(); ++i)
        if (values[i].kind == StreamValue::Kind::object && !fits_(i, rebuilder_.value(values[i])))
            return true;
    return false;
}

/// The values of unfinished objects are those of the root and, if the break is inside it, those of
/// the collection of the instances, whose first is their number.
void Reader::noteCollection(Salvage& salvage) {
    if (values_.size() > 1) salvage.first = rebuilder_.value(values_[1]);
    if (begun_.empty() || !isFinished(begun_.front())) return;
    for (size_t i = 1; i < values_.size(); ++i) {
        if (!values_[i].isObject() || values_[i].number != begun_.front().number) continue;
        const StreamValue& count = values_[i - 1];
        if (count.kind == StreamValue::Kind::integer && count.integer >= 0)
            salvage.storedCount = count.integer;
        return;
    }
}

/// What an instance begins with once its class is known: the marks of a new object and its class.
QByteArray Reader::instanceHead() const {
    for (quint32 number = 0; number < certainObjects(); ++number) {
        const auto& entry = table_[number];
        if (entry.kind != ObjectTable::Kind::classRecord || classes_[entry.index].info != wanted_)
            continue;
        const qint64 reference = qint64(number) + firstReference;
        QByteArray head(1, char(Mark::isNew));
        if (reference <= 127) return head.append(char(reference));
        if (reference > 32767) return {};
        const auto wide = stream_.isBigEndian() ? qToBigEndian(qint16(reference))
                                                : qToLittleEndian(qint16(reference));
        head.append(char(Mark::int16));
        return head.append(reinterpret_cast<const char*>(&wide), sizeof wide);
    }
    return {};
}

/// Behind a mended byte numbers may be others than those that were written. Classes are recognised
/// by what they are; objects are not.
quint32 Reader::firstDoubtful() const {
    const auto doubtful = std::find_if(begun_.begin(), begun_.end(), [this](const Begun& begun) {
        return !mended_.empty() && begun.position - data_.begin() > mended_.front();
    });
    return doubtful == begun_.begin() ? begun_.front().number : std::prev(doubtful)->number;
}

void Reader::salvageBehindBreak(Salvage& salvage) {
    const char* from = begun_.back().position;
    certainObjects_ = begun_.back().number;
    certainStrings_ = begun_.back().strings;
    const QByteArray head = instanceHead();
    salvage.endsInGap = true;
    if (head.isEmpty()) return;
    certainInstances_ = firstDoubtful();
    quint64 readAgain = 0;
    bool followsGap = true;
    while (true) {
        const QByteArrayView rest(from, data_.end() - from);
        const qsizetype at = rest.indexOf(head);
        if (at < 0) break;
        if (at > longestSeparator) followsGap = true;
        const char* const start = from + at;
        stream_.moveTo(start);
        values_.clear();
        nesting_ = 0;
        try {
            const StreamValue instance = readObject();
            const Value& value = rebuilder_.value(instance);
            if (value.isNothing() || untrusted_.contains(instance.number)) throw MalformedArchive();
            salvage.instances.push_back({value, followsGap});
            followsGap = false;
            from = stream_.position();
        } catch (const MalformedArchive&) {
            followsGap = true;
            readAgain += quint64(stream_.position() - start);
            const bool isExcessive = readAgain > repeatedReading * quint64(data_.size());
            from = isExcessive ? std::max(stream_.position(), start + 1) : start + 1;
        }
    }
    salvage.endsInGap = followsGap;
}

}  // namespace foundation::non_keyed
