// SPDX-License-Identifier: MIT
#include "model/JsonText.h"

#include "model/JsonString.h"

#include <string_view>
#include <utility>

namespace vorla {

namespace {

constexpr std::size_t spacesPerLevel = 2;

/// Text that stops growing at its limit.
class LimitedText final {
public:
    explicit LimitedText(std::size_t maximumBytes) : maximumBytes_(maximumBytes) {}

    void append(std::string_view piece) {
        if (hasRoomFor(piece.size())) {
            text_ += piece;
        }
    }

    void appendSpaces(std::size_t count) {
        if (hasRoomFor(count)) {
            text_.append(count, ' ');
        }
    }

    bool isFull() const { return full_; }

    std::string take() { return std::move(text_); }

private:
    bool hasRoomFor(std::size_t bytes) {
        full_ = full_ || bytes > maximumBytes_ - text_.size();
        return !full_;
    }

    std::string text_;
    std::size_t maximumBytes_;
    bool full_ = false;
};

/// Overloads rather than names, so that the variant's alternatives find theirs.
class Writer final {
public:
    explicit Writer(std::size_t maximumBytes) : out_(maximumBytes) {}

    void write(const JsonValue& value) {
        if (!hasFailed()) {
            std::visit(*this, value.content);
        }
    }

    void operator()(std::nullptr_t) { out_.append("null"); }

    void operator()(bool value) { out_.append(value ? "true" : "false"); }

    void operator()(const JsonNumber& number) { out_.append(number.text); }

    void operator()(const std::string& string) { appendJsonString(out_, string); }

    void operator()(const JsonArray& array) {
        container(array, "[", "]", [this](const JsonValue& item) { write(item); });
    }

    void operator()(const JsonObject& object) {
        container(object, "{", "}", [this](const JsonObject::value_type& member) {
            (*this)(member.first);
            out_.append(": ");
            write(member.second);
        });
    }

    bool hasFailed() const { return tooDeep_ || out_.isFull(); }

    std::string take() { return out_.take(); }

private:
    template <typename Container, typename WriteItem>
    void container(
        const Container& items, std::string_view opening, std::string_view closing,
        const WriteItem& writeItem) {
        if (depth_ == maximumJsonDepth) {
            tooDeep_ = true;
            return;
        }
        out_.append(opening);
        if (!items.empty()) {
            ++depth_;
            std::string_view separator;
            for (const auto& item : items) {
                if (hasFailed()) {
                    return;
                }
                out_.append(separator);
                startLine();
                writeItem(item);
                separator = ",";
            }
            --depth_;
            startLine();
        }
        out_.append(closing);
    }

    void startLine() {
        out_.append("\n");
        out_.appendSpaces(static_cast<std::size_t>(depth_) * spacesPerLevel);
    }

    LimitedText out_;
    int depth_ = 0;
    bool tooDeep_ = false;
};

} // namespace

std::optional<std::string> prettyJson(const JsonValue& value, std::size_t maximumBytes) {
    Writer writer(maximumBytes);
    writer.write(value);
    if (writer.hasFailed()) {
        return std::nullopt;
    }
    return writer.take();
}

} // namespace vorla
