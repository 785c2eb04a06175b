// SPDX-License-Identifier: MIT
#include "model/FennicOutcome.h"

namespace vorla {

namespace {

constexpr std::string_view cannotReach = "The check could not reach ";
constexpr std::string_view unavailable =
    "The check is unavailable right now. Usage monitoring is unaffected.";

constexpr int statusOk = 200;

} // namespace

FennicOutcome
FennicOutcome::of(const std::optional<FennicAnswer>& answer, std::string_view serviceDomain) {
    if (!answer) {
        return {
            .result = std::nullopt,
            .message = std::string(cannotReach) + std::string(serviceDomain) + "."};
    }
    if (answer->status == statusOk) {
        try {
            return {.result = FennicResult::decode(answer->body), .message = ""};
        } catch (const DecodeError&) {
            // Said like any other answer that is of no use: the user can do nothing about it.
        }
    }
    return {.result = std::nullopt, .message = std::string(unavailable)};
}

} // namespace vorla
