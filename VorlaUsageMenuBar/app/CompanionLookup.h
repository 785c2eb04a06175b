// SPDX-License-Identifier: MIT
#pragma once

#include "app/Environment.h"

#include <optional>
#include <string>
#include <vector>

namespace vorla {

/// Where the companion tool may be.
struct CompanionPlaces {
    Environment environment;
    std::string homeDirectory;
    /// The folder of the application's own resources, if it is known. It need not be there.
    std::optional<std::string> resourcesDirectory;
};

/// Where the tool is looked for, in this order. An override in VORLA_USAGE_EXECUTABLE is the only
/// candidate when present, even if it is empty.
std::vector<std::string> companionCandidates(const CompanionPlaces& places);

/// The first candidate that is a file which we may execute, looked up afresh at each call.
std::optional<std::string> findCompanion(const CompanionPlaces& places);

} // namespace vorla
