// SPDX-License-Identifier: MIT
#pragma once

#include "app/Environment.h"

#include <optional>
#include <string>

namespace vorla {

/// Where the companion tool may be.
struct CompanionPlaces {
    Environment environment;
    std::string homeDirectory;
    /// The folder of the application's own resources, if it is installed with one.
    std::optional<std::string> resourcesDirectory;
};

/// The path of the first usable `vorla-usage`, looked up afresh at each call. An override in
/// VORLA_USAGE_EXECUTABLE is the only candidate when present, even if it is empty.
std::optional<std::string> findCompanion(const CompanionPlaces& places);

} // namespace vorla
