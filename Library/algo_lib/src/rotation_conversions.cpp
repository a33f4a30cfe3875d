// Conversions between Euler angles (R = Rz*Ry*Rx), scalar-first quaternions and matrices.
#include <cmath>

#include "pose_terms.h"
#include "qman_mathfuncs.h"

namespace {

constexpr float kQuatNormFloor = 1e-6f;

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

// A rotation widened to a rigid transform that moves to p.
Matrix with_translation(Matrix t, Pos p) {
    t.irow = t.iline = 4;
    t.data[0][3] = p.x;
    t.data[1][3] = p.y;
    t.data[2][3] = p.z;
    t.data[3][3] = 1.0f;
    return t;
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
    const float cx = std::cos(e.rx), sx = std::sin(e.rx);
    const float cy = std::cos(e.ry), sy = std::sin(e.ry);
    const float cz = std::cos(e.rz), sz = std::sin(e.rz);
    Matrix m = rotation3();
    m.data[0][0] = cz * cy;
    m.data[0][1] = cz * sy * sx - sz * cx;
    m.data[0][2] = cz * sy * cx + sz * sx;
    m.data[1][0] = sz * cy;
    m.data[1][1] = sz * sy * sx + cz * cx;
    m.data[1][2] = sz * sy * cx - cz * sx;
    m.data[2][0] = -sy;
    m.data[2][1] = cy * sx;
    m.data[2][2] = cy * cx;
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
    const float n = q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z;
    const float s = n > kQuatNormFloor ? 2.0f / n : 0.0f;
    const float wx = s * q.w * q.x, wy = s * q.w * q.y, wz = s * q.w * q.z;
    const float xx = s * q.x * q.x, xy = s * q.x * q.y, xz = s * q.x * q.z;
    const float yy = s * q.y * q.y, yz = s * q.y * q.z, zz = s * q.z * q.z;
    Matrix m = rotation3();
    m.data[0][0] = 1.0f - (yy + zz);
    m.data[0][1] = xy - wz;
    m.data[0][2] = xz + wy;
    m.data[1][0] = xy + wz;
    m.data[1][1] = 1.0f - (xx + zz);
    m.data[1][2] = yz - wx;
    m.data[2][0] = xz - wy;
    m.data[2][1] = yz + wx;
    m.data[2][2] = 1.0f - (xx + yy);
    return m;
}

Euler matrix_to_euler(Matrix r) { return algo::euler_of(r); }

Euler quat_to_euler(Quat q) { return matrix_to_euler(quat_to_matrix(q)); }

Quat matrix_to_quat(Matrix r) { return algo::quat_of(r); }

Matrix pose_euler_to_transformation_matrix(Pos p, Euler e) { return with_translation(euler_to_matrix(e), p); }

Matrix pose_quat_to_transformation_matrix(Pos p, Quat q) { return with_translation(quat_to_matrix(q), p); }

Pose transformation_matrix_to_pose(Matrix t) { return algo::pose_of(t); }

Matrix algo_pose_to_matrix(Pose p) { return pose_euler_to_transformation_matrix(p.position, p.euler); }

Pose algo_matrix_to_pose(Matrix t) { return transformation_matrix_to_pose(t); }

}  // extern "C"
