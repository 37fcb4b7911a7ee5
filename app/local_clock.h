#pragma once

#include "app/ports.h"

namespace talvex::app {

// The machine's clock in its local time zone.
class LocalClock final : public Clock {
  public:
    [[nodiscard]] LocalTime now() const override;
};

}  // namespace talvex::app
