// Point, line and segment distances of the capsule model.
#include <algorithm>
#include <cmath>

#include "qman_safety.h"

namespace {

// Segment-segment products cancel badly in single precision for near-parallel links.
struct V {
    double x, y, z;
};

V vec(const float* p) { return {p[0], p[1], p[2]}; }
V operator-(V a, V b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
V operator+(V a, V b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
V operator*(double k, V a) { return {k * a.x, k * a.y, k * a.z}; }
double dot(V a, V b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
double norm(V a) { return std::sqrt(dot(a, a)); }
double clamp01(double s) { return std::clamp(s, 0.0, 1.0); }

constexpr double kDegenerate = 1e-12;  // squared length of a segment taken as a point
constexpr double kOnLine = 1e-6;

// Parameter of the point of line a-b nearest p (0 for a degenerate line).
double line_parameter(V p, V a, V b) {
    const V ab = b - a;
    const double len2 = dot(ab, ab);
    return len2 <= kDegenerate ? 0.0 : dot(p - a, ab) / len2;
}

}  // namespace

extern "C" {

float distance_p2p(const VEC3 p, const VEC3 q) { return static_cast<float>(norm(vec(p) - vec(q))); }

int isPinL(const VEC3 p, const VEC3 a, const VEC3 b) { return distance_p2l(p, a, b) <= kOnLine ? 1 : 0; }

float distance_p2l(const VEC3 p, const VEC3 a, const VEC3 b) {
    const V va = vec(a);
    const V vb = vec(b);
    const double s = line_parameter(vec(p), va, vb);
    return static_cast<float>(norm(vec(p) - (va + s * (vb - va))));
}

float distance_p2ls(const VEC3 p, const VEC3 a, const VEC3 b) {
    const V va = vec(a);
    const V vb = vec(b);
    const double s = clamp01(line_parameter(vec(p), va, vb));
    return static_cast<float>(norm(vec(p) - (va + s * (vb - va))));
}

float distance_ls2ls(const VEC3 a0, const VEC3 a1, const VEC3 b0, const VEC3 b1) {
    const V p1 = vec(a0);
    const V p2 = vec(b0);
    const V d1 = vec(a1) - p1;
    const V d2 = vec(b1) - p2;
    const V r = p1 - p2;
    const double a = dot(d1, d1);
    const double e = dot(d2, d2);
    const double f = dot(d2, r);
    double s = 0.0;
    double t = 0.0;
    if (a <= kDegenerate && e <= kDegenerate) return static_cast<float>(norm(r));
    if (a <= kDegenerate) {
        t = clamp01(f / e);
    } else {
        const double c = dot(d1, r);
        if (e <= kDegenerate) {
            s = clamp01(-c / a);
        } else {
            const double b = dot(d1, d2);
            const double denom = a * e - b * b;
            // Parallel segments: any start works, the clamping below finds the nearest pair.
            s = denom > kDegenerate * a * e ? clamp01((b * f - c * e) / denom) : 0.0;
            t = (b * s + f) / e;
            if (t < 0.0) {
                t = 0.0;
                s = clamp01(-c / a);
            } else if (t > 1.0) {
                t = 1.0;
                s = clamp01((b - c) / a);
            }
        }
    }
    return static_cast<float>(norm((p1 + s * d1) - (p2 + t * d2)));
}

}  // extern "C"
