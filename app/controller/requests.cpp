#include "app/controller/requests.h"

#include <algorithm>

#include "core/calculation_limits.h"

namespace talvex::app {

namespace {

constexpr int kViewHeight = 1000;

bool isLineBreak(char c) { return c == '\n' || c == '\r'; }

bool holdsTitle(const std::vector<std::string>& titles, const std::string& title,
                std::size_t from = 0) {
    return std::find(titles.begin() + static_cast<long>(std::min(from, titles.size())),
                     titles.end(), title) != titles.end();
}

}  // namespace

std::string Requests::trim(std::string_view text) {
    std::string result(text);
    while (result.size() > 1 && isLineBreak(result.front())) {
        result.erase(result.begin());
    }
    while (result.size() >= 2 && isLineBreak(result.back())) {
        result.pop_back();
    }
    if (!result.empty() && std::string_view("\n\r").find(result) != std::string_view::npos) {
        return {};
    }
    return result;
}

void Requests::emptyRequest() {
    m_window.selectPopUpTitle(PopUp::expression, kSelectExpression);
    m_window.setFieldText(TextField::expression, "");
    m_window.setViewAttributedText(TextView::expression,
                                   m_window.fieldAttributedText(TextField::expression));
    for (const TextField field : {TextField::statistics, TextField::table, TextField::diagram,
                                  TextField::roll, TextField::versus, TextField::versusLegend,
                                  TextField::versusWithTie, TextField::versusWithTieLegend}) {
        m_window.setFieldText(field, "");
    }
    for (const TextView view :
         {TextView::roll, TextView::statistics, TextView::comparisonStatistics, TextView::profileA,
          TextView::profileB, TextView::versusA, TextView::versusB, TextView::versusWithTieA,
          TextView::versusWithTieB}) {
        m_window.clearView(view);
    }
    m_state.lastRoll.lastFunctionString = "blank";
    m_state.lastExpressionTitle = m_window.selectedPopUpTitle(PopUp::expression);
    m_state.lastCompareExpressionTitle = m_window.selectedPopUpTitle(PopUp::compare);
}

void Requests::maintainExpressionPop(const std::string& lookupTitle, const std::string& text) {
    const auto titles = m_window.popUpTitles(PopUp::expression);
    if (holdsTitle(titles, lookupTitle)) {
        m_window.selectPopUpTitle(PopUp::expression, lookupTitle);
        return;
    }
    // Typed expressions carry trailing blanks in their titles, so that they never take the
    // place of a list's expression of the same text.
    std::string title = text + " ";
    while (holdsTitle(titles, title, 2)) {
        title += ' ';
    }
    m_window.insertPopUpTitle(PopUp::expression, title, 1);
    if (m_window.isChecked(CheckBox::mirror)) {
        m_window.insertPopUpTitle(PopUp::compare, title, 1);
    }
    m_window.selectPopUpTitle(PopUp::expression, title);
}

core::Profile Requests::latestRoll() const {
    // The roll reports show only the newest roll, so they are drawn from a profile holding just
    // that one: a long session's whole roll history is never copied.
    const core::Profile& own = m_state.expression->profileView();
    core::Profile rolls;
    if (&own.styles() != &core::defaultStyles()) {
        rolls.setStyles(own.styles());
    }
    if (!own.evaluationHistory().empty()) {
        rolls.setEvaluationHistory({own.evaluationHistory().back()});
    }
    return rolls;
}

void Requests::logRoll(bool displayed) {
    if (!m_window.isChecked(CheckBox::log)) {
        return;
    }
    core::Profile rolls = latestRoll();
    const core::StyledText text = m_displays.report(rolls, displayed ? "firstRoll" : "rollLog",
                                                    kViewHeight, m_displays.isComparison());
    const long position = m_log.printIndex();
    m_log.setPrintIndex(m_state.rollIndex);
    m_log.printAttributedString(text);
    m_state.rollIndex = m_log.printIndex();
    m_log.setPrintIndex(position);
}

void Requests::showRoll() {
    core::Profile rolls = latestRoll();
    const core::StyledText text =
        m_displays.report(rolls, "roll", kViewHeight, m_displays.isComparison());
    m_window.setFieldAttributedText(TextField::roll, text);
    m_window.setViewAttributedText(TextView::roll, text);
}

void Requests::roll() {
    // While a request runs, the window waits for it and handles only Cancel; nothing starts
    // another one.
    if (m_state.session.isBuilding()) {
        return;
    }
    // Every build of this request shares one budget and is cancelled as one.
    const CalculationSession::Request request(m_state.session);
    // 1. What the request starts from, to restore should the calculation fail.
    const bool displayingOnEntry = m_state.displaying;
    const auto previous = m_state.expression;
    const auto previousCompare = m_state.compareExpression;
    const std::string previousExpressionTitle = m_state.lastExpressionTitle;

    // 2, 3. The text without line breaks, then without trailing blanks.
    std::string text = trim(m_window.fieldText(TextField::expression));
    m_window.setFieldText(TextField::expression, text);
    const std::string lookupTitle = text;
    if (!text.empty() && text.back() == ' ') {
        while (!text.empty() && text.back() == ' ') {
            text.pop_back();
        }
        m_window.setFieldText(TextField::expression, text);
    }

    // 4. Nothing to calculate empties the display.
    if (text.empty()) {
        emptyRequest();
        m_window.showMessage("");
        m_state.newRoll = false;
        return;
    }

    bool redisplayed = false;
    const auto problem = attempt([&] {
        // 5. The one step that builds.
        if (m_state.displaying) {
            m_window.setViewAttributedText(TextView::expression,
                                           m_window.fieldAttributedText(TextField::expression));
            m_state.expression = m_state.session.build(prepareUserExpressionString(text));
        }
        // 6.
        maintainExpressionPop(lookupTitle, text);

        // 7. A repeat of the last request only rolls again, unless newRoll forces it.
        bool logFlag = true;
        if (m_state.expression->rawString() == m_state.lastRoll.lastExpressionString) {
            logFlag = m_state.newRoll;
            if (m_state.lastRoll.lastFunctionString == "display" &&
                m_state.compareExpression->rawString() ==
                    m_state.lastRoll.lastCompareExpressionString) {
                m_state.displaying = m_state.newRoll;
            }
        }

        // 8.
        if (m_state.displaying) {
            if (m_window.isChecked(CheckBox::mirror) && m_window.isChecked(CheckBox::cycle) &&
                m_state.lastExpressionTitle != kSelectExpression) {
                m_state.compareExpression = previous;
                m_window.selectPopUpTitle(PopUp::compare, m_state.lastExpressionTitle);
            }
            // Every report is calculated before anything is recorded or shown, on the worker
            // (a million outcomes take a while to report), while the window stays alive.
            DisplayFrame frame;
            core::StyledText logReport;
            const bool comparison = m_displays.isComparison();
            m_displays.updateHeight();
            {
                const Displays::HeightHold hold(m_displays);
                m_state.session.runInRequest([&] {
                    m_displays.displayAll(frame);
                    if (logFlag) {
                        core::Profile profile = m_state.expression->profileView();
                        logReport = m_displays.report(profile, "log", kViewHeight, comparison);
                    }
                });
            }
            m_history.makeHistory();
            if (logFlag) {
                m_log.log(logReport, m_window.isChecked(CheckBox::log));
                m_state.rollIndex = m_log.printIndex() - RequestLog::kSeparatorLength - 2;
            }
            frame.apply(m_window);
            redisplayed = true;
        }

        // 9.
        if (displayingOnEntry) {
            static_cast<void>(m_state.expression->evaluate());
            logRoll(redisplayed);
            showRoll();
            if (m_defaults.boolForKey("runningCalculation")) {
                m_window.setFieldText(TextField::expression,
                                      "(" + m_window.fieldText(TextField::roll) + ")");
                m_window.runOnNextTurn([this] { setRunningSelection(); });
            }
            m_state.lastRoll.lastExpressionString = m_state.expression->rawString();
            m_state.lastRoll.lastCompareExpressionString = m_state.compareExpression->rawString();
            m_state.lastRoll.lastFunctionString = "display";
        } else {
            // 10.
            m_state.lastRoll.lastExpressionString.clear();
            m_state.lastRoll.lastCompareExpressionString.clear();
        }
    });

    if (problem) {
        // The results on screen stay those of the previous request.
        m_state.expression = previous;
        m_state.compareExpression = previousCompare;
        m_state.lastExpressionTitle = previousExpressionTitle;
        m_state.displaying = displayingOnEntry;
        m_window.showMessage(*problem == core::kCalculationCancelled
                                 ? *problem + "."
                                 : "Cannot calculate \"" + shortenedForMessage(text) +
                                       "\": " + *problem + ".");
        return;
    }
    m_window.showMessage("");

    // 11, 12.
    m_state.lastExpressionTitle = m_window.selectedPopUpTitle(PopUp::expression);
    m_state.lastCompareExpressionTitle = m_window.selectedPopUpTitle(PopUp::compare);
    m_state.displaying = displayingOnEntry;
    m_state.newRoll = false;
}

void Requests::expressionSelect() {
    const std::string selected = m_window.selectedPopUpTitle(PopUp::expression);
    if (selected == kSelectExpression) {
        m_window.selectPopUpTitle(PopUp::expression, m_state.lastExpressionTitle);
        return;
    }
    if (selected == m_state.lastExpressionTitle) {
        return;
    }
    m_window.setFieldText(TextField::expression, selected);
    roll();
}

void Requests::compareSelect() {
    const std::string selected = m_window.selectedPopUpTitle(PopUp::compare);
    if (selected == kSelectComparison) {
        m_window.selectPopUpTitle(PopUp::compare, m_state.lastCompareExpressionTitle);
        return;
    }
    if (selected == m_state.lastCompareExpressionTitle) {
        return;
    }
    if (m_state.session.isBuilding()) {
        return;
    }
    const CalculationSession::Request request(m_state.session);
    m_window.setFieldText(TextField::expression, m_window.selectedPopUpTitle(PopUp::expression));
    const auto built = attempt([&] {
        m_state.compareExpression = m_state.session.build(prepareUserExpressionString(selected));
    });
    if (built) {
        m_window.selectPopUpTitle(PopUp::compare, m_state.lastCompareExpressionTitle);
        m_window.showMessage("Cannot calculate \"" + shortenedForMessage(selected) +
                             "\": " + *built + ".");
        return;
    }
    m_window.setChecked(CheckBox::cycle, false);
    roll();
}

void Requests::panelRoll() {
    m_window.setFieldText(TextField::expression, m_window.viewText(TextView::expression));
    roll();
}

void Requests::panelCancel() {
    m_window.setViewAttributedText(TextView::expression,
                                   m_window.fieldAttributedText(TextField::expression));
}

void Requests::setRunningSelection() { m_window.placeCaretAtEnd(); }

}  // namespace talvex::app
