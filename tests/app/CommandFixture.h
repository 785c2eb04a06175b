// SPDX-License-Identifier: MIT
#pragma once

#include "app/Command.h"
#include "fakes/FakeLauncher.h"
#include "fakes/ManualLoop.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vorla {

/// One run whose child the test plays.
class CommandFixture : public testing::Test {
protected:
    ~CommandFixture() override {
        if (const auto left = weak.lock()) {
            left->abandon();
        }
    }

    void start(const std::string& argument) {
        command->start("/tool", argument, [this](CommandResult result) {
            results.push_back(std::move(result));
        });
    }

    FakeChild& child() const { return launcher.last(); }

    ManualLoop loop;
    FakeLauncher launcher;
    std::shared_ptr<Command> command = Command::create(loop, launcher, Environment({"A=1"}));
    std::weak_ptr<Command> weak = command;
    std::vector<CommandResult> results;
};

} // namespace vorla
