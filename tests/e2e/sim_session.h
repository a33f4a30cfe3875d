// The library connected to a simulator running in this process, for end-to-end tests: free
// ports, moves twenty times faster than real, notes of the simulator kept for checks, and
// every event and realtime record the library delivers.
#ifndef QM_TEST_SIM_SESSION_H
#define QM_TEST_SIM_SESSION_H

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "qm_interface.h"
#include "simulator.h"

namespace e2e {

using namespace std::chrono_literals;

sim::Options fast_options(const std::string& model = "QM65-B", int arms = 1);

// What the library's callbacks delivered (they cannot be unregistered, so one per process).
struct Deliveries {
    std::vector<qm_event_push_data_t> events;
    std::optional<qm_realtime_arm_joint_state_t> latest;
    unsigned long records = 0;
};
Deliveries deliveries();
void clear_deliveries();
// Waits until `done` holds for the deliveries; false on timeout.
bool wait_for(const std::function<bool(const Deliveries&)>& done, std::chrono::milliseconds timeout = 3s);

class Session {
public:
    Session(qm_thread_mode_e mode, const sim::Options& options);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    qm_robot_handle* arm(int i = 0) const { return arms_.at(static_cast<std::size_t>(i)); }
    sim::Simulator& sim() { return *sim_; }
    // Whether the simulator noted something containing `part`.
    bool noted(const std::string& part) const;

private:
    mutable std::mutex notes_mutex_;
    std::vector<std::string> notes_;
    sim::SimulatorThread sim_;
    std::vector<qm_robot_handle*> arms_;
};

// One QM65-B in dual mode, for the suites that need nothing else.
class OneArm : public ::testing::Test {
protected:
    OneArm() : session_(QM_DUAL_MODE_E, fast_options()) {}
    qm_robot_handle* arm() const { return session_.arm(); }
    Session session_;
};

// A session per thread mode for the suites that run in both.
class BothModes : public ::testing::TestWithParam<qm_thread_mode_e> {
protected:
    void SetUp() override { session_.emplace(GetParam(), fast_options()); }
    void TearDown() override { session_.reset(); }
    qm_robot_handle* arm() const { return session_->arm(); }
    Session& session() { return *session_; }

private:
    std::optional<Session> session_;
};

std::string mode_name(const ::testing::TestParamInfo<qm_thread_mode_e>& info);

// Joints and poses compared within what the wire's resolution allows.
void expect_joints_near(const float* actual, const std::vector<float>& expected, float tolerance = 0.002f);
void expect_pose_near(const qm_pose_t& actual, const qm_pose_t& expected, float metres = 2e-6f,
                      float radians = 2e-3f);
qm_pose_t pose_of(float x, float y, float z, float rx, float ry, float rz);
std::vector<float> joints_of(qm_robot_handle* arm);
qm_pose_t pose_now(qm_robot_handle* arm);

// The six-joint ready pose: tool pointing down, 30 cm in front of the base.
inline const float kReady[ARM_DOF] = {0, -20, -70, 0, -90, 0, 0};

}  // namespace e2e

#endif
