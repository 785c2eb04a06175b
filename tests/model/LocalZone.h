// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace vorla {

/// Sets the local time zone for as long as it lives. Takes POSIX zone strings, so that no zone
/// database is needed.
class LocalZone final {
public:
    explicit LocalZone(const char* zone) {
        if (const char* before = std::getenv("TZ")) {
            before_ = before;
        }
        setenv("TZ", zone, 1);
        tzset();
    }

    LocalZone(const LocalZone&) = delete;
    LocalZone& operator=(const LocalZone&) = delete;

    ~LocalZone() {
        if (before_) {
            setenv("TZ", before_->c_str(), 1);
        } else {
            unsetenv("TZ");
        }
        tzset();
    }

private:
    std::optional<std::string> before_;
};

} // namespace vorla
