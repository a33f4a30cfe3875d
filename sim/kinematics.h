// One arm's kinematics through the kinematics library. The library keeps a single global
// model, so every call takes one process-wide lock and loads this arm's model, frames and
// limits first (skipped while they are still the ones loaded).
#ifndef QM_SIM_KINEMATICS_H
#define QM_SIM_KINEMATICS_H

#include <cstdint>

#include "arm_model.h"
#include "robot_define.h"

namespace sim {

// What an arm's kinematics depend on besides its model.
struct KinematicsSetup {
    Coord tool{};        // tool frame in the flange frame (m, rad)
    Coord work{};        // work frame in the base frame (m, rad)
    float install[3]{};  // installation angles (rad)
    Joints min_pos{};    // software joint limits (degrees)
    Joints max_pos{};
    ArmModel::Dh dh{};   // the DH table (m, rad)
};

class Kinematics {
public:
    explicit Kinematics(const ArmModel& model);

    void configure(const KinematicsSetup& setup);
    const KinematicsSetup& setup() const { return setup_; }

    // Tool pose in the work frame.
    Pose forward(const Joints& q) const;
    // Joints reaching `target` (tool pose in the work frame) nearest `ref` within the limits;
    // IKINE_SUCCESSFUL (0), IKINE_FAILED (out of reach) or IKINE_LIMITED.
    int inverse(const Pose& target, const Joints& ref, Joints& out) const;

private:
    void load() const;

    ArmModel model_;
    KinematicsSetup setup_;
    std::uint64_t id_ = 0;  // unique per configuration, so the loaded one is recognised
};

// Fills the model's dof, DH table and joint limits from the library's defaults; false when
// the library refuses the model and sensor pair.
bool load_model_defaults(ArmModel& model);

// Pose of a transform, and the transform of a pose's position and Euler angles.
Pose pose_of(const Matrix& m);
Matrix matrix_of(const Pose& p);
Pose make_pose(double x, double y, double z, double rx, double ry, double rz);

}  // namespace sim

#endif
