#ifndef QM_DEFINE_H
#define QM_DEFINE_H

#include <stdarg.h>
#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- shared constants ---- */

#define ARM_DOF 7             /* joint slots of every joint array in the records */
#define QM_MOVE_NBLOCK 0      /* return once the controller accepted a move */
#define QM_MOVE_MULTI_BLOCK 1 /* wait for the move's arrival event */

/* ---- enumerations ---- */

typedef enum {
    QM_SINGLE_MODE_E = 0, /* no thread: each command reads its own reply */
    QM_DUAL_MODE_E = 1,   /* TCP receive thread */
    QM_TRIPLE_MODE_E = 2, /* TCP receive thread and UDP realtime thread */
} qm_thread_mode_e;

typedef enum {
    QM_MODEL_QM_65_E = 0,
    QM_MODEL_QM_75_E = 1,
    QM_MODEL_QM_63_I_E = 2,
    QM_MODEL_QM_63_II_E = 3,
    QM_MODEL_QM_63_III_E = 4,
    QM_MODEL_LUX_65_E = 5,
    QM_MODEL_LUX_62_E = 6,
    QM_MODEL_TAV_72_E = 7,
    QM_MODEL_LUX_63_E = 8,
    QM_MODEL_UNIVERSAL_E = 9,
} qm_robot_arm_model_e;

typedef enum {
    QM_MODEL_QM_B_E = 0,
    QM_MODEL_QM_ZF_E = 1,
    QM_MODEL_QM_SF_E = 2,
    QM_MODEL_QM_ISF_E = 3,
} qm_force_type_e;

typedef enum {
    QM_NONE_EVENT_E = 0,
    QM_CURRENT_TRAJECTORY_STATE_E = 1,
    QM_PROGRAM_RUN_FINISH_E = 2,
} qm_event_type_e;

typedef enum {
    QM_NO_PLANNING_E = 0,
    QM_JOINT_SPACE_PLANNING_E = 1,
    QM_CARTESIAN_LINEAR_PLANNING_E = 2,
    QM_CARTESIAN_ARC_PLANNING_E = 3,
    QM_SPLINE_CURVE_MOTION_PLANNING_E = 4,
    QM_TRAJECTORY_REPLAY_PLANNING_E = 5,
} qm_arm_current_trajectory_e;

typedef enum {
    QM_IDLE_E = 0,
    QM_MOVE_L_E = 1,
    QM_MOVE_J_E = 2,
    QM_MOVE_C_E = 3,
    QM_MOVE_S_E = 4,
    QM_MOVE_THROUGH_JOINT_E = 5,
    QM_MOVE_THROUGH_POSE_E = 6,
    QM_MOVE_THROUGH_FORCE_POSE_E = 7,
    QM_MOVE_THROUGH_CURRENT_E = 8,
    QM_STOP_E = 9,
    QM_SLOW_STOP_E = 10,
    QM_PAUSE_E = 11,
    QM_CURRENT_DRAG_E = 12,
    QM_SENSOR_DRAG_E = 13,
    QM_TECH_DEMONSTRATION_E = 14,
} qm_udp_arm_current_status_e;

/* ---- logging ---- */

typedef enum {
    LOG_LEVEL_DEBUG = 0,
    LOG_LEVEL_INFO = 1,
    LOG_LEVEL_WARN = 2,
    LOG_LEVEL_ERROR = 3,
} LogLevel;

/* A log sink: receives the printf-style format and its unformatted arguments. */
typedef void (*LogCallback)(const char* format, va_list args);

/* ---- shared records ---- */

/* One arm connection; the library finds it by this record's address, never by id. */
typedef struct {
    int id; /* 1..5, or -1 when connecting or synchronising failed */
} qm_robot_handle;

typedef struct {
    float x; /* metres */
    float y;
    float z;
} qm_position_t;

typedef struct {
    float w;
    float x;
    float y;
    float z;
} qm_quat_t;

typedef struct {
    float rx; /* radians, fixed axes: R = Rz * Ry * Rx */
    float ry;
    float rz;
} qm_euler_t;

typedef struct {
    qm_position_t position;
    qm_quat_t quaternion;
    qm_euler_t euler;
} qm_pose_t;

typedef struct {
    char frame_name[12];
    qm_pose_t pose;
    float payload; /* kg */
    float x;       /* centre of mass of the payload, metres */
    float y;
    float z;
} qm_frame_t;

typedef struct {
    float d[8];
    float a[8];
    float alpha[8];
    float offset[8];
} qm_dh_t;

typedef struct {
    uint8_t err_len;
    int err[24];
} qm_err_t;

typedef struct {
    uint8_t arm_dof;
    qm_robot_arm_model_e arm_model;
    qm_force_type_e force_type;
    uint8_t robot_controller_version; /* 3 or 4 */
} qm_robot_info_t;

typedef struct {
    int handle_id;
    qm_event_type_e event_type;
    bool trajectory_state;
    int device;
    int trajectory_connect;
    int program_id;
} qm_event_push_data_t;

typedef void (*qm_event_callback_ptr)(qm_event_push_data_t data);

/* ---- realtime state push ---- */

/* Optional push sections: 1 on, 0 off, -1 leave out / unknown. */
typedef struct {
    int joint_speed;
    int lift_state;
    int expand_state;
    int hand_state;
    int arm_current_status;
    int aloha_state;
    int plus_base;
    int plus_state;
} qm_udp_custom_config_t;

typedef struct {
    int cycle;
    bool enable;
    int port;
    int force_coordinate; /* -1 when the arm has no force sensor */
    char ip[28];
    qm_udp_custom_config_t custom_config;
} qm_realtime_push_config_t;

typedef struct {
    float joint_current[ARM_DOF];
    bool joint_en_flag[ARM_DOF];
    uint16_t joint_err_code[ARM_DOF];
    float joint_position[ARM_DOF]; /* degrees */
    float joint_temperature[ARM_DOF];
    float joint_voltage[ARM_DOF];
    float joint_speed[ARM_DOF];
} qm_joint_status_t;

typedef struct {
    float force[6];
    float zero_force[6];
    int coordinate;
} qm_force_sensor_t;

typedef struct {
    int height;
    float pos;
    int current;
    int err_flag;
    int en_flag;
} qm_udp_lift_state_t;

typedef struct {
    float pos;
    int current;
    int err_flag;
    int en_flag;
    int joint_id;
    int mode;
} qm_udp_expand_state_t;

typedef struct {
    int hand_pos[6];
    int hand_angle[6];
    int hand_force[6];
    int hand_state[6];
    int hand_err;
} qm_udp_hand_state_t;

typedef struct {
    int io1_state;
    int io2_state;
} qm_udp_aloha_state_t;

typedef struct {
    char manu[10];
    int type;
    char hv[10];
    char sv[10];
    char bv[10];
    int id;
    int dof;
    int check;
    int bee;
    bool force;
    bool touch;
    int touch_num;
    int touch_sw;
    int hand;
    int pos_up[12];
    int pos_low[12];
    int angle_up[12];
    int angle_low[12];
    int speed_up[12];
    int speed_low[12];
    int force_up[12];
    int force_low[12];
} qm_plus_base_info_t;

typedef struct {
    int sys_state;
    int dof_state[12];
    int dof_err[12];
    int pos[12];
    int speed[12];
    int angle[12];
    int current[12];
    int normal_force[18];
    int tangential_force[18];
    int tangential_force_dir[18];
    uint32_t tsa[12];
    uint32_t tma[12];
    int touch_data[18];
    int force[12];
} qm_plus_state_info_t;

typedef struct {
    int errCode; /* 0, or -3 when the datagram could not be parsed */
    char arm_ip[16];
    qm_joint_status_t joint_status;
    qm_force_sensor_t force_sensor;
    qm_err_t err;
    qm_pose_t waypoint;
    qm_udp_lift_state_t liftState;
    qm_udp_expand_state_t expandState;
    qm_udp_hand_state_t handState;
    qm_udp_arm_current_status_e arm_current_status;
    qm_udp_aloha_state_t aloha_state;
    int qm_plus_state; /* 1 "disable", 2 "offline", else 0 */
    qm_plus_base_info_t plus_base_info;
    qm_plus_state_info_t plus_state_info;
} qm_realtime_arm_joint_state_t;

typedef void (*qm_realtime_arm_state_callback_ptr)(qm_realtime_arm_joint_state_t data);

/* ---- kinematics bridge records ---- */

/* A homogeneous transform indexed [row][column], translation in column 3;
 * irow and iline give the used size (4 and 4 for a transform, 3 and 3 for a rotation). */
typedef struct {
    int16_t irow;
    int16_t iline;
    float data[4][4];
} qm_matrix_t;

/* One sphere of the tool envelope, in metres in the flange frame; radius 0 leaves it out. */
typedef struct {
    float radius;
    float centrePoint[3];
} qm_tool_sphere_t;

typedef struct {
    float q_in[7];     /* reference joints, degrees */
    qm_pose_t q_pose;  /* target pose of the tool */
    uint8_t flag;      /* 0: the target's quaternion is used, any other value its Euler angles */
} qm_inverse_kinematics_params_t;

typedef struct {
    int result;          /* 1 when at least one solution was found, else 0 */
    int num;             /* number of solutions in q_solve */
    float q_ref[8];      /* reference joints, degrees */
    float q_solve[8][8]; /* solutions, degrees */
} qm_inverse_kinematics_all_solve_t;

/* ---- arm command catalogue records ---- */

/* One joint pass-through target, streamed without a reply. */
typedef struct {
    float* joint;        /* dof angles, degrees */
    float expand;        /* position of the expansion axis */
    bool follow;
    int trajectory_mode; /* 0, 1 or 2; bounds radio at 0, 100 and 1000 */
    int radio;
} qm_movej_canfd_mode_t;

/* One pose pass-through target, streamed without a reply. */
typedef struct {
    qm_pose_t pose; /* sent by quaternion when it is near unit length, else by Euler angles */
    bool follow;
    int trajectory_mode; /* 0, 1 or 2; bounds radio at 0, 100 and 1000 */
    int radio;
} qm_movep_canfd_mode_t;

/* Axis of a Cartesian step or jog. */
typedef enum {
    QM_X_DIR_E = 0,
    QM_Y_DIR_E = 1,
    QM_Z_DIR_E = 2,
} qm_pos_teach_type_e;

/* Axis of a rotation step or jog. */
typedef enum {
    QM_RX_ROTATE_E = 0,
    QM_RY_ROTATE_E = 1,
    QM_RZ_ROTATE_E = 2,
} qm_ort_teach_type_e;

/* The arm's present state: end pose, joint angles (degrees, dof entries) and error codes. */
typedef struct {
    qm_pose_t pose;
    float joint[ARM_DOF];
    qm_err_t err;
} qm_current_arm_state_t;

/* Per-joint state: currents, enables, temperatures, voltages, error codes, plus error codes of the arm. */
typedef struct {
    float joint_current[ARM_DOF];
    int joint_en_flag[ARM_DOF];
    float joint_temperature[ARM_DOF];
    float joint_voltage[ARM_DOF];
    int joint_err_code[ARM_DOF];
    qm_err_t err;
} qm_arm_all_state_t;

typedef struct {
    char version[20];
} qm_algorithm_version_t;

typedef struct {
    char build_time[20];
    char version[20];
} qm_software_build_info_t;

typedef struct {
    char model_version[5];
} qm_dynamic_version_t;

/* The controller's software information; every text is NUL-terminated. */
typedef struct {
    char product_version[20];          /* arm model with its force-sensor suffix */
    char robot_controller_version[10]; /* "4.0" for the fourth generation */
    qm_algorithm_version_t algorithm_info;
    qm_software_build_info_t ctrl_info;
    qm_dynamic_version_t dynamic_info;
    qm_software_build_info_t plan_info;
    qm_software_build_info_t com_info;
    qm_software_build_info_t program_info;
} qm_arm_software_version_t;

/* One name of a tool or work frame list. */
typedef struct {
    char name[12];
} qm_frame_name_t;

/* One sphere of a tool envelope, metres. */
typedef struct {
    char name[12];
    float radius;
    float x;
    float y;
    float z;
} qm_envelopes_ball_t;

/* The envelope of one tool: up to five spheres. */
typedef struct {
    qm_envelopes_ball_t balls[5];
    int size;
    char tool_name[12];
} qm_envelope_balls_list_t;

/* ---- controller, power, network and serial ports ---- */

/* The controller's wireless network, every text terminated. */
typedef struct {
    int channel;       /* written only in access-point mode */
    char ip[16];
    char mac[18];
    char mask[16];
    char mode[5];      /* as the controller reports it: "ap", "sta", "off" */
    char password[16]; /* not written when the mode is "off" */
    char ssid[32];     /* not written when the mode is "off" */
} qm_wifi_net_t;

/* ---- controller and tool IO ---- */

/* Speed and mode of an IO port in real-time mode (IO mode 14). */
typedef struct {
    int speed;
    int mode;
} qm_io_real_time_config_t;

/* The mode of one controller IO port. */
typedef struct {
    int io_mode; /* 0..14 */
    qm_io_real_time_config_t io_real_time_config_t; /* used when io_mode is 14 */
} qm_io_config_t;

/* The state and mode of one controller IO port. */
typedef struct {
    int io_state;
    qm_io_config_t io_config;
} qm_io_get_t;

/* ---- Modbus RTU and Modbus TCP ---- */

/* A register or coil range of a slave on one controller port. */
typedef struct {
    int port;    /* controller port */
    int address; /* first register or coil */
    int device;  /* slave id */
    int num;     /* count */
} qm_peripheral_read_write_params_t;

typedef struct {
    int address;
    int device;
    int type;
    int num;
} qm_modbus_rtu_read_params_t;

typedef struct {
    int address;
    int device;
    int type;
    int num;       /* values of data sent, at most 120 */
    int data[120];
} qm_modbus_rtu_write_params_t;

/* A Modbus TCP slave is named by ip and port when ip holds 7 to 15 characters, else by master_name. */
typedef struct {
    int address;
    char master_name[20];
    char ip[16];
    int port;
    int num;
} qm_modbus_tcp_read_params_t;

typedef struct {
    int address;
    char master_name[20];
    char ip[16];
    int port;
    int num;       /* values of data sent, at most 120 */
    int data[120];
} qm_modbus_tcp_write_params_t;

/* One stored Modbus TCP master of the controller. */
typedef struct {
    char master_name[20];
    char ip[16];
    int port;
} qm_modbus_tcp_master_info_t;

/* One page of the controller's Modbus TCP masters. */
typedef struct {
    int page_num;
    int page_size;
    int total_size;
    char vague_search[32];
    int list_len; /* entries of master_list filled, at most 100 */
    qm_modbus_tcp_master_info_t master_list[100];
} qm_modbus_tcp_master_list_t;

/* ---- grippers, dexterous hand, lift and expansion axes ---- */

/* The two-finger gripper's state, as the controller reports it. */
typedef struct {
    int enable_state;
    int status;
    int error;
    int mode;
    int current_force;
    int temperature;
    int actpos;
} qm_gripper_state_t;

/* The state of the lift axis or of the expansion axis; mode is non-zero while it moves. */
typedef struct {
    int pos;
    int current;
    int err_flag;
    int mode;
} qm_expand_state_t;

/* ---- force sensing, drag teaching and force-position control ---- */

/* Six-axis sensor reading: raw, zeroed, zeroed in the work frame, zeroed in the tool frame. */
typedef struct {
    float force_data[6];
    float zero_force_data[6];
    float work_zero_force_data[6];
    float tool_zero_force_data[6];
} qm_force_data_t;

/* One-axis sensor reading, the same four views. */
typedef struct {
    float Fz;
    float zero_Fz;
    float work_zero_Fz;
    float tool_zero_Fz;
} qm_fz_data_t;

/* Multi-axis drag teaching: one free flag per Cartesian axis, reference frame, singularity wall. */
typedef struct {
    int free_axes[6];
    int frame;
    int singular_wall;
} qm_multi_drag_teach_t;

/* Force-position control: per Cartesian axis a control mode, a desired force and a speed limit. */
typedef struct {
    int sensor;
    int mode;
    int control_mode[6];
    float desired_force[6];
    float limit_vel[6];
} qm_force_position_t;

/* One streamed force-position target: joint (flag 0, degrees) or pose (flag 1). */
typedef struct {
    int flag;
    qm_pose_t pose;
    float joint[ARM_DOF];
    int sensor;
    int mode;
    bool follow;
    int control_mode[6];
    float desired_force[6];
    float limit_vel[6];
    int trajectory_mode; /* 0, 1 or 2; bounds radio at 0, 100 and 1000 */
    int radio;
} qm_force_position_move_t;

/* ---- projects, programs, trajectory files and global waypoints ---- */

#define TRAJECTORY_FILE_NAME_MAX_LENGTH 300 /* path and name buffers */

/* A project file to upload; a non-zero project_type wraps it in a flowchart project's header lines. */
typedef struct {
    char project_path[TRAJECTORY_FILE_NAME_MAX_LENGTH];
    int project_path_len; /* characters of project_path in use */
    int plan_speed;
    int only_save;
    int save_id;
    int step_flag;
    int auto_start;
    int project_type;
} qm_send_project_t;

/* One program stored on the controller. */
typedef struct {
    int id;
    int size;
    int speed;
    char trajectory_name[32];
} qm_trajectory_data_t;

/* One page of stored programs. */
typedef struct {
    int page_num;
    int page_size;
    int list_size; /* programs in total */
    char vague_search[32];
    qm_trajectory_data_t trajectory_list[100];
} qm_program_trajectorys_t;

typedef struct {
    int run_state; /* 1 while running */
    int id;
    int edit_id;
    int plan_num;
    int total_loop; /* entries of loop_num */
    int step_mode;
    int plan_speed;
    int loop_num[100];
    int loop_cont[100];
} qm_program_run_state_t;

typedef struct {
    int run_state; /* 1 while running */
    int id;
    char name[32];
    int plan_speed;
    int step_mode;
    char modal_id[50];
} qm_flowchart_run_state_t;

/* A named global waypoint: joints in degrees, pose in metres and radians. */
typedef struct {
    char point_name[20];
    float joint[ARM_DOF];
    qm_pose_t pose;
    char work_frame[12];
    char tool_frame[12];
    char time[50]; /* "YYYY-MM-DD hh:mm:ss", stamped by the library when sent */
} qm_waypoint_t;

typedef struct {
    int page_num;
    int page_size;
    int total_size;
    char vague_search[32];
    int list_len; /* entries of points_list in use */
    qm_waypoint_t points_list[100];
} qm_waypoint_list_t;

/* One trajectory file stored on the controller. */
typedef struct {
    int point_num;
    char name[20];
    char create_time[20];
} qm_trajectory_info_t;

typedef struct {
    int page_num;
    int page_size;
    int total_size;
    char vague_search[32];
    int list_len; /* entries of tra_list in use */
    qm_trajectory_info_t tra_list[100];
} qm_trajectory_list_t;

/* ---- safety zones and arm model configuration ---- */

/* Bounds of a cube zone, metres. */
typedef struct {
    float x_min_limit;
    float x_max_limit;
    float y_min_limit;
    float y_max_limit;
    float z_min_limit;
    float z_max_limit;
} qm_fence_config_cube_t;

/* Three points of a plane, metres. */
typedef struct {
    float x1;
    float y1;
    float z1;
    float x2;
    float y2;
    float z2;
    float x3;
    float y3;
    float z3;
} qm_fence_config_plane_t;

/* Centre and radius of a sphere zone, metres. */
typedef struct {
    float x;
    float y;
    float z;
    float radius;
} qm_fence_config_sphere_t;

/* An electronic fence or virtual wall; form selects the geometry used. */
typedef struct {
    int form; /* 1 cube, 2 plane, 3 sphere */
    char name[12];
    qm_fence_config_cube_t cube;
    qm_fence_config_plane_t plan;
    qm_fence_config_sphere_t sphere;
} qm_fence_config_t;

typedef struct {
    bool enable_state;
    int in_out_side;
    int effective_region;
} qm_electronic_fence_enable_t;

typedef struct {
    char name[12];
} qm_fence_names_t;

/* Every fence stored on the controller: at most 10. */
typedef struct {
    qm_fence_config_t config[10];
} qm_fence_config_list_t;

/* One firmware version text. */
typedef struct {
    char version[10];
} qm_version_t;

#ifdef __cplusplus
}
#endif

#endif /* QM_DEFINE_H */
