// SPDX-License-Identifier: MIT
#include "linux/AtomicFile.h"

#include "linux/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace vorla {

namespace {

/// As many as the kernel follows.
constexpr int maximumLinks = 40;
constexpr std::size_t readSize = 16384;

/// What `path` names once symbolic links are followed; it need not exist.
std::filesystem::path linkTarget(std::filesystem::path path) {
    for (int followed = 0; followed < maximumLinks; ++followed) {
        std::error_code isNoLink;
        const auto next = std::filesystem::read_symlink(path, isNoLink);
        if (isNoLink) {
            break;
        }
        path = path.parent_path() / next;
    }
    return path;
}

/// Why what stands at `path` must not be replaced by a file, or 0. Links have been followed before,
/// so one that is still there is part of a circle; and the device that a masked file is linked to
/// must live on.
int obstacle(const std::string& path) {
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode)) {
        return 0;
    }
    if (S_ISLNK(status.st_mode)) {
        return ELOOP;
    }
    return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
}

/// A file of its own beside the one it is meant for; it is gone again unless it took that one's
/// place.
class TemporaryFile final {
public:
    explicit TemporaryFile(const std::filesystem::path& target)
        : path_(target.parent_path() / ("." + target.filename().string() + ".XXXXXX")),
          file_(mkostemp(path_.data(), O_CLOEXEC)) {}

    ~TemporaryFile() {
        if (file_.isOpen()) {
            unlink(path_.c_str());
        }
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    bool isOpen() const { return file_.isOpen(); }

    /// Each of these returns false with errno set on failure.
    bool write(std::string_view content) const {
        while (!content.empty()) {
            const auto count = ::write(file_.number(), content.data(), content.size());
            if (count >= 0) {
                content.remove_prefix(static_cast<std::size_t>(count));
            } else if (errno != EINTR) {
                return false;
            }
        }
        return true;
    }

    bool finish(mode_t mode) const {
        return fchmod(file_.number(), mode) == 0 && fsync(file_.number()) == 0;
    }

    bool replace(const std::string& target) {
        if (rename(path_.c_str(), target.c_str()) != 0) {
            return false;
        }
        file_.close();
        return true;
    }

private:
    std::string path_;
    FileDescriptor file_;
};

// The new content is in place by now and cannot be taken back, so nobody is told if this fails;
// some file systems cannot do it at all.
void syncFolder(const std::filesystem::path& folder) {
    const FileDescriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.isOpen()) {
        fsync(descriptor.number());
    }
}

} // namespace

FileContent readFile(const std::string& path, std::size_t maximumBytes) {
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status = {};
    if (!file.isOpen() || fstat(file.number(), &status) != 0) {
        return {.error = errno};
    }
    if (!S_ISREG(status.st_mode)) {
        return {.error = S_ISDIR(status.st_mode) ? EISDIR : EINVAL};
    }
    // The size is not asked for: it may change while the file is read, and files of the kernel have
    // none.
    FileContent content;
    for (;;) {
        const auto before = content.bytes.size();
        content.bytes.resize(before + std::min(readSize, maximumBytes + 1 - before));
        const auto count =
            read(file.number(), content.bytes.data() + before, content.bytes.size() - before);
        content.bytes.resize(before + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (content.bytes.size() > maximumBytes) {
            return {.error = EFBIG};
        }
        if (count == 0) {
            return content;
        }
        if (count < 0 && errno != EINTR) {
            return {.error = errno};
        }
    }
}

int writeFileAtomically(const std::string& path, std::string_view content, mode_t mode) {
    const auto target = linkTarget(path);
    if (const int error = obstacle(target.string())) {
        return error;
    }
    TemporaryFile file(target);
    if (!file.isOpen() || !file.write(content) || !file.finish(mode) ||
        !file.replace(target.string())) {
        return errno;
    }
    syncFolder(target.parent_path());
    return 0;
}

int createFolders(const std::string& folder) {
    for (std::size_t end = 0; end != std::string::npos;) {
        end = folder.find('/', end + 1);
        if (mkdir(folder.substr(0, end).c_str(), 0700) != 0 && errno != EEXIST) {
            return errno;
        }
    }
    struct stat status = {};
    if (stat(folder.c_str(), &status) != 0) {
        return errno;
    }
    return S_ISDIR(status.st_mode) ? 0 : ENOTDIR;
}

} // namespace vorla
