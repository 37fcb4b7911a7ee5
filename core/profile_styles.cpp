#include <utility>

#include "core/profile.h"
#include "core/report.h"

namespace talvex::core {

const Styles& Profile::styles() const noexcept { return m_styles ? *m_styles : defaultStyles(); }

void Profile::setDefaultStyles() { m_styles.reset(); }

void Profile::setStyles(Styles styles) {
    m_styles = std::make_shared<const Styles>(std::move(styles));
}

void Profile::clearStyles() { m_styles = std::make_shared<const Styles>(); }

void Profile::setAttributes(const TextAttributes& attributes, const std::string& forStyle) {
    Styles changed = styles();
    changed[forStyle] = attributes;
    setStyles(std::move(changed));
}

StyledText Profile::attributedProfileStringWithOptions(const Options* options, std::time_t now) {
    return core::attributedProfileStringWithOptions(*this, options, styles(), now);
}

std::string Profile::profileStringWithOptions(const Options* options, std::time_t now) {
    return attributedProfileStringWithOptions(options, now).string();
}

Options Profile::patchOptions(const Options* options) const {
    return core::patchOptions(options, styles());
}

}  // namespace talvex::core
