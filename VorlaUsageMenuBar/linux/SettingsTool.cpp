// SPDX-License-Identifier: MIT
#include "linux/SettingsTool.h"

#include "linux/Pipe.h"
#include "linux/Spawn.h"

#include <unistd.h>

#include <csignal>
#include <iterator>
#include <utility>

namespace vorla {

SettingsTool::SettingsTool(
    MainLoop& loop, const std::vector<std::string>& command, std::chrono::milliseconds limit,
    Finished finished)
    : finished_(std::move(finished)) {
    Pipe output;
    // Something that the tool started may keep the other end open.
    letNotBlock(output.readEnd);
    output_ = std::move(output.readEnd);
    auto child = spawn(
        {.path = command.front(),
         .arguments = {std::next(command.begin()), command.end()},
         .output = output.writeEnd.number()});
    number_ = child.number;
    handle_ = std::move(child.handle);
    try {
        watch_.emplace(loop, handle_, [this](int status) { ended(status); });
        limit_ = loop.after(limit, [this] { timeIsUp(); });
    } catch (...) {
        killAndCollect(number_);
        throw;
    }
}

SettingsTool::~SettingsTool() {
    if (number_ != 0) {
        killAndCollect(number_);
    }
}

void SettingsTool::ended(int status) {
    collect(handle_);
    number_ = 0;
    if (status == 0) {
        tell({.output = readOutput()});
    } else {
        tell({});
    }
}

void SettingsTool::timeIsUp() {
    ::kill(-number_, SIGKILL);
    tell({.output = std::nullopt, .inTime = false});
}

std::string SettingsTool::readOutput() const {
    std::string bytes(maximumAnswerBytes, '\0');
    const auto count = read(output_.number(), bytes.data(), bytes.size());
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

void SettingsTool::tell(const Result& result) {
    limit_.reset();
    // The one who is told may destroy this object.
    if (const auto finished = std::exchange(finished_, nullptr)) {
        finished(result);
    }
}

} // namespace vorla
