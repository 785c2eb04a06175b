// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace vorla {
namespace {

struct Screenshot {
    std::size_t width = 0;
    std::size_t height = 0;
    /// Three bytes a pixel.
    std::string rgb;
};

std::string quoted(const std::string& text) {
    return "'" + text + "'";
}

/// Runs a shell command; throws unless it ends with status 0.
void run(const std::string& command) {
    if (const int status = std::system(command.c_str()); status != 0) {
        throw std::runtime_error(command + ": wait status " + std::to_string(status));
    }
}

Screenshot read(const std::filesystem::path& png) {
    const std::string ppm = png.string() + ".ppm";
    run("convert " + quoted(png) + " -depth 8 " + quoted(ppm));
    std::ifstream file(ppm, std::ios::binary);
    std::string magic;
    int most = 0;
    Screenshot shot;
    file >> magic >> shot.width >> shot.height >> most;
    file.get();
    std::ostringstream bytes;
    bytes << file.rdbuf();
    shot.rgb = bytes.str();
    if (magic != "P6" || most != 255 || shot.rgb.size() != shot.width * shot.height * 3) {
        throw std::runtime_error(ppm + " is no picture");
    }
    return shot;
}

/// What is written in the panel, cut to its edges: '#' for the pixels of the text, '.' for others.
///
/// Text is white; of all else in the dark panel nothing has much red.
std::string writing(const Screenshot& shot) {
    const auto isText = [&shot](std::size_t column, std::size_t row) {
        return static_cast<unsigned char>(shot.rgb[(row * shot.width + column) * 3]) >= 150;
    };
    std::size_t left = shot.width;
    std::size_t right = 0;
    std::size_t top = shot.height;
    std::size_t bottom = 0;
    for (std::size_t row = 0; row < shot.height; ++row) {
        for (std::size_t column = 0; column < shot.width; ++column) {
            if (isText(column, row)) {
                left = std::min(left, column);
                right = std::max(right, column + 1);
                top = std::min(top, row);
                bottom = std::max(bottom, row + 1);
            }
        }
    }
    std::string text;
    for (std::size_t row = top; row < bottom; ++row) {
        for (std::size_t column = left; column < right; ++column) {
            text += isText(column, row) ? '#' : '.';
        }
        text += '\n';
    }
    return text;
}

/// What the saved picture says; a person has read it, and found 87 above 62.
std::string savedWriting() {
    const std::ifstream file(VORLA_TEST_DATA "/icons/87-over-62-in-panel.txt");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// A folder for the pictures of one test, and the snapshot that the program reads.
class XfcePanel : public testing::Test {
protected:
    void SetUp() override {
        std::string path = testing::TempDir() + "xfce-panel-XXXXXX";
        ASSERT_NE(mkdtemp(path.data()), nullptr);
        folder = path;
    }

    void TearDown() override { std::filesystem::remove_all(folder); }

    /// Runs the program in a real panel, with icons as large as the largest that it draws, until it
    /// shows the two remaining percentages. `options` are variables for tools/private-session.
    void showInPanel(int fiveHour, int weekly, const std::string& options = "") const {
        std::ofstream(folder / "snapshot.json")
            << R"({"schemaVersion": 1, "fetchedAt": 1700000000, "windows": [)"
            << R"({"name": "5h", "windowDurationMins": 300, "resetsAt": 1700009000, )"
            << R"("usedPercent": )" << 100 - fiveHour << R"(, "remainingPercent": )" << fiveHour
            << R"(}, {"name": "weekly", "windowDurationMins": 10080, "resetsAt": 1700300000, )"
            << R"("usedPercent": )" << 100 - weekly << R"(, "remainingPercent": )" << weekly
            << "}]}";
        const std::string ready =
            "busctl --user get-property com.vorla.UsageMenuBar "
            "/org/ayatana/NotificationItem/VorlaUsageMenuBar org.kde.StatusNotifierItem Title "
            "2>/dev/null | grep -q \"5h " +
            std::to_string(fiveHour) + "%\"";
        run("BAR_HEIGHT=80 ICON_SIZE=64 READY=" + quoted(ready) + " " + options + " " +
            quoted(VORLA_TEST_DATA "/../../tools/private-session") + " " + quoted(folder / "shot") +
            " -- env SNAPSHOT=" + quoted(folder / "snapshot.json") + " VORLA_USAGE_EXECUTABLE=" +
            quoted(VORLA_TEST_CHILDREN "/printsSnapshot") + " " + quoted(VORLA_PROGRAM));
    }

    std::filesystem::path folder;
};

TEST_F(XfcePanel, showsTheRemainingPercentages) {
    showInPanel(87, 62);
    EXPECT_EQ(writing(read(folder / "shot-bar.png")), savedWriting());
}

TEST_F(XfcePanel, showsAnotherPercentageDifferently) {
    showInPanel(37, 62);
    const std::string shown = writing(read(folder / "shot-bar.png"));
    const std::string saved = savedWriting();
    ASSERT_EQ(shown.size(), saved.size());
    const std::size_t half = saved.size() / 2;
    EXPECT_NE(shown.substr(0, half), saved.substr(0, half));
    EXPECT_EQ(shown.substr(half), saved.substr(half));
}

TEST_F(XfcePanel, showsTheItemAgainAfterThePanelWasRestarted) {
    showInPanel(87, 62, "RESTART=1");
    EXPECT_EQ(writing(read(folder / "shot-restart.png")), savedWriting());
}

} // namespace
} // namespace vorla
