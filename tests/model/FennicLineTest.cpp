// SPDX-License-Identifier: MIT
#include "model/FennicLine.h"

#include <gtest/gtest.h>

namespace vorla {

TEST(FennicLine, saysWhatTheWindowShowsBeforeAnyCheck) {
    using Weight = FennicLine::Weight;
    using Colour = FennicLine::Colour;
    const std::pair<FennicLine, FennicLine> rows[] = {
        {fennicHeading(), {"Fennic", 22, Weight::semibold, Colour::primary}},
        {fennicPrompt(),
         {"What are you about to ask your coding agent to do?", 13, Weight::regular,
          Colour::primary}},
        {fennicHint(),
         {"A short description of the task. Not code, secrets or transcripts.", 11, Weight::regular,
          Colour::secondary}},
        {fennicPrivacyNote(),
         {"Only this task description and coarse quota state are sent for this optional check. "
          "Your repo and Vorla history are not sent.",
          11, Weight::regular, Colour::secondary}},
        {fennicStatus("A message."), {"A message.", 11, Weight::regular, Colour::secondary}},
    };
    for (const auto& [line, expected] : rows) {
        EXPECT_EQ(line, expected) << line.text;
    }
    EXPECT_EQ(fennicWindowTitle, "Fennic");
    EXPECT_EQ(fennicCheckTitle, "Check task");
    EXPECT_EQ(fennicCheckingTitle, "Checking\xE2\x80\xA6");
}

} // namespace vorla
