"""The shared library is usable from Python through ctypes alone."""
import ctypes
import socket
import sys

lib = ctypes.CDLL(sys.argv[1])


class RobotHandle(ctypes.Structure):
    _fields_ = [("id", ctypes.c_int)]


class Position(ctypes.Structure):
    _fields_ = [("x", ctypes.c_float), ("y", ctypes.c_float), ("z", ctypes.c_float)]


class Quat(ctypes.Structure):
    _fields_ = [(n, ctypes.c_float) for n in ("w", "x", "y", "z")]


class Euler(ctypes.Structure):
    _fields_ = [(n, ctypes.c_float) for n in ("rx", "ry", "rz")]


class Pose(ctypes.Structure):
    _fields_ = [("position", Position), ("quaternion", Quat), ("euler", Euler)]


lib.qm_api_version.restype = ctypes.c_char_p
lib.qm_create_robot_arm.restype = ctypes.POINTER(RobotHandle)
lib.qm_create_robot_arm.argtypes = [ctypes.c_char_p, ctypes.c_int]
lib.qm_delete_robot_arm.argtypes = [ctypes.POINTER(RobotHandle)]
lib.qm_set_log_call_back.argtypes = [ctypes.c_void_p, ctypes.c_int]

assert lib.qm_api_version() == b"1.1.0"
lib.qm_set_log_call_back(None, 4)  # quiet
assert lib.qm_init(1) == 0

# A port on which nothing listens: the handle comes back marked failed.
probe = socket.socket()
probe.bind(("127.0.0.1", 0))
port = probe.getsockname()[1]
probe.close()
handle = lib.qm_create_robot_arm(b"127.0.0.1", port)
assert handle and handle.contents.id == -1
assert lib.qm_delete_robot_arm(handle) == 0
assert lib.qm_destory() == 0

if hasattr(lib, "qm_algo_forward_kinematics"):
    lib.qm_algo_init_sys_data(0, 0)
    lib.qm_algo_forward_kinematics.restype = Pose
    lib.qm_algo_forward_kinematics.argtypes = [ctypes.c_void_p, ctypes.POINTER(ctypes.c_float)]
    zeros = (ctypes.c_float * 7)()
    pose = lib.qm_algo_forward_kinematics(None, zeros)
    assert abs(pose.position.z - 0.8505) < 1e-4, pose.position.z

print("ctypes: ok")
