// The fields of one line: words and numbers, as the >> of a stream takes them.
//
// White space is space, tab, vertical tab, form feed and carriage return. A number is decimal with
// an optional sign; it ends before the first character that is no digit. Numbers from 0 to
// 2147483647 have a meaning.

#pragma once

#include <charconv>
#include <string_view>
#include <system_error>

namespace tervoxal {

/// What was found where a number was looked for.
enum class Found { number, nothing, negative, tooLarge };

/// Space, tab, vertical tab, form feed or carriage return.
[[nodiscard]] inline bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// The text without the blanks at its ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

/// Takes the first word off the text, and the blanks before it. Empty where no word is left.
std::string_view takeWord(std::string_view& text);

/// Reads a text that is a decimal number and nothing else. Where it is none (nothing), or one that
/// Number cannot hold (tooLarge), n stays.
template <class Number>
[[nodiscard]] Found wholeNumber(std::string_view text, Number& n) {
    Number number = 0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    if (parsed.ptr != end || parsed.ec == std::errc::invalid_argument) return Found::nothing;
    if (parsed.ec != std::errc()) return Found::tooLarge;
    n = number;
    return Found::number;
}

/// A place in a line, which must outlive this.
class Scanner {
public:
    explicit Scanner(std::string_view line) : at(line.data()), end(at + line.size()) {}

    /// Goes after the next word.
    void skipWord();
    /// Reads a number into n and goes after it. Where there is none, or one without a meaning, n
    /// stays, and the place is at what was found instead.
    [[nodiscard]] Found number(unsigned int& n);
    /// What stands after this place, without the blanks at its ends.
    [[nodiscard]] std::string_view rest() const { return trimmed({at, end}); }

private:
    void skipBlanks() {
        while (at != end && isBlank(*at)) ++at;
    }

    const char* at;
    const char* end;
};

} // namespace tervoxal
