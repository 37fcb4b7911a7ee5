#include "expressions/request_context.h"

#include <sys/resource.h>

#include <algorithm>

#include "core/calculation_limits.h"
#include "core/evaluation.h"
#include "expressions/expression.h"

namespace talvex::language {

namespace {

// A combination of two profiles first lists every pair as an outcome, then sorts and merges
// them: the list, the merged copy and the keys of the sort, per pair.
constexpr std::uint64_t kBytesPerCombinedPair = 2 * sizeof(core::Evaluation) + 24;
// A kept outcome, with what the allocator and the list around it take.
constexpr std::uint64_t kBytesPerHeldOutcome = sizeof(core::Evaluation) + 16;

[[noreturn]] void throwTooMuchWork() {
    throw core::CalculationTooLarge(
        "it is too large to calculate: it needs more work than one calculation may take");
}

[[noreturn]] void throwTooMuchMemory() {
    throw core::CalculationTooLarge(
        "it is too large to calculate: it needs more memory than one calculation may take");
}

// The thread's stack as the system sets it: the main thread's limit, which is also the size
// glibc gives every new thread. Half of it is left for the callers above the outermost
// construction and for the kernels and reports that run below the innermost.
std::size_t stackBudget() noexcept {
    rlimit limit{};
    std::size_t stack = core::kAssumedStackBytes;
    if (getrlimit(RLIMIT_STACK, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) {
        stack = static_cast<std::size_t>(limit.rlim_cur);
    }
    return std::min(stack, core::kAssumedStackBytes * 8) / 2;
}

}  // namespace

RequestContext::RequestContext(ExpressionDictionary& expressions, RequestLimits limits)
    : m_expressions(expressions), m_limits(limits), m_constructionStackBudget(stackBudget()) {}

RequestContext::ConstructionLevel::ConstructionLevel(RequestContext& context) : m_context(context) {
    const auto here = reinterpret_cast<std::uintptr_t>(this);
    if (context.m_constructionDepth++ == 0) {
        context.m_outermostConstruction = here;
    }
    const std::uintptr_t outermost = context.m_outermostConstruction;
    const std::uintptr_t used = outermost > here ? outermost - here : here - outermost;
    if (context.m_constructionDepth > core::kMaxConstructionDepth ||
        used > context.m_constructionStackBudget) {
        --context.m_constructionDepth;
        throw core::CalculationTooLarge("the expression is nested too deeply to calculate");
    }
}

void RequestContext::throwStopped() const {
    if (stopReason() == StopReason::timedOut) {
        throw core::CalculationTooLarge(
            "it is too large to calculate: it did not finish within the time limit");
    }
    throw core::CalculationCancelled();
}

void RequestContext::checkStopped() const {
    if (stopReason() != StopReason::none) {
        throwStopped();
    }
}

void RequestContext::charge(std::uint64_t combinations) {
    checkStopped();
    // Only this thread writes the count; others merely read it for progress.
    const std::uint64_t spentBefore = m_spent.load(std::memory_order_relaxed);
    if (combinations > m_limits.work - std::min(spentBefore, m_limits.work)) {
        m_spent.store(m_limits.work, std::memory_order_relaxed);
        throwTooMuchWork();
    }
    m_spent.store(spentBefore + combinations, std::memory_order_relaxed);
}

void RequestContext::charge(double combinations) {
    refuseBeyondRemaining(combinations);
    charge(combinations <= 0 ? std::uint64_t{0} : static_cast<std::uint64_t>(combinations));
}

void RequestContext::refuseBeyondRemaining(double combinations) const {
    checkStopped();
    const std::uint64_t spentSoFar = spent();
    const double remaining =
        spentSoFar >= m_limits.work ? 0.0 : static_cast<double>(m_limits.work - spentSoFar);
    // Also catches NaN and infinities, which no amount of work fits.
    if (!(combinations <= remaining)) {
        throwTooMuchWork();
    }
}

void RequestContext::reserveOutcomes(double outcomes) const {
    const double room = m_heldBytes >= m_limits.profileBytes
                            ? 0.0
                            : static_cast<double>(m_limits.profileBytes - m_heldBytes);
    if (!(outcomes * static_cast<double>(kBytesPerHeldOutcome) <= room)) {
        throwTooMuchMemory();
    }
}

void RequestContext::chargeCombination(std::size_t left, std::size_t right) {
    const double pairs = static_cast<double>(left) * static_cast<double>(right);
    const double room = m_heldBytes >= m_limits.profileBytes
                            ? 0.0
                            : static_cast<double>(m_limits.profileBytes - m_heldBytes);
    if (!(pairs * static_cast<double>(kBytesPerCombinedPair) <= room)) {
        checkStopped();
        throwTooMuchMemory();
    }
    charge(pairs + static_cast<double>(kCombinationOverhead));
}

void RequestContext::hold(std::size_t outcomes) noexcept {
    m_heldBytes += static_cast<std::uint64_t>(outcomes) * kBytesPerHeldOutcome;
}

void RequestContext::release(std::size_t outcomes) noexcept {
    const std::uint64_t bytes = static_cast<std::uint64_t>(outcomes) * kBytesPerHeldOutcome;
    m_heldBytes = bytes > m_heldBytes ? 0 : m_heldBytes - bytes;
}

void HeldOutcomes::set(std::size_t outcomes) {
    if (outcomes > m_outcomes) {
        m_context.reserveOutcomes(static_cast<double>(outcomes - m_outcomes));
        m_context.hold(outcomes - m_outcomes);
    } else {
        m_context.release(m_outcomes - outcomes);
    }
    m_outcomes = outcomes;
}

void RequestContext::stop(StopReason reason) noexcept {
    StopReason expected = StopReason::none;
    m_stop.compare_exchange_strong(expected, reason, std::memory_order_relaxed);
}

double RequestContext::progress() const noexcept {
    if (m_limits.work == 0) {
        return 1.0;
    }
    const double share = static_cast<double>(spent()) / static_cast<double>(m_limits.work);
    return share > 1.0 ? 1.0 : share;
}

void RequestContext::discardAdditions() {
    for (const std::string& key : m_added) {
        m_expressions.erase(key);
    }
    m_added.clear();
    m_heldBytes = 0;
}

}  // namespace talvex::language
