// The realtime state datagram of an arm: joints, pose and errors always, the force data of
// an arm with a force sensor, and the optional sections its push configuration enables.
#ifndef QM_SIM_DATAGRAM_H
#define QM_SIM_DATAGRAM_H

#include <string>

#include "arm.h"

namespace sim {

std::string realtime_datagram(const Arm& arm);

// The optional sections a push configuration can enable, by their "custom" key.
bool is_push_section(const std::string& key);

}  // namespace sim

#endif
