// Conversions between Euler angles (R = Rz*Ry*Rx), scalar-first quaternions and matrices.
#include <cmath>

#include "pose_terms.h"
#include "qman_mathfuncs.h"

namespace {

Matrix rotation3() { return zero_matrix(3, 3); }

// Rotation about x, y or z: the axis row and column stay unit, the next two axes (cyclically)
// turn by the angle.
Matrix axis_rotation(int axis, float angle) {
    const float c = std::cos(angle), s = std::sin(angle);
    const int i = (axis + 1) % 3, j = (axis + 2) % 3;
    Matrix m = rotation3();
    m.data[axis][axis] = 1.0f;
    m.data[i][i] = c;
    m.data[i][j] = -s;
    m.data[j][i] = s;
    m.data[j][j] = c;
    return m;
}

}  // namespace

extern "C" {

Matrix rotx(float angle) { return axis_rotation(0, angle); }
Matrix roty(float angle) { return axis_rotation(1, angle); }
Matrix rotz(float angle) { return axis_rotation(2, angle); }

Matrix matrix_T2R(Matrix t) {
    Matrix r = rotation3();
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) r.data[i][j] = t.data[i][j];
    return r;
}

Matrix euler_to_matrix(Euler e) {
    Matrix m = rotation3();
    algo::set_euler_rotation(e, m);
    return m;
}

Quat euler_to_quat(Euler e) {
    const float cx = std::cos(0.5f * e.rx), sx = std::sin(0.5f * e.rx);
    const float cy = std::cos(0.5f * e.ry), sy = std::sin(0.5f * e.ry);
    const float cz = std::cos(0.5f * e.rz), sz = std::sin(0.5f * e.rz);
    return Quat{cx * cy * cz + sx * sy * sz, sx * cy * cz - cx * sy * sz, cx * sy * cz + sx * cy * sz,
                cx * cy * sz - sx * sy * cz};
}

Matrix quat_to_matrix(Quat q) {
    Matrix m = rotation3();
    algo::set_quat_rotation(q, m);
    return m;
}

Euler matrix_to_euler(Matrix r) { return algo::euler_of(r); }

Euler quat_to_euler(Quat q) { return matrix_to_euler(quat_to_matrix(q)); }

Quat matrix_to_quat(Matrix r) { return algo::quat_of(r); }

Matrix pose_euler_to_transformation_matrix(Pos p, Euler e) { return algo::euler_transform(p, e); }

Matrix pose_quat_to_transformation_matrix(Pos p, Quat q) { return algo::quat_transform(p, q); }

Pose transformation_matrix_to_pose(Matrix t) { return algo::pose_of(t); }

Matrix algo_pose_to_matrix(Pose p) { return pose_euler_to_transformation_matrix(p.position, p.euler); }

Pose algo_matrix_to_pose(Matrix t) { return transformation_matrix_to_pose(t); }

}  // extern "C"
