"""One arm connection: lifecycle, state, motion, jog and stop, frames, limits, IO and gripper.

Values keep the C API's units: joint angles in degrees, positions in metres, orientations in
radians. Joint lists have the arm's dof entries; poses are qm.Pose or six numbers
(x, y, z, rx, ry, rz). Functions without a method here are reachable as lib.c.qm_* with
arm.handle."""
import ctypes
import dataclasses

from . import _api
from ._commands import DOF, Out, command
from .errors import ConnectFailed, Disconnected, TooManyArms

F, I = ctypes.c_float, ctypes.c_int


def _trim_joints(arm, state):
    return dataclasses.replace(state, joint=state.joint[:arm.dof])


def _names(arm, names, count):
    return [n.name for n in names[:count]]


def _trajectory(arm, kind, data):
    kind = _api.ArmCurrentTrajectory(kind)
    poses = (_api.ArmCurrentTrajectory.CARTESIAN_LINEAR, _api.ArmCurrentTrajectory.CARTESIAN_ARC,
             _api.ArmCurrentTrajectory.SPLINE_CURVE_MOTION)
    return kind, data[:6] if kind in poses else data[:arm.dof]


@dataclasses.dataclass(frozen=True)
class ArmInfo:
    """What the connection learnt about its arm."""
    model: _api.RobotArmModel
    dof: int
    force_type: _api.ForceType
    controller_version: int  # controller generation, 3 or 4


# The controller may list more names than any record bounds; leave it ample room.
_NAME_ROOM = 100


class Arm:
    """A connected arm; `with lib.connect(ip, port) as arm:` deletes the connection on leaving."""

    def __init__(self, lib, ip, port):
        self._lib, self._c = lib, lib.c
        self.ip, self.port = ip, port
        self._ptr = None
        self._open()

    def _open(self):
        ptr = self._c.qm_create_robot_arm(self.ip.encode(), self.port)
        if not ptr:
            raise TooManyArms(None, "qm_create_robot_arm", "all five connection slots are taken")
        if ptr.contents.id < 1:
            self._c.qm_delete_robot_arm(ptr)
            raise ConnectFailed(-1, "qm_create_robot_arm",
                                f"connecting to {self.ip}:{self.port} or reading its configuration failed")
        self._ptr = ptr
        self._lib._arms.add(self)

    @property
    def _handle(self):
        if self._ptr is None:
            raise Disconnected(-1, "qm", "this arm's connection was closed")
        return self._ptr

    handle = _handle  # the qm_robot_handle* for calls through lib.c

    @property
    def id(self):
        return self._handle.contents.id

    @property
    def closed(self):
        return self._ptr is None

    def close(self):
        """Deletes the connection (qm_delete_robot_arm); closing twice does nothing."""
        if self._ptr is not None:
            self._c.qm_delete_robot_arm(self._ptr)
            self._forget()

    def _forget(self):
        self._ptr = None
        self._lib._arms.discard(self)

    def reconnect(self):
        """Deletes the connection and connects again to the same address; the id may change."""
        self.close()
        self._open()

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()

    def __repr__(self):
        return f"<qm.Arm {self.ip}:{self.port} id={self._ptr.contents.id if self._ptr else 'closed'}>"

    def block_value(self, block):
        return self._lib.block_value(block)

    # ---- connection and state ----
    get_robot_info = command("qm_get_robot_info", Out(_api.qm_robot_info_t))

    @property
    def info(self):
        """Model, dof, force type and controller generation (qm.ArmInfo)."""
        r = self.get_robot_info()
        return ArmInfo(r.arm_model, r.arm_dof, r.force_type, r.robot_controller_version)

    @property
    def dof(self):
        return self.get_robot_info().arm_dof

    set_robot_dof = command("qm_set_robot_dof")
    get_arm_software_info = command("qm_get_arm_software_info", Out(_api.qm_arm_software_version_t))
    get_current_arm_state = command("qm_get_current_arm_state", Out(_api.qm_current_arm_state_t), post=_trim_joints)
    get_arm_all_state = command("qm_get_arm_all_state", Out(_api.qm_arm_all_state_t))
    get_joint_degree = command("qm_get_joint_degree", Out(F, DOF))
    get_current_joint_temperature = command("qm_get_current_joint_temperature", Out(F, DOF))
    get_current_joint_current = command("qm_get_current_joint_current", Out(F, DOF))
    get_current_joint_voltage = command("qm_get_current_joint_voltage", Out(F, DOF))
    set_init_pose = command("qm_set_init_pose")
    get_init_pose = command("qm_get_init_pose", Out(F, DOF))
    get_arm_current_trajectory = command("qm_get_arm_current_trajectory", Out(I), Out(F, 7), post=_trajectory)
    get_controller_state = command("qm_get_controller_state", Out(F), Out(F), Out(F), Out(I))
    set_arm_power = command("qm_set_arm_power")
    get_arm_power_state = command("qm_get_arm_power_state", Out(I))
    clear_system_err = command("qm_clear_system_err")

    # ---- realtime push ----
    set_realtime_push = command("qm_set_realtime_push")
    get_realtime_push = command("qm_get_realtime_push", Out(_api.qm_realtime_push_config_t))

    # ---- motion: block True waits for the arrival, False returns once accepted ----
    _move = dict(defaults={"r": 0, "trajectory_connect": 0, "block": True})
    movej = command("qm_movej", **_move)
    movel = command("qm_movel", **_move)
    movej_p = command("qm_movej_p", **_move)
    moves = command("qm_moves", **_move)
    movel_offset = command("qm_movel_offset", defaults={"r": 0, "trajectory_connect": 0, "frame_type": 0, "block": True})
    movec = command("qm_movec", defaults={"r": 0, "loop": 0, "trajectory_connect": 0, "block": True})
    movej_canfd = command("qm_movej_canfd")
    movep_canfd = command("qm_movep_canfd")
    movej_follow = command("qm_movej_follow")
    movep_follow = command("qm_movep_follow")

    # ---- jog, teach and stop ----
    _step = dict(defaults={"block": True})
    set_joint_step = command("qm_set_joint_step", **_step)
    set_pos_step = command("qm_set_pos_step", **_step)
    set_ort_step = command("qm_set_ort_step", **_step)
    set_joint_teach = command("qm_set_joint_teach")
    set_pos_teach = command("qm_set_pos_teach")
    set_ort_teach = command("qm_set_ort_teach")
    set_stop_teach = command("qm_set_stop_teach")
    set_teach_frame = command("qm_set_teach_frame")
    get_teach_frame = command("qm_get_teach_frame", Out(I))
    set_arm_slow_stop = command("qm_set_arm_slow_stop")
    set_arm_stop = command("qm_set_arm_stop")
    set_arm_pause = command("qm_set_arm_pause")
    set_arm_continue = command("qm_set_arm_continue")
    set_delete_current_trajectory = command("qm_set_delete_current_trajectory")
    set_arm_delete_trajectory = command("qm_set_arm_delete_trajectory")

    # ---- tool and work frames ----
    set_auto_tool_frame = command("qm_set_auto_tool_frame")
    generate_auto_tool_frame = command("qm_generate_auto_tool_frame")
    set_manual_tool_frame = command("qm_set_manual_tool_frame")
    change_tool_frame = command("qm_change_tool_frame")
    delete_tool_frame = command("qm_delete_tool_frame")
    update_tool_frame = command("qm_update_tool_frame")
    get_current_tool_frame = command("qm_get_current_tool_frame", Out(_api.qm_frame_t))
    get_total_tool_frame = command("qm_get_total_tool_frame", Out(_api.qm_frame_name_t, _NAME_ROOM), Out(I), post=_names)
    get_given_tool_frame = command("qm_get_given_tool_frame", Out(_api.qm_frame_t))
    set_auto_work_frame = command("qm_set_auto_work_frame")
    set_manual_work_frame = command("qm_set_manual_work_frame")
    change_work_frame = command("qm_change_work_frame")
    delete_work_frame = command("qm_delete_work_frame")
    update_work_frame = command("qm_update_work_frame")
    get_current_work_frame = command("qm_get_current_work_frame", Out(_api.qm_frame_t))
    get_total_work_frame = command("qm_get_total_work_frame", Out(_api.qm_frame_name_t, _NAME_ROOM), Out(I), post=_names)
    get_given_work_frame = command("qm_get_given_work_frame", Out(_api.qm_pose_t))
    set_tool_envelope = command("qm_set_tool_envelope")
    get_tool_envelope = command("qm_get_tool_envelope", Out(_api.qm_envelope_balls_list_t))

    # ---- joint and arm limits ----
    set_joint_max_speed = command("qm_set_joint_max_speed")
    set_joint_max_acc = command("qm_set_joint_max_acc")
    set_joint_min_pos = command("qm_set_joint_min_pos")
    set_joint_max_pos = command("qm_set_joint_max_pos")
    set_joint_drive_max_speed = command("qm_set_joint_drive_max_speed")
    set_joint_drive_max_acc = command("qm_set_joint_drive_max_acc")
    set_joint_drive_min_pos = command("qm_set_joint_drive_min_pos")
    set_joint_drive_max_pos = command("qm_set_joint_drive_max_pos")
    set_joint_en_state = command("qm_set_joint_en_state")
    set_joint_zero_pos = command("qm_set_joint_zero_pos")
    set_joint_clear_err = command("qm_set_joint_clear_err")
    auto_set_joint_limit = command("qm_auto_set_joint_limit")
    set_arm_max_line_speed = command("qm_set_arm_max_line_speed")
    set_arm_max_line_acc = command("qm_set_arm_max_line_acc")
    set_arm_max_angular_speed = command("qm_set_arm_max_angular_speed")
    set_arm_max_angular_acc = command("qm_set_arm_max_angular_acc")
    set_collision_state = command("qm_set_collision_state")
    get_joint_max_speed = command("qm_get_joint_max_speed", Out(F, DOF))
    get_joint_max_acc = command("qm_get_joint_max_acc", Out(F, DOF))
    get_joint_min_pos = command("qm_get_joint_min_pos", Out(F, DOF))
    get_joint_max_pos = command("qm_get_joint_max_pos", Out(F, DOF))
    get_joint_drive_max_speed = command("qm_get_joint_drive_max_speed", Out(F, DOF))
    get_joint_drive_max_acc = command("qm_get_joint_drive_max_acc", Out(F, DOF))
    get_joint_drive_min_pos = command("qm_get_joint_drive_min_pos", Out(F, DOF))
    get_joint_drive_max_pos = command("qm_get_joint_drive_max_pos", Out(F, DOF))
    get_joint_en_state = command("qm_get_joint_en_state", Out(ctypes.c_uint8, DOF))
    get_joint_err_flag = command("qm_get_joint_err_flag", Out(ctypes.c_uint16, DOF), Out(ctypes.c_uint16, DOF))
    get_arm_max_line_speed = command("qm_get_arm_max_line_speed", Out(F))
    get_arm_max_line_acc = command("qm_get_arm_max_line_acc", Out(F))
    get_arm_max_angular_speed = command("qm_get_arm_max_angular_speed", Out(F))
    get_arm_max_angular_acc = command("qm_get_arm_max_angular_acc", Out(F))
    get_collision_stage = command("qm_get_collision_stage", Out(I))

    # ---- controller and tool IO ----
    set_io_mode = command("qm_set_IO_mode")
    set_do_state = command("qm_set_DO_state")
    get_io_state = command("qm_get_IO_state", Out(_api.qm_io_get_t))
    get_io_input = command("qm_get_IO_input", Out(I, 4))
    get_io_output = command("qm_get_IO_output", Out(I, 4))
    set_voltage = command("qm_set_voltage")
    get_voltage = command("qm_get_voltage", Out(I))
    set_tool_do_state = command("qm_set_tool_DO_state")
    set_tool_io_mode = command("qm_set_tool_IO_mode")
    get_tool_io_state = command("qm_get_tool_IO_state", Out(I, 2), Out(I, 2))
    set_tool_voltage = command("qm_set_tool_voltage")
    get_tool_voltage = command("qm_get_tool_voltage", Out(I))

    # ---- gripper: block waits up to timeout seconds for its arrival ----
    _grip = dict(defaults={"block": True, "timeout": 10})
    set_gripper_route = command("qm_set_gripper_route")
    set_gripper_release = command("qm_set_gripper_release", **_grip)
    set_gripper_pick = command("qm_set_gripper_pick", **_grip)
    set_gripper_pick_on = command("qm_set_gripper_pick_on", **_grip)
    set_gripper_position = command("qm_set_gripper_position", **_grip)
    get_gripper_state = command("qm_get_gripper_state", Out(_api.qm_gripper_state_t))
