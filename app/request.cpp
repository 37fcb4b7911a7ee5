#include "app/request.h"

#include <new>
#include <stdexcept>

#include "core/calculation_limits.h"
#include "core/decimal.h"
#include "core/report.h"

namespace talvex::app {

namespace {

std::string decimalFaultMessage(const core::DecimalError& error) {
    switch (error.fault()) {
        case core::DecimalFault::Underflow:
            return "a probability or value became too small for 38-digit arithmetic "
                   "(below 1E-128)";
        case core::DecimalFault::Overflow:
            return "a value became too large for 38-digit arithmetic (above 1E165)";
        case core::DecimalFault::DivideByZero:
            return "a division by zero occurred";
    }
    return error.what();
}

// Each roll walks the outcomes and is kept until shown.
constexpr double kMaxRollWork = 200'000'000;

}  // namespace

std::string faultMessage(std::exception_ptr fault) {
    try {
        if (fault) {
            std::rethrow_exception(fault);
        }
        return "the calculation stopped for an unknown reason";
    } catch (const core::DecimalError& error) {
        return decimalFaultMessage(error);
    } catch (const core::CalculationTooLarge& error) {
        return error.what();
    } catch (const core::CalculationCancelled& error) {
        return error.what();
    } catch (const core::DividerListError& error) {
        return error.what();
    } catch (const std::bad_alloc&) {
        return "the calculation needs more memory than is available";
    } catch (const std::exception& error) {
        return std::string("the calculation stopped: ") + error.what();
    } catch (...) {
        return "the calculation stopped for an unknown reason";
    }
}

std::string shortenedForMessage(std::string_view text) {
    constexpr std::size_t kLongest = 80;
    if (text.size() <= kLongest) {
        return std::string(text);
    }
    // Never cut a UTF-8 character in two: back up over its continuation bytes.
    std::size_t cut = kLongest;
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0U) == 0x80U) {
        --cut;
    }
    return std::string(text.substr(0, cut)) + "...";
}

void CalculationSession::runInRequest(const std::function<void()>& work) {
    if (m_building) {
        throw std::logic_error("a calculation is already under way");
    }
    struct Building {
        bool& flag;
        explicit Building(bool& building) : flag(building) { flag = true; }
        ~Building() { flag = false; }
        Building(const Building&) = delete;
        Building& operator=(const Building&) = delete;
    } building(m_building);
    const Request request(*this);
    language::RequestContext& context = *m_request;
    try {
        m_runner->run(context, [&] {
            struct OnThisThread {
                std::atomic<std::thread::id>& thread;
                explicit OnThisThread(std::atomic<std::thread::id>& t) : thread(t) {
                    thread.store(std::this_thread::get_id());
                }
                ~OnThisThread() { thread.store(std::thread::id{}); }
                OnThisThread(const OnThisThread&) = delete;
                OnThisThread& operator=(const OnThisThread&) = delete;
            } onThisThread(m_workThread);
            work();
        });
    } catch (...) {
        // Nothing the failed request built stays; a sub-expression it finished would be
        // correct, but keeping it could keep the very memory that stopped it.
        context.discardAdditions();
        throw;
    }
}

void CalculationSession::pin(const std::string& key, language::ExpressionPointer expression) {
    m_expressions[key] = expression;
    std::erase_if(m_pinned, [&key](const auto& pinned) { return pinned.first == key; });
    m_pinned.emplace_back(key, std::move(expression));
}

std::uint64_t CalculationSession::heldProfileBytes() const {
    std::uint64_t outcomes = 0;
    for (const auto& [key, expression] : m_expressions) {
        outcomes += expression->heldOutcomes();
    }
    return outcomes * sizeof(core::Evaluation);
}

void CalculationSession::emptyWhenFull() {
    if (m_expressions.size() <= core::kMaxExpressions / 2 &&
        heldProfileBytes() <= kMaxSessionProfileBytes) {
        return;
    }
    m_expressions.clear();
    for (const auto& [key, expression] : m_pinned) {
        m_expressions[key] = expression;
    }
}

CalculationSession::Request::Request(CalculationSession& session)
    : m_session(session), m_opened(!session.m_request) {
    if (m_opened) {
        session.emptyWhenFull();
        session.m_request.emplace(session.m_expressions, session.m_limits);
    }
}

CalculationSession::Request::~Request() {
    if (m_opened) {
        m_session.m_request.reset();
    }
}

language::ExpressionPointer CalculationSession::build(std::string_view text) {
    if (m_workThread.load() == std::this_thread::get_id()) {
        return language::Expression::expressionWithString(text, *m_request);
    }
    language::ExpressionPointer built;
    runInRequest([&] { built = language::Expression::expressionWithString(text, *m_request); });
    return built;
}

RequestResult CalculationSession::calculate(std::string_view text, int rolls) {
    RequestResult result;
    result.expression = build(text);
    result.profile = result.expression->profile();
    result.rolls = drawRolls(result.profile, rolls);
    return result;
}

std::vector<core::Evaluation> CalculationSession::drawRolls(core::Profile& profile, int count) {
    if (count <= 0) {
        return {};
    }
    if (static_cast<double>(count) * static_cast<double>(profile.evaluationCount()) >
        kMaxRollWork) {
        throw core::CalculationTooLarge("that many rolls of this many outcomes take too long");
    }
    std::vector<core::Evaluation> rolls;
    rolls.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        rolls.push_back(profile.evaluation());
    }
    return rolls;
}

core::StyledText CalculationSession::report(core::Profile& profile, const core::Options& options) {
    return core::attributedProfileStringWithOptions(profile, &options, profile.styles());
}

}  // namespace talvex::app
