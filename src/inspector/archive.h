#pragma once
// SPDX-License-Identifier: MIT
//
// Archive: an archive as it is stored, for those who look after such files: every object by its
// number, every value in it. Knows no classes. Values are read when they are visited, so opening
// a keyed archive takes no time, and a non-keyed one a single pass. One thread at a time.
//
//     const Opening opening = openArchive(data);
//     if (opening.archive) opening.archive->visitParts(opening.archive->root(), 0, …);

#include <QString>
#include <array>
#include <functional>
#include <memory>
#include <optional>

#include "foundation/data.h"

namespace vell::inspector {

/// Whether places in the bytes are those in the file.
enum class Offsets : quint8 { known, unknown };

/// A value, and how to its parts.
struct Entry {
    enum class Kind : quint8 {
        scalar,
        text,
        bytes,
        reference,
        container,
        object,
        classRecord,
    };

    Kind kind = Kind::scalar;
    /// What a path to it adds to the path of what it is in: ".Sender", "[3]"; of objects "#7".
    QString step;
    /// A text as it is; the class of an object; of others what is shown.
    QString value;
    /// "integer", "data"; in a non-keyed archive the letter that stands for it.
    QByteArray type;
    qint64 offset = -1;             ///< in the file, where that is known
    std::optional<quint64> target;  ///< the number of the object that it refers to
    quint64 count = 0;              ///< of its parts
    foundation::Data bytes;         ///< of data
    /// Equal for what is stored only once; below Archive::placeCount().
    quint64 place = 0;
    /// How the archive finds the parts.
    std::array<quint32, 3> state{};
};

class Archive {
  public:
    /// Takes an entry; false ends the visit.
    using Visitor = std::function<bool(Entry entry)>;

    Archive() = default;
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;
    virtual ~Archive() = default;

    /// "keyed archive, 12 values, 5 objects"
    [[nodiscard]] virtual QString summary() const = 0;
    [[nodiscard]] virtual quint64 placeCount() const = 0;
    /// What isn't among the objects.
    [[nodiscard]] virtual Entry root() const = 0;
    [[nodiscard]] virtual quint64 objectCount() const = 0;
    [[nodiscard]] virtual Entry object(quint64 number) = 0;
    /// The parts of an entry from the one of that index on; those behind a break are left out.
    virtual void visitParts(const Entry& whole, quint64 first, const Visitor& visitor) = 0;
};

struct Opening {
    std::unique_ptr<Archive> archive;  ///< null when nothing can be read
    QString problem;                   ///< why not all of it can be read; empty if it can
};

/// A keyed archive, another property list, or a non-keyed archive as far as it can be read.
[[nodiscard]] Opening openArchive(const foundation::Data& data, Offsets offsets = Offsets::known);

}  // namespace vell::inspector
