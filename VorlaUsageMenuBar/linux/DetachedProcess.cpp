// SPDX-License-Identifier: MIT
#include "linux/DetachedProcess.h"

#include "linux/SearchPath.h"
#include "linux/Spawn.h"

#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

namespace vorla {

namespace {

std::string pathOf(const DetachedCommand& command) {
    auto path = programIn(variableIn(command.environment, "PATH"), command.program);
    if (path.empty()) {
        throw std::system_error(ENOENT, std::generic_category(), command.program);
    }
    return path;
}

} // namespace

std::string_view variableIn(const std::vector<std::string>& environment, std::string_view name) {
    for (const std::string_view entry : environment) {
        if (entry.substr(0, entry.find('=')) == name && entry.size() > name.size()) {
            return entry.substr(name.size() + 1);
        }
    }
    return {};
}

DetachedProcess::DetachedProcess(
    MainLoop& loop, const DetachedCommand& command, const FileDescriptor& input, Ended ended)
    : ended_(std::move(ended)) {
    auto child = spawn(
        {.path = pathOf(command),
         .arguments = command.arguments,
         .environment = command.environment,
         .input = input.number(),
         .leads = SpawnRequest::Leads::session});
    number_ = child.number;
    handle_ = std::move(child.handle);
    try {
        watch_.emplace(loop, handle_, [this](int status) { toolEnded(status); });
    } catch (...) {
        killAndCollect(number_);
        throw;
    }
}

DetachedProcess::~DetachedProcess() {
    collect(handle_);
}

void DetachedProcess::kill() const {
    if (number_ != 0) {
        // The leader of a session leads the process group of the same number, too.
        ::kill(-number_, SIGKILL);
    }
}

void DetachedProcess::toolEnded(int status) {
    collect(handle_);
    number_ = 0;
    const auto ended = std::move(ended_);
    ended(status);
}

} // namespace vorla
