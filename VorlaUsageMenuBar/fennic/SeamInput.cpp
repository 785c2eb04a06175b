// SPDX-License-Identifier: MIT
#include "fennic/SeamInput.h"

#include "model/FennicSeam.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

namespace vorla {

SeamInput::SeamInput(int fileDescriptor) : fileDescriptor_(fileDescriptor) {}

std::optional<std::string> SeamInput::waitForLine() {
    while (true) {
        if (auto line = takeLine()) {
            return line;
        }
        if (!readMore()) {
            return std::nullopt;
        }
    }
}

void SeamInput::watch(std::function<void(const std::string&)> onLine, std::function<void()> onEnd) {
    onLine_ = std::move(onLine);
    onEnd_ = std::move(onEnd);
    notifier_ = std::make_unique<QSocketNotifier>(fileDescriptor_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { readable(); });
    reportLines();
}

bool SeamInput::readMore() {
    std::array<char, 4096> buffer = {};
    const ssize_t count = read(fileDescriptor_, buffer.data(), buffer.size());
    if (count < 0) {
        return errno == EINTR || errno == EAGAIN;
    }
    arrived_.append(buffer.data(), static_cast<std::size_t>(count));
    return count > 0;
}

void SeamInput::readable() {
    if (readMore()) {
        reportLines();
        return;
    }
    notifier_->setEnabled(false);
    onEnd_();
}

void SeamInput::reportLines() {
    while (const auto line = takeLine()) {
        onLine_(*line);
    }
}

std::optional<std::string> SeamInput::takeLine() {
    while (true) {
        const std::size_t end = arrived_.find('\n');
        if (end == std::string::npos) {
            // What is too long already need not be kept until its end comes.
            if (arrived_.size() >= maximumFennicSeamLine) {
                isTooLong_ = true;
                arrived_.clear();
            }
            return std::nullopt;
        }
        std::string line = arrived_.substr(0, end + 1);
        arrived_.erase(0, end + 1);
        if (!std::exchange(isTooLong_, false) && line.size() <= maximumFennicSeamLine) {
            return line;
        }
    }
}

} // namespace vorla
