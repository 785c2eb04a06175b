// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace vorla {

enum class AuthorizationStatus {
    notDetermined = 0,
    denied = 1,
    authorized = 2,
    provisional = 3,
    ephemeral = 4,
};

struct AuthorizationAnswer {
    bool granted = false;
    /// A sentence, when the request itself failed.
    std::optional<std::string> error = std::nullopt;
};

struct Notification {
    /// Posting an identifier again replaces its bubble.
    std::string identifier;
    std::string title;
    std::string body;
};

/// The desktop's notifications; a port, because tests play the desktop. Main thread. Answers arrive
/// on the main thread too, each exactly once, and never from inside the call; none arrive once the
/// centre has been destroyed.
class NotificationCentre {
public:
    virtual ~NotificationCentre() = default;

    virtual void getSettings(std::function<void(AuthorizationStatus)> answer) = 0;
    virtual void requestAuthorization(std::function<void(AuthorizationAnswer)> answer) = 0;
    /// The answer is a sentence that says what failed, or nothing on success.
    virtual void
    add(const Notification& notification,
        std::function<void(std::optional<std::string>)> answer) = 0;
};

} // namespace vorla
