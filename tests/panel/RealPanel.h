// SPDX-License-Identifier: MIT
#pragma once

#include "linux/PublishedMenu.h"
#include "linux/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

namespace vorla {

struct Screenshot {
    std::size_t width = 0;
    std::size_t height = 0;
    /// Three bytes a pixel.
    std::string rgb;
};

inline std::string quoted(const std::string& text) {
    return "'" + text + "'";
}

/// Runs a shell command; throws unless it ends with status 0.
inline void run(const std::string& command) {
    if (const int status = std::system(command.c_str()); status != 0) {
        throw std::runtime_error(command + ": wait status " + std::to_string(status));
    }
}

inline Screenshot read(const std::string& png) {
    const std::string ppm = png + ".ppm";
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
inline std::string writing(const Screenshot& shot) {
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

/// Where two pictures differ, from the row `firstRow` on: the edges of the smallest box around it.
struct Difference {
    std::size_t left = 0;
    std::size_t top = 0;
    std::size_t right = 0;
    std::size_t bottom = 0;

    bool operator==(const Difference&) const = default;
};

inline Difference difference(const Screenshot& one, const Screenshot& other, std::size_t firstRow) {
    Difference box = {one.width, one.height, 0, 0};
    for (std::size_t row = firstRow; row < one.height; ++row) {
        for (std::size_t column = 0; column < one.width; ++column) {
            const std::size_t pixel = (row * one.width + column) * 3;
            if (one.rgb.compare(pixel, 3, other.rgb, pixel, 3) != 0) {
                box.left = std::min(box.left, column);
                box.right = std::max(box.right, column + 1);
                box.top = std::min(box.top, row);
                box.bottom = std::max(box.bottom, row + 1);
            }
        }
    }
    return box;
}

/// Runs the program in a real panel of a private session, and takes pictures of it.
class RealPanel : public testing::Test {
protected:
    static constexpr std::size_t barHeight = 80;

    /// Until it shows the two remaining percentages. `options` are variables for
    /// tools/private-session.
    void showInPanel(int fiveHour, int weekly, const std::string& options) const {
        writeSnapshot("snapshot.json", fiveHour, weekly);
        run("BAR_HEIGHT=" + std::to_string(barHeight) + " READY=" + quoted(titleBegins(fiveHour)) +
            " " + options + " " + quoted(VORLA_TEST_DATA "/../../tools/private-session") + " " +
            quoted(folder.at("shot")) + " -- env SNAPSHOT=" + quoted(folder.at("snapshot.json")) +
            " VORLA_USAGE_EXECUTABLE=" + quoted(VORLA_TEST_CHILDREN "/printsSnapshot") + " " +
            quoted(VORLA_PROGRAM));
    }

    /// The menu is opened, and then other figures come.
    void changeFiguresUnderTheOpenMenu(const std::string& options) const {
        writeSnapshot("later.json", 31, 61);
        const std::string click =
            "busctl --user call com.vorla.UsageMenuBar "
            "/org/ayatana/NotificationItem/VorlaUsageMenuBar/Menu com.canonical.dbusmenu Event "
            "isvu " +
            std::to_string(lineId({.role = LineRole::refresh})) + " clicked i 0 0";
        const std::string change = "mv \"" + folder.at("later.json") + "\" \"" +
                                   folder.at("snapshot.json") + "\"; " + click +
                                   "; until_true 30 eval \"" + titleBegins(31, "\\\"") + "\"";
        showInPanel(87, 62, options + " OPEN_MENU=1 MENU_CHANGE=" + quoted(change));

        const Screenshot closed = read(folder.at("shot-screen.png"));
        const Screenshot open = read(folder.at("shot-menu.png"));
        const Screenshot changed = read(folder.at("shot-changed.png"));
        const Difference menu = difference(closed, open, barHeight);
        ASSERT_LT(menu.top + 100, menu.bottom);
        ASSERT_LT(menu.left + 100, menu.right);
        // A menu that had closed or moved would differ down to its end.
        const Difference lines = difference(open, changed, barHeight);
        ASSERT_LT(lines.top, lines.bottom);
        EXPECT_GE(lines.top, menu.top);
        EXPECT_LT(lines.bottom + 100, menu.bottom);
    }

    TemporaryFolder folder;

private:
    void writeSnapshot(const std::string& name, int fiveHour, int weekly) const {
        std::ostringstream text;
        text << R"({"schemaVersion": 1, "fetchedAt": 1700000000, "windows": [)"
             << R"({"name": "5h", "windowDurationMins": 300, "resetsAt": 1700009000, )"
             << R"("usedPercent": )" << 100 - fiveHour << R"(, "remainingPercent": )" << fiveHour
             << R"(}, {"name": "weekly", "windowDurationMins": 10080, "resetsAt": 1700300000, )"
             << R"("usedPercent": )" << 100 - weekly << R"(, "remainingPercent": )" << weekly
             << "}]}";
        folder.write(name, text.str());
    }

    /// A shell command; `quote` stands around its texts.
    static std::string titleBegins(int fiveHour, const std::string& quote = "\"") {
        return "busctl --user get-property com.vorla.UsageMenuBar "
               "/org/ayatana/NotificationItem/VorlaUsageMenuBar org.kde.StatusNotifierItem Title "
               "2>/dev/null | grep -q " +
               quote + "5h " + std::to_string(fiveHour) + "%" + quote;
    }
};

} // namespace vorla
