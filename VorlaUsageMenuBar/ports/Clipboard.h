// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

namespace vorla {

/// The desktop's clipboard; a port, because tests read it back without a desktop. Main thread.
class Clipboard {
public:
    enum class Outcome { copied, unavailable };

    virtual ~Clipboard() = default;

    /// Replaces the clipboard's content by this text. The answer arrives on the main thread,
    /// exactly once, never from inside the call, and not once the clipboard object has been
    /// destroyed.
    virtual void copy(std::string text, std::function<void(Outcome)> answer) = 0;
};

} // namespace vorla
