#include "telemetry.h"

#include <cmath>

namespace sim {

namespace {

constexpr int kRestCurrent = 300;        // mA
constexpr int kLoadedCurrent = 400;      // mA more on the joints that hold the arm up
constexpr double kCurrentPerSpeed = 20;  // mA per degree per second
constexpr int kTemperature = 30000;      // thousandths of a degree Celsius
constexpr int kTemperatureStep = 1500;   // warmer towards the base
constexpr int kBusVoltage = 48000;       // mV

}  // namespace

Telemetry telemetry(const Arm& arm) {
    Telemetry t;
    const Joints q = arm.joints();
    const Joints v = arm.speeds();
    for (int j = 0; j < arm.dof(); ++j) {
        t.position[j] = wire::round(q[j] * 1000.0);
        t.speed[j] = wire::round(v[j] * 1000.0 / 6.0);
        t.current[j] = (j >= 1 && j <= 2 ? kLoadedCurrent : 0) + kRestCurrent +
                       wire::round(std::fabs(v[j]) * kCurrentPerSpeed);
        t.temperature[j] = kTemperature + kTemperatureStep * (arm.dof() - j);
        t.voltage[j] = arm.state.enabled[j] ? kBusVoltage : 0;
    }
    return t;
}

}  // namespace sim
