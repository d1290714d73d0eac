// SPDX-License-Identifier: MIT
#include "foundation/non_keyed/type_string.h"

#include <charconv>

namespace foundation::non_keyed {

namespace {

constexpr int maximumBracketDepth = 16;
constexpr std::string_view::size_type maximumDigits = 10;
/// Empty arrays in one type string. A group of them costs as much time as it has, but no input.
constexpr int maximumEmptyArrays = 16;

class TypeStringParser {
  public:
    TypeStringParser(std::string_view text, std::vector<TypeOp>& ops) : rest_(text), ops_(ops) {}

    bool parse() {
        if (rest_.empty()) return false;
        while (!rest_.empty()) {
            if (!parseType(0)) return false;
        }
        return true;
    }

  private:
    bool parseType(int depth) {
        if (rest_.empty()) return false;
        const char letter = rest_.front();
        rest_.remove_prefix(1);
        switch (letter) {
            case '[':
                return parseArray(depth);
            case '{':
                return parseStruct(depth);
            default:
                if (simpleTypes.find(letter) == simpleTypes.npos) return false;
                ops_.push_back({letter, 1, nextIndex() + 1});
                return true;
        }
    }

    bool parseArray(int depth) {
        const auto digits = std::min(rest_.find_first_not_of("0123456789"), rest_.size());
        quint32 count = 0;
        if (digits > maximumDigits) return false;
        const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + digits, count);
        if (error != std::errc()) return false;
        rest_.remove_prefix(digits);
        // An array of nothing takes no bytes: allowed by itself only, and not often.
        if (count == 0 && (depth > 0 || ++emptyArrays_ > maximumEmptyArrays)) return false;
        return parseBody({'[', count, 0}, ']', depth);
    }

    /// A name and '=' may precede the fields; a bracket ends the search for it.
    bool parseStruct(int depth) {
        const auto mark = rest_.find_first_of("={}[]()");
        if (mark != rest_.npos && rest_[mark] == '=') rest_.remove_prefix(mark + 1);
        return parseBody({'{', 1, 0}, '}', depth);
    }

    bool parseBody(TypeOp opening, char closing, int depth) {
        if (depth == maximumBracketDepth) return false;
        const quint32 self = nextIndex();
        ops_.push_back(opening);
        do {
            if (!parseType(depth + 1)) return false;
        } while (!rest_.empty() && rest_.front() != closing);
        if (rest_.empty()) return false;
        rest_.remove_prefix(1);
        ops_[self].end = nextIndex();
        return true;
    }

    [[nodiscard]] quint32 nextIndex() const { return static_cast<quint32>(ops_.size()); }

    static constexpr std::string_view simpleTypes = "cCBsSiIlLqQfd@#*:%+";

    std::string_view rest_;
    std::vector<TypeOp>& ops_;
    int emptyArrays_ = 0;
};

}  // namespace

bool appendTypeOps(std::string_view text, std::vector<TypeOp>& ops) {
    return TypeStringParser(text, ops).parse();
}

}  // namespace foundation::non_keyed
