// SPDX-License-Identifier: MIT
#include "foundation/non_keyed/stream_repair.h"

#include <algorithm>
#include <array>
#include <compare>
#include <optional>

#include "foundation/non_keyed/typed_stream.h"

namespace foundation::non_keyed {
namespace {

/// Steps that reading may go back behind a break.
constexpr size_t history = 96;
/// How far reading goes on behind a break with a byte that is taken.
constexpr size_t surelyShaped = 24;
constexpr int surelySteps = 2000;
constexpr int fewestSteps = 24;
/// A mark is known for certain when no other byte leads as far as it does, and it leads this far.
constexpr size_t certainlyShaped = 4;
/// A real archive ends with its root.
constexpr qsizetype longestTail = 16;
/// Steps in all.
constexpr quint64 budgetPerByte = 16;
constexpr quint64 baseBudget = 3'000'000;

constexpr qsizetype headerSize = 16;
constexpr qsizetype mostHeaderErrors = 6;

qsizetype differences(const char* bytes, const QByteArray& known) {
    qsizetype count = 0;
    for (qsizetype i = 0; i < known.size(); ++i)
        count += bytes[i] != known[i] ? 1 : 0;
    return count;
}

class Repairer {
  public:
    Repairer(StreamRepair& result, bool isBigEndian, const ClassRegistry& registry,
             const std::vector<ClassShape>& shapes)
        : result_(result),
          bytes_(result.bytes),
          skimmer_(bytes_, headerSize, isBigEndian, registry, shapes),
          shapes_(shapes),
          budget_(quint64(bytes_.size()) * budgetPerByte + baseBudget) {}

    void run();

  private:
    /// One step: the state before it, and where it read.
    struct Past {
        StreamSkimmer::State state;
        std::vector<qsizetype> places;
    };
    /// Greater is better. As many objects in fewer bytes are better: none is swallowed by a text.
    struct Progress {
        size_t shaped = 0;
        qsizetype unread = 0;  ///< behind the last of as many objects as are looked at
        int steps = 0;
        friend auto operator<=>(const Progress&, const Progress&) = default;
    };
    struct Mend {
        qsizetype place = -1;
        char byte = 0;
        Progress progress;
        bool isOnly = false;         ///< of those that lead as far
        StreamSkimmer::State state;  ///< to read on from
    };

    StreamRepair& result_;
    QByteArray& bytes_;
    StreamSkimmer skimmer_;
    const std::vector<ClassShape>& shapes_;
    std::array<Past, history> past_;  ///< a ring
    size_t next_ = 0;                 ///< steps in it so far
    quint64 budget_;

    bool correctNames();
    [[nodiscard]] bool leadsBack(size_t step) const;
    [[nodiscard]] bool swallows(qsizetype breakPosition) const;
    [[nodiscard]] bool mend(qsizetype breakPosition);
    [[nodiscard]] std::optional<Mend> unmended(qsizetype breakPosition);
    void tryPlace(qsizetype place, size_t step, qsizetype breakPosition, Mend& best);
    [[nodiscard]] Progress progressBehind(size_t step, qsizetype breakPosition);
};

void Repairer::run() {
    while (true) {
        Past& now = past_[next_ % history];
        now.state = skimmer_.state();
        try {
            const bool isDone = !skimmer_.step();
            if (isDone && bytes_.size() - skimmer_.position() <= longestTail) return;
            if (isDone) throw MalformedArchive();
            if (correctNames()) {
                skimmer_.returnTo(now.state);
                continue;
            }
            now.places = skimmer_.places();
            ++next_;
        } catch (const MalformedArchive&) {
            if (correctNames()) {
                skimmer_.returnTo(now.state);
                continue;
            }
            now.places = skimmer_.places();
            const qsizetype position = skimmer_.position();
            if (result_.firstBreak < 0) result_.firstBreak = position;
            if (!mend(position)) return;
        }
    }
}

/// A class name of which one byte is wrong; the names of unknown classes stay.
bool Repairer::correctNames() {
    for (const StreamSkimmer::Text& name : skimmer_.unknownNames()) {
        char* const at = bytes_.data() + name.begin;
        for (const ClassShape& shape : shapes_) {
            const QByteArray& known = shape.owner->name;
            if (known.size() != name.size) continue;
            if (differences(at, known) != 1) continue;
            std::copy(known.begin(), known.end(), at);
            return true;
        }
    }
    return false;
}

/// An object that isn't what its owner holds there may have been written so, and a wrong reference
/// is likely to lead to one: nothing is mended if all behind it can be read, or nothing helps.
std::optional<Repairer::Mend> Repairer::unmended(qsizetype breakPosition) {
    const Past& now = past_[next_ % history];
    const qsizetype place = now.places.empty() ? breakPosition - 1 : now.places.back();
    skimmer_.setMisfitAllowed(breakPosition, true);
    skimmer_.returnTo(now.state);
    return Mend{place, bytes_[place], progressBehind(next_, breakPosition), false, now.state};
}

bool Repairer::mend(qsizetype breakPosition) {
    const StreamSkimmer::State& earliest =
        past_[(next_ - std::min(next_, history - 1)) % history].state;
    const StreamSkimmer::Entries entries = skimmer_.entriesBehind(earliest);
    const std::optional<Mend> nothing =
        skimmer_.isAtMisfit() ? unmended(breakPosition) : std::nullopt;
    skimmer_.setMisfitAllowed(breakPosition, false);
    Mend best = nothing.value_or(Mend());
    const bool isEnough = best.progress.steps == surelySteps;
    for (size_t back = 0; !isEnough && budget_ > 0 && back <= next_ && back < history; ++back) {
        const auto& places = past_[(next_ - back) % history].places;
        for (auto place = places.rbegin(); place != places.rend(); ++place)
            tryPlace(*place, next_ - back, breakPosition, best);
    }
    if (best.progress.steps < fewestSteps) {
        if (!nothing) return false;
        best = *nothing;
    }
    skimmer_.setMisfitAllowed(breakPosition, bytes_[best.place] == best.byte);
    bytes_[best.place] = best.byte;
    // A mark is certain when it is the only one; of references others may fit as well by chance.
    const bool isMark = best.byte == char(Mark::isNew) || best.byte == char(Mark::endOfObject);
    if (!isMark || !best.isOnly || best.progress.shaped < certainlyShaped)
        result_.mended.push_back(best.place);
    skimmer_.returnTo(earliest, entries, best.state);
    next_ = 0;
    return true;
}

void Repairer::tryPlace(qsizetype place, size_t step, qsizetype breakPosition, Mend& best) {
    const StreamSkimmer::State& state = past_[step % history].state;
    const char original = bytes_[place];
    for (int value = 0; value < 256; ++value) {
        if (char(value) == original || budget_ == 0) continue;
        bytes_[place] = char(value);
        budget_ -= std::min<quint64>(budget_, state.frames.size());
        skimmer_.returnTo(state);
        const Progress progress = progressBehind(step, breakPosition);
        if (progress > best.progress)
            best = {place, char(value), progress, true, state};
        else if (progress == best.progress)
            best.isOnly = false;
    }
    bytes_[place] = original;
}

Repairer::Progress Repairer::progressBehind(size_t step, qsizetype breakPosition) {
    const size_t shaped = skimmer_.state().shaped;
    Progress progress;
    try {
        while (progress.shaped < surelyShaped && progress.steps < surelySteps && budget_ > 0) {
            --budget_;
            if (!skimmer_.step()) {
                if (bytes_.size() - skimmer_.position() > longestTail) return {};
                progress.steps = surelySteps;
                return progress;
            }
            if (leadsBack(step) || swallows(breakPosition)) return {};
            ++step;
            if (skimmer_.position() <= breakPosition) continue;
            ++progress.steps;
            progress.shaped = skimmer_.state().shaped - shaped;
        }
    } catch (const MalformedArchive&) {
    }
    if (progress.shaped >= surelyShaped) {
        progress.unread = bytes_.size() - skimmer_.position();
        progress.steps = surelySteps;
    }
    return progress;
}

/// Whether a step has led to the state that it led to when it was done first, and so to the same
/// break. The text of a shared string matters later.
bool Repairer::leadsBack(size_t step) const {
    if (step >= next_) return false;
    const StreamSkimmer::State& after = past_[(step + 1) % history].state;
    return after == skimmer_.state() && after.strings == past_[step % history].state.strings;
}

/// Whether the text read last goes on over the break, but isn't one.
bool Repairer::swallows(qsizetype breakPosition) const {
    const auto [begin, size] = skimmer_.text();
    if (begin > breakPosition || begin + size <= breakPosition) return false;
    const QByteArrayView text = QByteArrayView(bytes_).sliced(begin, size);
    return text.contains('\0') || text.contains('\1') || !text.isValidUtf8();
}

/// Whether the archive is big-endian; writes its header anew.
std::optional<bool> correctHeader(QByteArray& bytes) {
    if (bytes.size() < headerSize) return std::nullopt;
    const QByteArray headers[] = {QByteArray("\x04\x0bstreamtyped\x81\xe8\x03", headerSize),
                                  QByteArray("\x04\x0btypedstream\x81\x03\xe8", headerSize)};
    for (const QByteArray& header : headers) {
        if (differences(bytes.constData(), header) > mostHeaderErrors) continue;
        std::copy(header.begin(), header.end(), bytes.begin());
        return &header == &headers[1];
    }
    return std::nullopt;
}

}  // namespace

StreamRepair repairStream(QByteArrayView bytes, const ClassRegistry& registry,
                          const std::vector<ClassShape>& shapes) {
    StreamRepair result{bytes.toByteArray(), {}, -1};
    if (const auto isBigEndian = correctHeader(result.bytes))
        Repairer(result, *isBigEndian, registry, shapes).run();
    std::sort(result.mended.begin(), result.mended.end());
    return result;
}

}  // namespace foundation::non_keyed
