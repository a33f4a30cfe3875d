// The force sensor at the flange: what it reads is its own bias, the weight of the current
// tool's payload turned by the arm's pose, and the contact force that force-position control
// holds. A calibration learns the bias and the payload; zeroing subtracts what it reads now.
#ifndef QM_SIM_FORCE_SENSOR_H
#define QM_SIM_FORCE_SENSOR_H

#include <array>

#include "arm.h"

namespace sim {

using Wrench = std::array<int, 6>;  // force x, y, z in thousandths of a newton, torques in thousandths of a newton metre

struct ForceReading {
    Wrench raw{};   // as the sensor measures, in the flange frame
    Wrench zero{};  // after calibration and zeroing, in the flange frame
    Wrench work{};  // the zeroed reading in the work frame
    Wrench tool{};  // the zeroed reading in the tool frame
};

ForceReading read_force(const Arm& arm);
// What zeroing subtracts from now on: the reading that is left over now.
Wrench zero_offset(const Arm& arm);

}  // namespace sim

#endif
