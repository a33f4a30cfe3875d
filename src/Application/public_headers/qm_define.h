/** @file
 * Records, enumerations, callback types and constants of the public API.
 *
 * Units, unless a field says otherwise: positions in metres, angles of poses in radians,
 * joint angles in degrees. Texts in fixed character arrays are NUL-terminated. Joint arrays
 * hold ARM_DOF slots of which an arm uses its dof (6 or 7). */
#ifndef QM_DEFINE_H
#define QM_DEFINE_H

#include <stdarg.h>
#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- shared constants ---- */

#define ARM_DOF 7             /**< Joint slots of every joint array in the records. */
#define QM_MOVE_NBLOCK 0      /**< Move block argument: return once the controller accepted the move. */
#define QM_MOVE_MULTI_BLOCK 1 /**< Move block argument: wait for the move's arrival event. */

/* ---- enumerations ---- */

/** Threads the library runs, chosen once by qm_init(). */
typedef enum {
    QM_SINGLE_MODE_E = 0, /**< No thread: each command reads its own reply from the socket. */
    QM_DUAL_MODE_E = 1,   /**< A TCP receive thread files replies and delivers events. */
    QM_TRIPLE_MODE_E = 2, /**< TCP receive thread and UDP realtime thread. */
} qm_thread_mode_e;

/** Arm model, learnt from the controller's product text. */
typedef enum {
    QM_MODEL_QM_65_E = 0,     /**< QM65, six joints. */
    QM_MODEL_QM_75_E = 1,     /**< QM75, seven joints. */
    QM_MODEL_QM_63_I_E = 2,   /**< QML63 first version, six joints. */
    QM_MODEL_QM_63_II_E = 3,  /**< QML63 second version, six joints. */
    QM_MODEL_QM_63_III_E = 4, /**< QML63III, six joints. */
    QM_MODEL_LUX_65_E = 5,    /**< LUX65, six joints. */
    QM_MODEL_LUX_62_E = 6,    /**< LUX62, six joints. */
    QM_MODEL_TAV_72_E = 7,    /**< TAV72, seven joints. */
    QM_MODEL_LUX_63_E = 8,    /**< LUX63, six joints. */
    QM_MODEL_UNIVERSAL_E = 9, /**< A product text naming no known model; treated as seven joints. */
} qm_robot_arm_model_e;

/** Force-sensing variant of the arm, from the suffix of its product text. */
typedef enum {
    QM_MODEL_QM_B_E = 0,   /**< "-B": no force sensor. */
    QM_MODEL_QM_ZF_E = 1,  /**< "-ZF": one-axis (Fz) sensor. */
    QM_MODEL_QM_SF_E = 2,  /**< "-6F": six-axis sensor. */
    QM_MODEL_QM_ISF_E = 3, /**< "-6FB": integrated six-axis sensor. */
} qm_force_type_e;

/** Kind of an event delivered to the event callback. */
typedef enum {
    QM_NONE_EVENT_E = 0,               /**< No event. */
    QM_CURRENT_TRAJECTORY_STATE_E = 1, /**< A trajectory of some device ended ("current_trajectory_state"). */
    QM_PROGRAM_RUN_FINISH_E = 2,       /**< A stored program finished ("program_run_finish"). */
} qm_event_type_e;

/** What the controller is planning, as qm_get_arm_current_trajectory() reports it. */
typedef enum {
    QM_NO_PLANNING_E = 0,                  /**< Nothing; the data are joint angles. */
    QM_JOINT_SPACE_PLANNING_E = 1,         /**< A joint-space move; joint angles. */
    QM_CARTESIAN_LINEAR_PLANNING_E = 2,    /**< A linear move; a pose. */
    QM_CARTESIAN_ARC_PLANNING_E = 3,       /**< An arc move; a pose. */
    QM_SPLINE_CURVE_MOTION_PLANNING_E = 4, /**< A spline move; a pose. */
    QM_TRAJECTORY_REPLAY_PLANNING_E = 5,   /**< A trajectory replay; joint angles. */
} qm_arm_current_trajectory_e;

/** The arm's activity in the realtime push; an unknown text reads as QM_IDLE_E. */
typedef enum {
    QM_IDLE_E = 0,                    /**< "idle" */
    QM_MOVE_L_E = 1,                  /**< "move_L": linear move. */
    QM_MOVE_J_E = 2,                  /**< "move_J": joint move. */
    QM_MOVE_C_E = 3,                  /**< "move_C": arc move. */
    QM_MOVE_S_E = 4,                  /**< "move_S": spline move. */
    QM_MOVE_THROUGH_JOINT_E = 5,      /**< "move_through_joint": joint pass-through. */
    QM_MOVE_THROUGH_POSE_E = 6,       /**< "move_through_pose": pose pass-through. */
    QM_MOVE_THROUGH_FORCE_POSE_E = 7, /**< "move_through_force_pose": force-position pass-through. */
    QM_MOVE_THROUGH_CURRENT_E = 8,    /**< "move_through_current": current pass-through. */
    QM_STOP_E = 9,                    /**< "stop" */
    QM_SLOW_STOP_E = 10,              /**< "slow_stop" */
    QM_PAUSE_E = 11,                  /**< "pause" */
    QM_CURRENT_DRAG_E = 12,           /**< "current_drag": drag teaching by joint currents. */
    QM_SENSOR_DRAG_E = 13,            /**< "sensor_drag": drag teaching by the force sensor. */
    QM_TECH_DEMONSTRATION_E = 14,     /**< "tech_demonstration": teaching by demonstration. */
} qm_udp_arm_current_status_e;

/* ---- logging ---- */

/** Severity of a log message; a sink receives the messages at or above its level. */
typedef enum {
    LOG_LEVEL_DEBUG = 0, /**< Every request, reply and step. */
    LOG_LEVEL_INFO = 1,  /**< Notable events. */
    LOG_LEVEL_WARN = 2,  /**< Tolerated oddities. */
    LOG_LEVEL_ERROR = 3, /**< Failures (the default level). */
} LogLevel;

/** A log sink: receives the printf-style format and its unformatted arguments. */
typedef void (*LogCallback)(const char* format, va_list args);

/* ---- shared records ---- */

/** One arm connection; the library finds it by this record's address, never by id. */
typedef struct {
    int id; /**< 1..5, or -1 when connecting or synchronising failed. */
} qm_robot_handle;

/** A position, metres. */
typedef struct {
    float x; /**< Metres. */
    float y; /**< Metres. */
    float z; /**< Metres. */
} qm_position_t;

/** A unit quaternion, scalar first. */
typedef struct {
    float w; /**< Scalar part. */
    float x; /**< Vector part, X. */
    float y; /**< Vector part, Y. */
    float z; /**< Vector part, Z. */
} qm_quat_t;

/** Fixed-axis X-Y-Z Euler angles, radians: R = Rz * Ry * Rx. */
typedef struct {
    float rx; /**< Radians about X. */
    float ry; /**< Radians about Y. */
    float rz; /**< Radians about Z. */
} qm_euler_t;

/** A pose: position and orientation, the orientation both as quaternion and as Euler angles. */
typedef struct {
    qm_position_t position; /**< Metres. */
    qm_quat_t quaternion;   /**< Unit quaternion. */
    qm_euler_t euler;       /**< Radians. */
} qm_pose_t;

/** A named tool or work frame; work frames use the name and pose only. */
typedef struct {
    char frame_name[12]; /**< Name. */
    qm_pose_t pose;      /**< The frame's pose: metres and radians. */
    float payload;       /**< Payload, kg. */
    float x;             /**< Centre of mass of the payload, X, metres. */
    float y;             /**< Centre of mass of the payload, Y, metres. */
    float z;             /**< Centre of mass of the payload, Z, metres. */
} qm_frame_t;

/** Denavit-Hartenberg parameters, one entry per joint. */
typedef struct {
    float d[8];      /**< Link offsets, metres. */
    float a[8];      /**< Link lengths, metres. */
    float alpha[8];  /**< Link twists, radians. */
    float offset[8]; /**< Joint angle offsets, radians. */
} qm_dh_t;

/** The controller's error codes. */
typedef struct {
    uint8_t err_len; /**< Codes in err. */
    int err[24];     /**< The codes, as the controller reports them. */
} qm_err_t;

/** What a connection learnt about its arm. */
typedef struct {
    uint8_t arm_dof;                  /**< Number of joints. */
    qm_robot_arm_model_e arm_model;   /**< Arm model. */
    qm_force_type_e force_type;       /**< Force-sensing variant. */
    uint8_t robot_controller_version; /**< Controller generation: 4 when it reports "4.0", else 3. */
} qm_robot_info_t;

/** One event, as the event callback receives it. */
typedef struct {
    int handle_id;              /**< id of the connection that received it. */
    qm_event_type_e event_type; /**< Trajectory end or program end. */
    bool trajectory_state;      /**< Trajectory event: whether the trajectory ended successfully. */
    int device;             /**< Trajectory event: 0 arm, 1 gripper, 2 hand, 3 lift axis, 4 expansion axis. */
    int trajectory_connect; /**< Trajectory event: 1 when connected trajectories follow, 0 for the last. */
    int program_id;         /**< Program event: the finished program's id. */
} qm_event_push_data_t;

/** The event callback; runs on the TCP receive thread. */
typedef void (*qm_event_callback_ptr)(qm_event_push_data_t data);

/* ---- realtime state push ---- */

/** Optional push sections: 1 on, 0 off, -1 leave out (setting) or not reported (reading). */
typedef struct {
    int joint_speed;        /**< Joint speeds. */
    int lift_state;         /**< Lift axis state. */
    int expand_state;       /**< Expansion axis state. */
    int hand_state;         /**< Dexterous hand state. */
    int arm_current_status; /**< The arm's activity. */
    int aloha_state;        /**< Aloha IO states. */
    int plus_base;          /**< End-effector base information. */
    int plus_state;         /**< End-effector live state (sent only when plus_base is not -1). */
} qm_udp_custom_config_t;

/** The controller's realtime push: where it sends the state, how often, with which sections. */
typedef struct {
    int cycle;            /**< Push period in the controller's unit, 1 or more. */
    bool enable;          /**< Whether the controller pushes. */
    int port;             /**< UDP port of this machine that receives the push, 1 or more. */
    int force_coordinate; /**< Frame of the force data; -1 when the arm has no force sensor. */
    char ip[28];          /**< IPv4 address text of this machine, 7 to 15 characters. */
    qm_udp_custom_config_t custom_config; /**< Optional sections. */
} qm_realtime_push_config_t;

/** State of every joint in the realtime push. */
typedef struct {
    float joint_current[ARM_DOF];     /**< Currents: the push's thousandths divided by 1000. */
    bool joint_en_flag[ARM_DOF];      /**< Whether each joint is enabled. */
    uint16_t joint_err_code[ARM_DOF]; /**< Error code of each joint. */
    float joint_position[ARM_DOF];    /**< Degrees. */
    float joint_temperature[ARM_DOF]; /**< Temperatures: the push's thousandths divided by 1000. */
    float joint_voltage[ARM_DOF];     /**< Voltages: the push's thousandths divided by 1000. */
    float joint_speed[ARM_DOF];       /**< Degrees per second (the push's value times 6 / 1000). */
} qm_joint_status_t;

/** Force sensor data in the realtime push. */
typedef struct {
    float force[6];      /**< Fx, Fy, Fz (N), Mx, My, Mz (N m) as measured. */
    float zero_force[6]; /**< The same after zeroing. */
    int coordinate;      /**< Frame the data are expressed in. */
} qm_force_sensor_t;

/** Lift axis state in the realtime push. */
typedef struct {
    int height;   /**< Height, as the controller reports it. */
    float pos;    /**< Position: the push's thousandths divided by 1000. */
    int current;  /**< Current. */
    int err_flag; /**< Error flag. */
    int en_flag;  /**< Enable flag. */
} qm_udp_lift_state_t;

/** Expansion axis state in the realtime push. */
typedef struct {
    float pos;    /**< Position: the push's thousandths divided by 1000. */
    int current;  /**< Current. */
    int err_flag; /**< Error flag. */
    int en_flag;  /**< Enable flag. */
    int joint_id; /**< Joint number of the axis. */
    int mode;     /**< Mode, non-zero while it moves. */
} qm_udp_expand_state_t;

/** Dexterous hand state in the realtime push, one value per finger degree of freedom. */
typedef struct {
    int hand_pos[6];   /**< Positions. */
    int hand_angle[6]; /**< Angles. */
    int hand_force[6]; /**< Forces. */
    int hand_state[6]; /**< States. */
    int hand_err;      /**< Error code of the hand. */
} qm_udp_hand_state_t;

/** The two Aloha IO states in the realtime push. */
typedef struct {
    int io1_state; /**< IO 1. */
    int io2_state; /**< IO 2. */
} qm_udp_aloha_state_t;

/** Base information of the end-effector device, as it reports it; arrays hold one value per degree of
 * freedom. */
typedef struct {
    char manu[10];     /**< Manufacturer. */
    int type;          /**< Device type. */
    char hv[10];       /**< Hardware version. */
    char sv[10];       /**< Software version. */
    char bv[10];       /**< Version text "bv". */
    int id;            /**< Device id. */
    int dof;           /**< Degrees of freedom. */
    int check;         /**< Check value. */
    int bee;           /**< Buzzer value. */
    bool force;        /**< Whether it senses force. */
    bool touch;        /**< Whether it senses touch. */
    int touch_num;     /**< Number of touch sensors. */
    int touch_sw;      /**< Touch switch value. */
    int hand;          /**< Hand value. */
    int pos_up[12];    /**< Upper position limits. */
    int pos_low[12];   /**< Lower position limits. */
    int angle_up[12];  /**< Upper angle limits. */
    int angle_low[12]; /**< Lower angle limits. */
    int speed_up[12];  /**< Upper speed limits. */
    int speed_low[12]; /**< Lower speed limits. */
    int force_up[12];  /**< Upper force limits. */
    int force_low[12]; /**< Lower force limits. */
} qm_plus_base_info_t;

/** Live state of the end-effector device, as it reports it, per degree of freedom or touch point. */
typedef struct {
    int sys_state;                /**< System state. */
    int dof_state[12];            /**< State of each degree of freedom. */
    int dof_err[12];              /**< Error of each degree of freedom. */
    int pos[12];                  /**< Positions. */
    int speed[12];                /**< Speeds. */
    int angle[12];                /**< Angles. */
    int current[12];              /**< Currents. */
    int normal_force[18];         /**< Normal force of each touch point. */
    int tangential_force[18];     /**< Tangential force of each touch point. */
    int tangential_force_dir[18]; /**< Direction of each tangential force. */
    uint32_t tsa[12];             /**< "tsa" values. */
    uint32_t tma[12];             /**< "tma" values. */
    int touch_data[18];           /**< Touch data. */
    int force[12];                /**< Forces. */
} qm_plus_state_info_t;

/** One realtime push datagram, as the realtime callback receives it. */
typedef struct {
    int errCode;                                    /**< 0, or -3 when the datagram could not be parsed. */
    char arm_ip[16];                                /**< IPv4 address of the controller that sent it. */
    qm_joint_status_t joint_status;                 /**< Joints. */
    qm_force_sensor_t force_sensor;                 /**< Force sensor (one-axis data win over six-axis). */
    qm_err_t err;                                   /**< The arm's error codes. */
    qm_pose_t waypoint;                             /**< The tool's pose: metres, radians. */
    qm_udp_lift_state_t liftState;                  /**< Lift axis, when pushed. */
    qm_udp_expand_state_t expandState;              /**< Expansion axis, when pushed. */
    qm_udp_hand_state_t handState;                  /**< Dexterous hand, when pushed. */
    qm_udp_arm_current_status_e arm_current_status; /**< The arm's activity, when pushed. */
    qm_udp_aloha_state_t aloha_state;               /**< Aloha IO, when pushed. */
    int qm_plus_state;                    /**< End-effector device: 1 "disable", 2 "offline", else 0. */
    qm_plus_base_info_t plus_base_info;   /**< End-effector base information, when pushed. */
    qm_plus_state_info_t plus_state_info; /**< End-effector live state, when pushed. */
} qm_realtime_arm_joint_state_t;

/** The realtime callback; runs on the UDP thread, once per datagram, and must return quickly. */
typedef void (*qm_realtime_arm_state_callback_ptr)(qm_realtime_arm_joint_state_t data);

/* ---- kinematics bridge records ---- */

/** A homogeneous transform indexed [row][column], translation (metres) in column 3. */
typedef struct {
    int16_t irow;     /**< Rows in use: 4 for a transform, 3 for a rotation. */
    int16_t iline;    /**< Columns in use: 4 for a transform, 3 for a rotation. */
    float data[4][4]; /**< The elements. */
} qm_matrix_t;

/** One sphere of the tool envelope in the flange frame; radius 0 leaves it out. */
typedef struct {
    float radius;         /**< Metres. */
    float centrePoint[3]; /**< Centre, metres. */
} qm_tool_sphere_t;

/** What inverse kinematics solves for. */
typedef struct {
    float q_in[7];    /**< Reference joints, degrees. */
    qm_pose_t q_pose; /**< Target pose of the tool: metres, radians. */
    uint8_t flag;     /**< 0: the target's quaternion is used, any other value its Euler angles. */
} qm_inverse_kinematics_params_t;

/** Every inverse-kinematics branch for one target. */
typedef struct {
    int result;          /**< 1 when at least one solution was found, else 0. */
    int num;             /**< Number of solutions in q_solve. */
    float q_ref[8];      /**< Reference joints, degrees. */
    float q_solve[8][8]; /**< Solutions, degrees. */
} qm_inverse_kinematics_all_solve_t;

/* ---- arm command catalogue records ---- */

/** One joint pass-through target, streamed without a reply. */
typedef struct {
    float* joint;        /**< dof angles, degrees. */
    float expand;        /**< Position of the expansion axis. */
    bool follow;         /**< Follow mode as the controller defines it. */
    int trajectory_mode; /**< 0, 1 or 2; bounds radio at 0, 100 and 1000 (beyond: a warning only). */
    int radio;           /**< Smoothing ratio for the trajectory mode. */
} qm_movej_canfd_mode_t;

/** One pose pass-through target, streamed without a reply. */
typedef struct {
    qm_pose_t pose;      /**< Sent by quaternion when it is near unit length, else by Euler angles. */
    bool follow;         /**< Follow mode as the controller defines it. */
    int trajectory_mode; /**< 0, 1 or 2; bounds radio at 0, 100 and 1000 (beyond: a warning only). */
    int radio;           /**< Smoothing ratio for the trajectory mode. */
} qm_movep_canfd_mode_t;

/** Axis of a Cartesian step or jog. */
typedef enum {
    QM_X_DIR_E = 0, /**< Along X. */
    QM_Y_DIR_E = 1, /**< Along Y. */
    QM_Z_DIR_E = 2, /**< Along Z. */
} qm_pos_teach_type_e;

/** Axis of a rotation step or jog. */
typedef enum {
    QM_RX_ROTATE_E = 0, /**< About X. */
    QM_RY_ROTATE_E = 1, /**< About Y. */
    QM_RZ_ROTATE_E = 2, /**< About Z. */
} qm_ort_teach_type_e;

/** The arm's present state. */
typedef struct {
    qm_pose_t pose;       /**< Tool pose: metres, radians; the quaternion computed from the Euler angles. */
    float joint[ARM_DOF]; /**< Joint angles, degrees, dof entries. */
    qm_err_t err;         /**< The arm's error codes. */
} qm_current_arm_state_t;

/** Per-joint state, dof entries each, plus the arm's error codes. */
typedef struct {
    float joint_current[ARM_DOF];     /**< Currents: the controller's thousandths divided by 1000. */
    int joint_en_flag[ARM_DOF];       /**< Enable flags. */
    float joint_temperature[ARM_DOF]; /**< Temperatures: the controller's thousandths divided by 1000. */
    float joint_voltage[ARM_DOF];     /**< Voltages: the controller's thousandths divided by 1000. */
    int joint_err_code[ARM_DOF];      /**< Error codes. */
    qm_err_t err;                     /**< The arm's error codes. */
} qm_arm_all_state_t;

/** Version of the controller's motion algorithms. */
typedef struct {
    char version[20]; /**< Version text. */
} qm_algorithm_version_t;

/** Version and build time of one controller component. */
typedef struct {
    char build_time[20]; /**< Build time text. */
    char version[20];    /**< Version text. */
} qm_software_build_info_t;

/** Version of the controller's dynamics model. */
typedef struct {
    char model_version[5]; /**< Version text, at most 4 characters. */
} qm_dynamic_version_t;

/** The controller's software information; every text is NUL-terminated. */
typedef struct {
    char product_version[20];              /**< Arm model with its force-sensor suffix, such as "QM65-B". */
    char robot_controller_version[10];     /**< "4.0" for the fourth generation. */
    qm_algorithm_version_t algorithm_info; /**< Motion algorithms. */
    qm_software_build_info_t ctrl_info;    /**< Control layer. */
    qm_dynamic_version_t dynamic_info;     /**< Dynamics model. */
    qm_software_build_info_t plan_info;    /**< Planning layer (read from the control layer's entry). */
    qm_software_build_info_t com_info;     /**< Communication layer (fourth generation). */
    qm_software_build_info_t program_info; /**< Program layer (fourth generation). */
} qm_arm_software_version_t;

/** One name of a tool or work frame list. */
typedef struct {
    char name[12]; /**< Frame name. */
} qm_frame_name_t;

/** One sphere of a tool envelope. */
typedef struct {
    char name[12]; /**< Sphere name. */
    float radius;  /**< Metres. */
    float x;       /**< Centre, X, metres. */
    float y;       /**< Centre, Y, metres. */
    float z;       /**< Centre, Z, metres. */
} qm_envelopes_ball_t;

/** The envelope of one tool: up to five spheres. */
typedef struct {
    qm_envelopes_ball_t balls[5]; /**< The spheres. */
    int size;                     /**< Spheres in use. */
    char tool_name[12];           /**< The tool frame the envelope belongs to. */
} qm_envelope_balls_list_t;

/* ---- controller, power, network and serial ports ---- */

/** The controller's wireless network, every text terminated. */
typedef struct {
    int channel;       /**< Channel; written only in access-point mode. */
    char ip[16];       /**< IPv4 address. */
    char mac[18];      /**< MAC address. */
    char mask[16];     /**< Network mask. */
    char mode[5];      /**< As the controller reports it: "ap", "sta", "off". */
    char password[16]; /**< Password; not written when the mode is "off". */
    char ssid[32];     /**< Network name; not written when the mode is "off". */
} qm_wifi_net_t;

/* ---- controller and tool IO ---- */

/** Speed and mode of an IO port in real-time mode (IO mode 14). */
typedef struct {
    int speed; /**< Speed, as the controller defines it. */
    int mode;  /**< Mode, as the controller defines it. */
} qm_io_real_time_config_t;

/** The mode of one controller IO port. */
typedef struct {
    int io_mode;                                    /**< 0..14, as the controller defines them. */
    qm_io_real_time_config_t io_real_time_config_t; /**< Used when io_mode is 14; -1 and -1 read below 14. */
} qm_io_config_t;

/** The state and mode of one controller IO port. */
typedef struct {
    int io_state;             /**< State of the port. */
    qm_io_config_t io_config; /**< Its mode. */
} qm_io_get_t;

/* ---- Modbus RTU and Modbus TCP ---- */

/** A register or coil range of a slave on one controller port. */
typedef struct {
    int port;    /**< Controller port. */
    int address; /**< First register or coil. */
    int device;  /**< Slave id. */
    int num;     /**< Count. */
} qm_peripheral_read_write_params_t;

/** A read from a Modbus RTU slave. */
typedef struct {
    int address; /**< First register or coil. */
    int device;  /**< Slave id. */
    int type;    /**< Port type, as the controller defines it. */
    int num;     /**< Count. */
} qm_modbus_rtu_read_params_t;

/** A write to a Modbus RTU slave. */
typedef struct {
    int address;   /**< First register or coil. */
    int device;    /**< Slave id. */
    int type;      /**< Port type, as the controller defines it. */
    int num;       /**< Values of data sent, at most 120. */
    int data[120]; /**< The values. */
} qm_modbus_rtu_write_params_t;

/** A read from a Modbus TCP slave, named by ip and port when ip holds 7 to 15 characters, else by
 * master_name. */
typedef struct {
    int address;          /**< First register or coil. */
    char master_name[20]; /**< A stored master. */
    char ip[16];          /**< The slave's IPv4 address. */
    int port;             /**< The slave's TCP port. */
    int num;              /**< Count. */
} qm_modbus_tcp_read_params_t;

/** A write to a Modbus TCP slave, named as for a read. */
typedef struct {
    int address;          /**< First register or coil. */
    char master_name[20]; /**< A stored master. */
    char ip[16];          /**< The slave's IPv4 address. */
    int port;             /**< The slave's TCP port. */
    int num;              /**< Values of data sent, at most 120. */
    int data[120];        /**< The values. */
} qm_modbus_tcp_write_params_t;

/** One stored Modbus TCP master of the controller. */
typedef struct {
    char master_name[20]; /**< Its name. */
    char ip[16];          /**< IPv4 address of the slave it reaches. */
    int port;             /**< TCP port of the slave it reaches. */
} qm_modbus_tcp_master_info_t;

/** One page of the controller's Modbus TCP masters. */
typedef struct {
    int page_num;                                 /**< Page number. */
    int page_size;                                /**< Entries per page. */
    int total_size;                               /**< Masters in total. */
    char vague_search[32];                        /**< The name filter. */
    int list_len;                                 /**< Entries of master_list filled, at most 100. */
    qm_modbus_tcp_master_info_t master_list[100]; /**< The page. */
} qm_modbus_tcp_master_list_t;

/* ---- grippers, dexterous hand, lift and expansion axes ---- */

/** The two-finger gripper's state, as the controller reports it. */
typedef struct {
    int enable_state;  /**< Enable state. */
    int status;        /**< Status. */
    int error;         /**< Error code. */
    int mode;          /**< Mode. */
    int current_force; /**< Present force. */
    int temperature;   /**< Temperature. */
    int actpos;        /**< Present position. */
} qm_gripper_state_t;

/** The state of the lift axis or of the expansion axis, as the controller reports it. */
typedef struct {
    int pos;      /**< Position (the lift axis's height). */
    int current;  /**< Current. */
    int err_flag; /**< Error flag. */
    int mode;     /**< Non-zero while it moves. */
} qm_expand_state_t;

/* ---- force sensing, drag teaching and force-position control ---- */

/** Six-axis sensor reading, Fx, Fy, Fz (N) and Mx, My, Mz (N m) in each view. */
typedef struct {
    float force_data[6];           /**< Raw. */
    float zero_force_data[6];      /**< Zeroed, in the sensor frame. */
    float work_zero_force_data[6]; /**< Zeroed, in the work frame. */
    float tool_zero_force_data[6]; /**< Zeroed, in the tool frame. */
} qm_force_data_t;

/** One-axis sensor reading, N, in the same four views. */
typedef struct {
    float Fz;           /**< Raw. */
    float zero_Fz;      /**< Zeroed, in the sensor frame. */
    float work_zero_Fz; /**< Zeroed, in the work frame. */
    float tool_zero_Fz; /**< Zeroed, in the tool frame. */
} qm_fz_data_t;

/** Multi-axis drag teaching. */
typedef struct {
    int free_axes[6];  /**< Per Cartesian axis X, Y, Z, RX, RY, RZ: 1 free to drag, 0 locked. */
    int frame;         /**< Reference frame, as the controller defines it. */
    int singular_wall; /**< Singularity wall setting, as the controller defines it. */
} qm_multi_drag_teach_t;

/** Force-position control: per Cartesian axis a control mode, a desired force and a speed limit. */
typedef struct {
    int sensor;             /**< Sensor, as the controller defines it. */
    int mode;               /**< Mode, as the controller defines it. */
    int control_mode[6];    /**< Control mode per axis. */
    float desired_force[6]; /**< Desired force per axis, N (tenths travel). */
    float limit_vel[6];     /**< Speed limit per axis, m/s (thousandths travel). */
} qm_force_position_t;

/** One streamed force-position target: joints (flag 0) or a pose (flag 1). */
typedef struct {
    int flag;               /**< 0 the target is joint, 1 it is pose. */
    qm_pose_t pose;         /**< Target pose: metres, radians. */
    float joint[ARM_DOF];   /**< Target joints, degrees. */
    int sensor;             /**< Sensor, as the controller defines it. */
    int mode;               /**< Mode, as the controller defines it. */
    bool follow;            /**< Follow mode as the controller defines it. */
    int control_mode[6];    /**< Control mode per axis. */
    float desired_force[6]; /**< Desired force per axis, N (tenths travel). */
    float limit_vel[6];     /**< Speed limit per axis, m/s (thousandths travel). */
    int trajectory_mode;    /**< 0, 1 or 2; bounds radio at 0, 100 and 1000 (beyond: a warning only). */
    int radio;              /**< Smoothing ratio for the trajectory mode. */
} qm_force_position_move_t;

/* ---- projects, programs, trajectory files and global waypoints ---- */

#define TRAJECTORY_FILE_NAME_MAX_LENGTH 300 /**< Length of the path and name buffers. */

/** A project file to upload. */
typedef struct {
    char project_path[TRAJECTORY_FILE_NAME_MAX_LENGTH]; /**< Path of the file on this machine. */
    int project_path_len;                               /**< Characters of project_path in use. */
    int plan_speed;                                     /**< Speed ratio of the program. */
    int only_save;                                      /**< Non-zero: only store the program. */
    int save_id;                                        /**< Id the program is stored under. */
    int step_flag;                                      /**< Step flag, as the controller defines it. */
    int auto_start;                                     /**< Auto-start flag, as the controller defines it. */
    int project_type; /**< Non-zero: wrap it as a flowchart project first. */
} qm_send_project_t;

/** One program stored on the controller. */
typedef struct {
    int id;                   /**< Program id. */
    int size;                 /**< Size, as the controller reports it. */
    int speed;                /**< Speed ratio. */
    char trajectory_name[32]; /**< Program name. */
} qm_trajectory_data_t;

/** One page of stored programs. */
typedef struct {
    int page_num;                              /**< Page number. */
    int page_size;                             /**< Entries per page. */
    int list_size;                             /**< Programs in total. */
    char vague_search[32];                     /**< The name filter. */
    qm_trajectory_data_t trajectory_list[100]; /**< The page. */
} qm_program_trajectorys_t;

/** The state of the running program. */
typedef struct {
    int run_state;      /**< 1 while running. */
    int id;             /**< Running program's id. */
    int edit_id;        /**< Edit id, as the controller reports it. */
    int plan_num;       /**< Plan number, as the controller reports it. */
    int total_loop;     /**< Entries of loop_num and loop_cont. */
    int step_mode;      /**< Step mode. */
    int plan_speed;     /**< Speed ratio. */
    int loop_num[100];  /**< Loop numbers, total_loop entries. */
    int loop_cont[100]; /**< Loop counts, total_loop entries. */
} qm_program_run_state_t;

/** The state of the running flowchart program. */
typedef struct {
    int run_state;     /**< 1 while running. */
    int id;            /**< Running program's id. */
    char name[32];     /**< Its name. */
    int plan_speed;    /**< Speed ratio. */
    int step_mode;     /**< Step mode. */
    char modal_id[50]; /**< Id of the block being run. */
} qm_flowchart_run_state_t;

/** A named global waypoint. */
typedef struct {
    char point_name[20];  /**< Name. */
    float joint[ARM_DOF]; /**< Joints, degrees. */
    qm_pose_t pose;       /**< Tool pose: metres, radians. */
    char work_frame[12];  /**< Work frame of the pose. */
    char tool_frame[12];  /**< Tool frame of the pose. */
    char time[50];        /**< "YYYY-MM-DD hh:mm:ss", stamped by the library when sent. */
} qm_waypoint_t;

/** One page of global waypoints. */
typedef struct {
    int page_num;                   /**< Page number. */
    int page_size;                  /**< Entries per page. */
    int total_size;                 /**< Waypoints in total. */
    char vague_search[32];          /**< The name filter. */
    int list_len;                   /**< Entries of points_list in use. */
    qm_waypoint_t points_list[100]; /**< The page. */
} qm_waypoint_list_t;

/** One trajectory file stored on the controller. */
typedef struct {
    int point_num;        /**< Points in the file. */
    char name[20];        /**< File name. */
    char create_time[20]; /**< Creation time text. */
} qm_trajectory_info_t;

/** One page of trajectory files. */
typedef struct {
    int page_num;                       /**< Page number. */
    int page_size;                      /**< Entries per page. */
    int total_size;                     /**< Files in total. */
    char vague_search[32];              /**< The name filter. */
    int list_len;                       /**< Entries of tra_list in use. */
    qm_trajectory_info_t tra_list[100]; /**< The page. */
} qm_trajectory_list_t;

/* ---- safety zones and arm model configuration ---- */

/** Bounds of a cube zone, metres. */
typedef struct {
    float x_min_limit; /**< Lowest X, metres. */
    float x_max_limit; /**< Highest X, metres. */
    float y_min_limit; /**< Lowest Y, metres. */
    float y_max_limit; /**< Highest Y, metres. */
    float z_min_limit; /**< Lowest Z, metres. */
    float z_max_limit; /**< Highest Z, metres. */
} qm_fence_config_cube_t;

/** Three points of a plane, metres. */
typedef struct {
    float x1; /**< First point, X. */
    float y1; /**< First point, Y. */
    float z1; /**< First point, Z. */
    float x2; /**< Second point, X. */
    float y2; /**< Second point, Y. */
    float z2; /**< Second point, Z. */
    float x3; /**< Third point, X. */
    float y3; /**< Third point, Y. */
    float z3; /**< Third point, Z. */
} qm_fence_config_plane_t;

/** Centre and radius of a sphere zone, metres. */
typedef struct {
    float x;      /**< Centre, X. */
    float y;      /**< Centre, Y. */
    float z;      /**< Centre, Z. */
    float radius; /**< Radius. */
} qm_fence_config_sphere_t;

/** An electronic fence or virtual wall; form selects the geometry used. */
typedef struct {
    int form;                        /**< 1 cube, 2 plane, 3 sphere. */
    char name[12];                   /**< Name. */
    qm_fence_config_cube_t cube;     /**< Geometry of form 1. */
    qm_fence_config_plane_t plan;    /**< Geometry of form 2. */
    qm_fence_config_sphere_t sphere; /**< Geometry of form 3. */
} qm_fence_config_t;

/** Whether a fence or the virtual wall is active, and how. */
typedef struct {
    bool enable_state;    /**< Active. */
    int in_out_side;      /**< Inside or outside, as the controller defines it. */
    int effective_region; /**< Region it applies to, as the controller defines it. */
} qm_electronic_fence_enable_t;

/** One fence name. */
typedef struct {
    char name[12]; /**< Name. */
} qm_fence_names_t;

/** Every fence stored on the controller: at most 10. */
typedef struct {
    qm_fence_config_t config[10]; /**< The fences. */
} qm_fence_config_list_t;

/** One firmware version text. */
typedef struct {
    char version[10]; /**< Version text. */
} qm_version_t;

#ifdef __cplusplus
}
#endif

#endif /* QM_DEFINE_H */
