#include "arm_state.h"

#include <cmath>

namespace sim {

std::vector<int> Travel::at(SimTime now) const {
    if (now >= end || end <= start) return to;
    if (now <= start) return from;
    const double f = (now - start) / (end - start);
    std::vector<int> values(to.size());
    for (std::size_t i = 0; i < to.size(); ++i)
        values[i] = static_cast<int>(std::lround(from[i] + f * (to[i] - from[i])));
    return values;
}

}  // namespace sim
