#pragma once
// SPDX-License-Identifier: MIT
//
// FileWrapper: a file, folder or link as a value, from the disk or from inside an archive. The
// serialised form ("flat RTFD") is read by parseSerializedFileWrapper.

#include <QString>
#include <memory>
#include <optional>
#include <vector>

#include "foundation/stored_data.h"
#include "foundation/value.h"

namespace foundation {

class FileWrapper final : public Object {
  public:
    enum class Kind { regularFile, directory, symbolicLink };

    /// A regular file with these bytes and no name.
    explicit FileWrapper(Data contents) : kind(Kind::regularFile), contents(std::move(contents)) {}
    /// A wrapper without contents; fill in the rest.
    explicit FileWrapper(Kind kind) : kind(kind) {}

    Kind kind;
    /// The name on disk; a wrapper from an archive has its stored name here too.
    std::optional<QString> filename;
    std::optional<QString> preferredFilename;
    /// The bytes of a regular file; absent when they could not be read.
    std::optional<StoredData> contents;
    /// The target of a symbolic link, as stored; it is never followed.
    std::optional<QString> linkDestination;
    /// The entries of a directory, in stored order, each with its name in `filename`.
    std::vector<std::shared_ptr<const FileWrapper>> children;
    /// The modification date of the file on disk, where known.
    std::optional<Date> modificationDate;

    [[nodiscard]] bool isRegularFile() const { return kind == Kind::regularFile; }
    [[nodiscard]] bool isDirectory() const { return kind == Kind::directory; }
    [[nodiscard]] bool isSymbolicLink() const { return kind == Kind::symbolicLink; }

    [[nodiscard]] QByteArray className() const override { return "NSFileWrapper"; }
    /// `<FileWrapper: "NAME" regular file, N bytes>`, `… directory, N entries>`, `… symbolic
    /// link to "DESTINATION">`; unknown parts are left out.
    [[nodiscard]] QString description() const override;

    /// Equal in kind, names, contents, destination and entries.
    friend bool operator==(const FileWrapper& a, const FileWrapper& b);
    friend size_t qHash(const FileWrapper& wrapper, size_t seed = 0) { return wrapper.hash(seed); }
    [[nodiscard]] size_t hash(size_t seed = 0) const;
};

/// Reads the serialised form; null when it is malformed. Attachment bytes stay slices of `data`.
[[nodiscard]] std::shared_ptr<FileWrapper> parseSerializedFileWrapper(const Data& data);

}  // namespace foundation
