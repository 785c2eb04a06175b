// SPDX-License-Identifier: MIT
// Changes snapshots as documents: of plain changes of bytes, few leave JSON behind.
#include "JsonTree.h"

#include "model/JsonText.h"
#include "model/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maximum);

namespace {

using namespace vorla;
using Random = std::minstd_rand;

/// The edges of what the schema and the texts allow.
constexpr std::array<std::string_view, 24> edges = {
    "0",
    "1",
    "-1",
    "100",
    "101",
    "300",
    "10080",
    "0.5",
    "9.96",
    "0.1",
    "-0.0",
    "3600",
    "86400",
    "1700000000",
    "253402300799.5",
    "253402300800",
    "9223372036854775807",
    "-9223372036854775808",
    "9223372036854775808",
    "9223372036854774784.0",
    "553402322211286548000",
    "1e300",
    "-1e300",
    "4.9e-324"};

void collect(JsonValue& value, std::vector<JsonValue*>& places) {
    places.push_back(&value);
    if (auto* array = std::get_if<JsonArray>(&value.content)) {
        for (JsonValue& item : *array) {
            collect(item, places);
        }
    } else if (auto* object = std::get_if<JsonObject>(&value.content)) {
        for (auto& member : *object) {
            collect(member.second, places);
        }
    }
}

/// Changes one place of a document, in a way that fits what stands there.
class Change final {
public:
    explicit Change(Random& random) : random_(random) {}

    /// Only the place of something else can become another.
    void operator()(std::nullptr_t) const {}

    void operator()(bool& place) const { place = !place; }

    void operator()(JsonNumber& place) const {
        const auto integer = place.integer();
        if (integer && *integer > -1000 && *integer < 10'000'000'000 && below(2) == 0) {
            place.text = std::to_string(*integer + static_cast<std::int64_t>(below(7)) - 3);
        } else {
            place.text = edges.at(below(edges.size()));
        }
    }

    void operator()(std::string& place) const {
        constexpr std::size_t room = 16;
        const std::size_t size = place.size();
        place.resize(size + room);
        place.resize(
            LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(place.data()), size, place.size()));
        place = text::repaired(place);
    }

    void operator()(JsonArray& place) const {
        if (place.empty()) {
            return;
        }
        const auto item = place.begin() + static_cast<std::ptrdiff_t>(below(place.size()));
        switch (below(3)) {
        case 0:
            place.erase(item);
            break;
        case 1:
            std::swap(*item, place.front());
            break;
        default:
            place.push_back(*item);
        }
    }

    void operator()(JsonObject& place) const {
        if (!place.empty()) {
            place.erase(std::next(place.begin(), static_cast<std::ptrdiff_t>(below(place.size()))));
        }
    }

private:
    std::size_t below(std::size_t limit) const { return random_() % limit; }

    Random& random_;
};

void change(JsonValue& document, Random& random) {
    std::vector<JsonValue*> places;
    collect(document, places);
    JsonValue& place = *places[random() % places.size()];
    if (random() % 8 == 0) {
        // By way of a copy, since one may lie inside the other.
        JsonValue other = *places[random() % places.size()];
        place = std::move(other);
    } else {
        std::visit(Change(random), place.content);
    }
}

/// Without the line ends and the indentation; those of strings are escaped.
std::string compact(std::string_view pretty) {
    std::string text;
    bool isIndentation = false;
    for (const char byte : pretty) {
        isIndentation = byte == '\n' || (isIndentation && byte == ' ');
        if (!isIndentation) {
            text.push_back(byte);
        }
    }
    return text;
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(
    std::uint8_t* data, std::size_t size, std::size_t maximum, unsigned int seed) {
    constexpr std::size_t maximumPrettyBytes = 1'048'576;
    Random random(seed);
    auto document = fuzz::parsed({reinterpret_cast<const char*>(data), size});
    if (!document || random() % 8 == 0) {
        return LLVMFuzzerMutate(data, size, maximum);
    }
    for (auto rounds = 1 + random() % 3; rounds > 0; --rounds) {
        change(*document, random);
    }
    const auto pretty = prettyJson(*document, maximumPrettyBytes);
    const std::string text = compact(pretty.value_or(""));
    if (text.empty() || text.size() > maximum) {
        return LLVMFuzzerMutate(data, size, maximum);
    }
    std::ranges::copy(text, reinterpret_cast<char*>(data));
    return text.size();
}
