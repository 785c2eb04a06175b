// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vorla {

/// The address to be opened for a piece of output without white space, or nothing if it is not the
/// address of a local dashboard: scheme exactly "http", host exactly "127.0.0.1", any port and
/// path.
///
/// Stricter than a general URL parser on purpose. Those take 127.1, 0x7f.0.0.1 or HTTP for the
/// same, and disagree with browsers about where the host ends. Characters beyond ASCII, which only
/// path, query and fragment may hold, come back percent-encoded.
std::optional<std::string> dashboardAddress(std::string_view token);

/// Finds the address in what a dashboard prints. One object for each run of the dashboard.
///
/// The work for a delivery depends on what it adds, not on how much was printed before.
class AddressScanner final {
public:
    /// No longer piece without white space is taken for an address.
    static constexpr std::size_t maximumTokenBytes = std::size_t{8} << 10U;

    /// What is to be remembered after this delivery: the last address in all output so far. An
    /// address at the end may still grow; if it grows into something else, the last one before it
    /// counts again, and only if there is none the early form is kept. Nothing before the first.
    ///
    /// `textSoFar` is well-formed and grows from call to call, with two exceptions: a U+FFFD at its
    /// end may become the character that it stood for; and its oldest part may be dropped, which
    /// must make it shorter by more than that.
    std::optional<std::string> scan(std::string_view textSoFar);

private:
    std::size_t tokenStart_ = 0;
    /// Between tokenStart_ and here there is no white space, and nothing will change any more.
    std::size_t searchedBytes_ = 0;
    /// Whether the beginning of the token at tokenStart_ was dropped.
    bool isCut_ = false;
    std::optional<std::string> lastFinished_;
    std::optional<std::string> remembered_;
};

} // namespace vorla
