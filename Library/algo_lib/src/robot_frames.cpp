// Installation pose, gravity, tool and work frames of the system data.
#include <cmath>

#include "flange_frames.h"
#include "libalgo_interface.h"
#include "pose_terms.h"
#include "qman_mathfuncs.h"

using algo::robot;

namespace {

bool is_identity(const Matrix& m) {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            if (m.data[i][j] != (i == j ? 1.0f : 0.0f)) return false;
    return true;
}

Matrix coord_to_matrix(const Coord& c) {
    return pose_euler_to_transformation_matrix(Pos{c.x, c.y, c.z}, Euler{c.rx, c.ry, c.rz});
}

}  // namespace

namespace algo {

// As the record before any model is loaded: all frames zero, none the identity.
FlangeFrames g_flange_frames{};

void flange_frames_changed() {
    FlangeFrames& f = g_flange_frames;
    f.install_identity = is_identity(robot.install_matrix);
    f.tool_identity = is_identity(robot.tool_cs);
    f.world = rigid_product(robot.work_cs, robot.install_matrix);
    f.world_identity = is_identity(f.world);
}

}  // namespace algo

extern "C" {

void libalgo_set_robot_install_angle(const float angle[3]) {
    if (angle == nullptr) return;
    const float a = angle[0], b = angle[1], c = angle[2];
    robot.install_angle[0] = a;
    robot.install_angle[1] = b;
    robot.install_angle[2] = c;
    robot.install_matrix = pose_euler_to_transformation_matrix(Pos{0, 0, 0}, Euler{a, b, c});
    algo::flange_frames_changed();
    // Gravity in the base frame: R^T * (0, 0, g).
    const float g = robot.gravity;
    robot.dyn.gravity_acc[0] = -g * std::sin(b);
    robot.dyn.gravity_acc[1] = g * std::sin(a) * std::cos(b);
    robot.dyn.gravity_acc[2] = g * std::cos(a) * std::cos(b);
}

void libalgo_get_robot_install_angle(float angle[3]) {
    if (angle == nullptr) return;
    for (int i = 0; i < 3; ++i) angle[i] = robot.install_angle[i];
}

Matrix libalgo_get_robot_install_angle_matrix(void) { return robot.install_matrix; }

void libalgo_get_robot_gravity_acc(float gravity[3]) {
    if (gravity == nullptr) return;
    for (int i = 0; i < 3; ++i) gravity[i] = robot.dyn.gravity_acc[i];
}

void libalgo_set_tool_cs_params(Coord tool) {
    robot.tool_cs_params = tool;
    robot.tool_cs = coord_to_matrix(tool);
    algo::flange_frames_changed();
}

Coord libalgo_get_tool_cs_params(void) { return robot.tool_cs_params; }
Matrix libalgo_get_tool_cs_matrix(void) { return robot.tool_cs; }

void libalgo_set_work_cs_params(Coord work) {
    robot.work_cs_params = work;
    robot.work_cs = matrix_inv_coordinate_system(coord_to_matrix(work));
    algo::flange_frames_changed();
}

Coord libalgo_get_work_cs_params(void) { return robot.work_cs_params; }
Matrix libalgo_get_work_cs_to_base_matrix(void) { return robot.work_cs; }

}  // extern "C"
