// How the end effectors and extra axes look from outside: the sections of the realtime push
// and the end-effector ecosystem's information, shared by the push and the queries.
#ifndef QM_SIM_PERIPHERALS_H
#define QM_SIM_PERIPHERALS_H

#include "arm.h"
#include "mio_json.h"

namespace sim {

constexpr double kLiftRate = 100.0;      // mm/s at 100 percent
constexpr double kExpandRate = 90000.0;  // thousandths of a degree per second at 100 percent
constexpr double kFingerRate = 2.0;      // finger units per second for each unit of speed
constexpr double kGripperRate = 2.0;     // opening units per second for each unit of speed

// What an axis draws: more while it moves.
int axis_current(const Travel& travel, SimTime now);

JsonPtr lift_section(const Arm& arm);
JsonPtr expand_section(const Arm& arm);
JsonPtr hand_section(const Arm& arm);
// The ecosystem device (the hand, seen through the ecosystem protocol): its base
// information and live state, or the text "disable" while its mode is 0.
JsonPtr end_effector_base(const Arm& arm);
JsonPtr end_effector_state(const Arm& arm);

}  // namespace sim

#endif
