// SPDX-License-Identifier: MIT
#include "model/FennicSeam.h"

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

std::optional<std::string> activationToken(const JsonObjectReader& object) {
    std::optional<std::string> token = object.optionalString(tokenKey);
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
    return lineOf(object);
}

FennicOpening FennicOpening::decode(std::string_view line) {
    const JsonValue document = parseLine(line);
    const JsonObjectReader object(document);
    return {
        .quota = FennicQuota::decode(object.value(quotaKey)),
        .activationToken = vorla::activationToken(object)};
}

std::string FennicRaise::encode() const {
    JsonObjectWriter object;
    object.add(tokenKey, activationToken);
    return lineOf(object).value_or("{}\n");
}

FennicRaise FennicRaise::decode(std::string_view line) {
    const JsonValue document = parseLine(line);
    const JsonObjectReader object(document);
    return {.activationToken = vorla::activationToken(object)};
}

} // namespace vorla
