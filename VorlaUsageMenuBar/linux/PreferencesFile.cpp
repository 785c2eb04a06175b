// SPDX-License-Identifier: MIT
#include "linux/PreferencesFile.h"

#include "linux/AtomicFile.h"
#include "linux/FileDescriptor.h"
#include "model/JsonText.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <thread>
#include <utility>

namespace vorla {

namespace {

/// Keeps other processes from writing the preferences; the file itself cannot be locked, since each
/// writing replaces it.
class FileLock final {
public:
    /// A process that was stopped while it held the lock must not hold up the menu for longer.
    static constexpr std::chrono::seconds patience{1};
    static constexpr std::chrono::milliseconds retryInterval{1};

    explicit FileLock(const std::string& path)
        : file_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        const auto deadline = std::chrono::steady_clock::now() + patience;
        while (!tryToLock() && errno == EWOULDBLOCK &&
               std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(retryInterval);
        }
    }

    bool isHeld() const { return held_; }

private:
    bool tryToLock() {
        held_ = flock(file_.number(), LOCK_EX | LOCK_NB) == 0;
        return held_;
    }

    FileDescriptor file_;
    bool held_ = false;
};

std::chrono::nanoseconds sinceEpoch(const timespec& time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

PreferencesFile::PreferencesFile(const std::string& configurationDirectory) {
    if (!configurationDirectory.empty()) {
        folder_ = configurationDirectory + "/VorlaUsageMenuBar";
        path_ = folder_ + "/preferences.json";
    }
}

bool PreferencesFile::boolean(std::string_view key) {
    const auto* const value = find(key);
    const auto* const boolean = value != nullptr ? std::get_if<bool>(&value->content) : nullptr;
    return boolean != nullptr && *boolean;
}

void PreferencesFile::setBoolean(std::string_view key, bool value) {
    set(key, {value});
}

std::vector<std::string> PreferencesFile::strings(std::string_view key) {
    const auto* const value = find(key);
    const auto* const array = value != nullptr ? std::get_if<JsonArray>(&value->content) : nullptr;
    if (array == nullptr) {
        return {};
    }
    std::vector<std::string> strings;
    for (const auto& item : *array) {
        const auto* const string = std::get_if<std::string>(&item.content);
        if (string == nullptr) {
            return {};
        }
        strings.push_back(*string);
    }
    return strings;
}

void PreferencesFile::setStrings(std::string_view key, const std::vector<std::string>& values) {
    JsonArray array;
    for (const auto& value : values) {
        array.push_back({value});
    }
    set(key, {std::move(array)});
}

const JsonValue* PreferencesFile::find(std::string_view key) {
    if (const auto found = unsaved_.find(key); found != unsaved_.end()) {
        return &found->second;
    }
    readIfChanged();
    const auto found = values_.find(key);
    return found != values_.end() ? &found->second : nullptr;
}

void PreferencesFile::set(std::string_view key, JsonValue value) {
    unsaved_.insert_or_assign(std::string(key), std::move(value));
    if (store()) {
        unsaved_.clear();
    }
}

bool PreferencesFile::store() {
    if (folder_.empty() || createFolders(folder_) != 0) {
        return false;
    }
    const FileLock lock(lockPath());
    auto stored = lock.isHeld() ? readSettingAside() : Stored{.error = EWOULDBLOCK};
    if (stored.error != 0) {
        return false;
    }
    for (const auto& [key, value] : unsaved_) {
        stored.values.insert_or_assign(key, value);
    }
    const auto text = prettyJson({stored.values}, maximumBytes - 1);
    // Written back unchanged, the file is left alone.
    if (!text ||
        (*text + '\n' != stored.bytes && writeFileAtomically(path_, *text + '\n', 0600) != 0)) {
        return false;
    }
    values_ = std::move(stored.values);
    // Of no file: people and editors need no lock, so the file may be another one by now.
    version_ = Version{};
    return true;
}

void PreferencesFile::readIfChanged() {
    const auto version = currentVersion();
    if (version == version_) {
        return;
    }
    auto stored = read();
    if (stored.isBroken) {
        // Another process may be mending the file right now.
        if (const FileLock lock(lockPath()); lock.isHeld()) {
            stored = readSettingAside();
        }
    }
    // What cannot be read for the moment, with too many files open for example, is not gone.
    if (stored.error != 0 && !stored.isBroken) {
        return;
    }
    values_ = std::move(stored.values);
    version_ = version;
}

PreferencesFile::Stored PreferencesFile::read() const {
    auto file = readFile(path_, maximumBytes);
    if (file.error == ENOENT) {
        return {};
    }
    if (file.error != 0) {
        return {.error = file.error, .isBroken = file.error == EFBIG};
    }
    Stored stored{.bytes = std::move(file.bytes)};
    try {
        auto document = parseJson(stored.bytes);
        if (auto* const object = std::get_if<JsonObject>(&document.content)) {
            stored.values = std::move(*object);
            return stored;
        }
        return {.error = EINVAL, .isBroken = true};
    } catch (const DecodeError&) {
        return {.error = EINVAL, .isBroken = true};
    }
}

/// The lock must be held.
PreferencesFile::Stored PreferencesFile::readSettingAside() const {
    auto stored = read();
    if (stored.isBroken && rename(path_.c_str(), (path_ + ".corrupt").c_str()) == 0) {
        return {};
    }
    return stored;
}

std::string PreferencesFile::lockPath() const {
    return path_ + ".lock";
}

std::optional<PreferencesFile::Version> PreferencesFile::currentVersion() const {
    struct stat status = {};
    if (stat(path_.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return Version{
        .device = status.st_dev,
        .inode = status.st_ino,
        .size = status.st_size,
        .modified = sinceEpoch(status.st_mtim),
        .changed = sinceEpoch(status.st_ctim)};
}

} // namespace vorla
