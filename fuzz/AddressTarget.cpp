// SPDX-License-Identifier: MIT
// The address in a dashboard's output is found however the output arrives, and is a local one.
#include "Require.h"
#include "Utf8.h"

#include "model/AddressScanner.h"
#include "model/Text.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace vorla;
using fuzz::require;
using Address = std::optional<std::string>;

constexpr std::string_view scheme = "http://";

/// One more than the longest piece.
constexpr std::size_t leastDropped = 256;

bool isWhiteSpace(char32_t codePoint) {
    constexpr std::array<char32_t, 19> single = {
        0x20,   0x85,   0xA0,   0x1680, 0x2000, 0x2001, 0x2002, 0x2003, 0x2004, 0x2005,
        0x2006, 0x2007, 0x2008, 0x2009, 0x200A, 0x2028, 0x2029, 0x202F, 0x205F};
    return (codePoint >= 0x9 && codePoint <= 0xD) || codePoint == 0x3000 ||
           std::ranges::find(single, codePoint) != single.end();
}

std::vector<std::string_view> tokens(std::string_view text) {
    std::vector<std::string_view> found;
    std::size_t start = 0;
    std::size_t place = 0;
    while (const auto first = fuzz::firstCodePoint(text.substr(place))) {
        if (isWhiteSpace(first->value)) {
            found.push_back(text.substr(start, place - start));
            start = place + first->length;
        }
        place += first->length;
    }
    found.push_back(text.substr(start));
    return found;
}

Address addressOf(std::string_view token) {
    return token.size() <= AddressScanner::maximumTokenBytes ? dashboardAddress(token)
                                                             : std::nullopt;
}

Address lastAddress(std::string_view text) {
    Address last;
    for (const std::string_view token : tokens(text)) {
        if (auto address = addressOf(token)) {
            last = std::move(address);
        }
    }
    return last;
}

/// Where a browser goes with it: the part between scheme and path, less what stands before "@".
void checkLocal(const std::string& address) {
    const auto isPlain = [](char byte) {
        return byte > ' ' && byte < '\x7F' &&
               std::string_view("\\\"<>^{|}`").find(byte) == std::string_view::npos;
    };
    require(address.starts_with(scheme), "an address has the one scheme");
    require(std::ranges::all_of(address, isPlain), "an address is plain ASCII");
    require(dashboardAddress(address) == address, "an address is left alone");
    std::string_view authority = std::string_view(address).substr(scheme.size());
    authority = authority.substr(0, authority.find_first_of("/?#"));
    authority.remove_prefix(authority.rfind('@') + 1);
    const std::string_view host = authority.substr(0, authority.find(':'));
    require(host == "127.0.0.1", "an address is local");
    const std::string_view port = authority.substr(std::min(host.size() + 1, authority.size()));
    require(port.size() <= 5, "a port is short");
    require(
        std::ranges::all_of(port, [](char byte) { return byte >= '0' && byte <= '9'; }),
        "a port is a number");
}

/// Feeds `bytes` as the program does, in pieces that end where `cuts` say, beside somebody who
/// reads all of the text again each time.
void checkPieces(std::string_view bytes, const std::array<std::size_t, 6>& cuts) {
    text::Utf8Repair repair;
    AddressScanner scanner;
    Address expected;
    for (const std::size_t cut : cuts) {
        repair.append(bytes.substr(0, cut));
        bytes.remove_prefix(std::min(cut, bytes.size()));
        if (auto last = lastAddress(repair.text())) {
            expected = std::move(last);
        }
        require(scanner.scan(repair.text()) == expected, "an address is found in pieces");
    }
    repair.append(bytes);
    const Address whole = lastAddress(repair.text());
    const Address found = scanner.scan(repair.text());
    require(found == (whole ? whole : expected), "the last address of the whole is found");
    require(AddressScanner().scan(repair.text()) == whole, "an address is found at once");
    if (found) {
        checkLocal(*found);
    }
}

/// Feeds ASCII of which the oldest part is dropped on the way.
void checkDropping(std::string_view text, const std::array<std::size_t, 6>& cuts) {
    const auto all = tokens(text);
    text::Utf8Repair repair;
    AddressScanner scanner;
    const auto check = [&](const Address& found) {
        require(
            !found || std::ranges::any_of(
                          all, [&](std::string_view token) { return token.starts_with(*found); }),
            "nothing is an address that does not begin like one");
    };
    for (const std::size_t cut : cuts) {
        repair.append(text.substr(0, cut));
        text.remove_prefix(std::min(cut, text.size()));
        check(scanner.scan(repair.text()));
        // As in the program, more is dropped than comes next.
        if (repair.text().size() > leastDropped) {
            repair.keepLast(repair.text().size() - leastDropped);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Numbers are taken from the end, so that the rest stays legible.
    FuzzedDataProvider provider(data, size);
    std::array<std::size_t, 6> cuts = {};
    for (std::size_t& cut : cuts) {
        cut = provider.ConsumeIntegral<std::uint8_t>();
    }
    const std::string bytes = provider.ConsumeRemainingBytesAsString();
    checkPieces(bytes, cuts);
    if (std::ranges::all_of(bytes, [](char byte) { return byte >= 0; })) {
        checkDropping(bytes, cuts);
    }
    return 0;
}
