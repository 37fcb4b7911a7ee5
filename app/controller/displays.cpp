#include "app/controller/displays.h"

#include <algorithm>
#include <cmath>

#include "core/diagram.h"
#include "core/table.h"

namespace talvex::app {

namespace {

constexpr int kViewHeight = 1000;

// Clears the table scale however the comparison display ends.
class TableScaleReset {
  public:
    explicit TableScaleReset(Preferencer& prefer) : m_prefer(prefer) { m_prefer.setTableScale(-1); }
    ~TableScaleReset() { m_prefer.setTableScale(-1); }
    TableScaleReset(const TableScaleReset&) = delete;
    TableScaleReset& operator=(const TableScaleReset&) = delete;

  private:
    Preferencer& m_prefer;
};

// The measuring functions take options repaired, as the reports repair theirs.
core::Options repaired(const core::Profile& profile, const core::Options& options) {
    return profile.patchOptions(&options);
}

bool isComparisonProfile(const core::Profile& profile) {
    return !profile.comparatorString().empty();
}

}  // namespace

void DisplayFrame::setField(TextField field, core::StyledText text) {
    m_writes.emplace_back(FieldWrite{field, std::move(text)});
}

void DisplayFrame::setView(TextView view, core::StyledText text) {
    m_writes.emplace_back(ViewWrite{view, std::move(text)});
}

void DisplayFrame::setFieldAndView(TextField field, const core::StyledText& text) {
    setField(field, text);
    setView(viewOf(field), text);
}

void DisplayFrame::emptyField(TextField field) { setField(field, core::StyledText()); }

void DisplayFrame::clearView(TextView view) { m_writes.emplace_back(ViewClear{view}); }

void DisplayFrame::apply(MainWindow& window) const {
    for (const auto& write : m_writes) {
        if (const auto* field = std::get_if<FieldWrite>(&write)) {
            window.setFieldAttributedText(field->field, field->text);
        } else if (const auto* view = std::get_if<ViewWrite>(&write)) {
            window.setViewAttributedText(view->view, view->text);
        } else {
            window.clearView(std::get<ViewClear>(write).view);
        }
    }
}

core::StyledText Displays::report(core::Profile& profile, const std::string& field, int height,
                                  bool comparison) const {
    const core::Options options = m_prefer.optionsForField(field, height, comparison);
    return profile.attributedProfileStringWithOptions(&options);
}

bool Displays::isComparison() const {
    return m_state.expression && isComparisonProfile(m_state.expression->profileView());
}

bool Displays::isCompareComparison() const {
    return m_state.compareExpression &&
           isComparisonProfile(m_state.compareExpression->profileView());
}

Displays::Profiles Displays::currentProfiles() const {
    return {m_state.expression->profileView(), m_state.compareExpression->profileView()};
}

void Displays::updateHeight() {
    if (m_heightHeld) {
        return;
    }
    const double frameHeight = std::floor(m_window.tableFieldHeight());
    m_state.height = static_cast<int>(frameHeight / 17.0 - 2.0);
}

void Displays::profile(DisplayFrame& frame) {
    updateHeight();
    auto [a, b] = currentProfiles();
    const bool comparison = isComparisonProfile(a);
    const bool compareComparison = isComparisonProfile(b);
    const int h = m_state.height;
    frame.setFieldAndView(TextField::statistics, report(a, "statistics", kViewHeight, comparison));
    if (!m_state.compareExpression->rawString().empty() && comparison == compareComparison) {
        frame.setFieldAndView(TextField::compareStatistics,
                              report(b, "statistics", kViewHeight, compareComparison));
    }
    frame.setField(TextField::table, report(a, "table", h, comparison));
    frame.setView(TextView::profileA, report(a, "table", kViewHeight, comparison));
    frame.setField(TextField::diagram, report(a, "diagram/legend", h, comparison));
    frame.setView(TextView::profileB, report(a, "diagram/legendView", kViewHeight, comparison));
}

Displays::Pair Displays::currentPair() const {
    Pair pair{currentProfiles()};
    pair.comparison = isComparisonProfile(pair.profiles.expression);
    pair.compareComparison = isComparisonProfile(pair.profiles.compare);
    pair.hasExpression = !m_state.expression->rawString().empty();
    pair.hasCompare = !m_state.compareExpression->rawString().empty();
    return pair;
}

void Displays::showPair(DisplayFrame& frame, Pair& pair, double scale, const PairFields& fields) {
    const int h = m_state.height;
    if (pair.hasExpression) {
        m_prefer.setTableScale(scale);
        core::Profile& a = pair.profiles.expression;
        frame.setField(fields.field1, report(a, fields.fieldKind, h, pair.comparison));
        frame.setView(fields.view1, report(a, fields.viewKind, kViewHeight, pair.comparison));
    }
    if (pair.hasCompare) {
        m_prefer.setTableScale(scale);
        core::Profile& b = pair.profiles.compare;
        frame.setField(fields.field2, report(b, fields.fieldKind, h, pair.compareComparison));
        frame.setView(fields.view2,
                      report(b, fields.viewKind, kViewHeight, pair.compareComparison));
    }
    m_prefer.setTableScale(-1);
    if (pair.comparison != pair.compareComparison) {
        frame.emptyField(fields.field2);
        frame.clearView(fields.view2);
    }
}

void Displays::tableCompare(DisplayFrame& frame) {
    updateHeight();
    TableScaleReset reset(m_prefer);
    Pair pair = currentPair();
    const int h = m_state.height;
    core::Profile& a = pair.profiles.expression;
    core::Profile& b = pair.profiles.compare;
    const core::Options optionsA =
        repaired(a, m_prefer.optionsForField("table", h, pair.comparison));
    const core::Options optionsB =
        repaired(b, m_prefer.optionsForField("table", h, pair.compareComparison));
    const core::Evaluation barA = core::maxBarEvaluationWithOptions(a, &optionsA);
    const core::Evaluation barB = core::maxBarEvaluationWithOptions(b, &optionsB);
    double scale = -1;
    if (pair.bothOfOneKind()) {
        // The heavier bar sets the scale; the second on a tie.
        scale = (barA.weight() > barB.weight() ? barA.weight() : barB.weight()).doubleValue();
    }
    showPair(frame, pair, scale,
             {"table", "table", TextField::tableCompare1, TextView::tablesA,
              TextField::tableCompare2, TextView::tablesB});
}

void Displays::diagramCompare(DisplayFrame& frame) {
    updateHeight();
    TableScaleReset reset(m_prefer);
    Pair pair = currentPair();
    core::Profile& a = pair.profiles.expression;
    // Both heights are asked with the first expression's kind.
    const core::Options options =
        repaired(a, m_prefer.optionsForField("diagram", m_state.height, pair.comparison));
    const int common = std::min(core::diagramHeightWithOptions(a, &options),
                                core::diagramHeightWithOptions(pair.profiles.compare, &options));
    const double scale = common < 2 || !pair.bothOfOneKind() ? -1 : static_cast<double>(common);
    showPair(frame, pair, scale,
             {"diagram", "diagramView", TextField::diagramCompare1, TextView::diagramsA,
              TextField::diagramCompare2, TextView::diagramsB});
}

void Displays::versusReport(DisplayFrame& frame, const char* comparator, TextField tableField,
                            TextField legendField, TextView tableView, TextView legendView) {
    if (!isVersusSuitable()) {
        frame.emptyField(tableField);
        frame.emptyField(legendField);
        frame.clearView(tableView);
        frame.clearView(legendView);
        return;
    }
    const std::string text = "(" + m_state.expression->rawString() + ")" + comparator + "(" +
                             m_state.compareExpression->rawString() + ")";
    const auto versusExpression = m_state.session.build(text);
    core::Profile profile = versusExpression->profileView();
    updateHeight();
    const int h = m_state.height;
    frame.setField(tableField, report(profile, "table", h, true));
    frame.setView(tableView, report(profile, "table", kViewHeight, true));
    frame.setField(legendField, report(profile, "legend", h, true));
    frame.setView(legendView, report(profile, "legend", kViewHeight, true));
}

void Displays::versus(DisplayFrame& frame) {
    versusReport(frame, "vs", TextField::versus, TextField::versusLegend, TextView::versusA,
                 TextView::versusB);
}

void Displays::versusWithTie(DisplayFrame& frame) {
    versusReport(frame, "vt", TextField::versusWithTie, TextField::versusWithTieLegend,
                 TextView::versusWithTieA, TextView::versusWithTieB);
}

void Displays::displayAll(DisplayFrame& frame) {
    profile(frame);
    tableCompare(frame);
    diagramCompare(frame);
    versus(frame);
    versusWithTie(frame);
}

void Displays::updateFloatingViews() {
    for (std::size_t i = 0; i < kDisplayPairCount; ++i) {
        const auto field = static_cast<TextField>(i);
        m_window.clearView(viewOf(field));
        m_window.setViewAttributedText(viewOf(field), m_window.fieldAttributedText(field));
    }
}

void Displays::blankDisplay() {
    m_window.setFieldText(TextField::expression, "Expression");
    m_window.setViewAttributedText(TextView::expression,
                                   m_window.fieldAttributedText(TextField::expression));
    for (std::size_t i = 1; i < kDisplayPairCount; ++i) {
        const auto field = static_cast<TextField>(i);
        m_window.setFieldText(field, "");
        m_window.clearView(viewOf(field));
    }
}

}  // namespace talvex::app
