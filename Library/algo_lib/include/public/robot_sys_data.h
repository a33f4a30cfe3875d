#ifndef ROBOT_SYS_DATA_H
#define ROBOT_SYS_DATA_H

/* Layout of the kinematics library's system-data record. Read it through the
 * libalgo_* getters; the record itself is visible to C++ code of the library only. */

#include <stdint.h>

#include "robot_define.h"

#ifdef __cplusplus
extern "C" {
#endif

#define LINK_DYNAMICS_NUM 70  /* 7 links x (mass, com x/y/z, Ixx Ixy Ixz Iyy Iyz Izz) */
#define TCP_CONFIG_NUM 4
#define JOINT_CONFIG_NUM 17

/* Cartesian motion configuration read by the planners. */
typedef struct {
    float vel_max;     /* m/s, default 0.25 */
    float acc_max;     /* m/s^2, default 1.6 */
    float rot_vel_max; /* rad/s, default 0.6 */
    float rot_acc_max; /* rad/s^2, default 4.0 */
} TcpConfig;

/* One joint's configuration: 17 floats. */
typedef struct {
    float drive[10];    /* drive and planner parameters, not filled by the defaults */
    float jointlim_max; /* rad */
    float jointlim_min; /* rad */
    float vel_maxlim;   /* rad/s */
    float acc_maxlim;   /* rad/s^2 */
    float aux[3];       /* written only through libalgo_set_joint_config */
} JointConfig;

/* Dynamics block: 608 bytes, the link-dynamics table first. */
typedef struct {
    float link_dynamics[LINK_DYNAMICS_NUM];
    PayloadCfg payload;
    float gravity_acc[3];                          /* gravity in the base frame, m/s^2 */
    float friction[ROBOT_DOF * FRIC_PARMS_NUM];    /* identified friction, per joint */
    float temperature[TEMP_PARAMS_NUM];            /* identified temperature model */
    float collision_threshold[ROBOT_DOF];
    float drag_regulation_factor[ROBOT_DOF];
    int32_t safety_level;
    int32_t dynamics_model_type;
    float reserved[5];
} DynamicsBlock;

/* Joint state fed back from the arm. */
typedef struct {
    float q[ROBOT_DOF];
    float dq[ROBOT_DOF];
    float torque[ROBOT_DOF];
} JointFeedback;

/* Joint state of the trajectory planner. */
typedef struct {
    float q[ROBOT_DOF];
    float dq[ROBOT_DOF];
    float ddq[ROBOT_DOF];
} JointMotion;

typedef struct {
    DH dh;
    int32_t robot_type;
    int32_t sensor_type;
    TcpConfig tcp;
    JointConfig joint[ROBOT_DOF];
    float install_angle[3];
    Matrix tool_cs;        /* tool frame in the flange frame */
    Matrix work_cs;        /* re-expresses base coordinates in the work frame */
    Matrix install_matrix; /* Rz(c)*Ry(b)*Rx(a) of the install angles */
    DynamicsBlock dyn;
    float joint_direction[ROBOT_DOF];
    int16_t rbt_dof;
    float control_period; /* s */
    float gravity;        /* m/s^2 along base z, default -9.81 */
    int32_t system_all_dof;
    int32_t avoid_singularity;
    /* Kept beside the fixed layout, cleared with it. */
    Coord tool_cs_params;
    Coord work_cs_params;
    JointFeedback feedback;
    JointMotion plan_cmd;
    JointMotion plan_cur;
} RobotSysData;

#ifdef __cplusplus
}

static_assert(sizeof(DynamicsBlock) == 608, "dynamics block is 608 bytes");
static_assert(sizeof(JointConfig) == JOINT_CONFIG_NUM * sizeof(float), "17 floats per joint");

namespace algo {
/* The one process-wide record and the model defaults loaded with it. Not locked. */
extern RobotSysData robot;
extern DH dh_default;
extern DynamicsBlock dyn_param_default;
}  // namespace algo
#endif

#endif
