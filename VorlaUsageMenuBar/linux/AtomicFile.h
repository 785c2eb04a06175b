// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace vorla {

/// What reading a file came to: its bytes, or the errno of the step that failed.
struct FileContent {
    int error = 0;
    std::string bytes{};
};

/// The whole of a regular file. Fails with EFBIG if it is longer than `maximumBytes`, and with
/// EISDIR or EINVAL if it is no regular file; it never waits, as opening a pipe would.
FileContent readFile(const std::string& path, std::size_t maximumBytes);

/// Gives a file a new content in one step: who reads meanwhile sees the old or the new one, whole.
///
/// The new content is on the disk before it takes the old one's place. Symbolic links stay and
/// their target is written, existing or not. Returns 0 or the errno of the step that failed; the
/// file is then as it was.
[[nodiscard]] int
writeFileAtomically(const std::string& path, std::string_view content, mode_t mode);

/// Makes a folder and those above it that are missing, for the user alone. Returns 0 or an errno.
[[nodiscard]] int createFolders(const std::string& folder);

} // namespace vorla
