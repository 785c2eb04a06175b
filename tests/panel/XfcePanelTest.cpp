// SPDX-License-Identifier: MIT
#include "linux/Pixels.h"
#include "panel/RealPanel.h"

namespace vorla {
namespace {

/// What the saved picture says; a person has read it, and found 87 above 62.
std::string savedWriting() {
    return savedPicture("87-over-62-in-panel");
}

/// With icons as large as the largest that the program draws, so that none is scaled.
class XfcePanel : public RealPanel {
protected:
    void showLarge(int fiveHour, int weekly, const std::string& options = "") const {
        showInPanel(fiveHour, weekly, "ICON_SIZE=64 " + options);
    }
};

TEST_F(XfcePanel, showsTheRemainingPercentages) {
    showLarge(87, 62);
    EXPECT_EQ(writing(read(folder.at("shot-bar.png"))), savedWriting());
}

TEST_F(XfcePanel, showsAnotherPercentageDifferently) {
    showLarge(37, 62);
    const std::string shown = writing(read(folder.at("shot-bar.png")));
    const std::string saved = savedWriting();
    ASSERT_EQ(shown.size(), saved.size());
    const std::size_t half = saved.size() / 2;
    EXPECT_NE(shown.substr(0, half), saved.substr(0, half));
    EXPECT_EQ(shown.substr(half), saved.substr(half));
}

TEST_F(XfcePanel, showsTheItemAgainAfterThePanelWasRestarted) {
    showLarge(87, 62, "RESTART=1");
    EXPECT_EQ(writing(read(folder.at("shot-restart.png"))), savedWriting());
}

TEST_F(XfcePanel, keepsAnOpenMenuInPlaceWhileFiguresChange) {
    changeFiguresUnderTheOpenMenu("");
}

} // namespace
} // namespace vorla
