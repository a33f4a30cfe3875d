// Which arm a simulated controller drives: its product text, as the controller reports it,
// and the kinematics library's model and flange sensor behind that text.
#ifndef QM_SIM_ARM_MODEL_H
#define QM_SIM_ARM_MODEL_H

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace sim {

constexpr int kMaxJoints = 7;
using Joints = std::array<double, kMaxJoints>;  // degrees; the first dof are used

struct ModelName {
    const char* text;
    int robot_type;  // the kinematics library's RobotType
};
extern const ModelName kModelNames[10];

enum class ForceSensor { none, one_axis, six_axis, integrated_six_axis };

struct ArmModel {
    std::string product;  // "QM65-B"
    int robot_type = 0;   // RobotType
    int sensor_type = 0;  // SensorType
    int dof = 6;
    ForceSensor sensor = ForceSensor::none;

    // The model's nominal DH table (metres, radians) and joint limits (degrees, degrees per
    // second, degrees per second squared) from the kinematics library.
    struct Dh {
        Joints d{}, a{}, alpha{}, offset{};
    } dh;
    Joints min_pos{}, max_pos{}, max_speed{}, max_acc{};
};

// The model of a product text "<model>-<suffix>", or none for an unknown model or suffix, or
// a sensor the model cannot carry.
std::optional<ArmModel> find_arm_model(std::string_view product);

}  // namespace sim

#endif
