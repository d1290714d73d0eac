#pragma once
// SPDX-License-Identifier: MIT
//
// HitPrinter: writes what was found to standard output, as lines or as JSON. Neighbouring messages
// of one file are printed together, each once.

#include <QString>
#include <functional>
#include <vector>

#include "cli/find_options.h"
#include "cli/sink.h"
#include "library/search_hit.h"

namespace vell {

class HitPrinter {
  public:
    /// Borrows the options.
    HitPrinter(const FindOptions& options, std::function<QString(const TesselUserID&)> nameOf);

    /// Throws WriteError, as do the others.
    void print(const SearchHit& hit);
    void printCount(qint64 count);
    /// To be called at the end.
    void finish();

  private:
    struct Line {
        FoundMessage message;
        bool isHit = false;
    };

    const FindOptions& options_;
    const std::function<QString(const TesselUserID&)> nameOf_;
    Sink sink_;
    const bool isTerminal_;
    TextTokenizer tokenizer_;
    // Of the file at hand, where context is wanted; by their sequence.
    QByteArray path_;
    std::vector<std::vector<Line>> blocks_;
    bool hasPrintedBlock_ = false;

    [[nodiscard]] QByteArray shownPath(const QByteArray& path) const;
    [[nodiscard]] QString senderOf(const FoundMessage& message) const;
    [[nodiscard]] QByteArray colored(const char* color, const QByteArray& text) const;
    [[nodiscard]] QByteArray marked(const FoundMessage& message);
    void printJson(const SearchHit& hit);
    void printLine(const QByteArray& path, const FoundMessage& message, bool isHit);
    void addBlock(const SearchHit& hit);
    void printBlocks();
    void flushOnTerminal();
};

}  // namespace vell
