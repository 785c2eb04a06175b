// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <utility>

namespace vorla {

/// Owns one open file descriptor, or none (-1).
class FileDescriptor final {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~FileDescriptor() { close(); }

    int number() const { return number_; }
    bool isOpen() const { return number_ >= 0; }
    void close() {
        if (isOpen()) {
            ::close(std::exchange(number_, -1));
        }
    }

private:
    int number_ = -1;
};

} // namespace vorla
