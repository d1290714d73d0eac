#pragma once
// SPDX-License-Identifier: MIT
//
// Writes the serialised form of a file wrapper, the content of an archived attachment.
//
//     const QByteArray bytes = serializedFileWrapper({.name = "cat.png", .contents = png});

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

namespace writers {

struct FileDraft {
    /// The preferred name; none writes no name entries.
    std::optional<QString> name = {};
    QByteArray contents = {};
    /// Present for a directory, even an empty one.
    std::optional<std::vector<FileDraft>> children = {};
    /// Zero bytes before the contents, in the form that aligns them; none: the plain form.
    std::optional<int> padding = {};
};

/// A number as these files hold it: four bytes, the least significant first.
[[nodiscard]] QByteArray word(quint32 value);

[[nodiscard]] QByteArray serializedFileWrapper(const FileDraft& file);

}  // namespace writers
