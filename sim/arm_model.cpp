#include "arm_model.h"

#include "kinematics.h"
#include "robot_define.h"

namespace sim {

const ModelName kModelNames[10] = {
    {"QM65", QM65},   {"QM75", QM75},   {"QML63II", QML63II}, {"QML63III", QML63III}, {"QML63IV", QML63IV},
    {"LUX65", LUX65}, {"LUX62", LUX62}, {"LUX63", LUX63},     {"TAV72", TAV72},       {"TAV72II", TAV72II},
};

namespace {

struct Suffix {
    const char* text;
    int sensor_type;
    ForceSensor sensor;
};
constexpr Suffix kSuffixes[] = {
    {"B", _B, ForceSensor::none},
    {"ZF", _ZF, ForceSensor::one_axis},
    {"6F", _SF, ForceSensor::six_axis},
    {"6FB", ISF, ForceSensor::integrated_six_axis},
};

}  // namespace

std::optional<ArmModel> find_arm_model(std::string_view product) {
    const std::size_t dash = product.rfind('-');
    if (dash == std::string_view::npos) return std::nullopt;
    const std::string_view name = product.substr(0, dash);
    const std::string_view suffix = product.substr(dash + 1);
    for (const ModelName& model : kModelNames) {
        if (name != model.text) continue;
        for (const Suffix& s : kSuffixes) {
            if (suffix != s.text) continue;
            ArmModel arm;
            arm.product = std::string(product);
            arm.robot_type = model.robot_type;
            arm.sensor_type = s.sensor_type;
            arm.sensor = s.sensor;
            if (!load_model_defaults(arm)) return std::nullopt;
            return arm;
        }
    }
    return std::nullopt;
}

}  // namespace sim
