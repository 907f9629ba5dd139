// Names may hold any bytes. These functions make them fit to be shown.

#pragma once

#include <string>
#include <string_view>

namespace tervoxal {

/// The text in valid UTF-8: each byte that is no part of it becomes U+FFFD.
[[nodiscard]] std::string utf8(std::string_view text);
/// The same, with blanks in place of control characters.
[[nodiscard]] std::string readable(std::string_view text);
/// The beginning of the text, readable, for a message.
[[nodiscard]] std::string excerpt(std::string_view text);
/// The same in double quotes.
[[nodiscard]] std::string inQuotes(std::string_view text);

} // namespace tervoxal
