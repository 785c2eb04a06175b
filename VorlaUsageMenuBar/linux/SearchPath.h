// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Programs, and where they are looked for.
namespace vorla {

/// Whether there is a file that this process may execute.
bool isProgram(const std::string& path);

/// The parts between the colons, without the empty ones.
std::vector<std::string_view> colonList(std::string_view list);

/// The path of the program `name`, which has no slashes, in the first of the absolute folders of
/// `searchPath` that holds it; empty if none does. Our working directory is where we happened to be
/// started: no tool is looked for there.
std::string programIn(std::string_view searchPath, std::string_view name);

} // namespace vorla
