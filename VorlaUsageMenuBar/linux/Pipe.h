// SPDX-License-Identifier: MIT
#pragma once

#include "linux/FileDescriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace vorla {

/// Throws std::system_error.
struct Pipe {
    Pipe() {
        std::array<int, 2> ends = {-1, -1};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe2");
        }
        readEnd = FileDescriptor(ends[0]);
        writeEnd = FileDescriptor(ends[1]);
    }

    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

/// From now on this end of a pipe never keeps us waiting. Throws std::system_error.
inline void letNotBlock(const FileDescriptor& end) {
    if (fcntl(end.number(), F_SETFL, O_NONBLOCK) != 0) {
        throw std::system_error(errno, std::generic_category(), "fcntl");
    }
}

} // namespace vorla
