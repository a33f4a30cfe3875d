// Cartesian step moves: translate along the tool axes, turn about a frame axis, and step a pose.
#include <cmath>

#include "libalgo_interface.h"
#include "qman_kinematics.h"
#include "qman_mathfuncs.h"
#include "qman_trajectory_planning.h"

namespace {

constexpr VEC3 kAxes[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
constexpr VEC3 kNoAxis = {0, 0, 0};
constexpr Euler kWorkAxes = {0, 0, 0};

Matrix translation(float dx, float dy, float dz) {
    Matrix d = unit_matrix(4);
    d.data[0][3] = dx;
    d.data[1][3] = dy;
    d.data[2][3] = dz;
    return d;
}

// Rot(k, angle) * r for the unit vector along k: I + sin(a)K + (1 - cos(a))K^2; a zero k gives r.
Matrix rodrigues(const float* k, float angle, const Matrix& r) {
    const float len = std::sqrt(k[0] * k[0] + k[1] * k[1] + k[2] * k[2]);
    if (len < 1e-9f) return r;
    const float x = k[0] / len, y = k[1] / len, z = k[2] / len;
    Matrix kx = zero_matrix(3, 3);
    kx.data[0][1] = -z;
    kx.data[0][2] = y;
    kx.data[1][0] = z;
    kx.data[1][2] = -x;
    kx.data[2][0] = -y;
    kx.data[2][1] = x;
    const Matrix rot = matrix_a(matrix_a(unit_matrix(3), matrix_m_num(kx, std::sin(angle))),
                                matrix_m_num(matrix_m(kx, kx), 1.0f - std::cos(angle)));
    return matrix_m(rot, r);
}

// axis expressed in the frame of orientation f, as a base vector.
void axis_in(const Matrix& f, const float* axis, float* out) {
    for (int r = 0; r < 3; ++r) out[r] = f.data[r][0] * axis[0] + f.data[r][1] * axis[1] + f.data[r][2] * axis[2];
}

Matrix turned(const Matrix& current, const Matrix& frame, const float* axis, float angle) {
    float k[3];
    axis_in(frame, axis, k);
    return rodrigues(k, angle, current);
}

Pose with_orientation(Pose pose, Euler e) {
    pose.euler = e;
    pose.quaternion = euler_to_quat(e);
    return pose;
}

bool known_frame(int frameMode) { return frameMode == STEP_FRAME_WORK || frameMode == STEP_FRAME_TOOL; }

}  // namespace

extern "C" {

Pose algo_cartesian_tool(const float* curr_joint, float dx, float dy, float dz) {
    if (curr_joint == nullptr) return Pose{};
    // The tool pose exactly as forward kinematics reports it (work frame), moved along its own axes.
    Pose pose = forward_kinematics_degrees(curr_joint);
    const Matrix r = quat_to_matrix(pose.quaternion);
    pose.position.x += r.data[0][0] * dx + r.data[0][1] * dy + r.data[0][2] * dz;
    pose.position.y += r.data[1][0] * dx + r.data[1][1] * dy + r.data[1][2] * dz;
    pose.position.z += r.data[2][0] * dx + r.data[2][1] * dy + r.data[2][2] * dz;
    return pose;
}

Pose algo_rotate_move(const float* curr_joint, int rotate_axis, float rotate_angle, Pose choose_axis) {
    if (curr_joint == nullptr) return Pose{};
    const Pose current = forward_kinematics_degrees(curr_joint);
    const float* axis = rotate_axis >= 1 && rotate_axis <= 3 ? kAxes[rotate_axis - 1] : kNoAxis;
    const auto angle = static_cast<float>(rotate_angle * ALGO_PI / 180.0);
    // Intended: the tool turns in place; a jog about a frame axis should not swing the tool point.
    return with_orientation(current, Rodrigues_rotate_simplify(current.euler, choose_axis.euler, axis, angle));
}

Pose algo_pose_move(Pose poseCurrent, const float* delta, int frameMode) {
    if (delta == nullptr || !known_frame(frameMode)) return Pose{};
    Pose out = poseCurrent;
    out.position = dPosMove(poseCurrent, delta, frameMode).position;
    // A pure translation keeps the orientation as given: a matrix round trip would move it in the last bits.
    if (delta[3] == 0.0f && delta[4] == 0.0f && delta[5] == 0.0f) return out;
    return with_orientation(out, rotateMove(poseCurrent, delta + 3, frameMode));
}

Pose dPosMove(Pose pose, const float* delta, int frameMode) {
    switch (frameMode) {
        case STEP_FRAME_WORK: return dPosMoveWork(pose, delta);
        case STEP_FRAME_TOOL: return dPosMoveTool(pose, delta);
        default: return Pose{};
    }
}

Pose dPosMoveWork(Pose pose, const float* delta) {
    pose.position.x += delta[0];
    pose.position.y += delta[1];
    pose.position.z += delta[2];
    return pose;
}

Pose dPosMoveTool(Pose pose, const float* delta) {
    const Matrix t = matrix_m(pose_euler_to_transformation_matrix(pose.position, pose.euler),
                              translation(delta[0], delta[1], delta[2]));
    pose.position = {t.data[0][3], t.data[1][3], t.data[2][3]};
    return with_orientation(pose, matrix_to_euler(t));
}

Euler rotateMove(Pose pose, const float* delta_rot, int frameMode) {
    if (!known_frame(frameMode)) return Euler{};
    // Both modes turn by Rz*Ry*Rx, the library's own Euler convention: about the fixed work
    // axes X, then Y, then Z, or about the tool axes Z, then the new Y, then the new X.
    Matrix r = euler_to_matrix(pose.euler);
    if (frameMode == STEP_FRAME_WORK) {
        const Matrix work = euler_to_matrix(kWorkAxes);
        for (int i = 0; i < 3; ++i) r = turned(r, work, kAxes[i], delta_rot[i]);
    } else {
        for (int i = 2; i >= 0; --i) r = turned(r, r, kAxes[i], delta_rot[i]);
    }
    return matrix_to_euler(r);
}

Euler Rodrigues_rotate_simplify(Euler current, Euler frame, const VEC3 axis, float angle) {
    return matrix_to_euler(turned(euler_to_matrix(current), euler_to_matrix(frame), axis, angle));
}

Euler Rodrigues_rotate_simplify_tool(Euler current, const VEC3 axis, float angle) {
    const Matrix r = euler_to_matrix(current);
    return matrix_to_euler(turned(r, r, axis, angle));
}

}  // extern "C"
