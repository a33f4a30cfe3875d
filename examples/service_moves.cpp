// The library from C++ through QM_Service: connect, read the arm, make a blocking joint move and
// a blocking linear move, check the arrival against forward kinematics computed locally,
// disconnect. Usage: service_moves [ip] [port]   (default 127.0.0.1 8080)
#include <array>
#include <cmath>
#include <cstdio>
#include <string>

#include "qm_service.h"

namespace {

using Joints = std::array<float, ARM_DOF>;

// Shuts the library down whichever way main() leaves.
class Library {
public:
    explicit Library(QM_Service& qm) : qm_(qm) { ok_ = qm_.qm_init(QM_DUAL_MODE_E) == 0; }
    ~Library() { qm_.qm_destory(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    bool ok() const { return ok_; }

private:
    QM_Service& qm_;
    bool ok_;
};

// One arm connection, deleted at scope end.
class Arm {
public:
    Arm(QM_Service& qm, const char* ip, int port) : qm_(qm), handle_(qm.qm_create_robot_arm(ip, port)) {}
    ~Arm() {
        if (handle_) qm_.qm_delete_robot_arm(handle_);
    }
    Arm(const Arm&) = delete;
    Arm& operator=(const Arm&) = delete;
    bool connected() const { return handle_ && handle_->id > 0; }
    qm_robot_handle* get() const { return handle_; }

private:
    QM_Service& qm_;
    qm_robot_handle* handle_;
};

double distance(const qm_position_t& a, const qm_position_t& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

bool succeeded(const char* what, int rc) {
    std::printf("%-34s %s", what, rc == 0 ? "ok\n" : "failed: ");
    if (rc != 0) std::printf("%d\n", rc);
    return rc == 0;
}

}  // namespace

int main(int argc, char** argv) {
    const char* ip = argc > 1 ? argv[1] : "127.0.0.1";
    const int port = argc > 2 ? std::stoi(argv[2]) : 8080;

    QM_Service qm;
    Library library(qm);
    if (!library.ok()) return 1;
    Arm arm(qm, ip, port);
    if (!arm.connected()) {
        std::fprintf(stderr, "could not connect to %s:%d\n", ip, port);
        return 1;
    }

    qm_robot_info_t info{};
    if (!succeeded("robot info", qm.qm_get_robot_info(arm.get(), &info))) return 1;
    std::printf("qm %s: arm %d has %d joints\n", qm.qm_api_version(), arm.get()->id, info.arm_dof);

    // Joint move to a ready pose, waiting for the arrival.
    const Joints ready = {0, -20, -70, 0, -90, 0, 0};
    if (!succeeded("joint move to the ready pose", qm.qm_movej(arm.get(), ready.data(), 50, 0, 0, QM_MOVE_MULTI_BLOCK)))
        return 1;

    // The controller's pose after the move and the one the local kinematics computes agree.
    qm_current_arm_state_t state{};
    if (!succeeded("arm state", qm.qm_get_current_arm_state(arm.get(), &state))) return 1;
    const qm_pose_t computed = qm.qm_algo_forward_kinematics(arm.get(), state.joint);
    std::printf("tool at (%.3f, %.3f, %.3f) m, local kinematics %.1f mm away\n", state.pose.position.x,
                state.pose.position.y, state.pose.position.z,
                1000 * distance(state.pose.position, computed.position));

    // Linear move 5 cm up, same orientation.
    qm_pose_t up = state.pose;
    up.position.z += 0.05f;
    if (!succeeded("linear move 5 cm up", qm.qm_movel(arm.get(), up, 30, 0, 0, QM_MOVE_MULTI_BLOCK))) return 1;
    if (!succeeded("arm state", qm.qm_get_current_arm_state(arm.get(), &state))) return 1;
    const double miss_mm = 1000 * distance(state.pose.position, up.position);
    std::printf("arrived %.2f mm from the target\n", miss_mm);
    return miss_mm < 1.0 ? 0 : 1;
}
