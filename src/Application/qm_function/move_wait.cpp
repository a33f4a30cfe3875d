// The wait for the end of a blocking move, shared by every family that moves something.
#include <optional>

#include "log.h"
#include "qm_exchange.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace {

constexpr const char* kArrivalKey = "current_trajectory_state";
constexpr int kEventLen = 1024;
constexpr int kSingleModeTurnMs = 1000;

struct Arrival {
    int state = 0;  // parse_qm_move_command's result
    int device = -1;
    int connect = 0;
};

// One wait for an arrival event; nullopt when none came in time.
std::optional<Arrival> await_arrival(qm_robot_handle* handle, const char* caller, int timeout_ms) {
    char line[kEventLen] = {};
    if (qm_pack_lock_set(caller, handle, nullptr, 0, kArrivalKey, line, sizeof line, timeout_ms) < 1)
        return std::nullopt;
    Arrival arrival;
    arrival.state = parse_qm_move_command(line, &arrival.device, &arrival.connect);
    return arrival;
}

// A failed trajectory (state false) is reported as 1; a malformed event as its parse code.
int failure_of(const Arrival& arrival) {
    return arrival.state == 0 ? 1 : arrival.state;
}

// `block` one-second turns, each waiting for one event.
int wait_single_mode(qm_robot_handle* handle, const MoveWait& wait, int block) {
    for (int turn = 0; turn < block; ++turn) {
        std::optional<Arrival> arrival = await_arrival(handle, wait.caller, kSingleModeTurnMs);
        if (!arrival) continue;
        if (arrival->state != 1) return failure_of(*arrival);
        if (arrival->connect == 1 || arrival->device != wait.device) continue;
        return 0;
    }
    return -5;
}

// Waits for the event and, while none comes, watches the planned trajectory to learn
// whether the move still runs.
int wait_threaded(qm_robot_handle* handle, const MoveWait& wait) {
    const int event_ms =
        wait.event_timeout_ms > 0 ? wait.event_timeout_ms : static_cast<int>(m_nOutTime.load());
    bool seen = false;
    int idle = 0;
    int failures = 0;
    for (;;) {
        if (!wait.poll_first) {
            if (std::optional<Arrival> arrival = await_arrival(handle, wait.caller, event_ms)) {
                if (arrival->state != 1) return failure_of(*arrival);
                if (arrival->connect == 1 || arrival->device != wait.device) continue;
                return 0;
            }
        }
        qm_arm_current_trajectory_e type = QM_NO_PLANNING_E;
        float target[ARM_DOF] = {};
        if (int rc = qm_get_arm_current_trajectory(handle, &type, target); rc != 0) {
            if (++failures > wait.poll_failures) return rc;
            continue;
        }
        if (type != QM_NO_PLANNING_E && type == wait.trajectory_type) {
            seen = true;
            sleep_cp(wait.seen_pause_ms);
            continue;
        }
        if (type != QM_NO_PLANNING_E) {
            sleep_cp(wait.other_pause_ms);
            continue;
        }
        if (!seen && ++idle < wait.idle_polls) {
            sleep_cp(wait.idle_pause_ms);
            continue;
        }
        // The move ended (or never showed): its arrival report must be there now.
        std::optional<Arrival> arrival = await_arrival(handle, wait.caller, event_ms);
        if (!arrival) return -6;
        if (arrival->state != 1) return failure_of(*arrival);
        if (arrival->connect == 1) continue;
        if (arrival->device == wait.device) return 0;
        qm_log_error("[%s] current device is: %d \n", wait.caller ? wait.caller : "", arrival->device);
        return -4;
    }
}

}  // namespace

int qm_wait_move_arrival(qm_robot_handle* handle, const MoveWait& wait, int block) {
    if (g_mode == QM_SINGLE_MODE_E) return wait_single_mode(handle, wait, block);
    return wait_threaded(handle, wait);
}
