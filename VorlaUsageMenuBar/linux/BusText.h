// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Text as panels get to see it, of a form that the bus takes. Line breaks stay. A label that is
/// not empty never becomes so: U+FFFD stands for one that cannot be shown.
namespace vorla {

/// What the bus library takes: well-formed UTF-8 without NUL and, stricter than the protocol,
/// without noncharacters such as U+FFFF, which become U+FFFD. Not bounded.
std::string busText(std::string_view text);

/// The start of busText(), long enough to be cut after `maximumBytes`; the work does not grow with
/// the rest of the text.
std::string startOfBusText(std::string_view text, std::size_t maximumBytes);

/// For a menu label: `_` doubled, since a single one would mark the next letter as a mnemonic, and
/// each tab a space, since some panels take what follows a tab for a shortcut. At most 4,096 bytes,
/// cut between characters of `text`.
std::string menuLabel(std::string_view text);

/// For the title: the same bounds, but nothing doubled.
std::string plainLabel(std::string_view text);

/// For the tooltip: also without `&`, `<` and `>`. Some panels parse it as markup, others would
/// show escapes as they stand.
std::string toolTipText(std::string_view text);

} // namespace vorla
