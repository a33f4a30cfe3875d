// The system-data record and the loading of a model's defaults.
#include <algorithm>

#include "dh_table_shape.h"
#include "flange_frames.h"
#include "libalgo_interface.h"
#include "qman_mathfuncs.h"
#include "robot_model_data.h"

namespace algo {
RobotSysData robot;
DH dh_default;
DynamicsBlock dyn_param_default;
}  // namespace algo

using algo::robot;

namespace {

constexpr TcpConfig kDefaultTcp = {0.25f, 1.6f, 0.6f, 4.0f};

float deg_to_rad(float deg) { return static_cast<float>(deg * DEG2RAD); }

int lib_internal_set_robot_default_config(int robot_type, int sensor_type) {
    const model_data::ModelDefaults* model = model_data::model_defaults(robot_type);
    if (model == nullptr) return -1;
    if (sensor_type < _B || sensor_type > ISF) return -1;
    // TAV72 and LUX62 are only built without a flange sensor; refusing the others is intended.
    if (model->base_sensor_only && sensor_type != _B) return -1;

    const auto& dynamics = model->dynamics[static_cast<std::size_t>(sensor_type)];
    std::copy(dynamics.begin(), dynamics.end(), robot.dyn.link_dynamics);

    const int dof = model->dof;
    for (int i = 0; i < dof; ++i) {
        robot.dh.d[i] = model->d[i];
        robot.dh.a[i] = model->a[i];
        robot.dh.alpha[i] = model->alpha[i];
        robot.dh.offset[i] = model->offset[i];
        JointConfig& joint = robot.joint[i];
        joint.jointlim_max = deg_to_rad(model->lim_max[i]);
        joint.jointlim_min = deg_to_rad(model->lim_min[i]);
        joint.vel_maxlim = deg_to_rad(model->vel_max[i]);
        joint.acc_maxlim = deg_to_rad(model->acc_max[i]);
        robot.joint_direction[i] = model->direction[i];
    }
    robot.dh.d[dof - 1] = model->flange_d[static_cast<std::size_t>(sensor_type)];
    robot.rbt_dof = static_cast<int16_t>(dof);
    robot.tcp = kDefaultTcp;

    algo::dh_default = robot.dh;
    algo::dyn_param_default = robot.dyn;
    return 0;
}

}  // namespace

extern "C" {

void libalgo_init(void) { libalgo_set_robot_and_sensor_type(QM65, _B); }

int libalgo_set_robot_and_sensor_type(int robot_type, int sensor_type) {
    // The defaults of a previous model must not survive a failed load either.
    robot = RobotSysData{};
    algo::dh_default = DH{};
    algo::dyn_param_default = DynamicsBlock{};

    robot.control_period = CYCLE_PERIOD;
    robot.gravity = GRAVITY_ACC_CONSTANT;
    robot.sensor_type = sensor_type;
    robot.robot_type = robot_type;

    robot.tool_cs = unit_matrix(4);
    robot.work_cs = unit_matrix(4);
    robot.install_matrix = unit_matrix(4);
    robot.dyn.gravity_acc[2] = robot.gravity;

    const int result = lib_internal_set_robot_default_config(robot_type, sensor_type);
    algo::table_in_use_changed();
    algo::flange_frames_changed();
    return result;
}

int libalgo_get_robot_type(void) { return robot.robot_type; }
int libalgo_get_sensor_type(void) { return robot.sensor_type; }

}  // extern "C"
