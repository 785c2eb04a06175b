// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Text as notification services get to see it: valid UTF-8 without NUL, which the bus would
/// refuse, and of bounded length, in whole characters. Pure.
namespace vorla {

enum class BodyFormat { plain, markup };

inline constexpr std::size_t maximumTitleBytes = 1024;
/// Before anything is escaped.
inline constexpr std::size_t maximumBodyBytes = 4096;

std::string notificationTitle(std::string_view text);

/// A service that reads markup gets the text escaped, so that it shows what was meant.
std::string notificationBody(std::string_view text, BodyFormat format);

} // namespace vorla
