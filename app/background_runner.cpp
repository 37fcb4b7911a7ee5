#include "app/background_runner.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace talvex::app {

void BackgroundRunner::run(language::RequestContext& context, const std::function<void()>& work) {
    if (m_context != nullptr) {
        // The window refuses a second request while one runs; this only guards the dictionary.
        throw std::logic_error("a calculation is already under way");
    }
    std::mutex mutex;
    std::condition_variable ended;
    bool done = false;
    std::exception_ptr fault;

    m_context = &context;
    std::thread worker([&] {
        try {
            work();
        } catch (...) {
            fault = std::current_exception();
        }
        const std::lock_guard lock(mutex);
        done = true;
        ended.notify_all();
    });
    const auto isDone = [&] {
        const std::lock_guard lock(mutex);
        return done;
    };

    const auto start = std::chrono::steady_clock::now();
    {
        std::unique_lock lock(mutex);
        ended.wait_for(lock, kQuietWait, [&] { return done; });
    }
    bool busyShown = false;
    if (!isDone()) {
        m_window.stayResponsiveUntil(isDone, [&] {
            if (!busyShown && std::chrono::steady_clock::now() - start >= m_busyDelay) {
                busyShown = true;
                m_window.showBusy(true);
            }
            if (busyShown) {
                m_window.showProgress(context.progress());
            }
        });
        // The window stopped waiting early (the application is quitting): stop the build too.
        if (!isDone()) {
            context.cancel();
        }
    }
    worker.join();
    m_context = nullptr;
    if (busyShown) {
        m_window.showBusy(false);
    }
    if (fault) {
        std::rethrow_exception(fault);
    }
}

void BackgroundRunner::cancel() noexcept {
    if (m_context != nullptr) {
        m_context->cancel();
    }
}

}  // namespace talvex::app
