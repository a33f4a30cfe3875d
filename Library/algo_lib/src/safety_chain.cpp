// Joint points of the capsule model: the link frames of one configuration and the points
// where each link's translations start and end.
#include <algorithm>

#include "libalgo_interface.h"
#include "qman_kinematics.h"
#include "qman_mathfuncs.h"
#include "qman_safety.h"
#include "safety_models.h"

namespace {

void origin_of(const Matrix& m, float* p) {
    for (int r = 0; r < 3; ++r) p[r] = m.data[r][3];
}

// p = origin of m + length * column axis of m.
void along_axis(const Matrix& m, int axis, float length, float* p) {
    for (int r = 0; r < 3; ++r) p[r] = m.data[r][3] + length * m.data[r][axis];
}

// One link's transform from its own parameters, through a table of a single row.
Matrix single_link(Matrix (*link)(int, const DH*, const float*), float theta, float d, float a, float alpha) {
    DH row{};
    row.d[0] = d;
    row.a[0] = a;
    row.alpha[0] = alpha;
    const float q[ROBOT_DOF] = {theta};
    return link(0, &row, q);
}

constexpr int kAxisX = 0;
constexpr int kAxisZ = 2;

}  // namespace

void safety::loaded_chain(const float* q, int standard, JointPoints* out) {
    DH dh;
    libalgo_get_dh_value(&dh);
    calc_joint_points(&dh, q, libalgo_get_rbt_dof(), standard, out);
}

extern "C" {

Matrix T_eye(void) { return unit_matrix(4); }

Matrix standard_dh(float theta, float d, float a, float alpha) {
    return single_link(kin_get_SDH_Ti, theta, d, a, alpha);
}

Matrix modified_dh(float alpha, float a, float theta, float d) {
    return single_link(kin_get_MDH_Ti, theta, d, a, alpha);
}

void calc_joint_points(const DH* dh, const float* q, int dof, int standard, JointPoints* out) {
    dof = std::clamp(dof, 0, ROBOT_DOF);
    out->num_joints = dof;
    out->standard = standard;
    out->frame[0] = T_eye();
    origin_of(out->frame[0], out->point[0]);
    for (int i = 0; i < dof; ++i) {
        const Matrix& prev = out->frame[i];
        if (standard) {
            along_axis(prev, kAxisZ, dh->d[i], out->point[2 * i + 1]);
            out->frame[i + 1] = matrix_m(prev, kin_get_SDH_Ti(i, dh, q));
        } else {
            along_axis(prev, kAxisX, dh->a[i], out->point[2 * i + 1]);
            out->frame[i + 1] = matrix_m(prev, kin_get_MDH_Ti(i, dh, q));
        }
        origin_of(out->frame[i + 1], out->point[2 * i + 2]);
    }
}

void joint_points_axis(const JointPoints* chain, int j, VEC3 origin, VEC3 direction) {
    // A standard link turns about the previous frame's z, a modified one about its own.
    const Matrix& m = chain->frame[chain->standard ? j - 1 : j];
    origin_of(m, origin);
    for (int r = 0; r < 3; ++r) direction[r] = m.data[r][kAxisZ];
}

void calc_joint_points_QM65(const float* q, JointPoints* out) { safety::loaded_chain(q, 0, out); }
void calc_joint_points_QM75(const float* q, JointPoints* out) { safety::loaded_chain(q, 1, out); }
void calc_joint_points_QML63II(const float* q, JointPoints* out) { safety::loaded_chain(q, 0, out); }
void calc_joint_points_LUX65(const float* q, JointPoints* out) { safety::loaded_chain(q, 0, out); }
void calc_joint_points_LUX62(const float* q, JointPoints* out) { safety::loaded_chain(q, 0, out); }
void calc_joint_points_TAV72(const float* q, JointPoints* out) { safety::loaded_chain(q, 0, out); }

}  // extern "C"
