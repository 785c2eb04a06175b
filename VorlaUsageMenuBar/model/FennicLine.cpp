// SPDX-License-Identifier: MIT
#include "model/FennicLine.h"

namespace vorla {

namespace {

FennicLine smallPrint(std::string_view text) {
    return {.text = std::string(text), .points = 11, .colour = FennicLine::Colour::secondary};
}

} // namespace

FennicLine fennicHeading() {
    return {.text = "Fennic", .points = 22, .weight = FennicLine::Weight::semibold};
}

FennicLine fennicPrompt() {
    return {.text = "What are you about to ask your coding agent to do?"};
}

FennicLine fennicHint() {
    return smallPrint("A short description of the task. Not code, secrets or transcripts.");
}

FennicLine fennicPrivacyNote() {
    return smallPrint(
        "Only this task description and coarse quota state are sent for this optional "
        "check. Your repo and Vorla history are not sent.");
}

FennicLine fennicStatus(std::string_view message) {
    return smallPrint(message);
}

} // namespace vorla
