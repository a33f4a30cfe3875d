#ifndef FK_QM65_FAMILY_H
#define FK_QM65_FAMILY_H

// Closed-form flange of the six-joint arms with parallel joints 2, 3 and a spherical wrist
// (modified convention, twists 0, pi/2, 0, pi/2, -pi/2, pi/2). The QML63 models add an elbow
// offset a[3]; QM65 has none.
#include "fk_terms.h"

namespace fk {

template <class V = algo::lanes::F4>
Matrix elbow_wrist_flange(const DH* dh, const float* q, float elbow_offset, float unit = 1.0f) {
    const auto [j1, j2, j23, j4, j5, j6] = joint_trig<6, Third::Joints2And3, V>(dh, q, unit);

    // Wrist rotation R46 folded into R14.
    const float u = j4.c * j5.c * j6.c - j4.s * j6.s;
    const float v = j4.c * j5.c * j6.s + j4.s * j6.c;
    const float w = j4.c * j5.s;
    const float s5c6 = j5.s * j6.c;
    const float s5s6 = j5.s * j6.s;

    Frame f;
    f.r[0][0] = j23.c * u - j23.s * s5c6;
    f.r[0][1] = j23.s * s5s6 - j23.c * v;
    f.r[0][2] = j23.c * w + j23.s * j5.c;
    f.r[1][0] = -(j4.s * j5.c * j6.c + j4.c * j6.s);
    f.r[1][1] = j4.s * j5.c * j6.s - j4.c * j6.c;
    f.r[1][2] = -j4.s * j5.s;
    f.r[2][0] = j23.s * u + j23.c * s5c6;
    f.r[2][1] = -(j23.s * v + j23.c * s5s6);
    f.r[2][2] = j23.s * w - j23.c * j5.c;

    const float a2 = dh->a[2], d4 = dh->d[3], d6 = dh->d[5];
    f.p[0] = a2 * j2.c + elbow_offset * j23.c + d4 * j23.s + d6 * f.r[0][2];
    f.p[1] = d6 * f.r[1][2];
    f.p[2] = a2 * j2.s + elbow_offset * j23.s - d4 * j23.c + d6 * f.r[2][2];
    return from_frame1(j1, dh->d[0], f);
}

}  // namespace fk

#endif
