// SPDX-License-Identifier: MIT
#pragma once

#include "ports/Preferences.h"

#include <map>
#include <string>
#include <vector>

namespace vorla {

/// Preferences that live as long as the test.
class FakePreferences final : public Preferences {
public:
    bool boolean(std::string_view key) override {
        const auto found = booleans.find(key);
        return found != booleans.end() && found->second;
    }
    void setBoolean(std::string_view key, bool value) override {
        booleans.insert_or_assign(std::string(key), value);
    }
    std::vector<std::string> strings(std::string_view key) override {
        const auto found = lists.find(key);
        return found == lists.end() ? std::vector<std::string>() : found->second;
    }
    void setStrings(std::string_view key, const std::vector<std::string>& values) override {
        lists.insert_or_assign(std::string(key), values);
        ++listWrites;
    }

    std::map<std::string, bool, std::less<>> booleans;
    std::map<std::string, std::vector<std::string>, std::less<>> lists;
    int listWrites = 0;
};

} // namespace vorla
