#include "kinematics.h"

#include <atomic>
#include <mutex>

#include "constant_define.h"
#include "libalgo_interface.h"
#include "qman_inv_kinematics.h"
#include "qman_kinematics.h"
#include "qman_mathfuncs.h"

namespace sim {

namespace {

std::mutex g_library_mutex;
std::uint64_t g_loaded_id = 0;  // guarded by g_library_mutex
std::atomic<std::uint64_t> g_next_id{1};

constexpr double kDegToRad = ALGO_PI / 180.0;

void to_radians(const Joints& q, float (&out)[ROBOT_DOF]) {
    for (int i = 0; i < ROBOT_DOF; ++i) out[i] = i < kMaxJoints ? static_cast<float>(q[i] * kDegToRad) : 0.0f;
}

Joints to_degrees(const float* q) {
    Joints out{};
    for (int i = 0; i < kMaxJoints; ++i) out[i] = q[i] / kDegToRad;
    return out;
}

Coord coord_of(const Pose& p) {
    return Coord{p.position.x, p.position.y, p.position.z, p.euler.rx, p.euler.ry, p.euler.rz};
}

Matrix matrix_of(const Coord& c) {
    return pose_euler_to_transformation_matrix(Pos{c.x, c.y, c.z}, Euler{c.rx, c.ry, c.rz});
}

}  // namespace

Pose pose_of(const Matrix& m) {
    return transformation_matrix_to_pose(m);
}

Matrix matrix_of(const Pose& p) {
    return matrix_of(coord_of(p));
}

Pose make_pose(double x, double y, double z, double rx, double ry, double rz) {
    return pose_of(matrix_of(Coord{static_cast<float>(x), static_cast<float>(y), static_cast<float>(z),
                                   static_cast<float>(rx), static_cast<float>(ry), static_cast<float>(rz)}));
}

bool load_model_defaults(ArmModel& model) {
    std::lock_guard lock(g_library_mutex);
    g_loaded_id = 0;
    if (libalgo_set_robot_and_sensor_type(model.robot_type, model.sensor_type) != 0) return false;
    model.dof = libalgo_get_rbt_dof();
    if (model.dof < 1 || model.dof > kMaxJoints) return false;
    DH dh{};
    libalgo_get_dh_value(&dh);
    float max_pos[ROBOT_DOF], min_pos[ROBOT_DOF], speed[ROBOT_DOF], acc[ROBOT_DOF];
    libalgo_get_jointlim_max(max_pos);
    libalgo_get_jointlim_min(min_pos);
    libalgo_get_joint_vel_maxlim(speed);
    libalgo_get_joint_acc_maxlim(acc);
    for (int i = 0; i < kMaxJoints; ++i) {
        model.dh.d[i] = dh.d[i];
        model.dh.a[i] = dh.a[i];
        model.dh.alpha[i] = dh.alpha[i];
        model.dh.offset[i] = dh.offset[i];
    }
    model.max_pos = to_degrees(max_pos);
    model.min_pos = to_degrees(min_pos);
    model.max_speed = to_degrees(speed);
    model.max_acc = to_degrees(acc);
    return true;
}

Kinematics::Kinematics(const ArmModel& model) : model_(model) {
    setup_.min_pos = model.min_pos;
    setup_.max_pos = model.max_pos;
    setup_.dh = model.dh;
    id_ = g_next_id++;
}

void Kinematics::configure(const KinematicsSetup& setup) {
    setup_ = setup;
    id_ = g_next_id++;
}

void Kinematics::load() const {
    if (g_loaded_id == id_) return;
    libalgo_set_robot_and_sensor_type(model_.robot_type, model_.sensor_type);
    DH dh{};
    libalgo_get_dh_value(&dh);
    for (int i = 0; i < kMaxJoints; ++i) {
        dh.d[i] = static_cast<float>(setup_.dh.d[i]);
        dh.a[i] = static_cast<float>(setup_.dh.a[i]);
        dh.alpha[i] = static_cast<float>(setup_.dh.alpha[i]);
        dh.offset[i] = static_cast<float>(setup_.dh.offset[i]);
    }
    libalgo_set_dh_params(&dh);
    libalgo_set_robot_install_angle(setup_.install);
    libalgo_set_tool_cs_params(setup_.tool);
    libalgo_set_work_cs_params(setup_.work);
    float min_pos[ROBOT_DOF], max_pos[ROBOT_DOF];
    to_radians(setup_.min_pos, min_pos);
    to_radians(setup_.max_pos, max_pos);
    libalgo_set_jointlim_min(min_pos);
    libalgo_set_jointlim_max(max_pos);
    g_loaded_id = id_;
}

Pose Kinematics::forward(const Joints& q) const {
    float rad[ROBOT_DOF];
    to_radians(q, rad);
    std::lock_guard lock(g_library_mutex);
    load();
    return forward_kinematics(rad);
}

int Kinematics::inverse(const Pose& target, const Joints& ref, Joints& out) const {
    float ref_rad[ROBOT_DOF], out_rad[ROBOT_DOF] = {};
    to_radians(ref, ref_rad);
    // The solver takes the target in the installation's base frame; ours is in the work frame.
    const Pose in_base = pose_of(matrix_m(matrix_of(setup_.work), matrix_of(target)));
    std::lock_guard lock(g_library_mutex);
    load();
    const int rc = inverse_kinematics(ref_rad, &in_base, out_rad, USE_QUAT);
    if (rc == IKINE_SUCCESSFUL) out = to_degrees(out_rad);
    return rc;
}

}  // namespace sim
