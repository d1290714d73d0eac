#pragma once
// SPDX-License-Identifier: MIT
//
// Writes an archive as a person might have it after ten years: a folder for each day, in it the
// day's conversations of twelve people in three languages, in both forms. Some files are there
// twice, some are broken, and if wanted some overlap with another one. The same sizes always make
// the same bytes.

#include <QString>

namespace archive {

struct Sizes {
    int files = 20'000;
    int messages = 1'000'000;
    int pictures = 2'000;
    bool hasOverlaps = false;
};

/// Throws std::runtime_error when a file can't be written.
void write(const QString& folder, const Sizes& sizes);
/// Moves some of the archive's files to another folder, as a person tidies up. The bytes stay.
void moveSome(const QString& folder);

}  // namespace archive
