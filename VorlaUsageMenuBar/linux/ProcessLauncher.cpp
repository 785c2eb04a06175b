// SPDX-License-Identifier: MIT
#include "linux/ProcessLauncher.h"

#include "linux/Memory.h"
#include "linux/Pipe.h"
#include "linux/PipeReader.h"
#include "linux/SpawnedProcess.h"

#include <csignal>
#include <new>
#include <utility>
#include <vector>

namespace vorla {

/// Children that nobody asks about any more; each is collected when it ends.
class UnattendedChildren final {
public:
    void add(std::unique_ptr<SpawnedProcess> child) {
        child->tell([this, ended = child.get()](int) {
            std::erase_if(children_, [=](const auto& one) { return one.get() == ended; });
        });
        children_.push_back(std::move(child));
    }

private:
    std::vector<std::unique_ptr<SpawnedProcess>> children_;
};

namespace {

/// Up to here the allocator has little to give back.
constexpr std::size_t smallOutputBytes = std::size_t{64} << 10U;

class LinuxChildProcess final : public ChildProcess {
public:
    LinuxChildProcess(
        MainLoop& loop, const LaunchRequest& request, Listener& listener,
        std::shared_ptr<UnattendedChildren> unattended, Pipe output, Pipe errors)
        : loop_(loop), listener_(listener), unattended_(std::move(unattended)),
          outputReader_(loop, std::move(output.readEnd), callbacks(Stream::output)),
          errorsReader_(loop, std::move(errors.readEnd), callbacks(Stream::errors)),
          // Last, so that nothing has been started if the system lacks something for the rest.
          process_(std::make_unique<SpawnedProcess>(
              loop, request, output.writeEnd, errors.writeEnd,
              [this](int status) { listener_.exited(status); })) {}

    ~LinuxChildProcess() override {
        if (process_->isRunning()) {
            unattended_->add(std::move(process_));
        }
        if (receivedBytes_ > smallOutputBytes) {
            // Later, when the one who is destroying us has dropped the output as well.
            try {
                loop_.post(giveBackFreedMemory);
            } catch (const std::bad_alloc&) {
                // The next run that receives so much sees to it.
            }
        }
    }

    LinuxChildProcess(const LinuxChildProcess&) = delete;
    LinuxChildProcess& operator=(const LinuxChildProcess&) = delete;

    bool isRunning() const override { return process_->isRunning(); }

    void terminate() override { process_->terminate(); }

    void kill() override { process_->kill(); }

    void terminateRest() override { process_->terminateRest(); }

private:
    PipeReader::Callbacks callbacks(Stream stream) {
        return {
            .received =
                [this, stream](std::string_view bytes) {
                    receivedBytes_ += bytes.size();
                    listener_.received(stream, bytes);
                },
            .ended = [this, stream] { listener_.ended(stream); }};
    }

    MainLoop& loop_;
    Listener& listener_;
    std::shared_ptr<UnattendedChildren> unattended_;
    std::size_t receivedBytes_ = 0;
    PipeReader outputReader_;
    PipeReader errorsReader_;
    std::unique_ptr<SpawnedProcess> process_;
};

} // namespace

LinuxProcessLauncher::LinuxProcessLauncher(MainLoop& loop)
    : loop_(loop), unattended_(std::make_shared<UnattendedChildren>()) {
    std::signal(SIGCHLD, SIG_DFL);
}

LinuxProcessLauncher::~LinuxProcessLauncher() = default;

std::unique_ptr<ChildProcess>
LinuxProcessLauncher::launch(const LaunchRequest& request, ChildProcess::Listener& listener) {
    return std::make_unique<LinuxChildProcess>(
        loop_, request, listener, unattended_, Pipe(), Pipe());
}

} // namespace vorla
