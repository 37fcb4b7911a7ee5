#pragma once

#include "core/profile.h"
#include "core/report_options.h"
#include "core/styled_text.h"
#include "core/styles.h"
#include "core/table.h"

namespace talvex::core {

// The profile as a vertical text diagram cut at the dividers: blocks of dots for the outcomes
// between two dividers alternate with blocks repeating the outcome at which a divider falls,
// each block as tall as its weight at one scale chosen to come closest to "diagram height".
// Empty without options or at height zero; "undefined" for a profile without defined outcomes.
[[nodiscard]] StyledText diagramWithOptions(const Profile& profile, const Options* options,
                                            const Styles& styles,
                                            ScaledOutcomesCache* cache = nullptr);

// The number of block lines the diagram would have, so that two diagrams can share one height.
// Zero without options or at height zero, one for a profile without defined outcomes. Unlike
// the drawing, it takes "diagram max height" as it stands, without leaving a line for the
// undefined outcome.
[[nodiscard]] int diagramHeightWithOptions(const Profile& profile, const Options* options);

}  // namespace talvex::core
