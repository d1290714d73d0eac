// SPDX-License-Identifier: MIT
//
// Any bytes as an archive to look into: whatever is there can be visited from any part on, and as
// text it is valid; also what recovery makes of damaged archives.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "foundation/print.h"
#include "inspector/archive.h"
#include "inspector/archive_text.h"
#include "recovery/recovery.h"

namespace {

using vell::inspector::Archive;
using vell::inspector::Entry;

constexpr int mostVisits = 20000;

bool isSame(const Entry& a, const Entry& b) {
    return a.kind == b.kind && a.step == b.step && a.value == b.value && a.type == b.type &&
           a.offset == b.offset && a.target == b.target && a.count == b.count &&
           a.place == b.place && a.bytes == b.bytes;
}

void visit(Archive& archive, const Entry& whole, int depth, int& visits) {
    std::vector<Entry> parts;
    archive.visitParts(whole, 0, [&](Entry part) {
        parts.push_back(std::move(part));
        return ++visits < mostVisits;
    });
    if (parts.size() > whole.count) std::abort();
    if (!parts.empty()) {
        const std::size_t first = parts.size() / 2;
        archive.visitParts(whole, first, [&](const Entry& part) {
            if (!isSame(part, parts[first])) std::abort();
            return false;
        });
    }
    for (const Entry& part : parts) {
        if (part.place >= archive.placeCount() + 1) std::abort();
        if (part.kind == Entry::Kind::container && depth < 4 && visits < mostVisits)
            visit(archive, part, depth + 1, visits);
    }
}

void inspect(const foundation::Data& data) {
    const auto opening = vell::inspector::openArchive(data);
    if (!opening.archive) return;
    int visits = 0;
    visit(*opening.archive, opening.archive->root(), 0, visits);
    for (quint64 number = 0; number < opening.archive->objectCount() && visits < mostVisits;
         ++number, ++visits)
        visit(*opening.archive, opening.archive->object(number), 0, visits);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    foundation::setPrintFunction([](QStringView) {});
    const foundation::Data input(
        QByteArray(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size)));
    inspect(input);
    if (const auto repaired = vell::recovery::repairedArchive(input)) inspect(repaired->data);
    QByteArray text;
    (void)vell::inspector::writeArchive(input, [&](QByteArrayView part) { text.append(part); });
    if (!text.isValidUtf8()) std::abort();
    return 0;
}
