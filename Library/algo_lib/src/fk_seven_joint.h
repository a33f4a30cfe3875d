#ifndef FK_SEVEN_JOINT_H
#define FK_SEVEN_JOINT_H

// Closed-form flange of the seven-joint arms. QM75's standard table (twists -pi/2, pi/2
// alternating) and the TAV arms' modified table (0, -pi/2, pi/2, ...) both reduce to
// Rz(t1)*Ry(t2)*Rz(t3)*Ry(t4)*Rz(t5)*Ry(t6)*Rz(t7), since Rx(-pi/2)*Rz(t)*Rx(pi/2) = Ry(t), with
// d1, d3, d5, d7 along the z axes of joints 1, 3, 5 and 7 and all a zero. One expansion serves both.
#include "fk_terms.h"

namespace fk {

// Rows of the rotation, built from the flange end: each Rz mixes rows 0 and 1, each Ry rows 0 and 2.
template <class V = algo::lanes::F4>
Matrix shoulder_elbow_wrist_flange(const DH* dh, const float* q, float unit = 1.0f) {
    const auto [j1, j2, j3, j4, j5, j6, j7] = joint_trig<7, Third::Joint3, V>(dh, q, unit);

    // Ry6*Rz7
    const float a00 = j6.c * j7.c, a01 = -j6.c * j7.s, a02 = j6.s;
    const float a10 = j7.s, a11 = j7.c;
    const float a20 = -j6.s * j7.c, a21 = j6.s * j7.s, a22 = j6.c;
    // Rz5*...
    const float b00 = j5.c * a00 - j5.s * a10, b01 = j5.c * a01 - j5.s * a11, b02 = j5.c * a02;
    const float b10 = j5.s * a00 + j5.c * a10, b11 = j5.s * a01 + j5.c * a11, b12 = j5.s * a02;
    // Ry4*...
    const float c00 = j4.c * b00 + j4.s * a20, c01 = j4.c * b01 + j4.s * a21, c02 = j4.c * b02 + j4.s * a22;
    const float c20 = j4.c * a20 - j4.s * b00, c21 = j4.c * a21 - j4.s * b01, c22 = j4.c * a22 - j4.s * b02;
    // Rz3*...
    const float d00 = j3.c * c00 - j3.s * b10, d01 = j3.c * c01 - j3.s * b11, d02 = j3.c * c02 - j3.s * b12;
    const float d10 = j3.s * c00 + j3.c * b10, d11 = j3.s * c01 + j3.c * b11, d12 = j3.s * c02 + j3.c * b12;
    // Ry2*...
    const float e00 = j2.c * d00 + j2.s * c20, e01 = j2.c * d01 + j2.s * c21, e02 = j2.c * d02 + j2.s * c22;
    const float e20 = j2.c * c20 - j2.s * d00, e21 = j2.c * c21 - j2.s * d01, e22 = j2.c * c22 - j2.s * d02;

    // Position nested the same way: ((d7 along z7) + d5) rotated by joints 5..6, and so on.
    const float d1 = dh->d[0], d3 = dh->d[2], d5 = dh->d[4], d7 = dh->d[6];
    const float wx = d7 * b02, wy = d7 * b12, wz = d5 + d7 * a22;
    const float ex = j4.c * wx + j4.s * wz, ez = j4.c * wz - j4.s * wx;
    const float ux = j3.c * ex - j3.s * wy, uy = j3.s * ex + j3.c * wy, uz = d3 + ez;
    const float sx = j2.c * ux + j2.s * uz, sz = j2.c * uz - j2.s * ux;

    Matrix m{};
    m.irow = m.iline = 4;
    m.data[0][0] = j1.c * e00 - j1.s * d10;
    m.data[0][1] = j1.c * e01 - j1.s * d11;
    m.data[0][2] = j1.c * e02 - j1.s * d12;
    m.data[0][3] = j1.c * sx - j1.s * uy;
    m.data[1][0] = j1.s * e00 + j1.c * d10;
    m.data[1][1] = j1.s * e01 + j1.c * d11;
    m.data[1][2] = j1.s * e02 + j1.c * d12;
    m.data[1][3] = j1.s * sx + j1.c * uy;
    m.data[2][0] = e20;
    m.data[2][1] = e21;
    m.data[2][2] = e22;
    m.data[2][3] = d1 + sz;
    m.data[3][3] = 1.0f;
    return m;
}

}  // namespace fk

#endif
