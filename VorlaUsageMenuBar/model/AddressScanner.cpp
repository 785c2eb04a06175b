// SPDX-License-Identifier: MIT
#include "model/AddressScanner.h"

#include "model/Text.h"

#include <utf8proc.h>

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace vorla {

namespace {

constexpr std::string_view scheme = "http://";
constexpr std::string_view host = "127.0.0.1";
constexpr std::size_t maximumPortDigits = 5;
constexpr unsigned highestPort = 65535;
constexpr std::string_view replacementCharacter = "\uFFFD";

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

bool isLetter(char byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

bool isHexadecimal(char byte) {
    return isDigit(byte) || (byte >= 'A' && byte <= 'F') || (byte >= 'a' && byte <= 'f');
}

bool isAscii(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

/// Controls, the space, and the characters that parsers of addresses treat in different ways.
bool isForbidden(char byte) {
    return (isAscii(byte) && byte <= ' ') || byte == '\x7F' ||
           std::string_view("\\\"<>^{|}`").find(byte) != std::string_view::npos;
}

/// U+0080 to U+009F.
bool startsWithUpperControl(std::string_view text) {
    return text.size() > 1 && text[0] == '\xC2' && static_cast<unsigned char>(text[1]) < 0xA0;
}

bool startsWithPercentEncoding(std::string_view text) {
    return text.size() > 2 && isHexadecimal(text[1]) && isHexadecimal(text[2]);
}

bool hasOnlyAllowedCharacters(std::string_view token) {
    for (; !token.empty(); token.remove_prefix(1)) {
        const char byte = token.front();
        if (isForbidden(byte) || startsWithUpperControl(token) ||
            (byte == '%' && !startsWithPercentEncoding(token))) {
            return false;
        }
    }
    return true;
}

/// RFC 3986, 3.2.1; the percent-encodings have been looked at.
bool isUserInformation(std::string_view text) {
    return std::ranges::all_of(text, [](char byte) {
        return isLetter(byte) || isDigit(byte) ||
               std::string_view("-._~%!$&'()*+,;=:").find(byte) != std::string_view::npos;
    });
}

/// What may follow the host: nothing, or a colon and a port, which may be missing.
bool isPortPart(std::string_view text) {
    if (text.empty()) {
        return true;
    }
    const auto digits = text.substr(1);
    if (text.front() != ':' || digits.size() > maximumPortDigits ||
        !std::ranges::all_of(digits, isDigit)) {
        return false;
    }
    unsigned port = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), port);
    return port <= highestPort;
}

bool isLocalAuthority(std::string_view authority) {
    if (const auto at = authority.find('@'); at != std::string_view::npos) {
        if (!isUserInformation(authority.substr(0, at))) {
            return false;
        }
        authority.remove_prefix(at + 1);
    }
    return authority.starts_with(host) && isPortPart(authority.substr(host.size()));
}

std::string withNonAsciiEncoded(std::string_view token) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(token.size());
    for (const char byte : token) {
        if (isAscii(byte)) {
            encoded += byte;
        } else {
            const auto code = static_cast<unsigned char>(byte);
            encoded += {'%', digits[code / 16], digits[code % 16]};
        }
    }
    return encoded;
}

struct Space {
    std::size_t start = 0;
    std::size_t end = 0;
};

std::optional<Space> nextWhiteSpace(std::string_view text, std::size_t position) {
    while (position < text.size()) {
        if (isAscii(text[position]) && text[position] > ' ') {
            ++position;
            continue;
        }
        std::int32_t codePoint = 0;
        const auto length = utf8proc_iterate(
            reinterpret_cast<const utf8proc_uint8_t*>(text.data() + position),
            static_cast<utf8proc_ssize_t>(text.size() - position), &codePoint);
        const std::size_t end = position + static_cast<std::size_t>(std::max(length, {1}));
        if (text::isWhiteSpace(static_cast<char32_t>(codePoint))) {
            return Space{position, end};
        }
        position = end;
    }
    return std::nullopt;
}

std::optional<std::string> addressIn(std::string_view token) {
    if (token.size() > AddressScanner::maximumTokenBytes) {
        return std::nullopt;
    }
    return dashboardAddress(token);
}

} // namespace

std::optional<std::string> dashboardAddress(std::string_view token) {
    if (!token.starts_with(scheme) || !hasOnlyAllowedCharacters(token)) {
        return std::nullopt;
    }
    const auto rest = token.substr(scheme.size());
    if (!isLocalAuthority(rest.substr(0, rest.find_first_of("/?#")))) {
        return std::nullopt;
    }
    return withNonAsciiEncoded(token);
}

std::optional<std::string> AddressScanner::scan(std::string_view textSoFar) {
    if (textSoFar.size() < searchedBytes_) {
        tokenStart_ = 0;
        searchedBytes_ = 0;
        isCut_ = true;
    }
    while (const auto space = nextWhiteSpace(textSoFar, searchedBytes_)) {
        auto finished = addressIn(textSoFar.substr(tokenStart_, space->start - tokenStart_));
        if (finished && !isCut_) {
            lastFinished_ = std::move(finished);
        }
        isCut_ = false;
        tokenStart_ = space->end;
        searchedBytes_ = space->end;
    }
    // A replacement character at the end may yet become white space.
    searchedBytes_ = textSoFar.size();
    if (textSoFar.ends_with(replacementCharacter)) {
        searchedBytes_ -= replacementCharacter.size();
    }

    const auto unfinished = addressIn(textSoFar.substr(tokenStart_));
    if (unfinished && !isCut_) {
        remembered_ = unfinished;
    } else if (lastFinished_) {
        remembered_ = lastFinished_;
    }
    return remembered_;
}

} // namespace vorla
