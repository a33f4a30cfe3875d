#ifndef FK_LUX6_H
#define FK_LUX6_H

// Closed-form flange of the LUX arms: modified convention, twists 0, pi/2, 0, 0, pi/2, -pi/2,
// joints 2 to 4 parallel, shoulder and elbow offsets along the common axis, non-spherical wrist.
#include "fk_terms.h"

namespace fk {

template <class V = algo::lanes::F4>
Matrix lux_flange(const DH* dh, const float* q, float unit = 1.0f) {
    const auto [j1, j2, j3, j4, j5, j6] = joint_trig<6, Third::Joint3, V>(dh, q, unit);
    const SinCos j23 = sum(j2, j3);
    const SinCos j234 = sum(j23, j4);

    const float c5c6 = j5.c * j6.c;
    const float c5s6 = j5.c * j6.s;

    Frame f;
    f.r[0][0] = j234.c * c5c6 - j234.s * j6.s;
    f.r[0][1] = -(j234.c * c5s6 + j234.s * j6.c);
    f.r[0][2] = -j234.c * j5.s;
    f.r[1][0] = -j5.s * j6.c;
    f.r[1][1] = j5.s * j6.s;
    f.r[1][2] = -j5.c;
    f.r[2][0] = j234.s * c5c6 + j234.c * j6.s;
    f.r[2][1] = j234.c * j6.c - j234.s * c5s6;
    f.r[2][2] = -j234.s * j5.s;

    const float a2 = dh->a[2], a3 = dh->a[3];
    const float d5 = dh->d[4], d6 = dh->d[5];
    f.p[0] = a2 * j2.c + a3 * j23.c + d5 * j234.s + d6 * f.r[0][2];
    f.p[1] = -(dh->d[1] + dh->d[2] + dh->d[3]) + d6 * f.r[1][2];
    f.p[2] = a2 * j2.s + a3 * j23.s - d5 * j234.c + d6 * f.r[2][2];
    return from_frame1(j1, dh->d[0], f);
}

}  // namespace fk

#endif
