#include "dh_table_shape.h"

#include "robot_sys_data.h"

namespace algo {
namespace {

constexpr float kQ = static_cast<float>(PI_2);
constexpr float kTwistSlack = 0.99e-5f;
constexpr float kInf = std::numeric_limits<float>::infinity();

constexpr TableShape shape(int dof, bool standard, std::initializer_list<float> twists,
                           std::initializer_list<int> zero_a, std::initializer_list<int> zero_d) {
    TableShape s{};
    s.dof = dof;
    s.standard = standard;
    int i = 0;
    for (const float t : twists) {
        s.twist[i] = t;
        s.twist_low[i] = t - kTwistSlack;
        s.twist_high[i] = t + kTwistSlack;
        ++i;
    }
    for (; i < ROBOT_DOF; ++i) {
        s.twist_low[i] = -kInf;
        s.twist_high[i] = kInf;
    }
    for (const int j : zero_a) s.zero_a[j] = 1.0f;
    for (const int j : zero_d) s.zero_d[j] = 1.0f;
    return s;
}

// Spherical wrist, joints 2 and 3 parallel; QM65 has no elbow offset a[3], the QML63 family has.
constexpr TableShape kQM65 = shape(6, false, {0, kQ, 0, kQ, -kQ, kQ}, {0, 1, 3, 4, 5}, {1, 2, 4});
constexpr TableShape kQML63 = shape(6, false, {0, kQ, 0, kQ, -kQ, kQ}, {0, 1, 4, 5}, {1, 2, 4});
// Joints 2 to 4 parallel: the offsets d[1] to d[3] along them only add up.
constexpr TableShape kLUX = shape(6, false, {0, kQ, 0, 0, kQ, -kQ}, {0, 1, 4, 5}, {});
constexpr TableShape kQM75 = shape(7, true, {-kQ, kQ, -kQ, kQ, -kQ, kQ, 0}, {0, 1, 2, 3, 4, 5, 6}, {1, 3, 5});
constexpr TableShape kTAV = shape(7, false, {0, -kQ, kQ, -kQ, kQ, -kQ, kQ}, {0, 1, 2, 3, 4, 5, 6}, {1, 3, 5});

DhChain g_table_in_use_chain;

}  // namespace

const TableShape& table_shape(int robot_type) {
    switch (robot_type) {
        case QM75:
            return kQM75;
        case QML63II:
        case QML63III:
        case QML63IV:
            return kQML63;
        case LUX65:
        case LUX62:
        case LUX63:
            return kLUX;
        case TAV72:
        case TAV72II:
            return kTAV;
        default:
            return kQM65;
    }
}

DH nominal_table(const TableShape& shape, const DH& dh) {
    DH nominal = dh;
    for (int i = 0; i < shape.dof; ++i) {
        nominal.alpha[i] = shape.twist[i];
        if (shape.zero_a[i] != 0.0f) nominal.a[i] = 0.0f;
        if (shape.zero_d[i] != 0.0f) nominal.d[i] = 0.0f;
    }
    return nominal;
}

bool g_table_in_use_nominal = false;  // the cleared record's all-zero table is not

const DhChain& table_in_use_chain() { return g_table_in_use_chain; }

void table_in_use_changed() {
    const TableShape& shape = table_shape(robot.robot_type);
    g_table_in_use_nominal = nominal_structure(shape, robot.dh);
    g_table_in_use_chain = DhChain(robot.dh, shape.dof, shape.standard);
}

}  // namespace algo
