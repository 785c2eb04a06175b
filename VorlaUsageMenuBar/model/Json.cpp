// SPDX-License-Identifier: MIT
#include "model/Json.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <type_traits>
#include <utility>

namespace vorla {

// An array that grows would otherwise copy whole subtrees.
static_assert(std::is_nothrow_move_constructible_v<JsonValue>);

namespace {

std::string described(std::string_view path, std::string_view problem) {
    std::string text(path);
    if (!text.empty()) {
        text += ": ";
    }
    return text.append(problem);
}

/// Builds the tree from the parser's events; the events' names are the parser's.
///
/// An event that answers false ends the parsing, with the reason in problem(): nothing of ours is
/// thrown through the parser.
class TreeBuilder final {
public:
    bool null() { return place(nullptr); }

    bool boolean(bool value) { return place(value); }

    bool number_integer(std::int64_t value) { return place(JsonNumber{std::to_string(value)}); }

    bool number_unsigned(std::uint64_t value) { return place(JsonNumber{std::to_string(value)}); }

    bool number_float(double, const std::string& token) {
        JsonNumber number{token};
        // The parser's token bears the decimal point of the process's locale, which a toolkit may
        // have set.
        const auto isLocalPoint = [](char byte) {
            return std::string_view("0123456789+-eE").find(byte) == std::string_view::npos;
        };
        std::ranges::replace_if(number.text, isLocalPoint, '.');
        return place(std::move(number));
    }

    bool string(std::string& value) { return place(std::move(value)); }

    bool binary(const nlohmann::json::binary_t&) { return fail("binary data"); }

    bool start_object(std::size_t) { return open(JsonObject{}); }

    bool key(std::string& name) {
        member_ = &std::get<JsonObject>(open_.back()->content)[std::move(name)];
        return true;
    }

    bool end_object() { return close(); }

    bool start_array(std::size_t) { return open(JsonArray{}); }

    bool end_array() { return close(); }

    bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception& error) {
        return fail(error.what());
    }

    JsonValue takeRoot() { return std::move(root_); }

    const std::string& problem() const { return problem_; }

private:
    bool fail(std::string_view problem) {
        problem_ = problem;
        return false;
    }

    template <typename Content>
    bool place(Content&& content) {
        if (++valueCount_ > maximumJsonValues) {
            return fail("too many values");
        }
        nextValue().content = std::forward<Content>(content);
        return true;
    }

    template <typename Container>
    bool open(Container&& container) {
        if (open_.size() == maximumJsonDepth) {
            return fail("nested too deeply");
        }
        if (++valueCount_ > maximumJsonValues) {
            return fail("too many values");
        }
        JsonValue& value = nextValue();
        value.content = std::forward<Container>(container);
        open_.push_back(&value);
        return true;
    }

    bool close() {
        open_.pop_back();
        return true;
    }

    /// Where the value that has just been read belongs.
    JsonValue& nextValue() {
        if (open_.empty()) {
            return root_;
        }
        if (auto* array = std::get_if<JsonArray>(&open_.back()->content)) {
            return array->emplace_back();
        }
        return *member_;
    }

    JsonValue root_;
    /// The containers around the next value. The pointers hold because only the innermost container
    /// ever changes.
    std::vector<JsonValue*> open_;
    JsonValue* member_ = nullptr;
    std::size_t valueCount_ = 0;
    std::string problem_;
};

} // namespace

DecodeError::DecodeError(std::string_view path, std::string_view problem)
    : std::runtime_error(described(path, problem)) {}

std::optional<std::int64_t> JsonNumber::integer() const {
    const char* const end = text.data() + text.size();
    std::int64_t value = 0;
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return value;
}

double JsonNumber::decimal() const {
    double value = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range) {
        // Too large numbers have been refused by parseJson(), so this one is too small.
        return text.starts_with('-') ? -0.0 : 0.0;
    }
    return value;
}

JsonValue parseJson(std::string_view bytes) {
    // The parser takes a NUL for the end of its input.
    if (bytes.find('\0') != std::string_view::npos) {
        throw DecodeError("", "a NUL byte");
    }
    TreeBuilder builder;
    if (!nlohmann::json::sax_parse(bytes.data(), bytes.data() + bytes.size(), &builder)) {
        throw DecodeError("", builder.problem());
    }
    return builder.takeRoot();
}

} // namespace vorla
