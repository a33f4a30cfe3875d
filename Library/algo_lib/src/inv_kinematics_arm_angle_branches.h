#ifndef INV_KINEMATICS_ARM_ANGLE_BRANCHES_H
#define INV_KINEMATICS_ARM_ANGLE_BRANCHES_H

// The arm-angle geometry every seven-joint solve runs: the target's shoulder-wrist line and elbow
// signs, the reference's arm angle and the branches at one arm angle. Inline, so that the search's
// build for processors with AVX2 and fused multiply-adds compiles them with it too. Not part of
// the library's interface.

#include <cmath>
#include <cstring>

#include "inv_kinematics_arm_angle.h"
#include "inv_kinematics_lanes.h"
#include "lane_trig.h"

namespace algo::ik {

// Shoulder Rz(t1)*Ry(t2) with joint 3 at zero that turns the upper-arm-to-wrist vector
// (vx, 0, vz) onto sw: t1 is the azimuth of sw, t2 the difference of the two elevations. Inline,
// so that a caller reads the matrix from registers rather than back from the stores.
[[gnu::always_inline]] inline void shoulder_zero(const Vec3& sw, float vx, float vz, Mat3 out) {
    const float horizontal = std::sqrt(sw.x * sw.x + sw.y * sw.y);
    const float len = std::sqrt(horizontal * horizontal + sw.z * sw.z);
    const float v = std::sqrt(vx * vx + vz * vz);
    // Intended: any t1 fits a vertical sw; 0 keeps it continuous with the arm angle's reference.
    const float c1 = horizontal < kAxisEps ? 1.0f : sw.x / horizontal;
    const float s1 = horizontal < kAxisEps ? 0.0f : sw.y / horizontal;
    const float c2 = (sw.z * vz + horizontal * vx) / (len * v);
    const float s2 = (horizontal * vz - sw.z * vx) / (len * v);
    const Mat3 r = {{c1 * c2, -s1, c1 * s2}, {s1 * c2, c1, s1 * s2}, {-s2, 0.0f, c2}};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) out[i][j] = r[i][j];
    }
}


// Rz(a)*Ry(b)*Rz(c).
inline void zyz_matrix(float a, float b, float c, Mat3 out) {
    // The three sine-cosine pairs in one lane pass rather than three library calls.
    lanes::F4 sn, cs;
    lanes::sincos(lanes::F4{a, b, c, 0.0f}, sn, cs);
    const float ca = cs[0], sa = sn[0], cb = cs[1], sb = sn[1], cc = cs[2], sc = sn[2];
    const Mat3 r = {{ca * cb * cc - sa * sc, -ca * cb * sc - sa * cc, ca * sb},
                    {sa * cb * cc + ca * sc, -sa * cb * sc + ca * cc, sa * sb},
                    {-sb * cc, sb * sc, cb}};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) out[i][j] = r[i][j];
    }
}

// Angle of the rotation shoulder * shoulder0^T about axis (exact when it fixes the axis).
inline float arm_angle_between(const Mat3 shoulder, const Mat3 shoulder0, const Vec3& axis) {
    Mat3 rot;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            rot[i][j] = shoulder[i][0] * shoulder0[j][0] + shoulder[i][1] * shoulder0[j][1] + shoulder[i][2] * shoulder0[j][2];
        }
    }
    const float sin2 = axis.x * (rot[2][1] - rot[1][2]) + axis.y * (rot[0][2] - rot[2][0]) + axis.z * (rot[1][0] - rot[0][1]);
    const float cos2 = rot[0][0] + rot[1][1] + rot[2][2] - 1.0f;
    return fast_atan2(sin2, cos2);
}

// Shoulder-wrist line and both elbow signs of a flange target; reachable is false when the
// wrist lies more than reach_tol (m) out of the upper arm and forearm's reach.
inline ArmAngleTarget arm_angle_target(const DH& dh, const Matrix& flange, float reach_tol) {
    // Not value-initialised: every member is written below, the elbows cleared only when unreachable.
    ArmAngleTarget t;
    t.reachable = false;
    const float d3 = dh.d[2], d5 = dh.d[4], d7 = dh.d[6];
    Mat3& r = t.rotation;
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) r[i][k] = flange.data[i][k];
    }
    const Vec3 sw = {flange.data[0][3] - d7 * r[0][2], flange.data[1][3] - d7 * r[1][2],
                     flange.data[2][3] - d7 * r[2][2] - dh.d[0]};
    const float len = std::sqrt(sw.x * sw.x + sw.y * sw.y + sw.z * sw.z);
    float c4;
    if (len < kAxisEps || !triangle_cosine(len, d3, d5, c4, reach_tol)) {
        t.axis = Vec3{};
        t.elbow[0] = t.elbow[1] = ElbowBranch{};
        return t;
    }
    t.reachable = true;
    // Worked in locals and stored once: read back from the record, the matrices would wait for
    // their own stores.
    const Vec3 s = {sw.x / len, sw.y / len, sw.z / len};
    t.axis = s;
    const float s4 = std::sqrt(1.0f - c4 * c4);
    const float g4 = fast_atan2(s4, c4);
    for (int e = 0; e < 2; ++e) {
        ElbowBranch b;
        b.t4 = e == 0 ? g4 : -g4;
        b.c4 = c4;
        b.s4 = e == 0 ? s4 : -s4;
        shoulder_zero(sw, d5 * b.s4, d3 + d5 * c4, b.shoulder0);
        // Rot(s, psi) = ss^T + sin(psi) [s]x + cos(psi) (I - ss^T)
        for (int j = 0; j < 3; ++j) {
            const Vec3 col = {b.shoulder0[0][j], b.shoulder0[1][j], b.shoulder0[2][j]};
            const float along = s.x * col.x + s.y * col.y + s.z * col.z;
            b.shoulder_sin[0][j] = s.y * col.z - s.z * col.y;
            b.shoulder_sin[1][j] = s.z * col.x - s.x * col.z;
            b.shoulder_sin[2][j] = s.x * col.y - s.y * col.x;
            b.shoulder_const[0][j] = s.x * along;
            b.shoulder_const[1][j] = s.y * along;
            b.shoulder_const[2][j] = s.z * along;
            for (int i = 0; i < 3; ++i) b.shoulder_cos[i][j] = b.shoulder0[i][j] - b.shoulder_const[i][j];
        }
        t.elbow[e] = b;
    }
    return t;
}

// The branches at one arm angle as the extraction leaves them, lanes (shoulder of elbow sign 0,
// of sign 1, wrist of sign 0, of sign 1): joint[k][i] holds joints (i+1, i+1, i+5, i+5) of the
// extraction's branch k, joint4 joint 4 of each elbow sign (lanes 0 and 1). Branch
// e*4 + k*2 + m of the set has the shoulder of branch k and the wrist of branch m of elbow sign e.
struct BranchLanes {
    lanes::F4 joint[2][3];
    lanes::F4 joint4;
    MiddleSines sines;
};

// What the branches at every arm angle of a target share: the shoulder's terms and joint 4's
// sine and cosine in lanes (elbow sign 0, 1, 0, 1), the mapping of the extraction's lanes to
// joints (in doubles of D's width), joint 4 of each elbow sign and the reference's joints 1 and 5.
template <class D = lanes::D2>
struct BranchTerms {
    lanes::F4 shoulder[3][3][3];  // [sin, cos, constant term][row][column]
    lanes::F4 c4, s4;
    lanes::JointLanesOf<D> joints[3];  // joints (i+1, i+1, i+5, i+5)
    lanes::F4 joint4;
    lanes::F4 a_ref;

    BranchTerms(const SolveInput& in, const ArmAngleTarget& t, const float* theta_ref) {
        const ElbowBranch& e0 = t.elbow[0];
        const ElbowBranch& e1 = t.elbow[1];
        const auto pair = [](float a, float b) { return lanes::F4{a, b, a, b}; };
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                shoulder[0][i][j] = pair(e0.shoulder_sin[i][j], e1.shoulder_sin[i][j]);
                shoulder[1][i][j] = pair(e0.shoulder_cos[i][j], e1.shoulder_cos[i][j]);
                shoulder[2][i][j] = pair(e0.shoulder_const[i][j], e1.shoulder_const[i][j]);
            }
        }
        c4 = pair(e0.c4, e1.c4);
        s4 = pair(e0.s4, e1.s4);
        // Joints per angle of the extraction, in the lanes' order.
        static constexpr int kJoints[3][4] = {{0, 0, 4, 4}, {1, 1, 5, 5}, {2, 2, 6, 6}};
        for (int k = 0; k < 3; ++k) joints[k] = lanes::joint_lanes<D>(in, kJoints[k]);
        joint4 = lanes::F4{joint_value(in, 3, e0.t4), joint_value(in, 3, e1.t4), 0.0f, 0.0f};
        a_ref = lanes::F4{theta_ref[0], theta_ref[0], theta_ref[4], theta_ref[4]};
    }
};

// The branches at the arm angle whose sine and cosine are sn and cs.
template <class D>
inline BranchLanes branch_lanes(const BranchTerms<D>& terms, const ArmAngleTarget& t, float sn, float cs) {
    BranchLanes out;
    // The shoulder of both elbow signs, twice, as blend() works it out, and from it their wrists
    // as wrist_rotation() does, each lane with the same operations as the one matrix entry.
    lanes::F4 rot[3][3];
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            rot[i][j] = terms.shoulder[0][i][j] * lanes::splat(sn) + terms.shoulder[1][i][j] * lanes::splat(cs) +
                        terms.shoulder[2][i][j];
        }
    }
    // Four Z-Y-Z extractions in one pass, lanes: shoulder of elbow sign 0, of sign 1, wrist of
    // sign 0, of sign 1.
    const Mat3& rotation = t.rotation;
    lanes::Mat3x4 r;
    for (int j = 0; j < 3; ++j) {
        lanes::F4 m[3];
        for (int i = 0; i < 3; ++i) {
            m[i] = rot[0][i] * lanes::splat(rotation[0][j]) + rot[1][i] * lanes::splat(rotation[1][j]) +
                   rot[2][i] * lanes::splat(rotation[2][j]);
        }
        const lanes::F4 wrist[3] = {terms.c4 * m[0] - terms.s4 * m[2], m[1], terms.s4 * m[0] + terms.c4 * m[2]};
        for (int i = 0; i < 3; ++i) r[i][j] = __builtin_shufflevector(rot[i][j], wrist[i], 0, 1, 6, 7);
    }
    const lanes::Zyz z = lanes::zyz_angles(r, terms.a_ref);
    const lanes::F4 first[3] = {z.a, z.b, z.c};
    const lanes::F4 twin[3] = {z.a + lanes::splat(kPi), -z.b, z.c + lanes::splat(kPi)};
    for (int k = 0; k < 3; ++k) {
        out.joint[0][k] = lanes::joint_values(terms.joints[k], first[k]);
        out.joint[1][k] = lanes::joint_values(terms.joints[k], twin[k]);
    }
    out.joint4 = terms.joint4;
    for (int e = 0; e < 2; ++e) {
        out.sines.shoulder[e] = z.sin_b[e];
        out.sines.wrist[e] = z.sin_b[2 + e];
    }
    return out;
}

// The branches of the elbow signs in elbows, as the set of in's reference.
inline void write_branches(const SolveInput& in, const BranchLanes& b, int elbows, IkSolve& out) {
    begin_solutions(in, out);
    // Rows written in place, in the order add_branch would append them, as two halves each:
    // transposed, the lanes are (joints 1-3, joint 4) of each elbow sign's shoulder and
    // (joints 5-7, 0) of its wrist.
    lanes::F4 half[2][4];  // [branch of the extraction][lane]
    for (int k = 0; k < 2; ++k) {
        half[k][0] = b.joint[k][0];
        half[k][1] = b.joint[k][1];
        half[k][2] = b.joint[k][2];
        half[k][3] = b.joint4;
        lanes::transpose(half[k]);
    }
    int n = 0;
    for (int e = 0; e < 2; ++e) {
        if ((elbows & (1 << e)) == 0) continue;
        for (const auto& sh : half) {
            for (const auto& wr : half) {
                float* row = out.q_solve[n++];
                std::memcpy(row, &sh[e], sizeof sh[e]);
                std::memcpy(row + 4, &wr[2 + e], sizeof wr[2 + e]);
            }
        }
    }
    out.num = n;
    out.result = n > 0;
}

// Every branch at arm angle psi, into out; elbows masks the elbow signs written (their sines
// alone are returned).
inline MiddleSines branches_at(const SolveInput& in, const ArmAngleTarget& t, const float* theta_ref, float psi,
                               IkSolve& out, int elbows = kBothElbows) {
    lanes::F4 sines_of, cosines_of;
    lanes::sincos(lanes::splat(psi), sines_of, cosines_of);
    const BranchLanes b = branch_lanes(BranchTerms<>(in, t, theta_ref), t, sines_of[0], cosines_of[0]);
    write_branches(in, b, elbows, out);
    MiddleSines sines{};
    for (int e = 0; e < 2; ++e) {
        if ((elbows & (1 << e)) == 0) continue;
        sines.shoulder[e] = b.sines.shoulder[e];
        sines.wrist[e] = b.sines.wrist[e];
    }
    return sines;
}

}  // namespace algo::ik

#endif
