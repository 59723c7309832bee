// How an interface record's display name becomes the identifier its interface is opened
// with, and how RyInterface reads an identifier that carries an "ID:" label.
#pragma once

#include <string>
#include <string_view>

namespace RYSDK::system {

// The first blank-separated word of the name, less its first three characters when it is
// longer than three ("eth eth0 (...)" style names).
std::string InterfaceIdFromName(std::string_view displayName);

// With "ID:" anywhere in the text: the word after the first word (the first word ends at a
// blank or a colon, the second at a blank). Without it: the whole text.
std::string InterfaceIdFromLabel(std::string_view text);

}  // namespace RYSDK::system
