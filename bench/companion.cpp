// SPDX-License-Identifier: MIT
// The companion of the benchmarks: prints the file "output" in the folder VORLA_BENCH_FOLDER, and
// as its last act writes the time, in nanoseconds of CLOCK_MONOTONIC, into the file "exit" there.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <string>

namespace {

bool printed(int file) {
    std::array<char, 65536> buffer;
    for (;;) {
        const ssize_t length = read(file, buffer.data(), buffer.size());
        if (length <= 0) {
            return length == 0;
        }
        for (ssize_t done = 0; done < length;) {
            const ssize_t written = write(
                STDOUT_FILENO, &buffer.at(static_cast<std::size_t>(done)),
                static_cast<std::size_t>(length - done));
            if (written < 0) {
                return false;
            }
            done += written;
        }
    }
}

} // namespace

int main() {
    const char* const folder = std::getenv("VORLA_BENCH_FOLDER");
    if (folder == nullptr) {
        return 1;
    }
    const int output = open((std::string(folder) + "/output").c_str(), O_RDONLY);
    const int stamp = open(
        (std::string(folder) + "/exit").c_str(), O_WRONLY | O_CREAT | O_TRUNC, S_IRUSR | S_IWUSR);
    if (output < 0 || stamp < 0 || !printed(output)) {
        return 1;
    }
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const std::string time = std::to_string(now.tv_sec * 1'000'000'000 + now.tv_nsec);
    const bool stamped = write(stamp, time.data(), time.size()) >= 0;
    // Nothing is left to be flushed or destroyed.
    _exit(stamped ? 0 : 1);
}
