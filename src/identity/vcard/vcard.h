#pragma once
// SPDX-License-Identifier: MIT
//
// A text of vCards (versions 2.1, 3.0 and 4.0), taken apart into cards and their properties. Files
// found in the wild mix the versions' habits, so what is unambiguous is read in all of them. Input
// is hostile: the time is linear in the text's size, and nothing is copied but folded lines.
//
//     VCardScanner scanner(text);
//     while (scanner.nextCard())
//         while (const VCardProperty* property = scanner.next())
//             if (property->is("FN")) name = property->text();

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <string>
#include <string_view>

namespace vell {

enum class VCardVersion { v2_1, v3_0, v4_0 };

struct VCardProperty {
    enum class Encoding { none, quotedPrintable, base64 };

    /// Without a group. Names and parameters compare without case.
    std::string_view name;
    /// What stands between name and colon, starting with a semicolon unless empty.
    std::string_view parameters;
    /// Unfolded and without soft line breaks, otherwise as in the file.
    std::string_view value;
    Encoding encoding = Encoding::none;
    VCardVersion version = VCardVersion::v3_0;

    [[nodiscard]] bool is(std::string_view upperCaseName) const;
    [[nodiscard]] bool nameStartsWith(std::string_view upperCase) const;
    /// The first value of a named parameter, without quotes; empty when it is missing.
    [[nodiscard]] std::string_view parameter(std::string_view upperCaseName) const;
    /// The value as bytes: transfer encodings undone.
    [[nodiscard]] QByteArray bytes() const;
    /// The value as characters, escapes still in place. Text that is not in its declared character
    /// set, or in none, is read as Windows-1252, which never fails; NUL characters are left out.
    [[nodiscard]] QString rawText() const;
    /// The value as one text.
    [[nodiscard]] QString text() const;
    /// What unescaped commas in a part mean.
    enum class Lists { none, joinedByBlanks };
    /// The value's parts between unescaped separators, each as text.
    [[nodiscard]] QStringList parts(QChar separator, Lists lists = Lists::none) const;
    /// 1 is the most preferred of several; 101 where the card says nothing. Only version 4.0 ranks.
    [[nodiscard]] int preference() const;
};

/// Takes escapes out of a value or a part of one.
[[nodiscard]] QString unescaped(QStringView rawText, VCardVersion version);

/// The bytes of a file as UTF-8, or as whatever 8-bit set they are in: UTF-16, as some address
/// books wrote it, is recognised with a byte-order mark and without.
[[nodiscard]] std::string vcardText(QByteArrayView file);

/// Walks cards and their properties. What stands between cards, cards within a card and lines that
/// are no property are passed over.
class VCardScanner {
  public:
    /// The text must outlive the scanner.
    explicit VCardScanner(std::string_view text);
    VCardScanner(const VCardScanner&) = delete;
    VCardScanner& operator=(const VCardScanner&) = delete;

    /// Goes on to the next card; false when there is none.
    [[nodiscard]] bool nextCard();
    /// The next property of the card, valid until the next call; null at the card's end.
    [[nodiscard]] const VCardProperty* next();
    /// Whether the card that was read last has an end; else the file or another card cut it off.
    [[nodiscard]] bool isWhole() const { return isWhole_; }
    /// Of the card's first line, counted from 1.
    [[nodiscard]] qint64 cardLine() const { return cardLine_; }

  private:
    enum class Mark { none, begin, end };
    struct Header {
        size_t nameStart = 0;
        size_t nameEnd = 0;
        size_t colon = 0;
    };
    enum class Quotes { respected, ignored };

    [[nodiscard]] static Mark mark(std::string_view line);
    [[nodiscard]] std::string_view peekLine();
    std::string_view takeLine();
    [[nodiscard]] bool nextLineIsFolded() const;
    [[nodiscard]] bool takeMark(Mark mark);
    bool readProperty();
    void enterAgent(std::string_view value);
    void appendFoldedLines();
    void appendSoftBreaks();
    void appendBareBase64();
    void append(std::string_view continuation);
    static bool findHeader(std::string_view line, Quotes quotes, Header& header);

    std::string_view text_;
    size_t position_ = 0;  ///< of the first byte not yet taken
    size_t lineFeed_;      ///< the first one at or after position_, unless that went past it
    qint64 linesTaken_ = 0;
    qint64 cardLine_ = 0;
    int depth_ = 0;  ///< of cards within the card; 0 outside of all
    bool isWhole_ = false;
    bool isAfterAgent_ = false;  ///< version 2.1 puts the card of somebody's agent into the card
    std::string_view line_;      ///< the current property's, continuations included
    std::string joined_;         ///< backs line_ once lines were joined
    bool isJoined_ = false;
    VCardProperty property_;
};

}  // namespace vell
