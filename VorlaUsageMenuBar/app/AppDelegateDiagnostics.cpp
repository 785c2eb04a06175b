// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"

#include "model/DiagnosticDocument.h"
#include "model/Json.h"
#include "model/Text.h"

#include <exception>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vorla {

namespace {

constexpr auto cannotRunText = "Cannot run diagnostics: ";
constexpr auto timedOutText = "Diagnostic snapshot timed out.";
constexpr auto invalidText = "Invalid diagnostic output from vorla-usage.";
constexpr auto copiedText = "Diagnostic snapshot copied.";
constexpr auto noClipboardText = "Cannot copy the diagnostic snapshot: no clipboard is available. "
                                 "Run vorla-usage --diagnostics-json in Terminal.";
constexpr std::size_t errorCharacters = 200;

std::string failureText(const CommandResult& result) {
    const auto errors = text::trimmed(result.errors);
    if (!errors.empty()) {
        return text::excerpt(errors, errorCharacters);
    }
    return "Diagnostic snapshot failed (" + std::to_string(result.status) + ").";
}

std::optional<std::string> normalized(std::string_view output) {
    try {
        return normalizedDiagnosticDocument(output);
    } catch (const DecodeError&) {
        return std::nullopt;
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

} // namespace

void AppDelegate::copyDiagnosticSnapshot() {
    if (diagnosticCommand_ != nullptr || isCopying_ || quitting_) {
        return;
    }
    const auto path = findCompanion(platform_.companionPlaces);
    if (!path) {
        diagnosticEnded(retryMissingText);
        return;
    }
    diagnosticCommand_ =
        Command::create(platform_.loop, platform_.launcher, platform_.companionPlaces.environment);
    state_.diagnosticStatus.reset();
    try {
        rebuildMenu();
        diagnosticCommand_->start(*path, "--diagnostics-json", [this](const CommandResult& result) {
            diagnosticFinished(result);
        });
    } catch (const std::exception& error) {
        diagnosticCommand_.reset();
        diagnosticEnded(cannotRunText + reasonOf(error));
    }
}

void AppDelegate::diagnosticFinished(const CommandResult& result) {
    if (quitting_) {
        return;
    }
    diagnosticCommand_.reset();
    if (result.timedOut) {
        diagnosticEnded(timedOutText);
    } else if (result.status != 0) {
        diagnosticEnded(failureText(result));
    } else if (auto document = normalized(result.output)) {
        copyToClipboard(*std::move(document));
    } else {
        diagnosticEnded(invalidText);
    }
}

void AppDelegate::copyToClipboard(std::string document) {
    const auto answered = whileAlive([this](Clipboard::Outcome outcome) {
        isCopying_ = false;
        if (!quitting_) {
            diagnosticEnded(outcome == Clipboard::Outcome::copied ? copiedText : noClipboardText);
        }
    });
    isCopying_ = true;
    try {
        rebuildMenu();
        platform_.clipboard.copy(std::move(document), answered);
    } catch (const std::bad_alloc&) {
        // There will be no answer.
        answered(Clipboard::Outcome::unavailable);
    }
}

void AppDelegate::diagnosticEnded(std::string status) {
    state_.diagnosticStatus = std::move(status);
    rebuildMenu();
}

} // namespace vorla
