#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

/// Calls of a library that may wait for good, for a server that does not answer or a lock that a
/// killed program has left. They run one after the other, each on a thread of its own, so that the
/// caller can give one up.
class LimitedCalls {
public:
    explicit LimitedCalls(std::chrono::milliseconds limit);

    /// What `call` returns; none where there is no thread to be had for it, or where it takes
    /// longer than the limit. It is then left to itself, with all that it holds: `afterwards`
    /// follows it with its result once it has come back, and until then every further call is
    /// refused at once, also with none.
    std::optional<int> run(std::function<int()> call, std::function<void(int)> afterwards);

private:
    struct State;

    std::chrono::milliseconds m_limit;
    std::shared_ptr<State> m_state; // of the call that runs
};
