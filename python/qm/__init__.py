"""Python interface to libqm_api, the client library for six- and seven-axis robot arms.

    import qm
    with qm.Library(mode=qm.ThreadMode.TRIPLE) as lib, lib.connect("127.0.0.1", 8080) as arm:
        arm.movej([0, 20, 70, 0, 90, 0], v=20, block=True)

Values keep the C API's units (degrees, metres, radians). Failures raise qm.QmError subclasses
carrying the result code. The ctypes declarations of every record and function are in qm._api;
lib.c is the loaded library with all of them declared.
"""
from ._api import (ARM_DOF, ArmCurrentTrajectory, EventType, ForceType, LogLevel, OrtTeachType,  # noqa: F401
                   PosTeachType, RobotArmModel, ThreadMode, UdpArmCurrentStatus)
from ._api import (ArmAllState, ArmSoftwareVersion, CurrentArmState, Euler, EventPushData, Frame,  # noqa: F401
                   GripperState, InverseKinematicsAllSolve, IoConfig, IoGet, Matrix, MovejCanfdMode,
                   MovepCanfdMode, Pose, Position, Quat, RealtimeArmJointState, RealtimePushConfig, RobotInfo,
                   UdpCustomConfig)
from ._values import pose, quaternion  # noqa: F401
from .arm import Arm, ArmInfo  # noqa: F401
from .errors import (ArrivalTimeout, BadReply, CommandRefused, ConnectFailed, Disconnected,  # noqa: F401
                     KinematicsError, LibraryNotFound, NoArrival, QmError, Timeout, TooManyArms, WrongDevice)
from .library import Library, RealtimeStates  # noqa: F401

__version__ = "1.1.0"
