// What an arm's controller keeps besides the motion, one block per command family. Values
// the controller receives are kept in the units they travel in, so a value written reads back
// exactly.
#ifndef QM_SIM_ARM_STATE_H
#define QM_SIM_ARM_STATE_H

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "arm_model.h"
#include "motion.h"
#include "robot_define.h"

namespace sim {

using WireJoints = std::array<int, kMaxJoints>;
using Wire6 = std::array<int, 6>;  // x, y, z micrometres; rx, ry, rz thousandths of a radian

// ---- frames, limits, push ----

struct Frame {
    std::string name;
    Wire6 pose{};
    int payload = 0;              // thousandths of a kilogram
    std::array<int, 3> centre{};  // centre of mass of the payload, micrometres
};

struct EnvelopeBall {
    std::string name;
    int radius = 0, x = 0, y = 0, z = 0;  // thousandths of a metre
};

// Joint limits as the wire carries them: positions in thousandths of a degree, speeds and
// accelerations in thousandths of a sixth (degrees per second / 6).
struct JointLimitSet {
    WireJoints min_pos{}, max_pos{}, max_speed{}, max_acc{};
};

struct PushConfig {
    bool enable = true;
    int cycle_ms = 10;
    int port = 8089;
    std::string ip = "127.0.0.1";
    int force_coordinate = 0;
    std::map<std::string, bool> custom;  // optional sections by their key
};

// ---- controller, network, serial ports, IO ----

struct ControllerState {
    bool power = true;
    bool emergency_stop = false;
    int run_mode = 1;
    SimTime runtime_since{};                    // cleared by clear_system_runtime
    std::array<double, kMaxJoints> odometer{};  // degrees travelled per joint
};

struct NetworkState {
    std::string ip = "192.168.1.18", mask = "255.255.255.0", mac;
    std::string wifi_mode = "ap";  // "ap", "sta" or "off"
    std::string ssid = "qm-sim", password = "12345678";
    std::string wifi_ip = "192.168.33.80", wifi_mask = "255.255.255.0";
    int channel = 6;
};

constexpr int kModbusRtuMode = 1;  // the RS485 port mode in which it is a Modbus RTU master

struct SerialPort {
    int mode = 0;
    int baudrate = 115200;
    int modbus_timeout = 100;  // only reported in Modbus RTU mode
};

struct SerialState {
    int usb_baudrate = 460800;
    int rs485_baudrate = 460800;
    SerialPort controller, tool;  // Modbus port numbers 0 and 1
    bool modbus_tcp = false;      // Modbus port 2, opened by set_modbustcp_mode
    std::string tcp_ip;
    int tcp_port = 0;
};

constexpr int kIoPorts = 5;      // 0..4; ports 1..4 carry a digital level
constexpr int kToolIoPorts = 2;  // 1..2

struct IoState {
    std::array<int, kIoPorts> mode{};
    std::array<int, kIoPorts> level{};
    std::array<std::array<int, 2>, kIoPorts> realtime{};  // speed and mode of the real-time mode
    int voltage = 0;
    std::array<int, kToolIoPorts> tool_mode{}, tool_level{};
    int tool_voltage = 0;
};

// ---- Modbus ----

struct ModbusSlave {
    std::map<int, int> coils, registers;  // what was written; the rest reads 0
};

struct ModbusMaster {
    std::string name, ip;
    int port = 502;
};

struct ModbusState {
    std::map<std::string, ModbusSlave> slaves;  // by bus and device, see commands/modbus.cpp
    std::vector<ModbusMaster> masters;
};

// ---- end effectors and extra axes ----

// Values that move in a straight line from `from` to `to` between two simulated times.
struct Travel {
    explicit Travel(std::vector<int> at = {}) : from(at), to(std::move(at)) {}
    std::vector<int> from, to;
    SimTime start{}, end{};
    std::uint64_t arrival = 0;  // the arm timer that reports the arrival, 0 for none

    std::vector<int> at(SimTime now) const;
    bool moving(SimTime now) const { return now < end; }
};

struct GripperState {
    int min = 0, max = 1000;  // route, thousandths of the opening
    Travel opening{{1000}};
    int force = 0;  // the force it holds, 0 when it does not grip
    int mode = 0;   // the last motion: 1 release, 2 pick, 3 pick and hold on, 4 position
    int speed = 500;
};

constexpr int kFingers = 6;

struct HandState {
    Travel fingers{std::vector<int>(kFingers, 0)};  // finger positions 0..1000
    int speed = 500, force = 500;
};

struct AxisState {
    explicit AxisState(int at) : position({at}) {}
    Travel position;
};

struct EndEffectorState {
    int mode = 1;  // 0 switches the device off
    int touch = 0;
};

// ---- force sensing, drag teaching, force-position control ----

struct ForceState {
    std::array<int, 6> zero_offset{};  // what the last zeroing subtracts, thousandths
    bool calibrated = false;           // the sensor's bias and the tool's load are compensated
    std::uint64_t calibration = 0;     // the timer of a running calibration, 0 for none
    int manual_poses = 0;              // a bit for each taught calibration pose
    int drag_sensitivity = 50;
    int drag_mode = 1;  // 1 drags by the force sensor, 0 by the joint currents
    bool force_position = false;
    std::array<int, 6> desired_force{};  // tenths of a newton, held while force_position
    bool streaming = false;              // between Start_ and Stop_Force_Position_Move
};

struct DragState {
    bool active = false;
    bool recording = false;
    SimTime started{};
    std::vector<std::pair<SimTime, Joints>> placed;  // where the hand put the arm, and when
    std::vector<Joints> recorded;                     // the last recording, one point per sample
    std::vector<Joints> replay;                       // what run_drag_trajectory plays
};

// ---- programs, trajectory files, waypoints ----

struct Program {
    int id = 0;
    std::string name;
    std::vector<std::string> lines;
    int size = 0;  // bytes
    int speed = 100;
};

struct ProgramState {
    std::map<int, Program> programs;
    int default_id = 0;
    int plan_speed = 100;
};

struct TrajectoryFile {
    std::string name, created;
    std::vector<Joints> points;
};

struct Waypoint {
    std::string name;
    std::vector<int> joint;
    Wire6 pose{};
    std::string work_frame, tool_frame, time;
};

// ---- safety zones ----

// A fence or wall; its geometry in thousandths of a metre under the keys of its form.
struct Zone {
    std::string name;
    int form = 0;  // 1 cube, 2 plane, 3 sphere
    std::map<std::string, int> geometry;
};

struct ZoneEnable {
    bool enable = false;
    int in_out_side = 0, effective_region = 0;
};

struct SafetyState {
    std::vector<Zone> fences;
    Zone active_fence, wall;
    ZoneEnable fence_enable, wall_enable;
    bool self_collision = true;
};

// Everything the command families read and change besides the motion.
struct ArmState {
    JointLimitSet limits;        // software limits, what moves are checked against
    JointLimitSet drive_limits;  // the drives' own, only stored
    std::array<bool, kMaxJoints> enabled{};
    std::array<int, kMaxJoints> err_flags{};
    std::vector<int> errors;  // the arm's error codes, none while it is well
    int line_speed = 250, line_acc = 1600, angular_speed = 600, angular_acc = 4000;  // thousandths
    int collision_stage = 0;
    int teach_frame = 0;  // 0 work frame, 1 tool frame
    WireJoints init_pose{};
    std::array<int, 3> install{};  // whole degrees about X, Y, Z
    ArmModel::Dh dh;               // the DH table in use

    std::vector<Frame> tools;  // the first is the flange itself and cannot go
    std::vector<Frame> works;  // the first is the base itself and cannot go
    std::string tool = "Arm_Tip";
    std::string work = "World";
    std::map<int, Pose> tool_points;                         // taught flange poses by point number
    std::map<std::string, std::map<int, Pose>> work_points;  // taught tool poses by frame and point
    std::map<std::string, std::vector<EnvelopeBall>> envelopes;

    PushConfig push;

    ControllerState controller;
    NetworkState network;
    SerialState serial;
    IoState io;
    ModbusState modbus;
    GripperState gripper;
    HandState hand;
    AxisState lift{0};    // height, millimetres
    AxisState expand{0};  // position, thousandths of a degree
    EndEffectorState end_effector;
    ForceState force;
    DragState drag;
    ProgramState programs;
    std::vector<TrajectoryFile> trajectory_files;
    std::vector<Waypoint> waypoints;
    SafetyState safety;
};

}  // namespace sim

#endif
