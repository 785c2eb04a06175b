// SPDX-License-Identifier: MIT
#pragma once

#include "model/Json.h"

#include <string>
#include <vector>

/// Snapshot documents as tests need them: the files in data/snapshots, and full.json, in which
/// every field is present, with one thing changed.
namespace vorla {

/// The bytes of a file in data/snapshots.
std::string snapshot(const std::string& name);

/// The document as text again. A number is written as its text stands, so that a test can put any
/// text in the place of a value.
std::string written(const JsonValue& value);

/// The places of all members and elements below `value`, such as "windows[1].name", each behind
/// `path`.
std::vector<std::string> placesIn(const JsonValue& value, const std::string& path = "");

/// The value at a place; a member that is not there yet is added.
JsonValue& at(JsonValue& root, const std::string& path);

JsonValue fullDocument();

/// The full document with `text` in the place of one value.
std::string fullWith(const std::string& path, const std::string& text);

std::string fullWithout(const std::string& path);

/// What Usage::decode() says against the document, or nothing when it accepts it.
std::string refusal(const std::string& bytes);

/// Whether the document is refused although all its types are right.
bool failsTheSchema(const std::string& bytes);

} // namespace vorla
