// Model dispatch and the pose variants over the system data.
#include "dh_chain.h"
#include "dh_table_shape.h"
#include "libalgo_interface.h"
#include "qman_kinematics.h"
#include "qman_mathfuncs.h"

using algo::robot;

namespace {

constexpr int kUniversalDof = 7;

enum class UniversalChain { OwnTable, QM65Routine };

// The closed form serves a table of the model's nominal structure (nominal says whether dh has
// it); a calibrated table with other lengths or twists gets the general product of its links.
Matrix model_flange(int robot_type, const DH* dh, const float* q, UniversalChain universal, bool nominal) {
    if (robot_type == UNIVERSAL) {
        if (universal == UniversalChain::OwnTable) return kin_universal_kinematics_Tn(dh, q, kUniversalDof);
        return forward_kinematics_qm65(dh, q);
    }
    if (!nominal) {
        const algo::TableShape& shape = algo::table_shape(robot_type);
        return algo::chain_flange(*dh, q, shape.dof, shape.standard);
    }
    switch (robot_type) {
        case QM75: return forward_kinematics_qm75(dh, q);
        case QML63II:
        case QML63IV: return forward_kinematics_qml63_2(dh, q);
        case QML63III: return forward_kinematics_qml63_3(dh, q);
        case LUX65:
        case LUX62:
        case LUX63: return forward_kinematics_lux6(dh, q);
        case TAV72:
        case TAV72II: return forward_kinematics_tav7(dh, q);
        default: return forward_kinematics_qm65(dh, q);
    }
}

Matrix flange(const float* q) {
    return model_flange(robot.robot_type, &robot.dh, q, UniversalChain::OwnTable, algo::table_in_use_nominal());
}

// The model's table with the calibration errors added, multiplied out link by link.
Matrix calibrated_flange(const float* q) {
    DH dh = robot.dh;
    for (int i = 0; i < ROBOT_DOF; ++i) {
        dh.d[i] += dh.err_d[i];
        dh.a[i] += dh.err_a[i];
        dh.alpha[i] += dh.err_alpha[i];
        dh.offset[i] += dh.err_theta[i];
    }
    return algo::chain_flange(dh, q, robot.rbt_dof, robot.robot_type == QM75);
}

// Translation of W * I * F * t for the tool origin t.
Pos tool_point_in_work(const Matrix& f) {
    const Matrix world_flange = matrix_m(robot.work_cs, matrix_m(robot.install_matrix, f));
    const float t[3] = {robot.tool_cs.data[0][3], robot.tool_cs.data[1][3], robot.tool_cs.data[2][3]};
    float p[3];
    for (int i = 0; i < 3; ++i)
        p[i] = world_flange.data[i][0] * t[0] + world_flange.data[i][1] * t[1] + world_flange.data[i][2] * t[2] +
               world_flange.data[i][3];
    return Pos{p[0], p[1], p[2]};
}

Pose pose_of(const Matrix& t) { return transformation_matrix_to_pose(t); }

}  // namespace

extern "C" {

Matrix forward_kinematics_model(int robot_type, const DH* dh, const float* q) {
    const bool nominal = algo::nominal_structure(algo::table_shape(robot_type), *dh);
    return model_flange(robot_type, dh, q, UniversalChain::OwnTable, nominal);
}

Pos forward_kinematics_pos(const float* q) {
    // Intended: a UNIVERSAL arm gets the QM65 geometry in this position-only call.
    return tool_point_in_work(
        model_flange(robot.robot_type, &robot.dh, q, UniversalChain::QM65Routine, algo::table_in_use_nominal()));
}

Pos forward_kinematics_pos_calibration(const float* q) { return tool_point_in_work(calibrated_flange(q)); }

Pose forward_kinematics(const float* q) {
    return pose_of(matrix_m(robot.work_cs, matrix_m(robot.install_matrix, matrix_m(flange(q), robot.tool_cs))));
}

Matrix forward_kinematics_e(const float* q) { return flange(q); }

Pose forward_kinematics_world_to_flange(const float* q) {
    return pose_of(matrix_m(robot.work_cs, matrix_m(robot.install_matrix, flange(q))));
}

Pose forward_kinematics_rotate(const float* q) {
    return pose_of(matrix_m(robot.install_matrix, matrix_m(flange(q), robot.tool_cs)));
}

Pose forward_kinematics_rotate_flange(const float* q) { return pose_of(matrix_m(robot.install_matrix, flange(q))); }

}  // extern "C"
