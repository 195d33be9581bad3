#include "limitedcalls.h"

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

struct LimitedCalls::State {
    std::mutex mutex;
    std::condition_variable returned;
    std::optional<int> result;
    bool isRunning = false;
    bool isGivenUp = false;
};

LimitedCalls::LimitedCalls(std::chrono::milliseconds limit)
    : m_limit(limit)
    , m_state(std::make_shared<State>())
{
}

std::optional<int> LimitedCalls::run(std::function<int()> call, std::function<void(int)> afterwards)
{
    std::unique_lock lock(m_state->mutex);
    if (m_state->isRunning) {
        return std::nullopt;
    }
    m_state->isRunning = true;
    m_state->isGivenUp = false;
    m_state->result.reset();
    const auto work = [state = m_state, call = std::move(call),
                          afterwards = std::move(afterwards)] {
        const int result = call();
        std::unique_lock stateLock(state->mutex);
        if (state->isGivenUp) {
            stateLock.unlock();
            afterwards(result);
            stateLock.lock();
        }
        state->result = result;
        state->isRunning = false;
        state->returned.notify_one();
    };
    try {
        std::thread(work).detach();
    } catch (const std::system_error&) { // the system has no thread to give
        m_state->isRunning = false;
        return std::nullopt;
    }
    const bool isInTime =
        m_state->returned.wait_for(lock, m_limit, [this] { return !m_state->isRunning; });
    m_state->isGivenUp = !isInTime;
    return isInTime ? m_state->result : std::nullopt;
}
