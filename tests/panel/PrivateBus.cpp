// SPDX-License-Identifier: MIT
// The private bus of the bus tests, which are another program.
#include "bus/PrivateBus.cpp" // NOLINT(bugprone-suspicious-include)
