// The invoke_ layer: public units and records in, library units and records out.
#include "qm_invoke_algo.h"

#include <algorithm>
#include <atomic>

#include "qman_inv_kinematics.h"

bool defaut_traversal_mode = true;
float angleU = 0.0f;
float angleV = 0.0f;
float angleH = 0.0f;
double invoke_inverse_time_total_min = 0.0;
double invoke_inverse_time_total_max = 0.0;

namespace {

using invoke_units::deg_to_rad;
using invoke_units::rad_to_deg;

struct LimitAccess {
    void (*set)(const float*);
    void (*get)(float*);
    float (*into)(float);
    float (*out)(float);
};

const LimitAccess& access_of(JointLimit which) {
    static constexpr LimitAccess kMax{libalgo_set_jointlim_max, libalgo_get_jointlim_max, deg_to_rad, rad_to_deg};
    static constexpr LimitAccess kMin{libalgo_set_jointlim_min, libalgo_get_jointlim_min, deg_to_rad, rad_to_deg};
    static constexpr LimitAccess kSpeed{libalgo_set_joint_vel_maxlim, libalgo_get_joint_vel_maxlim, deg_to_rad,
                                        rad_to_deg};
    static constexpr LimitAccess kAcc{libalgo_set_joint_acc_maxlim, libalgo_get_joint_acc_maxlim,
                                      invoke_units::acc_into, invoke_units::acc_out};
    switch (which) {
        case JointLimit::Max: return kMax;
        case JointLimit::Min: return kMin;
        case JointLimit::Speed: return kSpeed;
        case JointLimit::Acc: break;
    }
    return kAcc;
}

Coord coord_of(const qm_frame_t& frame) {
    const qm_pose_t& p = frame.pose;
    return {p.position.x, p.position.y, p.position.z, p.euler.rx, p.euler.ry, p.euler.rz};
}

void pose_of(const Coord& c, qm_frame_t* frame) {
    frame->pose.position = {c.x, c.y, c.z};
    frame->pose.euler = {c.rx, c.ry, c.rz};
    const Quat q = euler_to_quat({c.rx, c.ry, c.rz});
    frame->pose.quaternion = {q.w, q.x, q.y, q.z};
}

template <class To, class From>
To matrix_copy(const From& m) {
    To out;
    out.irow = m.irow;
    out.iline = m.iline;
    std::copy(&m.data[0][0], &m.data[0][0] + 16, &out.data[0][0]);
    return out;
}

template <class From, class To>
void copy_dh_rows(const From& from, To& to) {
    std::copy(std::begin(from.d), std::end(from.d), to.d);
    std::copy(std::begin(from.a), std::end(from.a), to.a);
    std::copy(std::begin(from.alpha), std::end(from.alpha), to.alpha);
    std::copy(std::begin(from.offset), std::end(from.offset), to.offset);
}

std::atomic<uint64_t> loaded_generation{0};

// Anything configured through the bridge replaces what a connection's configuration loaded.
void configured_by_hand() { loaded_generation.store(0, std::memory_order_relaxed); }

}  // namespace

void invoke_joints_to_rad(const float* deg, float* rad) {
    std::fill(rad, rad + ROBOT_DOF, 0.0f);
    const int dof = invoke_dof();
    for (int i = 0; i < dof; ++i) rad[i] = deg_to_rad(deg[i]);
}

void invoke_joints_to_deg(const float* rad, float* deg) {
    const int dof = invoke_dof();
    for (int i = 0; i < dof; ++i) deg[i] = rad_to_deg(rad[i]);
}

RobotType invoke_robot_type(int model) {
    switch (model) {
        case QM_MODEL_QM_75_E: return QM75;
        case QM_MODEL_QM_63_I_E: return QML63I;
        case QM_MODEL_QM_63_II_E: return QML63II;
        case QM_MODEL_QM_63_III_E: return QML63IV;  // intended: not QML63III
        case QM_MODEL_LUX_65_E: return LUX65;
        case QM_MODEL_LUX_62_E: return LUX62;
        case QM_MODEL_TAV_72_E: return TAV72;
        case QM_MODEL_LUX_63_E: return LUX63;
        default: return QM65;  // QM65, UNIVERSAL and unknown models
    }
}

SensorType invoke_sensor_type(int type) {
    switch (type) {
        case QM_MODEL_QM_ZF_E: return _ZF;
        case QM_MODEL_QM_SF_E: return _SF;
        case QM_MODEL_QM_ISF_E: return ISF;
        default: return _B;
    }
}

uint64_t invoke_loaded_generation() { return loaded_generation.load(std::memory_order_relaxed); }
void invoke_set_loaded_generation(uint64_t generation) {
    loaded_generation.store(generation, std::memory_order_relaxed);
}

int invoke_init_sys_data(qm_robot_arm_model_e model, qm_force_type_e type) {
    configured_by_hand();
    // libalgo_init would load QM65 only for the pair to clear it again at once.
    return libalgo_set_robot_and_sensor_type(invoke_robot_type(model), invoke_sensor_type(type));
}

void invoke_set_install_angle(float x, float y, float z) {
    configured_by_hand();
    angleU = deg_to_rad(x);
    angleV = deg_to_rad(y);
    angleH = deg_to_rad(z);
    const float angle[3] = {angleU, angleV, angleH};
    libalgo_set_robot_install_angle(angle);
}

void invoke_get_install_angle(float* x, float* y, float* z) {
    float angle[3];
    libalgo_get_robot_install_angle(angle);
    if (x != nullptr) *x = rad_to_deg(angle[0]);
    if (y != nullptr) *y = rad_to_deg(angle[1]);
    if (z != nullptr) *z = rad_to_deg(angle[2]);
}

void invoke_set_work_frame(const qm_frame_t& frame) {
    configured_by_hand();
    libalgo_set_work_cs_params(coord_of(frame));
}
void invoke_get_work_frame(qm_frame_t* frame) { pose_of(libalgo_get_work_cs_params(), frame); }
void invoke_set_tool_frame(const qm_frame_t& frame) {
    configured_by_hand();
    libalgo_set_tool_cs_params(coord_of(frame));
}
void invoke_get_tool_frame(qm_frame_t* frame) { pose_of(libalgo_get_tool_cs_params(), frame); }

void invoke_set_joint_limit(JointLimit which, const float* value) {
    if (value == nullptr) return;
    configured_by_hand();
    const LimitAccess& access = access_of(which);
    float lib[ROBOT_DOF];
    access.get(lib);
    const int dof = invoke_dof();
    for (int i = 0; i < dof; ++i) lib[i] = access.into(value[i]);
    access.set(lib);
}

void invoke_get_joint_limit(JointLimit which, float* value) {
    if (value == nullptr) return;
    const LimitAccess& access = access_of(which);
    float lib[ROBOT_DOF];
    access.get(lib);
    const int dof = invoke_dof();
    for (int i = 0; i < dof; ++i) value[i] = access.out(lib[i]);
}

void invoke_set_dh(const qm_dh_t& dh) {
    configured_by_hand();
    DH lib;
    libalgo_get_dh_value(&lib);
    copy_dh_rows(dh, lib);
    libalgo_set_dh_params(&lib);
}

qm_dh_t invoke_get_dh() {
    DH lib;
    libalgo_get_dh_value(&lib);
    qm_dh_t dh;
    copy_dh_rows(lib, dh);
    return dh;
}

Matrix invoke_to_matrix(const qm_matrix_t& m) { return matrix_copy<Matrix>(m); }
qm_matrix_t invoke_from_matrix(const Matrix& m) { return matrix_copy<qm_matrix_t>(m); }

IkSolve invoke_to_ik_solve(const qm_inverse_kinematics_all_solve_t& s) {
    IkSolve out{};
    out.result = s.result != 0;
    out.num = std::clamp(s.num, 0, 8);
    invoke_joints_to_rad(s.q_ref, out.q_ref);
    for (int i = 0; i < out.num; ++i) invoke_joints_to_rad(s.q_solve[i], out.q_solve[i]);
    return out;
}

qm_inverse_kinematics_all_solve_t invoke_from_ik_solve(const IkSolve& s) {
    qm_inverse_kinematics_all_solve_t out{};
    out.result = s.result ? 1 : 0;
    out.num = std::clamp(s.num, 0, 8);
    invoke_joints_to_deg(s.q_ref, out.q_ref);
    for (int i = 0; i < out.num; ++i) invoke_joints_to_deg(s.q_solve[i], out.q_solve[i]);
    return out;
}

int invoke_ik_form(uint8_t flag) { return flag == 0 ? USE_QUAT : USE_EULER; }

int invoke_inverse_kinematics(const JointRadians& q_ref, const qm_pose_t& target, int form, float* q_out) {
    float q_sol[ROBOT_DOF] = {};
    const Pose pose = invoke_to_pose(target);
    const int rc = inverse_kinematics(q_ref.data(), &pose, q_sol, form);
    if (rc == IKINE_SUCCESSFUL) invoke_joints_to_deg(q_sol, q_out);
    return rc;
}
