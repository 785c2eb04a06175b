// SPDX-License-Identifier: MIT
#include "linux/FennicProgram.h"

#include "linux/Folders.h"
#include "linux/Pipe.h"
#include "linux/SearchPath.h"
#include "linux/Spawn.h"

#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <string_view>
#include <utility>

namespace vorla {

namespace {

constexpr auto programName = "VorlaUsageFennic";
/// The window says one word. A program that says as much as this is not listened to any more.
constexpr std::size_t longestOutput = 4096;
constexpr std::chrono::seconds collectionRetry{1};

using Programs = std::vector<std::shared_ptr<FennicProgram>>;

/// What the desktop gave for the start of this program is not meant for another one.
bool isOwnToken(std::string_view entry) {
    return entry.starts_with("XDG_ACTIVATION_TOKEN=") || entry.starts_with("DESKTOP_STARTUP_ID=");
}

std::string encode(const FennicOpening& opening) {
    auto line = opening.encode();
    if (!line) {
        throw std::system_error(std::make_error_code(std::errc::message_size));
    }
    return *std::move(line);
}

/// Short enough that a pipe takes all of it or nothing.
std::string encode(const FennicRaise& raise) {
    auto line = raise.encode();
    return line.size() <= PIPE_BUF ? line : FennicRaise().encode();
}

} // namespace

/// One run of the window's program, from its start until it has been collected.
class FennicProgram final {
public:
    /// Throws std::system_error, and leaves nothing behind then.
    FennicProgram(
        MainLoop& loop, SpawnRequest request, const std::string& opening,
        std::function<void()> closed, std::weak_ptr<Programs> programs);
    ~FennicProgram() {
        if (child_.handle.isOpen()) {
            collect();
        }
    }
    FennicProgram(const FennicProgram&) = delete;
    FennicProgram& operator=(const FennicProgram&) = delete;

    /// False if the program does not read, or has too much to read already: nothing is kept for it.
    bool say(const std::string& line) const {
        const auto written = write(input_.number(), line.data(), line.size());
        return written == static_cast<ssize_t>(line.size());
    }

    /// Tells the program to end; nobody is told any more when it does.
    void leave() {
        closed_ = nullptr;
        stopListening();
        input_.close();
    }

private:
    void start(SpawnRequest request, const std::string& opening);
    void readOutput();
    void stopListening();
    void programEnded();
    bool collect() const;
    void tell();

    MainLoop& loop_;
    /// Empty once it has been told.
    std::function<void()> closed_;
    std::weak_ptr<Programs> programs_;
    FileDescriptor input_;
    FileDescriptor output_;
    SpawnedChild child_;
    std::unique_ptr<MainLoop::Source> outputWatch_;
    std::unique_ptr<MainLoop::Source> endWatch_;
    /// The end of an empty line, and after it all that the program has said.
    std::string said_ = "\n";
};

FennicProgram::FennicProgram(
    MainLoop& loop, SpawnRequest request, const std::string& opening, std::function<void()> closed,
    std::weak_ptr<Programs> programs)
    : loop_(loop), closed_(std::move(closed)), programs_(std::move(programs)) {
    Pipe input;
    Pipe output;
    request.input = input.readEnd.number();
    request.output = output.writeEnd.number();
    input_ = std::move(input.writeEnd);
    output_ = std::move(output.readEnd);
    letNotBlock(input_);
    letNotBlock(output_);
    start(std::move(request), opening);
}

void FennicProgram::start(SpawnRequest request, const std::string& opening) {
    outputWatch_ = loop_.whenReadable(output_.number(), [this] { readOutput(); });
    // An empty pipe holds the longest line, unless this user's pipes have used up what the system
    // allows and new ones are small.
    if (!say(opening)) {
        throw std::system_error(ENOBUFS, std::generic_category(), "write");
    }
    child_ = spawn(std::move(request));
    try {
        endWatch_ = loop_.whenReadable(child_.handle.number(), [this] { programEnded(); });
    } catch (...) {
        killAndCollect(child_.number);
        throw;
    }
}

void FennicProgram::readOutput() {
    std::array<char, longestOutput> buffer = {};
    const auto count = read(output_.number(), buffer.data(), buffer.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
        return;
    }
    if (count <= 0) {
        // The end of the output alone closes nothing, but would be reported for ever.
        stopListening();
        return;
    }
    said_.append(buffer.data(), static_cast<std::size_t>(count));
    if (said_.find("\n" + std::string(fennicClosingLine)) != std::string::npos) {
        stopListening();
        tell();
    } else if (said_.size() >= longestOutput) {
        stopListening();
    }
}

void FennicProgram::stopListening() {
    outputWatch_.reset();
    output_.close();
}

void FennicProgram::programEnded() {
    stopListening();
    input_.close();
    if (collect()) {
        endWatch_.reset();
        child_.handle.close();
    } else {
        // A debugger has it first. Its handle would be reported all the while.
        endWatch_ = loop_.after(collectionRetry, [this] { programEnded(); });
    }
    tell();
}

/// False if that is not possible yet.
bool FennicProgram::collect() const {
    siginfo_t end = {};
    const auto handle = static_cast<id_t>(child_.handle.number());
    // It fails if somebody else has collected our child.
    return waitid(P_PIDFD, handle, &end, WEXITED | WNOHANG) != 0 || end.si_pid != 0;
}

/// Whoever is told may destroy the window, and the programs let go of one that has been collected:
/// this object may be gone afterwards.
void FennicProgram::tell() {
    const auto closed = std::exchange(closed_, nullptr);
    const auto programs = programs_.lock();
    if (programs != nullptr && !child_.handle.isOpen()) {
        std::erase_if(*programs, [this](const auto& one) { return one.get() == this; });
    }
    if (closed) {
        closed();
    }
}

namespace {

class ProgramWindow final : public FennicWindow {
public:
    explicit ProgramWindow(std::shared_ptr<FennicProgram> program) : program_(std::move(program)) {}
    ~ProgramWindow() override { program_->leave(); }
    ProgramWindow(const ProgramWindow&) = delete;
    ProgramWindow& operator=(const ProgramWindow&) = delete;

    void bringToFront(const std::optional<std::string>& activationToken) override {
        program_->say(encode(FennicRaise{.activationToken = activationToken}));
    }

private:
    std::shared_ptr<FennicProgram> program_;
};

} // namespace

std::vector<std::string> fennicProgramCandidates() {
    std::vector<std::string> candidates;
    if (const auto executable = executablePath()) {
        candidates.push_back(std::filesystem::path(*executable).replace_filename(programName));
    }
    if (const auto resources = resourcesDirectory()) {
        candidates.push_back(std::filesystem::path(*resources) / programName);
    }
    return candidates;
}

FennicProgramLauncher::FennicProgramLauncher(
    MainLoop& loop, std::vector<std::string> environment, std::vector<std::string> candidates)
    : loop_(loop), environment_(std::move(environment)), candidates_(std::move(candidates)),
      programs_(std::make_shared<Programs>()) {
    std::erase_if(environment_, isOwnToken);
}

FennicProgramLauncher::~FennicProgramLauncher() = default;

std::unique_ptr<FennicWindow>
FennicProgramLauncher::open(const FennicOpening& opening, std::function<void()> closed) {
    const auto line = encode(opening);
    const auto path = std::ranges::find_if(candidates_, isProgram);
    if (path == candidates_.end()) {
        throw std::system_error(ENOENT, std::generic_category(), programName);
    }
    auto program = std::make_shared<FennicProgram>(
        loop_,
        SpawnRequest{
            .path = *path, .environment = environment_, .leads = SpawnRequest::Leads::session},
        line, std::move(closed), programs_);
    auto window = std::make_unique<ProgramWindow>(program);
    programs_->push_back(std::move(program));
    return window;
}

} // namespace vorla
