// SPDX-License-Identifier: MIT
#include "linux/DetachedProcess.h"

#include "linux/Spawn.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

namespace vorla {

namespace {

std::string findProgram(const DetachedCommand& command) {
    std::string_view folders = variableIn(command.environment, "PATH");
    while (!folders.empty()) {
        const auto folder = folders.substr(0, folders.find(':'));
        folders.remove_prefix(std::min(folder.size() + 1, folders.size()));
        auto path = std::string(folder).append("/").append(command.program);
        // Our working directory is where we happened to be started; no tool is looked for there.
        if (folder.starts_with('/') && isProgram(path)) {
            return path;
        }
    }
    throw std::system_error(ENOENT, std::generic_category(), command.program);
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
        {.path = findProgram(command),
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
