// SPDX-License-Identifier: MIT
#pragma once

#include "linux/FileDescriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace vorla {

/// The named pipe READY, through which children tell the test that they have come so far.
class ReadyPipe final {
public:
    /// Makes the pipe at `path`.
    explicit ReadyPipe(std::string path) : path_(std::move(path)) {
        if (mkfifo(path_.c_str(), 0600) != 0) {
            throw std::runtime_error("cannot make " + path_);
        }
        // Open for both, so that nobody waits for somebody to open the other end.
        pipe_ = FileDescriptor(open(path_.c_str(), O_RDWR | O_CLOEXEC));
    }

    std::string variable() const { return "READY=" + path_; }

    /// Whether next() would not wait.
    bool hasNext() const {
        pollfd watched = {pipe_.number(), POLLIN, 0};
        return poll(&watched, 1, 0) == 1;
    }

    /// The number of the process that says next that it is ready.
    pid_t next() const {
        pollfd watched = {pipe_.number(), POLLIN, 0};
        pid_t number = 0;
        if (poll(&watched, 1, 30'000) != 1 ||
            read(pipe_.number(), &number, sizeof number) != sizeof number) {
            throw std::runtime_error("the child never got ready");
        }
        return number;
    }

private:
    std::string path_;
    FileDescriptor pipe_;
};

} // namespace vorla
