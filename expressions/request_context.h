#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace talvex::language {

class ExpressionDictionary;

// Work is counted in combinations of two outcomes (one kernel call on a pair, one step of an
// enumeration), the unit in which every construction and kernel measures what it does. This
// many take about ten seconds on a current desktop: the most one request may spend.
inline constexpr std::uint64_t kMaxRequestWork = 40'000'000;
// Memory of the profiles one request may hold at once: those it built and keeps in the
// dictionary and the ones being combined. About 1 GB, so that with everything else the process
// stays well under 1.5 GB.
inline constexpr std::uint64_t kMaxRequestProfileBytes = 1024ULL * 1024ULL * 1024ULL;

// What a combination of two profiles costs besides its pairs (copies, normalising, allocating),
// in the same units, so that a long run of tiny combinations is bounded too.
inline constexpr std::uint64_t kCombinationOverhead = 16;

struct RequestLimits {
    std::uint64_t work = kMaxRequestWork;
    std::uint64_t profileBytes = kMaxRequestProfileBytes;
};

// Why a request was told to stop from outside.
enum class StopReason : std::uint8_t { none, cancelled, timedOut };

// Everything one calculation request carries down into every construction and kernel: the
// expressions dictionary it builds into, one budget of work and of memory for the whole
// request, and a flag with which another thread can stop it. Work and memory are charged
// before they are spent, so that a request past its ceiling ends before it takes the time or
// the memory, with core::CalculationTooLarge, and a stopped one with core::CalculationCancelled
// (or CalculationTooLarge once its time is up).
//
// One thread builds; cancel(), timeOut() and progress() may be called from any other.
class RequestContext {
  public:
    explicit RequestContext(ExpressionDictionary& expressions, RequestLimits limits = {});
    RequestContext(const RequestContext&) = delete;
    RequestContext& operator=(const RequestContext&) = delete;

    [[nodiscard]] ExpressionDictionary& expressions() noexcept { return m_expressions; }
    [[nodiscard]] const RequestLimits& limits() const noexcept { return m_limits; }

    // --- Work -------------------------------------------------------------------------------
    // Spends `combinations`; throws once the request has spent more than its ceiling or has
    // been stopped.
    void charge(std::uint64_t combinations);
    // The same for an amount estimated in floating point (products of outcome counts).
    void charge(double combinations);
    // Throws at once when an estimate of work still to come can never fit into what is left,
    // so that a chain certain to fail is refused before its first step.
    void refuseBeyondRemaining(double combinations) const;
    // Throws when the request has been stopped; nothing is spent.
    void checkStopped() const;
    [[nodiscard]] std::uint64_t spent() const noexcept {
        return m_spent.load(std::memory_order_relaxed);
    }

    // --- Memory -----------------------------------------------------------------------------
    // Before combining: charges left x right combinations (and the overhead of one) and checks
    // that the pairs, each a new outcome until they are merged, fit beside what the request
    // holds.
    void chargeCombination(std::size_t left, std::size_t right);
    // Throws when `outcomes` new outcomes would not fit beside what the request holds.
    void reserveOutcomes(double outcomes) const;
    // Records outcomes the request keeps (a profile entering the dictionary), and gives back
    // ones it no longer keeps.
    void hold(std::size_t outcomes) noexcept;
    void release(std::size_t outcomes) noexcept;
    [[nodiscard]] std::uint64_t heldBytes() const noexcept { return m_heldBytes; }

    // --- Stopping, from any thread -----------------------------------------------------------
    void cancel() noexcept { stop(StopReason::cancelled); }
    void timeOut() noexcept { stop(StopReason::timedOut); }
    // The first reason given stands.
    void stop(StopReason reason) noexcept;
    [[nodiscard]] StopReason stopReason() const noexcept {
        return m_stop.load(std::memory_order_relaxed);
    }
    // The share of the work ceiling spent so far, 0 to 1.
    [[nodiscard]] double progress() const noexcept;

    // --- Construction -----------------------------------------------------------------------
    // One expression under construction, for as long as it lives; constructions nest one inside
    // the other (parentheses, function arguments, operands). Throws CalculationTooLarge when
    // they are nested so deeply, in levels or in bytes of stack below the outermost one, that
    // the stack could run out; frames are several times larger in some builds (sanitizers), so
    // the bytes are measured rather than assumed.
    class ConstructionLevel {
      public:
        explicit ConstructionLevel(RequestContext& context);
        ~ConstructionLevel() { --m_context.m_constructionDepth; }
        ConstructionLevel(const ConstructionLevel&) = delete;
        ConstructionLevel& operator=(const ConstructionLevel&) = delete;

      private:
        RequestContext& m_context;
    };
    // Expressions under construction one inside the other.
    [[nodiscard]] std::size_t constructionDepth() const noexcept { return m_constructionDepth; }
    // Bytes of stack the constructions of this request may take below the outermost one.
    [[nodiscard]] std::size_t constructionStackBudget() const noexcept {
        return m_constructionStackBudget;
    }
    // Keys this request added to the dictionary, in the order added.
    [[nodiscard]] const std::vector<std::string>& addedKeys() const noexcept { return m_added; }
    // Takes every expression this request added out of the dictionary again: what a failed or
    // cancelled request built is released, and nothing of it is kept.
    void discardAdditions();

  private:
    friend class Expression;

    [[noreturn]] void throwStopped() const;

    ExpressionDictionary& m_expressions;
    RequestLimits m_limits;
    std::atomic<std::uint64_t> m_spent{0};
    std::atomic<StopReason> m_stop{StopReason::none};
    std::uint64_t m_heldBytes = 0;
    std::size_t m_constructionDepth = 0;
    std::uintptr_t m_outermostConstruction = 0;
    std::size_t m_constructionStackBudget;
    std::vector<std::string> m_added;
};

// Outcomes a construction keeps for a while besides the dictionary's (copies of its operands,
// results on the way), counted against the request's memory while it keeps them.
class HeldOutcomes {
  public:
    explicit HeldOutcomes(RequestContext& context) noexcept : m_context(context) {}
    ~HeldOutcomes() { m_context.release(m_outcomes); }
    HeldOutcomes(const HeldOutcomes&) = delete;
    HeldOutcomes& operator=(const HeldOutcomes&) = delete;

    // Now `outcomes` in all; throws, as reserveOutcomes, when more would not fit.
    void set(std::size_t outcomes);

  private:
    RequestContext& m_context;
    std::size_t m_outcomes = 0;
};

}  // namespace talvex::language
