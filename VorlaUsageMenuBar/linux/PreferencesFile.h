// SPDX-License-Identifier: MIT
#pragma once

#include "model/Json.h"
#include "ports/Preferences.h"

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>

namespace vorla {

/// The preferences as one JSON object in a file, which people may edit while the application runs.
///
/// The file is read at the first use and when it has changed since. Members that this version does
/// not know stay. A file that is no JSON object or longer than maximumBytes is set aside with
/// ".corrupt" behind its name, and the preferences start anew. What could not be stored is answered
/// from memory, and tried again with the next value that is set.
class PreferencesFile final : public Preferences {
public:
    static constexpr std::size_t maximumBytes = 1'048'576;

    /// `configurationDirectory` is the user's, or empty if unknown: then nothing is ever stored.
    explicit PreferencesFile(const std::string& configurationDirectory);

    bool boolean(std::string_view key) override;
    void setBoolean(std::string_view key, bool value) override;
    std::vector<std::string> strings(std::string_view key) override;
    void setStrings(std::string_view key, const std::vector<std::string>& values) override;

private:
    /// What tells one content of the file from another without reading it.
    struct Version {
        dev_t device;
        ino_t inode;
        off_t size;
        std::chrono::nanoseconds modified;
        std::chrono::nanoseconds changed;

        bool operator==(const Version&) const = default;
    };

    struct Stored {
        /// Why the file cannot be used though it exists, as an errno, or 0.
        int error = 0;
        bool isBroken = false;
        std::string bytes{};
        JsonObject values{};
    };

    /// Nothing if the key is absent. The pointer holds until the next call.
    const JsonValue* find(std::string_view key);
    void set(std::string_view key, JsonValue value);
    bool store();
    void readIfChanged();
    Stored read() const;
    Stored readSettingAside() const;
    std::string lockPath() const;
    std::optional<Version> currentVersion() const;

    /// Empty if unknown.
    std::string folder_;
    std::string path_;
    /// As last seen in the file, and which version of it that was; nothing if there was no file.
    JsonObject values_;
    std::optional<Version> version_;
    /// What was set in this run and is not in the file.
    JsonObject unsaved_;
};

} // namespace vorla
