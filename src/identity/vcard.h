#pragma once
// SPDX-License-Identifier: MIT
//
// The text of one vCard (versions 2.1, 3.0 and 4.0), taken apart into properties. Files found in
// the wild mix the versions' habits, so what is unambiguous is read in all of them. Input is
// hostile: the time is linear in the card's size, and nothing is copied but folded lines.
//
//     VCardScanner scanner(card);
//     while (const VCardProperty* property = scanner.next())
//         if (property->is("FN")) name = property->text();

#include <QByteArray>
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
    /// The first value of a named parameter, without quotes; empty when it is missing.
    [[nodiscard]] std::string_view parameter(std::string_view upperCaseName) const;
    /// The value as bytes: transfer encodings undone.
    [[nodiscard]] QByteArray bytes() const;
    /// The value as characters, escapes still in place. Text that is not in its declared character
    /// set, or in none, is read as Windows-1252, which never fails; NUL characters are left out.
    [[nodiscard]] QString rawText() const;
    /// The value as one text.
    [[nodiscard]] QString text() const;
    /// The value's parts between unescaped separators, each as text.
    [[nodiscard]] QStringList parts(QChar separator) const;
};

/// Takes escapes out of a value or a part of one.
[[nodiscard]] QString unescaped(QStringView rawText, VCardVersion version);

/// Finds the ends of lines: LF, CR LF and CR. It remembers what it has seen, so that a text, which
/// may grow meanwhile, is searched once whatever its line ends are.
class LineEnds {
  public:
    /// The index of the first LF or CR at or after `from`, or the text's size.
    [[nodiscard]] size_t find(std::string_view text, size_t from);
    /// The text loses its first bytes.
    void shift(size_t by);

  private:
    struct Next {
        char byte;
        size_t at = 0;
        bool found = false;  ///< else there is none before `at`
        size_t find(std::string_view text, size_t from);
        void shift(size_t by);
    };
    Next lineFeed_{'\n'};
    Next carriageReturn_{'\r'};
};

/// Whether a line opens or closes a card.
enum class VCardMark { none, begin, end };
[[nodiscard]] VCardMark vcardMark(std::string_view line);

/// Walks the properties of one card; BEGIN and END, cards within the card and lines that are no
/// property are passed over.
class VCardScanner {
  public:
    /// The text must outlive the scanner.
    explicit VCardScanner(std::string_view card) : card_(card) {}
    VCardScanner(const VCardScanner&) = delete;
    VCardScanner& operator=(const VCardScanner&) = delete;

    /// Valid until the next call; null at the end.
    [[nodiscard]] const VCardProperty* next();

  private:
    struct Header {
        size_t nameStart = 0;
        size_t nameEnd = 0;
        size_t colon = 0;
    };
    enum class Quotes { respected, ignored };

    [[nodiscard]] std::string_view peekLine();
    [[nodiscard]] std::string_view takeLine();
    [[nodiscard]] bool nextLineIsFolded() const;
    bool readProperty();
    void appendFoldedLines();
    void appendSoftBreaks();
    void appendBareBase64();
    void append(std::string_view continuation);
    static bool findHeader(std::string_view line, Quotes quotes, Header& header);

    std::string_view card_;
    size_t position_ = 0;
    LineEnds lineEnds_;
    int depth_ = 0;          ///< of cards within the card
    std::string_view line_;  ///< the current property's, continuations included
    std::string joined_;     ///< backs line_ once lines were joined
    bool isJoined_ = false;
    VCardProperty property_;
};

}  // namespace vell
