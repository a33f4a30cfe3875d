// What the joints report besides their angles, in the controller's units (thousandths):
// a steady temperature per joint, a current that grows with speed, the bus voltage.
#ifndef QM_SIM_TELEMETRY_H
#define QM_SIM_TELEMETRY_H

#include "arm.h"

namespace sim {

struct Telemetry {
    WireJoints position{};     // thousandths of a degree
    WireJoints speed{};        // thousandths of a sixth of a degree per second
    WireJoints current{};      // milliamperes
    WireJoints temperature{};  // thousandths of a degree Celsius
    WireJoints voltage{};      // millivolts
};

Telemetry telemetry(const Arm& arm);

}  // namespace sim

#endif
