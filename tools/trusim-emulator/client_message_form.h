// The exact byte form of every message the program sends, as this simulator
// insists on it: key order, blanks, the tab after the ball speed, the quoted
// "TeedUp", numbers with three decimals and "." as the decimal point.
#pragma once

#include <string_view>

namespace orv {

// The form of a message "Type": literal bytes with the placeholders %f (a
// number with exactly three decimals), %d (an integer), %s (a text without
// quotes or backslashes) and %b (true or false); null for a type the program
// never sends.
const char* ClientMessageForm(std::string_view type);

// `text` has exactly the form `form`, byte for byte.
bool MatchesForm(std::string_view form, std::string_view text);

}  // namespace orv
