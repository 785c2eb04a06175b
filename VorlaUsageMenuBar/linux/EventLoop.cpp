// SPDX-License-Identifier: MIT
#include "linux/EventLoop.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <csignal>
#include <cstdint>
#include <ctime>
#include <exception>
#include <memory>
#include <system_error>
#include <utility>

namespace vorla {

namespace {

constexpr std::uint64_t microsecondsPerSecond = 1'000'000;
constexpr std::uint64_t tickSlack = microsecondsPerSecond;
/// sd-event takes 0 for its default of a quarter of a second.
constexpr std::uint64_t noSlack = 1;

void check(int result, const char* what) {
    if (result < 0) {
        throw std::system_error(-result, std::generic_category(), what);
    }
}

/// One piece of work that fails, for want of memory, must neither end the loop nor keep others from
/// being done, and no exception may travel through the C library.
void perform(const std::function<void()>& work) noexcept {
    try {
        work();
    } catch (const std::exception&) {}
}

/// What all sources have in common: the sd-event source and the work to be done when it fires.
class EventSource final : public MainLoop::Source {
public:
    explicit EventSource(std::function<void()> work)
        : work_(std::make_shared<const std::function<void()>>(std::move(work))) {}

    ~EventSource() override { sd_event_source_disable_unref(source_); }

    EventSource(const EventSource&) = delete;
    EventSource& operator=(const EventSource&) = delete;

    static int onTime(sd_event_source* source, std::uint64_t due, void* self) {
        return static_cast<EventSource*>(self)->timeHasCome(source, due);
    }

    static int onReadable(sd_event_source*, int, std::uint32_t, void* self) {
        return static_cast<EventSource*>(self)->fire();
    }

    static int onSignal(sd_event_source*, const signalfd_siginfo*, void* self) {
        return static_cast<EventSource*>(self)->fire();
    }

    sd_event_source** slot() { return &source_; }

    void repeatEvery(std::uint64_t microseconds) { interval_ = microseconds; }

private:
    int fire() {
        // The work may destroy this very source, so it is kept until it is done and nothing is
        // touched after it.
        const auto work = work_;
        perform(*work);
        return 0;
    }

    int timeHasCome(sd_event_source* source, std::uint64_t due) {
        if (interval_ > 0) {
            std::uint64_t now = due;
            sd_event_now(sd_event_source_get_event(source), CLOCK_BOOTTIME, &now);
            const std::uint64_t missed = now > due ? (now - due) / interval_ : 0;
            sd_event_source_set_time(source, due + (missed + 1) * interval_);
            sd_event_source_set_enabled(source, SD_EVENT_ON);
        }
        return fire();
    }

    sd_event_source* source_ = nullptr;
    /// Shared, since making a copy could fail.
    std::shared_ptr<const std::function<void()>> work_;
    std::uint64_t interval_ = 0;
};

std::uint64_t microseconds(std::chrono::microseconds duration) {
    return duration.count() > 0 ? static_cast<std::uint64_t>(duration.count()) : 0;
}

} // namespace

EventLoop::EventLoop() : wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!wake_.isOpen()) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    check(sd_event_new(&event_), "sd_event_new");
    wakeWatch_ = whenReadable(wake_.number(), [this] { runPosted(); });
}

EventLoop::~EventLoop() {
    // What was posted and never ran may own a thread that posts for as long as it lives.
    while (!takePosted().empty()) {}
    wakeWatch_.reset();
    sd_event_unref(event_);
}

void EventLoop::post(std::function<void()> work) {
    {
        const std::lock_guard lock(postedMutex_);
        posted_.push_back(std::move(work));
    }
    const std::uint64_t one = 1;
    // It can only fail when the counter is full, and then the loop is about to wake anyway.
    [[maybe_unused]] const auto written = write(wake_.number(), &one, sizeof one);
}

std::vector<std::function<void()>> EventLoop::takePosted() {
    const std::lock_guard lock(postedMutex_);
    return std::exchange(posted_, {});
}

void EventLoop::runPosted() {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto taken = read(wake_.number(), &count, sizeof count);
    auto works = takePosted();
    for (auto& work : works) {
        // What it holds is released before the next one runs.
        perform(std::exchange(work, nullptr));
    }
}

std::chrono::milliseconds EventLoop::now() const {
    return std::chrono::floor<std::chrono::milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

std::unique_ptr<MainLoop::Source>
EventLoop::after(std::chrono::milliseconds delay, std::function<void()> work) {
    auto source = std::make_unique<EventSource>(std::move(work));
    check(
        sd_event_add_time_relative(
            event_, source->slot(), CLOCK_MONOTONIC, microseconds(delay), noSlack,
            &EventSource::onTime, source.get()),
        "sd_event_add_time_relative");
    return source;
}

std::unique_ptr<MainLoop::Source>
EventLoop::every(std::chrono::seconds interval, std::function<void()> work) {
    auto source = std::make_unique<EventSource>(std::move(work));
    source->repeatEvery(microseconds(interval));
    check(
        sd_event_add_time_relative(
            event_, source->slot(), CLOCK_BOOTTIME, microseconds(interval), tickSlack,
            &EventSource::onTime, source.get()),
        "sd_event_add_time_relative");
    return source;
}

std::unique_ptr<MainLoop::Source>
EventLoop::whenReadable(int descriptor, std::function<void()> work) {
    auto source = std::make_unique<EventSource>(std::move(work));
    check(
        sd_event_add_io(
            event_, source->slot(), descriptor, EPOLLIN, &EventSource::onReadable, source.get()),
        "sd_event_add_io");
    return source;
}

std::vector<std::unique_ptr<MainLoop::Source>>
EventLoop::onSignals(std::initializer_list<int> signals, const std::function<void()>& work) {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : signals) {
        sigaddset(&set, signal);
    }
    check(-pthread_sigmask(SIG_BLOCK, &set, nullptr), "pthread_sigmask");
    std::vector<std::unique_ptr<Source>> sources;
    for (const int signal : signals) {
        auto source = std::make_unique<EventSource>(work);
        check(
            sd_event_add_signal(
                event_, source->slot(), signal, &EventSource::onSignal, source.get()),
            "sd_event_add_signal");
        sources.push_back(std::move(source));
    }
    return sources;
}

int EventLoop::run() {
    const int status = sd_event_loop(event_);
    check(status, "sd_event_loop");
    return status;
}

void EventLoop::exit(int status) {
    sd_event_exit(event_, status);
}

bool EventLoop::runOnce(std::chrono::milliseconds limit) {
    const int result = sd_event_run(event_, microseconds(limit));
    check(result, "sd_event_run");
    return result > 0;
}

} // namespace vorla
