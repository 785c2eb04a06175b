// SPDX-License-Identifier: MIT
#include "linux/TitleIcon.h"
#include "panel/RealPanel.h"

namespace vorla {
namespace {

/// The title as the program draws it, on a bar without anything else.
std::string drawnWriting(const std::string& title) {
    const Pixmap icon = titleIcon(title);
    Screenshot shot = {
        .width = static_cast<std::size_t>(icon.width),
        .height = static_cast<std::size_t>(icon.height),
        .rgb = {}};
    for (std::size_t pixel = 0; pixel < icon.argb.size(); pixel += 4) {
        shot.rgb.append(
            icon.argb.begin() + static_cast<std::ptrdiff_t>(pixel) + 1,
            icon.argb.begin() + static_cast<std::ptrdiff_t>(pixel) + 4);
    }
    return writing(shot);
}

/// With icons as high as the title is drawn, so that it is not scaled.
class WaybarPanel : public RealPanel {
protected:
    void showLarge(int fiveHour, int weekly, const std::string& options = "") const {
        showInPanel(fiveHour, weekly, "PANEL=waybar ICON_SIZE=48 " + options);
    }
};

TEST_F(WaybarPanel, showsTheWholeTitle) {
    showLarge(87, 62);
    EXPECT_EQ(writing(read(folder.at("shot-bar.png"))), drawnWriting("5h 87% · W 62%"));
}

TEST_F(WaybarPanel, showsTheTitleAgainAfterThePanelWasRestarted) {
    showLarge(100, 5, "RESTART=1");
    EXPECT_EQ(writing(read(folder.at("shot-restart.png"))), drawnWriting("5h 100% · W 5%"));
}

TEST_F(WaybarPanel, keepsAnOpenMenuInPlaceWhileFiguresChange) {
    changeFiguresUnderTheOpenMenu("PANEL=waybar");
}

} // namespace
} // namespace vorla
