"""Local kinematics (lib.kinematics), no controller involved: joints in degrees, lengths in metres,
orientations in radians. The model is global to the process: connecting loads the arm's, and
arm=... loads a connected arm's before computing; these calls must come from one thread at a time."""
import ctypes

from . import _api
from ._commands import Out, command
from ._values import to_array, to_struct
from .errors import KinematicsError

_SLOTS = 8  # joint arrays of the kinematics library
F = ctypes.c_float

# What qm_algo_inverse_kinematics's codes mean.
_INVERSE = {1: "no solution", -1: "the reference joints lie outside the joint limits",
            -2: "the target's quaternion is not normalised"}


def _joints(values):
    return to_array(values, ctypes.c_float, _SLOTS)


class Kinematics:
    def __init__(self, lib):
        self._c = lib.c

    def _arm(self, arm):
        return None if arm is None else arm.handle

    @property
    def version(self):
        return self._c.qm_algo_version().decode()

    def forward(self, joint, arm=None):
        """The tool pose in the work frame for joint angles."""
        return self._c.qm_algo_forward_kinematics(self._arm(arm), _joints(joint)).as_record()

    def _params(self, pose, reference, use_euler):
        params = _api.qm_inverse_kinematics_params_t()
        params.q_pose = to_struct(pose, _api.qm_pose_t)
        params.q_in[:] = list(_joints(reference))[:7]
        params.flag = 1 if use_euler else 0
        return params

    def inverse(self, pose, reference, arm=None, use_euler=False):
        """Joints (as many as reference has) reaching pose (base frame) nearest reference."""
        out = _joints([])
        code = self._c.qm_algo_inverse_kinematics(self._arm(arm), self._params(pose, reference, use_euler), out)
        if code != 0:
            raise KinematicsError(code, "qm_algo_inverse_kinematics", _INVERSE.get(code))
        return list(out)[:len(reference)]

    def inverse_all(self, pose, reference, arm=None, use_euler=False):
        """Every solution branch (qm.InverseKinematicsAllSolve), unfiltered."""
        return self._c.qm_algo_inverse_kinematics_all(self._arm(arm),
                                                      self._params(pose, reference, use_euler)).as_record()

    def self_collision(self, joint):
        """Whether the arm at joint hits itself or its tool envelope, or a joint is beyond its limits."""
        return self._c.qm_algo_safety_robot_self_collision_detection(_joints(joint)) == 1

    def within_limits(self, joint):
        return self._c.qm_algo_judgment_overpos(_joints(joint)) == 0

    def init_sys_data(self, model, force_type=_api.ForceType.B):
        """Loads the defaults of an arm model offline."""
        self._c.qm_algo_init_sys_data(model, force_type)

    def arm_state_set(self, arm):
        """Loads a connected arm's model, frames, limits, install angles and DH table."""
        self._c.qm_algo_arm_state_set(arm.handle)

    def _value(name):
        def call(self, *args):
            function = getattr(self._c, name)
            args = [to_struct(a, t) if isinstance(t, type) and issubclass(t, ctypes.Structure) else a
                    for a, t in zip(args, function.argtypes)]
            return function(*args).as_record()
        call.__name__ = name[len("qm_algo_"):]
        call.__doc__ = f"Calls {name} (see qm_interface.h)."
        return call

    euler2quaternion = _value("qm_algo_euler2quaternion")
    quaternion2euler = _value("qm_algo_quaternion2euler")
    euler2matrix = _value("qm_algo_euler2matrix")
    pos2matrix = _value("qm_algo_pos2matrix")
    matrix2pos = _value("qm_algo_matrix2pos")
    base2workframe = _value("qm_algo_base2workframe")
    workframe2base = _value("qm_algo_workframe2base")
    del _value

    # Configuration of the global model, set offline or read back.
    set_angle = command("qm_algo_set_angle", handle=False)
    get_angle = command("qm_algo_get_angle", Out(F), Out(F), Out(F), handle=False)
    set_workframe = command("qm_algo_set_workframe", handle=False)
    get_curr_workframe = command("qm_algo_get_curr_workframe", Out(_api.qm_frame_t), handle=False)
    set_toolframe = command("qm_algo_set_toolframe", handle=False)
    get_curr_toolframe = command("qm_algo_get_curr_toolframe", Out(_api.qm_frame_t), handle=False)
    set_joint_max_limit = command("qm_algo_set_joint_max_limit", handle=False)
    get_joint_max_limit = command("qm_algo_get_joint_max_limit", Out(F, _SLOTS), handle=False)
    set_joint_min_limit = command("qm_algo_set_joint_min_limit", handle=False)
    get_joint_min_limit = command("qm_algo_get_joint_min_limit", Out(F, _SLOTS), handle=False)
    set_tool_envelope = command("qm_algo_set_tool_envelope", handle=False)
