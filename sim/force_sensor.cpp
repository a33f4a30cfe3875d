#include "force_sensor.h"

#include "qman_mathfuncs.h"

namespace sim {

namespace {

constexpr double kGravity = 9.81;
constexpr Wrench kBias{1200, -800, 2000, 50, -30, 20};

using Vec = std::array<double, 3>;

Matrix transform_of(const Coord& c) {
    return matrix_of(make_pose(c.x, c.y, c.z, c.rx, c.ry, c.rz));
}

// r * v, with only the rotation of the transform r.
Vec rotate(const Matrix& r, const Vec& v, bool transposed = false) {
    Vec out{};
    for (int i = 0; i < 3; ++i)
        for (int k = 0; k < 3; ++k) out[i] += (transposed ? r.data[k][i] : r.data[i][k]) * v[k];
    return out;
}

// The payload's weight and its moment about the flange, in the flange frame.
Wrench load(const Arm& arm, const Matrix& base_flange) {
    const Frame* tool = arm.find_tool(arm.state.tool);
    if (!tool || tool->payload == 0) return {};
    const double mass = tool->payload / 1000.0;
    const Vec f = rotate(base_flange, {0.0, 0.0, -kGravity * mass}, true);
    const Vec c{tool->centre[0] / 1e6, tool->centre[1] / 1e6, tool->centre[2] / 1e6};
    const Vec t{c[1] * f[2] - c[2] * f[1], c[2] * f[0] - c[0] * f[2], c[0] * f[1] - c[1] * f[0]};
    return {wire::round(f[0] * 1e3), wire::round(f[1] * 1e3), wire::round(f[2] * 1e3),
            wire::round(t[0] * 1e3), wire::round(t[1] * 1e3), wire::round(t[2] * 1e3)};
}

Wrench turned(const Matrix& r, const Wrench& w, bool transposed) {
    const Vec f = rotate(r, {1.0 * w[0], 1.0 * w[1], 1.0 * w[2]}, transposed);
    const Vec t = rotate(r, {1.0 * w[3], 1.0 * w[4], 1.0 * w[5]}, transposed);
    return {wire::round(f[0]), wire::round(f[1]), wire::round(f[2]), wire::round(t[0]), wire::round(t[1]), wire::round(t[2])};
}

struct Frames {
    Matrix base_flange, work_flange, flange_tool;
};

Frames frames_of(const Arm& arm) {
    const KinematicsSetup& setup = arm.kinematics().setup();
    const Matrix base_work = transform_of(setup.work);
    const Matrix flange_tool = transform_of(setup.tool);
    const Matrix work_flange = matrix_m(matrix_of(arm.pose()), matrix_inv_coordinate_system(flange_tool));
    return {matrix_m(base_work, work_flange), work_flange, flange_tool};
}

// The sensor's reading less what calibration compensates.
Wrench compensated(const Arm& arm, const Frames& frames, Wrench& raw) {
    const Wrench weight = load(arm, frames.base_flange);
    Wrench left{};
    for (int i = 0; i < 6; ++i) {
        const int contact = arm.state.force.force_position || arm.state.force.streaming
                                ? arm.state.force.desired_force[i] * 100
                                : 0;
        raw[i] = kBias[i] + weight[i] + contact;
        left[i] = arm.state.force.calibrated ? raw[i] - kBias[i] - weight[i] : raw[i];
    }
    return left;
}

}  // namespace

ForceReading read_force(const Arm& arm) {
    ForceReading reading;
    const Frames frames = frames_of(arm);
    const Wrench left = compensated(arm, frames, reading.raw);
    for (int i = 0; i < 6; ++i) reading.zero[i] = left[i] - arm.state.force.zero_offset[i];
    reading.work = turned(frames.work_flange, reading.zero, false);
    reading.tool = turned(frames.flange_tool, reading.zero, true);
    return reading;
}

Wrench zero_offset(const Arm& arm) {
    Wrench raw{};
    return compensated(arm, frames_of(arm), raw);
}

}  // namespace sim
