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

// The verdict on an arrival event in the threaded wait: a result, or none to wait on.
// Another device's event is passed over while the move may still run, refused after.
std::optional<int> judge(const Arrival& arrival, const MoveWait& wait, bool foreign_refused) {
    if (arrival.state != 1) return failure_of(arrival);
    if (arrival.connect == 1) return std::nullopt;
    if (arrival.device == wait.device && arrival.connect == 0) return 0;
    if (!foreign_refused && arrival.device != wait.device) return std::nullopt;
    qm_log_error("[%s] current device is: %d \n", wait.caller ? wait.caller : "", arrival.device);
    return -4;
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

enum class Progress { running, other, idle };

// One look at the move: the device's own state, or else the arm's planned trajectory.
int poll_progress(qm_robot_handle* handle, const MoveWait& wait, Progress& progress) {
    if (wait.device_state) {
        qm_expand_state_t state{};
        if (int rc = wait.device_state(handle, &state); rc != 0) return rc;
        progress = state.mode != 0 ? Progress::running : Progress::idle;
        return 0;
    }
    qm_arm_current_trajectory_e type = QM_NO_PLANNING_E;
    float target[ARM_DOF] = {};
    if (int rc = qm_get_arm_current_trajectory(handle, &type, target); rc != 0) return rc;
    progress = type == QM_NO_PLANNING_E                         ? Progress::idle
               : static_cast<int>(type) == wait.trajectory_type ? Progress::running
                                                                : Progress::other;
    return 0;
}

// Waits for the event and, while none comes, watches the move to learn whether it still runs.
int wait_threaded(qm_robot_handle* handle, const MoveWait& wait) {
    const int event_ms =
        wait.event_timeout_ms > 0 ? wait.event_timeout_ms : static_cast<int>(m_nOutTime.load());
    bool seen = false;
    int idle = 0;
    int failures = 0;
    for (;;) {
        if (!wait.poll_first) {
            if (std::optional<Arrival> arrival = await_arrival(handle, wait.caller, event_ms)) {
                if (std::optional<int> verdict = judge(*arrival, wait, false)) return *verdict;
                continue;
            }
        }
        Progress progress = Progress::idle;
        if (int rc = poll_progress(handle, wait, progress); rc != 0) {
            if (++failures > wait.poll_failures) return rc;
            continue;
        }
        if (progress == Progress::running) {
            seen = true;
            sleep_cp(wait.seen_pause_ms);
            continue;
        }
        if (progress == Progress::other) {
            sleep_cp(wait.other_pause_ms);
            continue;
        }
        if (!seen && ++idle < wait.idle_polls) {
            sleep_cp(wait.idle_pause_ms);
            continue;
        }
        // The move ended (or never showed): its arrival report must be there now.
        std::optional<Arrival> arrival = await_arrival(handle, wait.caller, event_ms);
        if (!arrival) {
            if (wait.missed_event_pause_ms < 0) return -6;
            sleep_cp(wait.missed_event_pause_ms);
            continue;
        }
        if (std::optional<int> verdict = judge(*arrival, wait, true)) return *verdict;
    }
}

}  // namespace

int qm_wait_move_arrival(qm_robot_handle* handle, const MoveWait& wait, int block) {
    switch (g_mode.load()) {
        case QM_SINGLE_MODE_E:
            return wait_single_mode(handle, wait, block);
        case QM_DUAL_MODE_E:
        case QM_TRIPLE_MODE_E:
            return wait_threaded(handle, wait);
    }
    return wait.other_mode_result ? *wait.other_mode_result : wait_threaded(handle, wait);
}

int qm_wait_device_arrival(qm_robot_handle* handle, const MoveWait& wait, int timeout_ms) {
    std::optional<Arrival> arrival = await_arrival(handle, wait.caller, timeout_ms);
    if (!arrival) return wait.missed_result;
    if (arrival->state != 1) return failure_of(*arrival);
    if (arrival->device != wait.device) {
        qm_log_error("[%s] current device is: %d \n", wait.caller ? wait.caller : "", arrival->device);
        return wait.foreign_result;
    }
    return 0;
}
