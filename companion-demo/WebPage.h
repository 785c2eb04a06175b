// SPDX-License-Identifier: MIT
#pragma once

#include "DemoWeek.h"

#include <string>

namespace vorla {

/// The dashboard for one moment: one HTML document that needs nothing from anywhere else.
std::string webPage(const DemoWeek& week);

} // namespace vorla
