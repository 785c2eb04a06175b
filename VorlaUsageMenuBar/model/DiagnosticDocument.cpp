// SPDX-License-Identifier: MIT
#include "model/DiagnosticDocument.h"

#include "model/Json.h"
#include "model/JsonText.h"

#include <optional>
#include <utility>
#include <variant>

namespace vorla {

namespace {

constexpr std::string_view versionKey = "diagnosticSchemaVersion";
constexpr double knownVersion = 1;

bool isOfKnownVersion(const JsonValue& document) {
    const auto* const members = std::get_if<JsonObject>(&document.content);
    if (members == nullptr) {
        return false;
    }
    const auto version = members->find(versionKey);
    if (version == members->end()) {
        return false;
    }
    const auto* const number = std::get_if<JsonNumber>(&version->second.content);
    return number != nullptr && number->decimal() == knownVersion;
}

} // namespace

std::string normalizedDiagnosticDocument(std::string_view bytes) {
    const JsonValue document = parseJson(bytes);
    if (!isOfKnownVersion(document)) {
        throw DecodeError(versionKey, "not the known version");
    }
    std::optional<std::string> text = prettyJson(document, maximumDiagnosticBytes);
    if (!text) {
        throw DecodeError("", "too long as indented text");
    }
    return *std::move(text);
}

} // namespace vorla
