// SPDX-License-Identifier: MIT
#include "model/FennicSeam.h"

#include "model/JsonObjectReader.h"

namespace vorla {

namespace {

constexpr std::string_view quotaKey = "quota";
constexpr std::string_view tokenKey = "activationToken";

std::optional<std::string> lineOf(const JsonObjectWriter& object) {
    std::optional<std::string> line = object.text();
    if (!line || line->size() >= maximumFennicSeamLine) {
        return std::nullopt;
    }
    return *line + "\n";
}

JsonValue parseLine(std::string_view line) {
    if (line.size() > maximumFennicSeamLine) {
        throw DecodeError("", "too long");
    }
    return parseJson(line);
}

std::optional<std::string> activationToken(const JsonObjectReader& reader) {
    std::optional<std::string> token = reader.optional(tokenKey, json::string);
    if (token && token->empty()) {
        return std::nullopt;
    }
    return token;
}

} // namespace

std::optional<std::string> FennicOpening::encode() const {
    JsonObjectWriter object;
    object.add(quotaKey, quota.encode());
    object.add(tokenKey, activationToken);
    auto line = lineOf(object);
    if (!line && quota.pressureSummary) {
        FennicOpening shorter = *this;
        shorter.quota.pressureSummary.reset();
        return shorter.encode();
    }
    return line;
}

FennicOpening FennicOpening::decode(std::string_view line) {
    const JsonValue document = parseLine(line);
    const JsonObjectReader reader(document);
    return {
        .quota = reader.required(quotaKey, FennicQuota::decode),
        .activationToken = vorla::activationToken(reader)};
}

std::string FennicRaise::encode() const {
    JsonObjectWriter object;
    object.add(tokenKey, activationToken);
    return lineOf(object).value_or("{}\n");
}

FennicRaise FennicRaise::decode(std::string_view line) {
    const JsonValue document = parseLine(line);
    const JsonObjectReader reader(document);
    return {.activationToken = vorla::activationToken(reader)};
}

} // namespace vorla
