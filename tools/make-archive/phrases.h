#pragma once
// SPDX-License-Identifier: MIT
//
// Sentences of an invented conversation in three languages, words as frequent as they are in real
// ones: few are everywhere, most are rare.

#include <QString>
#include <QStringList>
#include <random>

namespace archive {

enum class Language { english, japanese, arabic };

class Phrases {
  public:
    explicit Phrases(Language language);
    /// Some 50 characters, fewer where a character is half a word.
    [[nodiscard]] QString sentence(std::mt19937& random) const;

  private:
    const Language language_;
    QStringList words_;

    [[nodiscard]] const QString& word(std::mt19937& random) const;
};

}  // namespace archive
