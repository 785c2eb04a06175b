// SPDX-License-Identifier: MIT
#include "model/SnapshotDocument.h"

#include "model/FileContent.h"
#include "model/Usage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace vorla {

namespace {

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char byte : text) {
        if (byte == '"' || byte == '\\') {
            result += '\\';
        }
        if (byte == '\n') {
            result += "\\n";
        } else {
            result += byte;
        }
    }
    return result + "\"";
}

} // namespace

std::string snapshot(const std::string& name) {
    std::string bytes = contentOf(VORLA_TEST_DATA "/snapshots/" + name);
    EXPECT_FALSE(bytes.empty()) << name;
    return bytes;
}

std::string written(const JsonValue& value) {
    if (const auto* flag = std::get_if<bool>(&value.content)) {
        return *flag ? "true" : "false";
    }
    if (const auto* number = std::get_if<JsonNumber>(&value.content)) {
        return number->text;
    }
    if (const auto* text = std::get_if<std::string>(&value.content)) {
        return quoted(*text);
    }
    std::string result;
    if (const auto* array = std::get_if<JsonArray>(&value.content)) {
        for (const JsonValue& element : *array) {
            result += (result.empty() ? "" : ",") + written(element);
        }
        return "[" + result + "]";
    }
    if (const auto* object = std::get_if<JsonObject>(&value.content)) {
        for (const auto& [key, member] : *object) {
            result += (result.empty() ? "" : ",") + quoted(key) + ":" + written(member);
        }
        return "{" + result + "}";
    }
    return "null";
}

std::vector<std::string> placesIn(const JsonValue& value, const std::string& path) {
    std::vector<std::string> places;
    const auto add = [&places](const std::string& place, const JsonValue& child) {
        places.push_back(place);
        const std::vector<std::string> inner = placesIn(child, place);
        places.insert(places.end(), inner.begin(), inner.end());
    };
    if (const auto* object = std::get_if<JsonObject>(&value.content)) {
        for (const auto& [key, member] : *object) {
            add(path.empty() ? key : path + "." + key, member);
        }
    } else if (const auto* array = std::get_if<JsonArray>(&value.content)) {
        for (std::size_t index = 0; index < array->size(); ++index) {
            std::string place = path;
            place.append("[").append(std::to_string(index)).append("]");
            add(place, (*array)[index]);
        }
    }
    return places;
}

JsonValue& at(JsonValue& root, const std::string& path) {
    // "windows[1].name" becomes "windows.1.name".
    std::string steps = path;
    std::erase(steps, ']');
    std::ranges::replace(steps, '[', '.');

    JsonValue* value = &root;
    std::istringstream stream(steps);
    for (std::string step; std::getline(stream, step, '.');) {
        if (auto* array = std::get_if<JsonArray>(&value->content)) {
            value = &array->at(std::stoul(step));
        } else {
            value = &std::get<JsonObject>(value->content)[step];
        }
    }
    return *value;
}

JsonValue fullDocument() {
    return parseJson(snapshot("full.json"));
}

std::string fullWith(const std::string& path, const std::string& text) {
    JsonValue document = fullDocument();
    at(document, path).content = JsonNumber{text};
    return written(document);
}

std::string fullWithout(const std::string& path) {
    JsonValue document = fullDocument();
    const std::size_t dot = path.rfind('.');
    JsonValue& owner = dot == std::string::npos ? document : at(document, path.substr(0, dot));
    std::get<JsonObject>(owner.content).erase(path.substr(dot + 1));
    return written(document);
}

std::string refusal(const std::string& bytes) {
    try {
        Usage::decode(bytes);
    } catch (const DecodeError& error) {
        return error.what();
    }
    return "";
}

bool failsTheSchema(const std::string& bytes) {
    return refusal(bytes).ends_with(": Invalid usage schema");
}

} // namespace vorla
