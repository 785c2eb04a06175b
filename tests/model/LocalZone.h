// SPDX-License-Identifier: MIT
#pragma once

#include "model/ScopedVariable.h"

#include <ctime>
#include <optional>

namespace vorla {

/// Sets the local time zone for as long as it lives. Takes POSIX zone strings, so that no zone
/// database is needed.
class LocalZone final {
public:
    explicit LocalZone(const char* zone) : variable_(std::in_place, "TZ", zone) { tzset(); }

    LocalZone(const LocalZone&) = delete;
    LocalZone& operator=(const LocalZone&) = delete;

    ~LocalZone() {
        variable_.reset();
        tzset();
    }

private:
    std::optional<ScopedVariable> variable_;
};

} // namespace vorla
