// SPDX-License-Identifier: MIT
#pragma once

#include "ports/NotificationCentre.h"

#include <functional>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorla {

/// A notification centre that keeps every question until the test answers it.
class FakeNotificationCentre final : public NotificationCentre {
public:
    struct Post {
        Notification notification;
        std::function<void(std::optional<std::string>)> answer;
    };

    void getSettings(std::function<void(AuthorizationStatus)> answer) override {
        settingsQuestions.push_back(std::move(answer));
    }
    void requestAuthorization(std::function<void(AuthorizationAnswer)> answer) override {
        requests.push_back(std::move(answer));
    }
    void
    add(const Notification& notification,
        std::function<void(std::optional<std::string>)> answer) override {
        if (memoryRunsOut) {
            throw std::bad_alloc();
        }
        posts.push_back({notification, std::move(answer)});
    }

    /// Answers all questions about the settings that are open.
    void answerSettings(AuthorizationStatus status) {
        for (const auto& answer : std::exchange(settingsQuestions, {})) {
            answer(status);
        }
    }
    void answerRequest(const AuthorizationAnswer& given) {
        for (const auto& answer : std::exchange(requests, {})) {
            answer(given);
        }
    }
    /// Answers all open posts alike, the oldest first.
    void answerPosts(const std::optional<std::string>& error = std::nullopt) {
        for (const auto& post : std::exchange(posts, {})) {
            post.answer(error);
        }
    }

    std::vector<std::function<void(AuthorizationStatus)>> settingsQuestions;
    std::vector<std::function<void(AuthorizationAnswer)>> requests;
    std::vector<Post> posts;
    bool memoryRunsOut = false;
};

} // namespace vorla
