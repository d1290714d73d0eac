#pragma once
// SPDX-License-Identifier: MIT
//
// VCardReader: finds the cards in a file of any size, holding one card and one piece of the file at
// a time. The file may be UTF-16, as some address books wrote it, and what stands between cards is
// passed over. A card that isn't whole is told, not returned, and the rest is read.

#include <QStringConverter>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "identity/vcard.h"

namespace vell {

class VCardReader {
  public:
    /// Larger ones are told as defects.
    static constexpr size_t largestCard = size_t{32} << 20;

    enum class Defect { none, noEnd, tooLarge };

    struct Item {
        std::string_view card;  ///< UTF-8 or whatever 8-bit set; empty for a defect
        Defect defect = Defect::none;
        qint64 line = 0;  ///< of the card's first line, counted from 1
    };

    /// Puts up to `size` bytes into the buffer and answers how many; 0 at the end.
    using Source = std::function<size_t(char* buffer, size_t size)>;

    explicit VCardReader(Source source) : source_(std::move(source)) {}
    VCardReader(const VCardReader&) = delete;
    VCardReader& operator=(const VCardReader&) = delete;

    /// The next card, valid until the next call; nothing at the end.
    [[nodiscard]] std::optional<Item> next();

  private:
    [[nodiscard]] bool takeLine(std::string_view& line);
    void fill();
    void append(std::string_view bytes);
    [[nodiscard]] std::optional<Item> beginCard(std::string_view line);
    [[nodiscard]] std::optional<Item> endCard();
    void readAgent(std::string_view line);
    [[nodiscard]] Item leaveCard(Defect defect);
    [[nodiscard]] size_t cardSize() const { return position_ - cardStart_; }

    Source source_;
    std::string piece_;
    std::string buffer_;
    size_t position_ = 0;  ///< in buffer_, of the first byte not yet taken as a line
    bool atEnd_ = false;
    bool isFirstPiece_ = true;
    std::optional<QStringDecoder> decoder_;  ///< of a file in UTF-16
    QStringEncoder encoder_{QStringEncoder::Utf8};

    LineEnds lineEnds_;
    qint64 linesTaken_ = 0;
    bool isMidLine_ = false;  ///< the line at position_ has lost its start
    bool isAfterAgent_ = false;

    int depth_ = 0;         ///< of cards within the card; 0 outside of all
    size_t cardStart_ = 0;  ///< in buffer_, inside a card
    qint64 cardLine_ = 0;
};

/// What a defect is called in a log.
[[nodiscard]] const char* name(VCardReader::Defect defect);

}  // namespace vell
