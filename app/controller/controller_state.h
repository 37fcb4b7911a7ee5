#pragma once

#include <string>

#include "app/request.h"
#include "expressions/expression.h"

namespace talvex::app {

// The placeholders of the pop-ups: each selects the empty expression (or no list).
inline constexpr const char* kSelectExpression = " Select Expression";
inline constexpr const char* kSelectComparison = " Select Comparison";
inline constexpr const char* kSelectExpressionList = " Select Expression List";
inline constexpr const char* kSelectComparisonList = " Select Comparison List";

// What the last request displayed: a request for the same texts only rolls again.
struct LastRoll {
    std::string lastExpressionString;
    std::string lastCompareExpressionString;
    // "display" after a display, "blank" after the display was emptied.
    std::string lastFunctionString = "blank";
};

// The state the controller's collaborators share for the whole run.
struct ControllerState {
    // The expressions dictionary, kept for the whole run.
    CalculationSession session;
    language::ExpressionPointer expression;
    language::ExpressionPointer compareExpression;
    LastRoll lastRoll;
    std::string lastExpressionTitle = kSelectExpression;
    std::string lastCompareExpressionTitle = kSelectComparison;
    // Whether roll may build, display and roll; off only while a list loads.
    bool displaying = true;
    // Forces the next request to redisplay and relog an unchanged expression.
    bool newRoll = false;
    // Text lines that fit in the display fields.
    int height = 0;
    // Where the next logged roll goes into the log.
    long rollIndex = 0;
    std::string currentListName;
    std::string listsFolderPath;
};

}  // namespace talvex::app
