// SPDX-License-Identifier: MIT
// Whatever stands in the file of preferences is read or set aside, and nothing of it is lost.
#include "JsonTree.h"
#include "Require.h"

#include "linux/PreferencesFile.h"
#include "model/JsonText.h"

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace {

using namespace vorla;
using fuzz::require;

constexpr const char* flagKey = "flag";
constexpr const char* listKey = "list";

/// A folder for one run of the fuzzer, in memory: each file is written with all that makes it safe
/// on a disk.
class Folder final {
public:
    Folder() {
        std::string pattern = "/dev/shm/vorla-fuzz-XXXXXX";
        require(mkdtemp(pattern.data()) != nullptr, "there is a folder");
        path_ = pattern;
        std::filesystem::create_directory(path_ + "/VorlaUsageMenuBar");
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::string& path() const { return path_; }
    std::string file() const { return path_ + "/VorlaUsageMenuBar/preferences.json"; }
    std::string corrupt() const { return file() + ".corrupt"; }

private:
    std::string path_;
};

const Folder& folder() {
    static const Folder only;
    return only;
}

std::optional<std::string> contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::optional<JsonObject> objectOf(std::string_view bytes) {
    const auto document = fuzz::parsed(bytes);
    const auto* const object = document ? std::get_if<JsonObject>(&document->content) : nullptr;
    return object == nullptr ? std::nullopt : std::optional(*object);
}

bool expectedFlag(const JsonObject& object) {
    const auto found = object.find(flagKey);
    const auto* const flag =
        found == object.end() ? nullptr : std::get_if<bool>(&found->second.content);
    return flag != nullptr && *flag;
}

std::vector<std::string> expectedList(const JsonObject& object) {
    const auto found = object.find(listKey);
    const auto* const array =
        found == object.end() ? nullptr : std::get_if<JsonArray>(&found->second.content);
    std::vector<std::string> list;
    for (const JsonValue& item : array == nullptr ? JsonArray() : *array) {
        const auto* const string = std::get_if<std::string>(&item.content);
        if (string == nullptr) {
            return {};
        }
        list.push_back(*string);
    }
    return list;
}

void checkReading(std::string_view bytes, const std::optional<JsonObject>& object) {
    PreferencesFile preferences(folder().path());
    const JsonObject expected = object.value_or(JsonObject());
    require(preferences.boolean(flagKey) == expectedFlag(expected), "a flag is read");
    require(preferences.strings(listKey) == expectedList(expected), "a list is read");
    require(contentOf(folder().file()).has_value() == object.has_value(), "only a good file stays");
    require(
        contentOf(object ? folder().file() : folder().corrupt()) == bytes,
        "what was in the file is still there");
}

void checkWriting(JsonObject object) {
    const bool flag = !expectedFlag(object);
    object.insert_or_assign(flagKey, JsonValue{flag});
    if (!prettyJson({object}, PreferencesFile::maximumBytes - 1)) {
        // Indentation would make it too long to be read again, so that it is not written.
        return;
    }
    PreferencesFile(folder().path()).setBoolean(flagKey, flag);
    const auto stored = objectOf(contentOf(folder().file()).value_or(""));
    require(stored && fuzz::areEqual({*stored}, {object}), "everything else stays in the file");
    require(PreferencesFile(folder().path()).boolean(flagKey) == flag, "what was set is read");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    unlink(folder().corrupt().c_str());
    std::ofstream(folder().file(), std::ios::binary) << bytes;
    const auto object = objectOf(bytes);
    checkReading(bytes, object);
    if (object) {
        checkWriting(*object);
    }
    return 0;
}
