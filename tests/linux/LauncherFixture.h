// SPDX-License-Identifier: MIT
#pragma once

#include "children/NothingLeftBehind.h"
#include "ports/ProcessLauncher.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace vorla {

/// Remembers what it is told about one child.
class Recorder final : public ChildProcess::Listener {
public:
    void received(ChildProcess::Stream stream, std::string_view bytes) override {
        (stream == ChildProcess::Stream::output ? output : errors) += bytes;
        if (onReceived) {
            onReceived();
        }
    }

    void ended(ChildProcess::Stream stream) override {
        ++(stream == ChildProcess::Stream::output ? outputEnds : errorsEnds);
    }

    void exited(int status) override {
        statuses.push_back(status);
        if (onExited) {
            onExited();
        }
    }

    bool isComplete() const { return outputEnds > 0 && errorsEnds > 0 && !statuses.empty(); }

    std::string output;
    std::string errors;
    int outputEnds = 0;
    int errorsEnds = 0;
    std::vector<int> statuses;
    std::function<void()> onReceived;
    std::function<void()> onExited;
};

class LauncherFixture : public NothingLeftBehind {
protected:
    std::unique_ptr<ChildProcess>
    start(const std::string& path, std::vector<std::string> variables = {}) {
        variables.push_back(goVariable());
        return launcher().launch(
            {.path = path, .argument = "--json", .environment = std::move(variables)}, recorder);
    }

    /// Runs a child to its end and returns what it printed.
    std::string outputOf(const std::string& program, std::vector<std::string> variables = {}) {
        const auto running = start(child(program), std::move(variables));
        EXPECT_TRUE(loop().runUntil([&] { return recorder.isComplete(); }));
        return recorder.output;
    }

    /// The error with which a launch fails, after which nothing is left of it.
    std::error_code launchError(const std::string& path) {
        const auto descriptors = entries("/proc/self/fd");
        try {
            const auto running = start(path);
        } catch (const std::system_error& error) {
            EXPECT_EQ(entries("/proc/self/fd"), descriptors);
            EXPECT_TRUE(hasNoChild());
            return error.code();
        }
        return {};
    }

    std::string makeFile(const std::string& content, mode_t mode) {
        const std::string path = folder() / "file";
        std::ofstream(path) << content;
        chmod(path.c_str(), mode);
        return path;
    }

    Recorder recorder;
};

} // namespace vorla
