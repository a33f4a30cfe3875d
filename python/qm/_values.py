"""Conversions of the Python values a caller passes into the C records and arrays."""
import ctypes
import math

from . import _api


def quaternion(rx, ry, rz):
    """The unit quaternion (w, x, y, z) of fixed-axis X-Y-Z angles in radians (R = Rz * Ry * Rx)."""
    cx, sx = math.cos(rx / 2), math.sin(rx / 2)
    cy, sy = math.cos(ry / 2), math.sin(ry / 2)
    cz, sz = math.cos(rz / 2), math.sin(rz / 2)
    return (cz * cy * cx + sz * sy * sx, cz * cy * sx - sz * sy * cx,
            cz * sy * cx + sz * cy * sx, sz * cy * cx - cz * sy * sx)


def pose(x, y, z, rx, ry, rz):
    """A Pose from metres and radians, its quaternion computed from the Euler angles."""
    w, qx, qy, qz = quaternion(rx, ry, rz)
    return _api.Pose(_api.Position(x, y, z), _api.Quat(w, qx, qy, qz), _api.Euler(rx, ry, rz))


def to_struct(value, kind):
    """A ctypes record of `kind` from its dataclass, from itself, or a pose from six numbers."""
    if isinstance(value, kind):
        return value
    if hasattr(value, "as_struct"):
        return value.as_struct()
    if kind is _api.qm_pose_t:
        return pose(*value).as_struct()
    raise TypeError(f"expected a {kind.__name__} record, got {type(value).__name__}")


def to_array(values, element, size=None):
    """A C array of `element` holding `values`, at least `size` slots (the rest zero)."""
    values = list(values)
    return (element * max(len(values), size or 0))(*values)


def to_c(value, argtype):
    """One argument converted for a C parameter of type `argtype`."""
    if argtype is ctypes.c_char_p and isinstance(value, str):
        return value.encode()
    if isinstance(argtype, type) and issubclass(argtype, ctypes.Structure):
        return to_struct(value, argtype)
    target = getattr(argtype, "_type_", None)
    if isinstance(target, type) and issubclass(target, ctypes.Structure) and value is not None:
        return ctypes.byref(to_struct(value, target))
    if hasattr(argtype, "_type_") and isinstance(argtype._type_, type) and value is not None \
            and not isinstance(value, ctypes._SimpleCData) and hasattr(value, "__iter__") \
            and argtype._type_ in (ctypes.c_float, ctypes.c_int, ctypes.c_uint8, ctypes.c_uint16):
        # An input array: joints padded to the seven slots the records hold.
        return to_array(value, argtype._type_, _api.ARM_DOF)
    return value


def from_c(value):
    """A C output as a Python value: records as dataclasses, arrays as lists."""
    if hasattr(value, "as_record"):
        return value.as_record()
    if isinstance(value, ctypes.Array):
        return [from_c(v) for v in value]
    if isinstance(value, ctypes._SimpleCData):
        return value.value
    return value
