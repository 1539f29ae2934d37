// SPDX-License-Identifier: MIT
#include "platform/UrlLoader.h"

namespace platform {

namespace {

// RFC 3986, section 2: unreserved characters, then the reserved ones.
constexpr std::string_view allowedCharacters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~"
                                               ":/?#[]@!$&'()*+,;=";
constexpr std::string_view hexadecimalDigits = "0123456789ABCDEFabcdef";

bool isHexadecimal(char character) { return hexadecimalDigits.find(character) != std::string_view::npos; }

}

bool isWellFormedUrl(std::string_view url)
{
    while (!url.empty()) {
        bool const isEscape = url.front() == '%';
        if (isEscape && (url.size() < 3 || !isHexadecimal(url[1]) || !isHexadecimal(url[2])))
            return false;
        if (!isEscape && allowedCharacters.find(url.front()) == std::string_view::npos)
            return false;
        url.remove_prefix(isEscape ? 3 : 1);
    }
    return true;
}

}
