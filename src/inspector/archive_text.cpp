// SPDX-License-Identifier: MIT
#include "inspector/archive_text.h"

#include <vector>

#include "inspector/archive.h"
#include "inspector/text_lines.h"

namespace vell::inspector {

using namespace Qt::StringLiterals;

namespace {

/// Containers in one another; deeper ones are named only.
constexpr int maximumDepth = 64;
/// Of texts that were written before.
constexpr qsizetype longestRepetition = 120;
/// More than any archive has whose values don't share their bytes.
constexpr quint64 mostPartsPerByte = 16;

/// Containers share their bytes, which no real list does.
struct Overlap {};

class ArchiveText {
  public:
    ArchiveText(Archive& archive, qsizetype size, TextLines& lines)
        : archive_(archive),
          lines_(lines),
          isWritten_(archive.placeCount() + 1),
          partsLeft_(quint64(size) * mostPartsPerByte) {}

    void write();

  private:
    Archive& archive_;
    TextLines& lines_;
    std::vector<bool> isWritten_;  ///< by place
    quint64 partsLeft_;
    QByteArray path_;

    void writeObject(const Entry& entry);
    void writeParts(const Entry& whole, int depth);
    void writeValue(const Entry& entry, int depth);
    void writeText(const Entry& entry);
    void writeContainer(const Entry& entry, int depth);
    bool isNew(const Entry& entry);
};

void ArchiveText::write() {
    lines_ << archive_.summary().toUtf8();
    lines_.endLine();
    writeParts(archive_.root(), 0);
    for (quint64 number = 0; number < archive_.objectCount(); ++number)
        writeObject(archive_.object(number));
}

void ArchiveText::writeObject(const Entry& entry) {
    path_ = entry.step.toUtf8();
    lines_ << path_;
    if (entry.offset >= 0) lines_ << " @" << entry.offset;
    const bool isObject = entry.kind == Entry::Kind::object;
    if (!isObject && entry.kind != Entry::Kind::classRecord) {
        lines_ << " = ";
        return writeValue(entry, 0);
    }
    if (!entry.value.isEmpty()) {
        lines_ << " ";
        lines_.appendName(entry.value);
    }
    const bool isKnown = isObject && !isNew(entry);
    if (isKnown) lines_ << ", the same as above";
    lines_.endLine();
    if (!isKnown) writeParts(entry, 0);
}

void ArchiveText::writeParts(const Entry& whole, int depth) {
    if (whole.count > partsLeft_) throw Overlap();
    partsLeft_ -= whole.count;
    if (whole.count == 0) return;
    const qsizetype length = path_.size();
    archive_.visitParts(whole, 0, [&](const Entry& part) {
        path_.append(part.step.toUtf8());
        lines_ << path_ << " = ";
        writeValue(part, depth);
        path_.truncate(length);
        return true;
    });
}

/// The rest of a line, and the lines of what is in it.
void ArchiveText::writeValue(const Entry& entry, int depth) {
    if (entry.kind == Entry::Kind::container) return writeContainer(entry, depth);
    if (entry.kind == Entry::Kind::text)
        writeText(entry);
    else if (entry.kind == Entry::Kind::bytes)
        lines_.appendBytes(entry.bytes.view());
    else
        lines_ << entry.value.toUtf8();
    if (entry.type.size() == 1 && entry.type != "@") lines_ << " (" << entry.type << ")";
    lines_.endLine();
}

void ArchiveText::writeContainer(const Entry& entry, int depth) {
    lines_ << entry.value.toUtf8();
    const bool isKnown = !isNew(entry);
    if (isKnown) lines_ << ", the same as above";
    lines_.endLine();
    if (!isKnown && depth < maximumDepth) writeParts(entry, depth + 1);
}

/// A long one once.
void ArchiveText::writeText(const Entry& entry) {
    const bool isElided = !isNew(entry) && entry.value.size() > longestRepetition;
    lines_.appendText(isElided ? entry.value.first(longestRepetition) : entry.value);
    if (isElided) lines_ << " …";
}

/// Whether it comes for the first time.
bool ArchiveText::isNew(const Entry& entry) {
    const bool result = !isWritten_[entry.place];
    isWritten_[entry.place] = true;
    return result;
}

}  // namespace

QString writeArchive(const foundation::Data& data, const Output& output) {
    Opening opening = openArchive(data);
    if (!opening.archive) return opening.problem;
    TextLines lines(output);
    try {
        ArchiveText(*opening.archive, data.size(), lines).write();
    } catch (const Overlap&) {
        opening.problem = u"its objects share their bytes"_s;
    }
    lines.flush();
    return opening.problem;
}

}  // namespace vell::inspector
