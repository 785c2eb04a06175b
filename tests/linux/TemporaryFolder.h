// SPDX-License-Identifier: MIT
#pragma once

#include "model/FileContent.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace vorla {

/// An empty folder for one test; it goes with all that is in it.
class TemporaryFolder final {
public:
    TemporaryFolder() : path_(std::filesystem::temp_directory_path() / "vorla-test-XXXXXX") {
        EXPECT_NE(mkdtemp(path_.data()), nullptr);
    }

    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return path_; }

    /// The path of `name` in the folder; nothing is made.
    std::string at(std::string_view name) const { return path_ + "/" + std::string(name); }

    /// A file with this content, and the folders above it.
    std::string write(std::string_view name, std::string_view content) const {
        const auto path = at(name);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }

    std::string writeProgram(std::string_view name) const {
        auto path = write(name, "");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    std::string read(std::string_view name) const { return contentOf(at(name)); }

    bool has(std::string_view name) const {
        return std::filesystem::exists(std::filesystem::symlink_status(at(name)));
    }

    /// How many files and folders are directly in the folder `name`.
    std::ptrdiff_t count(std::string_view name) const {
        return std::distance(std::filesystem::directory_iterator(at(name)), {});
    }

private:
    std::string path_;
};

} // namespace vorla
