#include "sim_session.h"

#include <cmath>
#include <condition_variable>
#include <thread>

#include "qm_exchange.h"

namespace e2e {

namespace {

std::mutex g_mutex;
std::condition_variable g_delivered;
Deliveries g_deliveries;

void on_event(qm_event_push_data_t event) {
    std::lock_guard lock(g_mutex);
    g_deliveries.events.push_back(event);
    g_delivered.notify_all();
}

void on_record(qm_realtime_arm_joint_state_t record) {
    std::lock_guard lock(g_mutex);
    g_deliveries.latest = record;
    ++g_deliveries.records;
    g_delivered.notify_all();
}

}  // namespace

sim::Options fast_options(const std::string& model, int arms) {
    sim::Options options;
    options.port = 0;
    options.push.port = 0;
    options.model = model;
    options.arms = arms;
    options.speed_factor = 20.0;
    return options;
}

Deliveries deliveries() {
    std::lock_guard lock(g_mutex);
    return g_deliveries;
}

void clear_deliveries() {
    std::lock_guard lock(g_mutex);
    g_deliveries = {};
}

bool wait_for(const std::function<bool(const Deliveries&)>& done, std::chrono::milliseconds timeout) {
    std::unique_lock lock(g_mutex);
    return g_delivered.wait_for(lock, timeout, [&] { return done(g_deliveries); });
}

Session::Session(qm_thread_mode_e mode, const sim::Options& options)
    : sim_(options, [this](const std::string& note) {
          std::lock_guard lock(notes_mutex_);
          notes_.push_back(note);
      }) {
    clear_deliveries();
    // A non-blocking move of an earlier session may have left the process-wide listener
    // waiting to discard an arrival that never came.
    qm_event_listener_set_flag(0);
    qm_init(mode);
    qm_get_arm_event_call_back(on_event);
    qm_realtime_arm_state_call_back(on_record);
    for (int i = 0; i < options.arms; ++i) arms_.push_back(qm_create_robot_arm("127.0.0.1", sim_->port(i)));
}

Session::~Session() {
    for (qm_robot_handle* arm : arms_)
        if (arm) qm_delete_robot_arm(arm);
    qm_destory();
}

bool Session::noted(const std::string& part) const {
    std::lock_guard lock(notes_mutex_);
    for (const std::string& note : notes_)
        if (note.find(part) != std::string::npos) return true;
    return false;
}

std::string mode_name(const ::testing::TestParamInfo<qm_thread_mode_e>& info) {
    return info.param == QM_TRIPLE_MODE_E ? "triple" : "dual";
}

void expect_joints_near(const float* actual, const std::vector<float>& expected, float tolerance) {
    for (std::size_t j = 0; j < expected.size(); ++j)
        EXPECT_NEAR(actual[j], expected[j], tolerance) << "joint " << j + 1;
}

void expect_pose_near(const qm_pose_t& actual, const qm_pose_t& expected, float metres, float radians) {
    EXPECT_NEAR(actual.position.x, expected.position.x, metres);
    EXPECT_NEAR(actual.position.y, expected.position.y, metres);
    EXPECT_NEAR(actual.position.z, expected.position.z, metres);
    // Orientations compared by their rotation, which Euler angles near +-pi hide.
    const qm_quat_t a = qm_algo_euler2quaternion(actual.euler), b = qm_algo_euler2quaternion(expected.euler);
    const float dot = std::fabs(a.w * b.w + a.x * b.x + a.y * b.y + a.z * b.z);
    EXPECT_NEAR(2.0f * std::acos(std::fmin(1.0f, dot)), 0.0f, radians);
}

qm_pose_t pose_of(float x, float y, float z, float rx, float ry, float rz) {
    qm_pose_t pose{};
    pose.position = {x, y, z};
    pose.euler = {rx, ry, rz};
    pose.quaternion = qm_algo_euler2quaternion(pose.euler);
    return pose;
}

std::vector<float> joints_of(qm_robot_handle* arm) {
    float joints[ARM_DOF] = {};
    EXPECT_EQ(qm_get_joint_degree(arm, joints), 0);
    qm_robot_info_t info{};
    qm_get_robot_info(arm, &info);
    return std::vector<float>(joints, joints + info.arm_dof);
}

qm_pose_t pose_now(qm_robot_handle* arm) {
    qm_current_arm_state_t state{};
    EXPECT_EQ(qm_get_current_arm_state(arm, &state), 0);
    return state.pose;
}

}  // namespace e2e
