// SPDX-License-Identifier: MIT
#pragma once

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <fstream>

namespace vorla {

/// Sets a limit of this process and its children for as long as it lives, as far as the system lets
/// it be raised.
class SystemLimit final {
public:
    SystemLimit(__rlimit_resource resource, rlim_t value) : resource_(resource) {
        getrlimit(resource_, &before_);
        rlimit changed = before_;
        changed.rlim_cur = std::min(value, before_.rlim_max);
        setrlimit(resource_, &changed);
    }
    ~SystemLimit() { setrlimit(resource_, &before_); }
    SystemLimit(const SystemLimit&) = delete;
    SystemLimit& operator=(const SystemLimit&) = delete;

private:
    __rlimit_resource resource_;
    rlimit before_ = {};
};

/// A disk that is full after so many bytes of a file, for as long as it lives.
class FullDisk final {
public:
    explicit FullDisk(rlim_t bytes) : limit_(RLIMIT_FSIZE, bytes) {}
    ~FullDisk() { std::signal(SIGXFSZ, signalBefore_); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*signalBefore_)(int) = std::signal(SIGXFSZ, SIG_IGN);
    SystemLimit limit_;
};

/// Sets the stack size of new threads for as long as it lives.
class ThreadStackSize final {
public:
    explicit ThreadStackSize(std::size_t bytes) {
        pthread_getattr_default_np(&before_);
        pthread_attr_t changed = before_;
        pthread_attr_setstacksize(&changed, bytes);
        pthread_setattr_default_np(&changed);
    }
    ~ThreadStackSize() {
        pthread_setattr_default_np(&before_);
        pthread_attr_destroy(&before_);
    }
    ThreadStackSize(const ThreadStackSize&) = delete;
    ThreadStackSize& operator=(const ThreadStackSize&) = delete;

private:
    pthread_attr_t before_ = {};
};

inline rlim_t addressSpaceInUse() {
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

} // namespace vorla
