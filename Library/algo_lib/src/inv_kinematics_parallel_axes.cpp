// Arms with axes 2, 3 and 4 parallel and an offset wrist (LUX family): joint 1 from the
// lateral offset of the last-but-one frame, joints 5 and 6 and the sum of 2 to 4 from the
// orientation, joints 2 and 3 as a planar two-link arm: up to 8 branches.
//
// Modified DH, alpha = [0, pi/2, 0, 0, pi/2, -pi/2]; lengths are named by their table index.
// In the frame A = Rz(t1)*Rx(pi/2) of the parallel axes, R_A^T * R = Rz(t2 + t3 + t4) *
// Ry(-t5) * Rz(t6), and the point O = p - d5 * z_flange - (0, 0, d0) has coordinates
//   a2 * (c2, s2) + a3 * (c23, s23) + d4 * (s234, -c234) in the plane, d1 + d2 + d3 along z_A.

#include <cmath>
#include <initializer_list>
#include <utility>

#include "inv_kinematics_internal.h"
#include "qman_inv_kinematics.h"

namespace algo::ik {
namespace {

// Below this sin t5 the orientation leaves t234 loose enough to matter (see the solver).
constexpr float kNearSingularWrist = 1e-3f;

// With joint 5 at 0 or pi the orientation fixes only t234 + t6, and t234 moves the point
// (x, y) = p - d4 * (sin t234, -cos t234) that the two links must reach. Keeps the reference's
// t234 when the links reach that point, else the nearest t234 at which they just do.
float reachable_t234(float t234_ref, float px, float py, float d4, float a2, float a3) {
    const float r = std::sqrt(px * px + py * py);
    if (r < kAxisEps || std::fabs(d4) < kAxisEps) return t234_ref;
    // |(x, y)|^2 = r^2 + d4^2 - 2 d4 r sin(t234 - phi)
    const float phi = fast_atan2(py, px);
    const float scale = 2.0f * d4 * r;
    float lo = (r * r + d4 * d4 - (a2 + a3) * (a2 + a3)) / scale;
    float hi = (r * r + d4 * d4 - (a2 - a3) * (a2 - a3)) / scale;
    if (lo > hi) std::swap(lo, hi);  // negative d4
    const float s_ref = std::sin(t234_ref - phi);
    if (s_ref >= lo && s_ref <= hi) return t234_ref;
    const float bound = std::fmax(-1.0f, std::fmin(1.0f, s_ref < lo ? lo : hi));
    const float base = std::asin(bound);
    const float candidates[2] = {phi + base, phi + kPi - base};
    float best = t234_ref;
    float best_dist = INFINITY;
    for (const float c : candidates) {
        const float dist = std::fabs(std::remainder(c - t234_ref, kTwoPi));
        if (dist < best_dist) {
            best_dist = dist;
            best = t234_ref + std::remainder(c - t234_ref, kTwoPi);
        }
    }
    return best;
}

}  // namespace

int solve_parallel_axes(const SolveInput& in, const Matrix& flange, IkSolve& out) {
    begin_solutions(in, out);
    const DH& dh = in.dh;
    const float a2 = dh.a[2];
    const float a3 = dh.a[3];
    const float d4 = dh.d[4];
    const float d5 = dh.d[5];
    const float lateral = dh.d[1] + dh.d[2] + dh.d[3];
    float theta_ref[ROBOT_DOF];
    for (int j = 0; j < ROBOT_DOF; ++j) theta_ref[j] = in.q_ref[j] + dh.offset[j];

    float r[3][3];
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) r[i][k] = flange.data[i][k];
    }
    const float ox = flange.data[0][3] - d5 * r[0][2];
    const float oy = flange.data[1][3] - d5 * r[1][2];
    const float oz = flange.data[2][3] - d5 * r[2][2] - dh.d[0];

    // Joint 1: O lies `lateral` along the common normal of the parallel axes; t1 = phi + delta
    // or phi + pi - delta.
    const float rho = std::sqrt(ox * ox + oy * oy);
    float t1[2];
    float c1[2];
    float s1[2];
    if (rho < kAxisEps && std::fabs(lateral) < kAxisEps) {
        t1[0] = theta_ref[0];  // O on axis 1: joint 1 is free
        t1[1] = theta_ref[0] + kPi;
        c1[0] = std::cos(t1[0]);
        s1[0] = std::sin(t1[0]);
        c1[1] = -c1[0];
        s1[1] = -s1[0];
    } else {
        float sd;
        if (!offset_sine(lateral, rho, sd, in.reach_tol)) return 0;
        const float cd = std::sqrt(1.0f - sd * sd);
        const float phi = fast_atan2(oy, ox);
        const float delta = fast_atan2(sd, cd);
        const float ux = ox / rho, uy = oy / rho;
        t1[0] = phi + delta;
        c1[0] = ux * cd - uy * sd;
        s1[0] = uy * cd + ux * sd;
        t1[1] = phi + kPi - delta;
        c1[1] = -(ux * cd + uy * sd);
        s1[1] = ux * sd - uy * cd;
    }

    const float theta234_ref = theta_ref[1] + theta_ref[2] + theta_ref[3];
    float q[ROBOT_DOF] = {};
    for (int side = 0; side < 2; ++side) {
        const float c = c1[side], s = s1[side];
        q[0] = joint_value(in, 0, t1[side]);
        float rot[3][3];  // R_A^T * R
        for (int k = 0; k < 3; ++k) {
            rot[0][k] = c * r[0][k] + s * r[1][k];
            rot[1][k] = r[2][k];
            rot[2][k] = s * r[0][k] - c * r[1][k];
        }
        const float px = c * ox + s * oy;
        ZyzBranches wrist = zyz_angles(rot, theta234_ref);
        if (wrist.a_free) wrist = zyz_angles(rot, reachable_t234(theta234_ref, px, oz, d4, a2, a3));
        // Near the wrist singularity the orientation pins t234 only to its rounding, and that of
        // joint 1, over sin t5: any t234 whose orientation cost, about sin t5 times its distance
        // from the computed one, stays within what the singular case allows serves as well. There
        // the reference's t234 is kept when it serves, as at the singularity itself, and otherwise
        // the nearest t234 at which the links reach, which the error may have put out of reach
        // with the elbow nearly straight.
        const bool near_singular = !wrist.a_free && wrist.sin_b < kNearSingularWrist;
        const float slack = near_singular ? kSingularSin / wrist.sin_b : 0.0f;
        for (int w = 0; w < 2; ++w) {
            const float sign = w == 0 ? 1.0f : -1.0f;  // the twin's t234 is a half turn on
            float t234 = wrist.angles[w][0], s234 = sign * wrist.sin_a, c234 = sign * wrist.cos_a;
            float t5 = -wrist.angles[w][1], t6 = wrist.angles[w][2];
            float x = px - d4 * s234;
            float y = oz + d4 * c234;
            float len = std::sqrt(x * x + y * y);
            float c3;
            bool reached = triangle_cosine(len, a2, a3, c3, in.reach_tol);
            if (near_singular) {
                const float to_ref = std::remainder(theta234_ref - t234, kTwoPi);
                const bool keep_ref = std::fabs(to_ref) <= slack;
                const float moved = keep_ref || !reached
                                        ? reachable_t234(t234 + (keep_ref ? to_ref : 0.0f), px, oz, d4, a2, a3)
                                        : t234;
                if (moved != t234 && std::fabs(std::remainder(moved - t234, kTwoPi)) <= slack) {
                    const ZyzRest rest = zyz_rest(rot, moved);
                    t234 = moved;
                    s234 = std::sin(moved);
                    c234 = std::cos(moved);
                    t5 = -rest.b;
                    t6 = rest.c;
                    x = px - d4 * s234;
                    y = oz + d4 * c234;
                    len = std::sqrt(x * x + y * y);
                    reached = triangle_cosine(len, a2, a3, c3, in.reach_tol);
                }
            }
            if (!reached) continue;
            q[4] = joint_value(in, 4, t5);
            q[5] = joint_value(in, 5, t6);
            const float s3 = std::sqrt(1.0f - c3 * c3);
            const float gamma = fast_atan2(s3, c3);
            const float towards = len < kAxisEps ? 0.0f : fast_atan2(y, x);
            for (const float turn : {1.0f, -1.0f}) {
                const float t3 = turn * gamma;
                // On axis 2 (folded arm of equal links) joint 2 is free.
                const float t2 = len < kAxisEps ? theta_ref[1] : towards - fast_atan2(a3 * turn * s3, a2 + a3 * c3);
                q[1] = joint_value(in, 1, t2);
                q[2] = joint_value(in, 2, t3);
                q[3] = joint_value(in, 3, t234 - t2 - t3);
                add_branch(q, out);
            }
        }
    }
    return out.num;
}

}  // namespace algo::ik

using namespace algo::ik;

extern "C" {

int ikine_lux6_solver(const DH* dh, const Matrix* flange, const float* q_ref, IkSolve* solve) {
    return solve_with_table(model_solver(LUX65), dh, flange, q_ref, solve);
}

int inverse_kinematics_lux6(const Matrix* flange, const float* q_ref, float* q_out) {
    return solve_flange_target(model_solver(LUX65), flange, q_ref, q_out);
}

}  // extern "C"
