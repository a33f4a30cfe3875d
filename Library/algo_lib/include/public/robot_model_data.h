#ifndef ROBOT_MODEL_DATA_H
#define ROBOT_MODEL_DATA_H

/* Built-in defaults of every arm model (C++ only). Lengths in m, twists and offsets in
 * rad, limits in degrees (converted when loaded).
 *
 * DH rows are listed joint 1..n = index 0..n-1. All models but QM75 use the modified
 * convention with alpha[i], a[i] the twist and length before joint i; QM75 uses the
 * standard convention. d of the last joint depends on the flange sensor (flange_d).
 *
 * The link-dynamics tables are plausible placeholders (solid cylinders of guessed mass,
 * the sensor as a point mass on the last link): nothing in the library computes with
 * them yet. */

#include <array>

#include "robot_define.h"
#include "robot_sys_data.h"

namespace model_data {

inline constexpr int kMaxJoints = 7;
inline constexpr int kSensorTypes = 4;
inline constexpr float kHalfPi = 1.57079632679f;

using Row = std::array<float, kMaxJoints>;
using LinkDynamics = std::array<float, LINK_DYNAMICS_NUM>;

/* A link approximated by a solid cylinder along its local z. */
struct LinkShape {
    float mass;   /* kg */
    float com[3]; /* m, in the link frame */
    float radius; /* m */
    float length; /* m */
};
using LinkShapes = std::array<LinkShape, kMaxJoints>;

/* Sensor mass (kg) and its centre along the flange z axis (m), per SensorType. */
inline constexpr float kSensorMass[kSensorTypes] = {0.0f, 0.15f, 0.35f, 0.25f};
inline constexpr float kSensorCentre[kSensorTypes] = {0.0f, 0.004f, 0.014f, 0.0086f};

/* 10 floats per link: mass, com x/y/z, Ixx, Ixy, Ixz, Iyy, Iyz, Izz about the com. */
constexpr LinkDynamics make_link_dynamics(const LinkShapes& links, int dof, int sensor) {
    LinkDynamics table{};
    for (int i = 0; i < kMaxJoints; ++i) {
        const LinkShape& l = links[i];
        float mass = l.mass;
        float cz = l.com[2];
        if (i == dof - 1 && kSensorMass[sensor] > 0.0f) {
            mass += kSensorMass[sensor];
            cz = (l.mass * l.com[2] + kSensorMass[sensor] * kSensorCentre[sensor]) / mass;
        }
        const float lateral = mass * (3.0f * l.radius * l.radius + l.length * l.length) / 12.0f;
        float* row = &table[static_cast<std::size_t>(i) * 10];
        row[0] = mass;
        row[1] = l.com[0];
        row[2] = l.com[1];
        row[3] = cz;
        row[4] = lateral;
        row[7] = lateral;
        row[9] = 0.5f * mass * l.radius * l.radius;
    }
    return table;
}

constexpr std::array<LinkDynamics, kSensorTypes> link_dynamics_per_sensor(const LinkShapes& links, int dof) {
    return {make_link_dynamics(links, dof, _B), make_link_dynamics(links, dof, _ZF),
            make_link_dynamics(links, dof, _SF), make_link_dynamics(links, dof, ISF)};
}

struct ModelDefaults {
    int dof;
    bool base_sensor_only; /* any sensor but _B is refused */
    Row d;                 /* d of the last joint is taken from flange_d */
    Row a;
    Row alpha;
    Row offset;
    std::array<float, kSensorTypes> flange_d; /* last joint's d per SensorType */
    Row lim_max;   /* deg */
    Row lim_min;   /* deg */
    Row vel_max;   /* deg/s */
    Row acc_max;   /* deg/s^2 */
    Row direction; /* +1 or -1 */
    std::array<LinkDynamics, kSensorTypes> dynamics;
};

inline constexpr float kH = kHalfPi;
inline constexpr Row kAcc1000 = {1000, 1000, 1000, 1000, 1000, 1000, 1000};
inline constexpr Row kAllPositive = {1, 1, 1, 1, 1, 1, 1};
inline constexpr Row kSecondNegative = {1, -1, 1, 1, 1, 1, 1};

/* Modified DH; joints 2 and 3 parallel, spherical wrist. */
inline constexpr ModelDefaults kQM65 = {
    6, false,
    {0.2405f, 0, 0, 0.21f, 0, 0.144f},
    {0, 0, 0.256f, 0, 0, 0},
    {0, kH, 0, kH, -kH, kH},
    {0, kH, kH, 0, 0, 0},
    {0.144f, 0.152f, 0.1725f, 0.1612f},
    {178, 130, 135, 178, 128, 360},
    {-178, -130, -135, -178, -128, -360},
    {180, 180, 225, 225, 225, 225},
    kAcc1000, kAllPositive,
    link_dynamics_per_sensor({{{1.6f, {0, -0.01f, -0.03f}, 0.05f, 0.12f},
                               {1.9f, {0.13f, 0, 0.01f}, 0.045f, 0.30f},
                               {0.8f, {0.01f, -0.03f, 0}, 0.04f, 0.10f},
                               {1.0f, {0, 0.01f, -0.08f}, 0.038f, 0.21f},
                               {0.6f, {0, -0.02f, 0.01f}, 0.035f, 0.08f},
                               {0.2f, {0, 0, -0.02f}, 0.03f, 0.04f},
                               {}}},
                             6),
};

/* Standard DH, seven joints alternating twists, all a zero. */
inline constexpr ModelDefaults kQM75 = {
    7, false,
    {0.2405f, 0, 0.256f, 0, 0.21f, 0, 0.144f},
    {0, 0, 0, 0, 0, 0, 0},
    {-kH, kH, -kH, kH, -kH, kH, 0},
    {0, 0, 0, 0, 0, 0, 0},
    {0.144f, 0.152f, 0.1725f, 0.1612f},
    {178, 130, 178, 135, 178, 128, 360},
    {-178, -130, -178, -135, -178, -128, -360},
    {180, 180, 225, 225, 225, 225, 225},
    kAcc1000, kAllPositive,
    link_dynamics_per_sensor({{{1.6f, {0, 0.01f, -0.03f}, 0.05f, 0.12f},
                               {1.1f, {0, -0.03f, 0.01f}, 0.045f, 0.10f},
                               {1.2f, {0, 0.01f, -0.09f}, 0.042f, 0.20f},
                               {0.8f, {0, -0.02f, 0.01f}, 0.04f, 0.08f},
                               {0.9f, {0, 0.01f, -0.08f}, 0.038f, 0.18f},
                               {0.6f, {0, -0.02f, 0.01f}, 0.035f, 0.08f},
                               {0.2f, {0, 0, -0.02f}, 0.03f, 0.04f}}},
                             7),
};

/* QM65 structure with an elbow offset a[3]; also used for QML63IV. */
inline constexpr ModelDefaults kQML63II = {
    6, false,
    {0.172f, 0, 0, 0.405f, 0, 0.1155f},
    {0, 0, 0.380f, 0.069f, 0, 0},
    {0, kH, 0, kH, -kH, kH},
    {0, kH, kH, 0, 0, 0},
    {0.1155f, 0.1235f, 0.144f, 0.1327f},
    {178, 130, 135, 178, 128, 360},
    {-178, -130, -135, -178, -128, -360},
    {180, 180, 225, 225, 225, 225},
    kAcc1000, kSecondNegative,
    link_dynamics_per_sensor({{{3.5f, {0, -0.02f, -0.04f}, 0.07f, 0.17f},
                               {6.0f, {0.19f, 0, 0.02f}, 0.065f, 0.45f},
                               {2.2f, {0.03f, -0.04f, 0}, 0.055f, 0.14f},
                               {2.0f, {0, 0.02f, -0.16f}, 0.05f, 0.40f},
                               {1.0f, {0, -0.02f, 0.01f}, 0.045f, 0.10f},
                               {0.4f, {0, 0, -0.02f}, 0.04f, 0.04f},
                               {}}},
                             6),
};

/* Longer QML63II. */
inline constexpr ModelDefaults kQML63III = {
    6, false,
    {0.1755f, 0, 0, 0.425f, 0, 0.1135f},
    {0, 0, 0.480f, 0.0965f, 0, 0},
    {0, kH, 0, kH, -kH, kH},
    {0, kH, kH, 0, 0, 0},
    {0.1135f, 0.1215f, 0.142f, 0.1307f},
    {178, 130, 135, 178, 128, 360},
    {-178, -130, -135, -178, -128, -360},
    {180, 180, 225, 225, 225, 225},
    kAcc1000, kSecondNegative,
    link_dynamics_per_sensor({{{4.5f, {0, -0.02f, -0.04f}, 0.08f, 0.18f},
                               {8.5f, {0.24f, 0, 0.02f}, 0.07f, 0.55f},
                               {3.0f, {0.04f, -0.05f, 0}, 0.06f, 0.16f},
                               {2.4f, {0, 0.02f, -0.17f}, 0.055f, 0.42f},
                               {1.2f, {0, -0.02f, 0.01f}, 0.05f, 0.10f},
                               {0.5f, {0, 0, -0.02f}, 0.04f, 0.04f},
                               {}}},
                             6),
};

/* Shoulder offset d[1], elbow offset d[2] (negative), joints 2-4 parallel, non-spherical wrist. */
inline constexpr Row kLuxAlpha = {0, kH, 0, 0, kH, -kH, 0};
inline constexpr Row kLuxOffset = {0, kH, 0, -kH, 0, 0, 0};  // upper arm upright at zero
inline constexpr Row kLuxVel = {180, 180, 180, 225, 225, 225, 0};
inline constexpr Row kLuxMax = {178, 178, 160, 178, 178, 360, 0};
inline constexpr Row kLuxMin = {-178, -178, -160, -178, -178, -360, 0};

inline constexpr ModelDefaults kLUX65 = {
    6, false,
    {0.1625f, 0.138f, -0.131f, 0.127f, 0.0997f, 0.0996f},
    {0, 0, 0.425f, 0.3922f, 0, 0},
    kLuxAlpha, kLuxOffset,
    {0.0996f, 0.1076f, 0.1281f, 0.1168f},
    kLuxMax, kLuxMin, kLuxVel, kAcc1000, kAllPositive,
    link_dynamics_per_sensor({{{3.7f, {0, -0.02f, 0}, 0.06f, 0.16f},
                               {8.4f, {0.21f, 0, 0.14f}, 0.055f, 0.43f},
                               {2.3f, {0.19f, 0, 0.02f}, 0.045f, 0.39f},
                               {1.2f, {0, 0.01f, 0.01f}, 0.04f, 0.10f},
                               {1.2f, {0, 0.01f, 0.01f}, 0.04f, 0.10f},
                               {0.25f, {0, 0, -0.02f}, 0.032f, 0.04f},
                               {}}},
                             6),
};

inline constexpr ModelDefaults kLUX62 = {
    6, true,
    {0.1273f, 0.110f, -0.090f, 0.0964f, 0.1157f, 0.0922f},
    {0, 0, 0.612f, 0.5723f, 0, 0},
    kLuxAlpha, kLuxOffset,
    {0.0922f, 0.0922f, 0.0922f, 0.0922f},
    kLuxMax, kLuxMin, kLuxVel, kAcc1000, kAllPositive,
    link_dynamics_per_sensor({{{7.1f, {0, -0.03f, 0}, 0.08f, 0.18f},
                               {12.7f, {0.31f, 0, 0.18f}, 0.075f, 0.62f},
                               {4.3f, {0.28f, 0, 0.03f}, 0.06f, 0.57f},
                               {2.0f, {0, 0.01f, 0.01f}, 0.045f, 0.12f},
                               {2.0f, {0, 0.01f, 0.01f}, 0.045f, 0.12f},
                               {0.37f, {0, 0, -0.02f}, 0.035f, 0.04f},
                               {}}},
                             6),
};

inline constexpr ModelDefaults kLUX63 = {
    6, false,
    {0.1519f, 0.120f, -0.093f, 0.083f, 0.0853f, 0.0819f},
    {0, 0, 0.24365f, 0.21325f, 0, 0},
    kLuxAlpha, kLuxOffset,
    {0.0819f, 0.0899f, 0.1104f, 0.0991f},
    kLuxMax, kLuxMin, kLuxVel, kAcc1000, kAllPositive,
    link_dynamics_per_sensor({{{2.0f, {0, -0.02f, 0}, 0.05f, 0.15f},
                               {3.4f, {0.12f, 0, 0.12f}, 0.045f, 0.25f},
                               {1.3f, {0.11f, 0, 0.02f}, 0.04f, 0.22f},
                               {0.8f, {0, 0.01f, 0.01f}, 0.035f, 0.09f},
                               {0.8f, {0, 0.01f, 0.01f}, 0.035f, 0.09f},
                               {0.35f, {0, 0, -0.02f}, 0.03f, 0.04f},
                               {}}},
                             6),
};

/* Modified DH, seven joints: shoulder, elbow and wrist, no offsets. */
inline constexpr Row kTavAlpha = {0, -kH, kH, -kH, kH, -kH, kH};
inline constexpr Row kTavMax = {172, 105, 172, 55, 172, 120, 172};
inline constexpr Row kTavMin = {-172, -105, -172, -170, -172, -90, -172};
inline constexpr Row kTavVel = {180, 180, 180, 180, 225, 225, 225};

inline constexpr ModelDefaults kTAV72 = {
    7, true,
    {0.267f, 0, 0.293f, 0, 0.3425f, 0, 0.097f},
    {0, 0, 0, 0, 0, 0, 0},
    kTavAlpha,
    {0, 0, 0, 0, 0, 0, 0},
    {0.097f, 0.097f, 0.097f, 0.097f},
    kTavMax, kTavMin, kTavVel, kAcc1000, kAllPositive,
    link_dynamics_per_sensor({{{3.2f, {0, 0.01f, -0.05f}, 0.06f, 0.18f},
                               {2.9f, {0, -0.03f, 0.02f}, 0.055f, 0.12f},
                               {3.0f, {0, 0.02f, -0.12f}, 0.05f, 0.29f},
                               {1.9f, {0.02f, 0, 0.03f}, 0.045f, 0.10f},
                               {1.7f, {0, 0.02f, -0.14f}, 0.04f, 0.34f},
                               {1.1f, {0, -0.01f, 0.02f}, 0.035f, 0.08f},
                               {0.4f, {0, 0, -0.03f}, 0.03f, 0.06f}}},
                             7),
};

inline constexpr ModelDefaults kTAV72II = {
    7, false,
    {0.300f, 0, 0.320f, 0, 0.300f, 0, 0.110f},
    {0, 0, 0, 0, 0, 0, 0},
    kTavAlpha,
    {0, 0, 0, 0, 0, 0, 0},
    {0.110f, 0.118f, 0.1385f, 0.1272f},
    kTavMax, kTavMin, kTavVel, kAcc1000, kAllPositive,
    link_dynamics_per_sensor({{{3.6f, {0, 0.01f, -0.05f}, 0.065f, 0.20f},
                               {3.3f, {0, -0.03f, 0.02f}, 0.06f, 0.13f},
                               {3.0f, {0, 0.02f, -0.13f}, 0.055f, 0.32f},
                               {2.4f, {0.02f, 0, 0.03f}, 0.05f, 0.11f},
                               {1.8f, {0, 0.02f, -0.12f}, 0.045f, 0.30f},
                               {1.2f, {0, -0.01f, 0.02f}, 0.04f, 0.09f},
                               {0.4f, {0, 0, -0.03f}, 0.035f, 0.06f}}},
                             7),
};

/* The caller supplies the table; the dynamics block stays clear. */
inline constexpr ModelDefaults kUNIVERSAL = {
    7, false,
    {}, {}, {}, {},
    {0, 0, 0, 0},
    {360, 360, 360, 360, 360, 360, 360},
    {-360, -360, -360, -360, -360, -360, -360},
    {300, 300, 300, 300, 300, 300, 300},
    kAcc1000, kAllPositive,
    {},
};

/* Defaults of a RobotType; null for QML63I (none defined) and unknown types. */
constexpr const ModelDefaults* model_defaults(int robot_type) {
    switch (robot_type) {
        case QM65: return &kQM65;
        case QM75: return &kQM75;
        case QML63II: return &kQML63II;
        case QML63III: return &kQML63III;
        case LUX65: return &kLUX65;
        case LUX62: return &kLUX62;
        case TAV72: return &kTAV72;
        case LUX63: return &kLUX63;
        case UNIVERSAL: return &kUNIVERSAL;
        case QML63IV: return &kQML63II;
        case TAV72II: return &kTAV72II;
        default: return nullptr;
    }
}

}  // namespace model_data

#endif
