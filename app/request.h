#pragma once

// The one path every front end takes to calculate what a person typed: build the expression
// against a dictionary kept for the whole session, draw rolls, render reports, and turn any
// fault into a plain sentence.

#include <atomic>
#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "core/evaluation.h"
#include "core/profile.h"
#include "core/report_options.h"
#include "core/styled_text.h"
#include "expressions/expression.h"

namespace talvex::app {

// The plain sentence for a fault thrown by a calculation: a number leaving the 38-digit range,
// a calculation too large, a divider list that cannot be repaired, memory running out, a
// cancelled request ("Calculation cancelled"), or anything else.
[[nodiscard]] std::string faultMessage(std::exception_ptr fault);

// Where the builds of a request run. The desktop runs them on a worker thread and keeps the
// window alive meanwhile; everything else runs them right where they are asked for.
class CalculationRunner {
  public:
    virtual ~CalculationRunner() = default;
    // Runs `work` to its end, then returns (rethrowing whatever it threw). Meanwhile the front
    // end may stop `context` from its own thread.
    virtual void run(language::RequestContext& context, const std::function<void()>& work) = 0;
};

class InlineCalculationRunner final : public CalculationRunner {
  public:
    void run(language::RequestContext& /*context*/, const std::function<void()>& work) override {
        work();
    }
};

// Runs the work; nothing when it finished, otherwise the sentence for what stopped it.
template <typename Work>
[[nodiscard]] std::optional<std::string> attempt(Work&& work) {
    try {
        std::forward<Work>(work)();
        return std::nullopt;
    } catch (...) {
        return faultMessage(std::current_exception());
    }
}

// An expression as a message names it: long texts are cut, so that a message stays a line.
[[nodiscard]] std::string shortenedForMessage(std::string_view text);

// What one request produced: the expression, a copy of its profile and the rolls drawn.
struct RequestResult {
    language::ExpressionPointer expression;
    core::Profile profile;
    std::vector<core::Evaluation> rolls;
};

// A session of requests sharing one expressions dictionary, so that whatever was built once is
// reused. The dictionary is only a memo: once it is half full, or holds more profiles than
// kMaxSessionProfileBytes, it is emptied before the next request (keeping the pinned entries),
// which keeps a long session from reaching its bounds and changes no result.
//
// Every build belongs to a request, which has one budget of work and memory for all its builds
// and can be stopped as a whole. A build outside any request is a request of its own. A request
// that fails or is stopped takes out of the dictionary everything it added.
class CalculationSession {
  public:
    // The profiles the dictionary may keep from earlier requests.
    static constexpr std::uint64_t kMaxSessionProfileBytes = 256ULL * 1024ULL * 1024ULL;

    explicit CalculationSession(language::RequestLimits limits = {}) : m_limits(limits) {}
    CalculationSession(const CalculationSession&) = delete;
    CalculationSession& operator=(const CalculationSession&) = delete;

    // One request, from its start to its end (the end of the scope).
    class Request {
      public:
        explicit Request(CalculationSession& session);
        ~Request();
        Request(const Request&) = delete;
        Request& operator=(const Request&) = delete;

      private:
        CalculationSession& m_session;
        bool m_opened;
    };

    // Builds (or finds) the expression for the text, through the runner, within the current
    // request. Throws what the calculation throws. Called from work that runInRequest runs, it
    // builds right there, on that work's thread.
    [[nodiscard]] language::ExpressionPointer build(std::string_view text);
    // Runs `work` (reports, say) through the runner within the current request, as a build
    // runs: the window stays alive meanwhile, and Cancel stops what the work builds. The work
    // must not touch the window.
    void runInRequest(const std::function<void()>& work);

    // Where builds run; the session does not own it. Null restores running them in place.
    void setRunner(CalculationRunner* runner) noexcept {
        m_runner = runner != nullptr ? runner : &m_inline;
    }
    [[nodiscard]] const language::RequestLimits& limits() const noexcept { return m_limits; }
    void setLimits(language::RequestLimits limits) noexcept { m_limits = limits; }
    // The request under way, if any.
    [[nodiscard]] language::RequestContext* currentRequest() noexcept {
        return m_request ? &*m_request : nullptr;
    }
    // Bytes of profiles the dictionary holds.
    [[nodiscard]] std::uint64_t heldProfileBytes() const;
    // Whether a build is under way: the window thread waits in it while a worker builds, and
    // nothing may start another meanwhile.
    [[nodiscard]] bool isBuilding() const noexcept { return m_building; }

    // Builds the text and draws `rolls` random rolls from a copy of its profile. Throws what the
    // calculation throws, and CalculationTooLarge when the rolls would take too long.
    [[nodiscard]] RequestResult calculate(std::string_view text, int rolls);

    // Keeps an entry in the dictionary across every emptying.
    void pin(const std::string& key, language::ExpressionPointer expression);

    [[nodiscard]] language::ExpressionDictionary& expressions() noexcept { return m_expressions; }

    // Draws `count` rolls; CalculationTooLarge when rolls times outcomes exceed the bound.
    [[nodiscard]] static std::vector<core::Evaluation> drawRolls(core::Profile& profile, int count);
    // The styled report of the profile under the options (repaired first).
    [[nodiscard]] static core::StyledText report(core::Profile& profile,
                                                 const core::Options& options);

  private:
    void emptyWhenFull();

    language::RequestLimits m_limits;
    language::ExpressionDictionary m_expressions;
    std::vector<std::pair<std::string, language::ExpressionPointer>> m_pinned;
    InlineCalculationRunner m_inline;
    CalculationRunner* m_runner = &m_inline;
    std::optional<language::RequestContext> m_request;
    bool m_building = false;
    // The thread running work of runInRequest, whose builds need no runner of their own.
    std::atomic<std::thread::id> m_workThread{};
};

}  // namespace talvex::app
