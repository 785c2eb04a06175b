// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorla {

/// The user's preferences, kept across runs; a port, because tests prepare and read them. Main
/// thread.
///
/// Nothing here fails: what cannot be stored is still remembered for the rest of this run.
class Preferences {
public:
    virtual ~Preferences() = default;

    /// False if absent or of another type.
    virtual bool boolean(std::string_view key) = 0;
    virtual void setBoolean(std::string_view key, bool value) = 0;
    /// Empty if absent or not a list of strings only.
    virtual std::vector<std::string> strings(std::string_view key) = 0;
    virtual void setStrings(std::string_view key, const std::vector<std::string>& values) = 0;
};

} // namespace vorla
