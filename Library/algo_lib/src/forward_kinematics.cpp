// Model dispatch and the pose variants over the system data.
#include <algorithm>
#include <array>

#include "dh_chain.h"
#include "dh_table_shape.h"
#include "fk_lux6.h"
#include "fk_qm65_family.h"
#include "fk_seven_joint.h"
#include "flange_frames.h"
#include "libalgo_interface.h"
#include "pose_terms.h"
#include "qman_kinematics.h"
#include "qman_mathfuncs.h"

using algo::robot;

namespace {

constexpr int kUniversalDof = 7;

enum class UniversalChain { OwnTable, QM65Routine };

// The flange for q, handed to `finish`. The closed form serves a table of the model's nominal
// structure (nominal says whether dh has it); a calibrated table with other lengths or twists gets
// the general product of its links.
template <class Finish>
auto with_flange(int robot_type, const DH* dh, const float* q, UniversalChain universal, bool nominal,
                 Finish finish) {
    if (robot_type == UNIVERSAL) {
        if (universal == UniversalChain::OwnTable) return finish(kin_universal_kinematics_Tn(dh, q, kUniversalDof));
        return finish(fk::elbow_wrist_flange(dh, q, 0.0f));
    }
    if (!nominal) {
        if (dh == &robot.dh) return finish(algo::table_in_use_chain().flange_matrix(q));
        const algo::TableShape& shape = algo::table_shape(robot_type);
        return finish(algo::chain_flange(*dh, q, shape.dof, shape.standard));
    }
    switch (robot_type) {
        case QM75:
        case TAV72:
        case TAV72II: return finish(fk::shoulder_elbow_wrist_flange(dh, q));
        case QML63II:
        case QML63III:
        case QML63IV: return finish(fk::elbow_wrist_flange(dh, q, dh->a[3]));
        case LUX65:
        case LUX62:
        case LUX63: return finish(fk::lux_flange(dh, q));
        default: return finish(fk::elbow_wrist_flange(dh, q, 0.0f));
    }
}

Matrix as_is(const Matrix& f) { return f; }

template <class Finish>
auto with_flange(const float* q, Finish finish) {
    return with_flange(robot.robot_type, &robot.dh, q, UniversalChain::OwnTable, algo::table_in_use_nominal(), finish);
}

// The model's table with the calibration errors added, multiplied out link by link.
Matrix calibrated_flange(const float* q) {
    DH dh = robot.dh;
    for (int i = 0; i < ROBOT_DOF; ++i) {
        dh.d[i] += dh.err_d[i];
        dh.a[i] += dh.err_a[i];
        dh.alpha[i] += dh.err_alpha[i];
        dh.offset[i] += dh.err_theta[i];
    }
    return algo::chain_flange(dh, q, robot.rbt_dof, robot.robot_type == QM75);
}

// The frames around the flange f, each skipped where it is the identity: in the world
// (W * I * f) or only turned by the installation (I * f), with or without the tool (f * T).
enum class Around { World, Install };

// Which of the frames apply to a call; none where all are the identity.
struct Placing {
    const Matrix* before;  // W * I or I, or null
    const Matrix* after;   // T, or null
};

Placing placing(Around around, bool with_tool) {
    const algo::FlangeFrames& frames = algo::flange_frames();
    Placing p{nullptr, nullptr};
    if (with_tool && !frames.tool_identity) p.after = &robot.tool_cs;
    if (around == Around::World && !frames.world_identity) p.before = &frames.world;
    if (around == Around::Install && !frames.install_identity) p.before = &robot.install_matrix;
    return p;
}

Matrix placed(const Matrix& f, Placing p) {
    if (p.after == nullptr) return p.before == nullptr ? f : algo::rigid_product(*p.before, f);
    const Matrix tool = algo::rigid_product(f, *p.after);
    return p.before == nullptr ? tool : algo::rigid_product(*p.before, tool);
}

// Translation of W * I * F * t for the tool origin t.
Pos tool_point_in_work(const Matrix& f) {
    const Matrix world_flange = placed(f, placing(Around::World, false));
    const float t[3] = {robot.tool_cs.data[0][3], robot.tool_cs.data[1][3], robot.tool_cs.data[2][3]};
    float p[3];
    for (int i = 0; i < 3; ++i)
        p[i] = world_flange.data[i][0] * t[0] + world_flange.data[i][1] * t[1] + world_flange.data[i][2] * t[2] +
               world_flange.data[i][3];
    return Pos{p[0], p[1], p[2]};
}

// The pose of the placed flange; the flange's own when no frame applies (no copy on the way).
Pose pose_of(const Matrix& f, Around around, bool with_tool) {
    const Placing p = placing(around, with_tool);
    if (p.before == nullptr && p.after == nullptr) return algo::pose_of<algo::Rotation::Orthonormal>(f);
    return algo::pose_of<algo::Rotation::Orthonormal>(placed(f, p));
}

// The closed forms of the pose calls, one per model family, on joint angles times unit, with
// their sines and cosines V lanes at a time.
using Form = Matrix (*)(const DH*, const float*, float unit);
template <class V>
Matrix elbow_wrist(const DH* dh, const float* q, float unit) {
    return fk::elbow_wrist_flange<V>(dh, q, 0.0f, unit);
}
template <class V>
Matrix offset_elbow_wrist(const DH* dh, const float* q, float unit) {
    return fk::elbow_wrist_flange<V>(dh, q, dh->a[3], unit);
}

// One pose call in one piece: the closed form expanded with the frames and the angles after it,
// so that its transform goes on to a pose in registers. Each is built twice: for the baseline
// instruction set and, for processors that have them, with AVX2 and fused multiply-adds, which
// shorten its chains of dependent operations, and take all joints' sines and cosines in one
// eight-lane pass. The first call chooses.
using FormPose = Pose (*)(const float*, Around, bool, float unit);

template <Form form>
[[gnu::flatten]] Pose form_pose_baseline(const float* q, Around around, bool with_tool, float unit) {
    return pose_of(form(&robot.dh, q, unit), around, with_tool);
}

struct FormPoses {
    FormPose elbow_wrist, offset_elbow_wrist, lux, seven_joint;
};
using algo::lanes::F4;
using algo::lanes::F8;
constexpr FormPoses kBaselinePoses{form_pose_baseline<elbow_wrist<F4>>, form_pose_baseline<offset_elbow_wrist<F4>>,
                                   form_pose_baseline<fk::lux_flange<F4>>,
                                   form_pose_baseline<fk::shoulder_elbow_wrist_flange<F4>>};

#if defined(__x86_64__)
template <Form form>
__attribute__((target("avx2,fma"), flatten)) Pose form_pose_fma(const float* q, Around around, bool with_tool,
                                                                  float unit) {
    return pose_of(form(&robot.dh, q, unit), around, with_tool);
}
constexpr FormPoses kFmaPoses{form_pose_fma<elbow_wrist<F8>>, form_pose_fma<offset_elbow_wrist<F8>>,
                              form_pose_fma<fk::lux_flange<F8>>, form_pose_fma<fk::shoulder_elbow_wrist_flange<F8>>};
#endif

const FormPoses& form_poses() {
    static const FormPoses* const chosen = [] {
#if defined(__x86_64__)
        __builtin_cpu_init();
        if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) return &kFmaPoses;
#endif
        return &kBaselinePoses;
    }();
    return *chosen;
}

// Joint angles q times unit: radians for the routines that take only those.
std::array<float, ROBOT_DOF> radians(const float* q, float unit) {
    std::array<float, ROBOT_DOF> rad{};
    const int dof = std::clamp(static_cast<int>(robot.rbt_dof), 0, ROBOT_DOF);
    for (int i = 0; i < dof; ++i) rad[i] = q[i] * unit;
    return rad;
}

// The pose for joint angles q times unit (1 for radians): the closed forms take the unit into
// their angles' sums, the other routines get radians first.
Pose placed_pose(const float* q, Around around, bool with_tool, float unit = 1.0f) {
    const int type = robot.robot_type;
    if (type == UNIVERSAL || !algo::table_in_use_nominal()) {
        if (unit != 1.0f) return placed_pose(radians(q, unit).data(), around, with_tool);
        return with_flange(q, [=](const Matrix& f) { return pose_of(f, around, with_tool); });
    }
    const FormPoses& poses = form_poses();
    switch (type) {
        case QM75:
        case TAV72:
        case TAV72II: return poses.seven_joint(q, around, with_tool, unit);
        case QML63II:
        case QML63III:
        case QML63IV: return poses.offset_elbow_wrist(q, around, with_tool, unit);
        case LUX65:
        case LUX62:
        case LUX63: return poses.lux(q, around, with_tool, unit);
        default: return poses.elbow_wrist(q, around, with_tool, unit);
    }
}

}  // namespace

extern "C" {

Matrix forward_kinematics_model(int robot_type, const DH* dh, const float* q) {
    const bool nominal = algo::nominal_structure(algo::table_shape(robot_type), *dh);
    return with_flange(robot_type, dh, q, UniversalChain::OwnTable, nominal, as_is);
}

Pos forward_kinematics_pos(const float* q) {
    // Intended: a UNIVERSAL arm gets the QM65 geometry in this position-only call.
    return with_flange(robot.robot_type, &robot.dh, q, UniversalChain::QM65Routine, algo::table_in_use_nominal(),
                       tool_point_in_work);
}

Pos forward_kinematics_pos_calibration(const float* q) { return tool_point_in_work(calibrated_flange(q)); }

Pose forward_kinematics(const float* q) { return placed_pose(q, Around::World, true); }

Pose forward_kinematics_degrees(const float* q) {
    return placed_pose(q, Around::World, true, static_cast<float>(ALGO_PI / 180.0));
}

Matrix forward_kinematics_e(const float* q) { return with_flange(q, as_is); }

Pose forward_kinematics_world_to_flange(const float* q) { return placed_pose(q, Around::World, false); }

Pose forward_kinematics_rotate(const float* q) { return placed_pose(q, Around::Install, true); }

Pose forward_kinematics_rotate_flange(const float* q) { return placed_pose(q, Around::Install, false); }

}  // extern "C"
