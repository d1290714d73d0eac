// SPDX-License-Identifier: MIT
#include "identity/vcard_reader.h"

#include <QByteArray>
#include <algorithm>
#include <utility>

namespace vell {
namespace {

constexpr size_t pieceSize = size_t{256} << 10;
/// What tells the encoding.
constexpr size_t longestStart = 3;
/// A line longer than this, outside a card, opens none.
constexpr size_t longestMark = 1024;

/// How a file in UTF-16 starts: a byte-order mark, or "B" in two bytes.
std::optional<QStringConverter::Encoding> wideEncoding(std::string_view start) {
    if (start.starts_with("\xfe\xff") || start.starts_with(std::string_view("\0B", 2)))
        return QStringConverter::Utf16BE;
    if (start.starts_with("\xff\xfe") || start.starts_with(std::string_view("B\0", 2)))
        return QStringConverter::Utf16LE;
    return std::nullopt;
}

/// What stands after "AGENT:", or nothing for any other line.
std::optional<std::string_view> agent(std::string_view line) {
    static constexpr std::string_view upper = "AGENT", lower = "agent";
    if (line.size() <= upper.size()) return std::nullopt;
    for (size_t i = 0; i < upper.size(); i++)
        if (line[i] != upper[i] && line[i] != lower[i]) return std::nullopt;
    const size_t colon = line.find(':');
    if (colon == std::string_view::npos) return std::nullopt;
    return line.substr(colon + 1);
}

}  // namespace

const char* name(VCardReader::Defect defect) {
    switch (defect) {
        case VCardReader::Defect::none:
            break;
        case VCardReader::Defect::noEnd:
            return "it has no end";
        case VCardReader::Defect::tooLarge:
            return "it is too large";
    }
    return "";
}

void VCardReader::append(std::string_view bytes) {
    if (!decoder_) {
        buffer_.append(bytes);
        return;
    }
    const QString text = (*decoder_)(QByteArrayView(bytes));
    const QByteArray utf8 = encoder_(text);
    buffer_.append(utf8.constData(), static_cast<size_t>(utf8.size()));
}

void VCardReader::fill() {
    const size_t dropped = depth_ > 0 ? cardStart_ : position_;
    buffer_.erase(0, dropped);
    lineEnds_.shift(dropped);
    position_ -= dropped;
    cardStart_ = 0;

    piece_.resize(pieceSize);
    size_t count = source_(piece_.data(), pieceSize);
    atEnd_ = count == 0;
    std::string_view piece(piece_.data(), count);
    if (std::exchange(isFirstPiece_, false)) {
        // The start of the file must not come in pieces.
        for (size_t more = count; more > 0 && count < longestStart; count += more)
            more = source_(piece_.data() + count, pieceSize - count);
        piece = {piece_.data(), count};
        if (const auto encoding = wideEncoding(piece)) decoder_.emplace(*encoding);
        if (piece.starts_with("\xef\xbb\xbf")) piece.remove_prefix(3);
    }
    append(piece);
}

/// A line of no use to anybody, outside of all cards or in one grown too large, is taken in pieces
/// that read as empty lines.
bool VCardReader::takeLine(std::string_view& line) {
    for (;;) {
        const size_t end = lineEnds_.find(buffer_, position_);
        const bool isEnded = end < buffer_.size();
        // A CR that ends the piece may be half of a CR LF.
        if (atEnd_ ? position_ < buffer_.size() : end + 1 < buffer_.size()) {
            line = std::string_view(buffer_).substr(position_, end - position_);
            if (std::exchange(isMidLine_, false)) line = {};
            const bool isPair = isEnded && buffer_.compare(end, 2, "\r\n") == 0;
            position_ = std::min(end + (isPair ? 2 : 1), buffer_.size());
            linesTaken_++;
            return true;
        }
        if (atEnd_) return false;
        const size_t kept = buffer_.size() - (depth_ > 0 ? cardStart_ : position_);
        if (!isEnded && kept > (depth_ > 0 ? largestCard : longestMark)) {
            line = {};
            position_ = buffer_.size();
            isMidLine_ = true;
            return true;
        }
        fill();
    }
}

std::optional<VCardReader::Item> VCardReader::next() {
    std::string_view line;
    while (takeLine(line)) {
        std::optional<Item> item;
        switch (vcardMark(line)) {
            case VCardMark::begin:
                item = beginCard(line);
                break;
            case VCardMark::end:
                item = endCard();
                break;
            case VCardMark::none:
                readAgent(line);
                break;
        }
        if (!item && depth_ > 0 && cardSize() > largestCard) item = leaveCard(Defect::tooLarge);
        if (item) return item;
    }
    if (depth_ > 0) return leaveCard(Defect::noEnd);
    return std::nullopt;
}

std::optional<VCardReader::Item> VCardReader::beginCard(std::string_view line) {
    if (depth_ > 0 && isAfterAgent_) {
        depth_++;
        isAfterAgent_ = false;
        return std::nullopt;
    }
    std::optional<Item> unfinished;
    if (depth_ > 0) unfinished = leaveCard(Defect::noEnd);
    depth_ = 1;
    isAfterAgent_ = false;
    cardStart_ = static_cast<size_t>(line.data() - buffer_.data());
    cardLine_ = linesTaken_;
    return unfinished;
}

std::optional<VCardReader::Item> VCardReader::endCard() {
    isAfterAgent_ = false;
    if (depth_ == 0) return std::nullopt;
    depth_--;
    if (depth_ > 0) return std::nullopt;
    if (cardSize() > largestCard) return leaveCard(Defect::tooLarge);
    return Item{std::string_view(buffer_).substr(cardStart_, cardSize()), Defect::none, cardLine_};
}

/// Version 2.1 puts the card of somebody's agent into the card as it is.
void VCardReader::readAgent(std::string_view line) {
    if (depth_ == 0 || line.empty()) return;
    const std::optional<std::string_view> card = agent(line);
    if (card && vcardMark(*card) == VCardMark::begin) depth_++;
    isAfterAgent_ = card && card->empty();
}

VCardReader::Item VCardReader::leaveCard(Defect defect) {
    depth_ = 0;
    return {{}, defect, cardLine_};
}

}  // namespace vell
