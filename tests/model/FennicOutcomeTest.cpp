// SPDX-License-Identifier: MIT
#include "model/FennicOutcome.h"

#include <gtest/gtest.h>

namespace vorla {

namespace {

constexpr const char* validBody =
    R"({"taskSize":"small","taskSizeConfidence":1,"fitProbability":0.9,)"
    R"("recommendedAction":"start_now","actionConfidence":1})";

constexpr const char* unavailable =
    "The check is unavailable right now. Usage monitoring is unaffected.";

} // namespace

TEST(FennicOutcome, isTheResultOfAValidAnswer) {
    const auto outcome = FennicOutcome::of(FennicAnswer{.status = 200, .body = validBody}, "a.b");
    EXPECT_EQ(outcome.result, FennicResult::decode(validBody));
    EXPECT_EQ(outcome.message, "");
}

TEST(FennicOutcome, namesTheServiceThatCouldNotBeReached) {
    const auto outcome = FennicOutcome::of(std::nullopt, "vorla.example");
    EXPECT_EQ(outcome.result, std::nullopt);
    EXPECT_EQ(outcome.message, "The check could not reach vorla.example.");
}

TEST(FennicOutcome, isUnavailableForEveryOtherStatusWhateverTheBody) {
    for (const int status : {201, 204, 299, 301, 307, 400, 404, 500, 503}) {
        const auto outcome =
            FennicOutcome::of(FennicAnswer{.status = status, .body = validBody}, "a.b");
        EXPECT_EQ(outcome.result, std::nullopt) << status;
        EXPECT_EQ(outcome.message, unavailable) << status;
    }
}

TEST(FennicOutcome, isUnavailableForABodyThatIsMissingOrOfNoUse) {
    for (const char* body : {"", "{", "{}", "<html></html>"}) {
        const auto outcome = FennicOutcome::of(FennicAnswer{.status = 200, .body = body}, "a.b");
        EXPECT_EQ(outcome.result, std::nullopt) << body;
        EXPECT_EQ(outcome.message, unavailable) << body;
    }
}

TEST(FennicOutcome, isUnavailableForAnAnswerThatIsNotHttp) {
    const auto outcome =
        FennicOutcome::of(FennicAnswer{.status = std::nullopt, .body = validBody}, "a.b");
    EXPECT_EQ(outcome.message, unavailable);
}

} // namespace vorla
