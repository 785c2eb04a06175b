// SPDX-License-Identifier: MIT
// The diagnostic document is passed on as it came, or not at all.
#include "JsonTree.h"
#include "Require.h"
#include "Utf8.h"

#include "model/DiagnosticDocument.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace {

using namespace vorla;
using fuzz::require;

/// No document of this size can exceed the maximum by its indentation.
constexpr std::size_t fittingBytes = 32'768;

std::optional<std::string> normalized(std::string_view bytes) {
    try {
        return normalizedDiagnosticDocument(bytes);
    } catch (const DecodeError&) {
        return std::nullopt;
    }
}

/// By the C library's own reading of numbers.
bool isOfVersionOne(const JsonValue& document) {
    const auto* const members = std::get_if<JsonObject>(&document.content);
    if (members == nullptr) {
        return false;
    }
    const auto version = members->find("diagnosticSchemaVersion");
    if (version == members->end()) {
        return false;
    }
    const auto* const number = std::get_if<JsonNumber>(&version->second.content);
    return number != nullptr && std::strtod(number->text.c_str(), nullptr) == 1;
}

void checkText(const std::string& text, const JsonValue& document) {
    require(fuzz::isWellFormed(text), "the text is well-formed");
    const auto isControl = [](char byte) { return byte >= 0 && byte < ' ' && byte != '\n'; };
    require(std::ranges::none_of(text, isControl), "no control character stays unescaped");
    require(text.starts_with("{\n") && text.ends_with("\n}"), "the text is an indented object");
    const auto again = fuzz::parsed(text);
    require(again && fuzz::areEqual(document, *again), "the text says what the document says");
    require(normalized(text) == text, "a normalised text is left alone");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto text = normalized(bytes);
    const auto document = fuzz::parsed(bytes);
    const bool isAccepted = document && isOfVersionOne(*document);
    require(!text || isAccepted, "only documents of version 1 are taken");
    require(text || !isAccepted || size > fittingBytes, "every document of version 1 is taken");
    if (text) {
        checkText(*text, *document);
    }
    return 0;
}
