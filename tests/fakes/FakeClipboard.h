// SPDX-License-Identifier: MIT
#pragma once

#include "ports/Clipboard.h"

#include <functional>
#include <string>
#include <utility>

namespace vorla {

/// A clipboard whose owner, the test, says when a text has arrived, and whether.
class FakeClipboard final : public Clipboard {
public:
    void copy(std::string newText, std::function<void(Outcome)> newAnswer) override {
        text = std::move(newText);
        answer = std::move(newAnswer);
        ++copies;
    }

    std::string text = "what was there before";
    std::function<void(Outcome)> answer;
    int copies = 0;
};

} // namespace vorla
