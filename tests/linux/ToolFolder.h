// SPDX-License-Identifier: MIT
#pragma once

#include "linux/TemporaryFolder.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vorla {

/// A PATH of its own, in which test children play desktop tools, and a folder where they leave
/// records of how they were started.
class ToolFolder final {
public:
    ToolFolder() {
        std::filesystem::create_directories(folder_.at("path"));
        std::filesystem::create_directories(folder_.at("records"));
    }

    /// From now on `tool` is there and behaves like that test child.
    void put(const std::string& tool, const std::string& child) const {
        std::filesystem::create_symlink(
            VORLA_TEST_CHILDREN "/" + child, folder_.at("path/" + tool));
    }

    /// `more` and what the tools need.
    std::vector<std::string> environment(std::vector<std::string> more) const {
        more.push_back("PATH=" + folder_.at("path"));
        more.push_back("RECORD=" + folder_.at("records"));
        return more;
    }

    bool wasStarted(const std::string& tool) const {
        return folder_.has("records/" + tool + ".done");
    }

    /// What a recording tool left about "arguments", "environment", "descriptors", "session",
    /// "signals" or "input".
    std::string record(const std::string& tool, const std::string& about) const {
        return folder_.read("records/" + tool + "." + about);
    }

    void forget(const std::string& tool) const {
        std::filesystem::remove(folder_.at("records/" + tool + ".done"));
    }

    const TemporaryFolder& folder() const { return folder_; }

private:
    TemporaryFolder folder_;
};

} // namespace vorla
