// SPDX-License-Identifier: MIT
#include "model/FennicSeam.h"

#include <gtest/gtest.h>

#include <limits>

namespace vorla {

namespace {

const FennicQuota quota = {
    .fiveHourRemainingPercent = 87,
    .weeklySecondsToReset = 0.5,
    .pressureSummary = "Two\nlines \"and\" quotes."};

} // namespace

TEST(FennicSeam, opensWithTheSummaryOnOneLine) {
    EXPECT_EQ(
        (FennicOpening{.quota = quota, .activationToken = std::nullopt}.encode()),
        R"({"quota":{"fiveHourRemainingPercent":87,"weeklySecondsToReset":0.5,)"
        R"("pressureSummary":"Two\nlines \"and\" quotes."}})"
        "\n");
    EXPECT_EQ((FennicOpening{}.encode()), "{\"quota\":{}}\n");
}

TEST(FennicSeam, readsBackWhatItOpensWith) {
    for (const FennicOpening& opening :
         {FennicOpening{}, FennicOpening{.quota = quota, .activationToken = std::nullopt},
          FennicOpening{.quota = quota, .activationToken = "token_TIME1"}}) {
        EXPECT_EQ(FennicOpening::decode(opening.encode().value()), opening);
    }
}

TEST(FennicSeam, refusesAnOpeningThatIsNotOne) {
    for (const char* line :
         {"", "\n", "{}", "[]", "{\"quota\":null}", "{\"quota\":[]}", "{\"quota\":{}",
          "{\"quota\":{}}{}", "{\"quota\":{\"weeklyRemainingPercent\":\"1\"}}",
          "{\"quota\":{},\"activationToken\":1}"}) {
        EXPECT_THROW(FennicOpening::decode(line), DecodeError) << line;
    }
}

TEST(FennicSeam, leavesOutASummaryThatMakesAnOpeningTooLong) {
    const std::size_t others = FennicOpening{.quota = {.pressureSummary = ""}}.encode()->size();
    FennicOpening opening;
    opening.quota.pressureSummary = std::string(maximumFennicSeamLine - others, 'x');
    const auto longest = opening.encode();
    ASSERT_TRUE(longest);
    EXPECT_EQ(longest->size(), maximumFennicSeamLine);
    EXPECT_EQ(FennicOpening::decode(*longest), opening);
    EXPECT_THROW(FennicOpening::decode(" " + *longest), DecodeError);

    *opening.quota.pressureSummary += 'x';
    EXPECT_EQ(opening.encode(), FennicOpening{}.encode());
    opening.quota.weeklyRemainingPercent = 5;
    opening.activationToken = "token";
    EXPECT_EQ(
        opening.encode(),
        (FennicOpening{.quota = {.weeklyRemainingPercent = 5}, .activationToken = "token"}
             .encode()));
}

TEST(FennicSeam, doesNotEncodeAnOpeningThatIsTooLong) {
    const std::string token(maximumFennicSeamLine, 't');
    EXPECT_EQ(FennicOpening{.activationToken = token}.encode(), std::nullopt);
    EXPECT_EQ(
        (FennicOpening{.quota = {.pressureSummary = "short"}, .activationToken = token}.encode()),
        std::nullopt);
}

TEST(FennicSeam, doesNotEncodeAnOpeningThatJsonCannotExpress) {
    FennicOpening opening;
    opening.quota.weeklySecondsToReset = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(opening.encode(), std::nullopt);
}

TEST(FennicSeam, asksForTheFrontWithOrWithoutAToken) {
    EXPECT_EQ(FennicRaise{}.encode(), "{}\n");
    const FennicRaise raise = {.activationToken = "a\"b"};
    EXPECT_EQ(raise.encode(), "{\"activationToken\":\"a\\\"b\"}\n");
    EXPECT_EQ(FennicRaise::decode(raise.encode()), raise);
    EXPECT_EQ(FennicRaise::decode("{}"), FennicRaise());
}

TEST(FennicSeam, countsAnEmptyTokenAsNone) {
    EXPECT_EQ(FennicRaise::decode(R"({"activationToken":""})"), FennicRaise());
    EXPECT_EQ(FennicOpening::decode(R"({"quota":{},"activationToken":""})"), FennicOpening());
}

TEST(FennicSeam, leavesOutATokenThatIsTooLong) {
    EXPECT_EQ(
        (FennicRaise{.activationToken = std::string(maximumFennicSeamLine, 'x')}.encode()), "{}\n");
}

TEST(FennicSeam, refusesARequestThatIsNotAnObject) {
    for (const char* line : {"", "raise", "[]", "{\"activationToken\":7}", "{} {}"}) {
        EXPECT_THROW(FennicRaise::decode(line), DecodeError) << line;
    }
}

} // namespace vorla
