// SPDX-License-Identifier: MIT
// Plays a settings tool from the folder in which it was started: notes its arguments in the file
// "calls", one run a line, and prints the file "answer". Exits with status 1 if there is none, and
// waits for ever if there is a file "hang". If GO is set, a child of its own holds its output open
// until told to go on.
#include "Go.h"

#include <filesystem>
#include <fstream>
#include <iostream>

int main(int count, char** arguments) {
    const auto folder = std::filesystem::path(arguments[0]).parent_path();
    std::ofstream calls(folder / "calls", std::ios::app);
    for (int index = 1; index < count; ++index) {
        calls << arguments[index] << (index + 1 < count ? ' ' : '\n');
    }
    calls.close();
    while (std::filesystem::exists(folder / "hang")) {
        pause();
    }
    if (std::getenv("GO") != nullptr && fork() == 0) {
        waitForGo();
        _exit(0);
    }
    std::ifstream answer(folder / "answer");
    if (!answer) {
        return 1;
    }
    std::cout << answer.rdbuf();
    return 0;
}
