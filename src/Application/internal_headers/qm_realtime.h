// The realtime state push: datagram decoding and the registered callback.
#ifndef QM_REALTIME_H
#define QM_REALTIME_H

#include <atomic>

#include "qm_define.h"

// The callback registered with qm_realtime_arm_state_call_back, or null.
extern std::atomic<qm_realtime_arm_state_callback_ptr> qm_arm_state_callback;

// Decodes one datagram into `robotstate` (cleared first); 0, or -3 when it cannot be
// parsed or lacks a required section. Arrays are cut to the record's sizes.
int parse_qm_realtime_arm_joint_state(const char* json_str, qm_realtime_arm_joint_state_t* robotstate);

// The arm status of a push; unknown texts give QM_IDLE_E.
qm_udp_arm_current_status_e get_arm_status_from_string(const char* status_str);

#endif
