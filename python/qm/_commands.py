"""Methods made from a C function's prototype: the arguments after the handle are converted and
passed through, the out-parameters (described by Out) come back as Python values, and a result
other than 0 raises the exception of its code."""
import ctypes
import inspect

from . import _api
from ._values import from_c, to_c
from .errors import check

DOF = "dof"  # an out-array holding one value per joint of the arm


class Out:
    """An out-parameter: one `kind`, or an array of `count` of them (DOF: the arm's dof)."""

    def __init__(self, kind, count=None, size=None):
        self.kind, self.count = kind, count
        self.size = size or (_api.ARM_DOF if count == DOF else count)

    def make(self):
        return (self.kind * self.size)() if self.size else self.kind()

    def arg(self, buffer):
        return buffer if self.size else ctypes.byref(buffer)

    def read(self, buffer, owner):
        value = from_c(buffer)
        return value[:owner.dof] if self.count == DOF else value


def signature(names, defaults):
    params = [inspect.Parameter("self", inspect.Parameter.POSITIONAL_OR_KEYWORD)]
    params += [inspect.Parameter(n, inspect.Parameter.POSITIONAL_OR_KEYWORD, default=defaults.get(n, inspect.Parameter.empty))
               for n in names]
    return inspect.Signature(params)


def command(c_name, *outs, defaults=None, post=None, handle=True):
    """A method of an object with `_c` (the library), `_handle` (when `handle`) and `block_value`."""
    result, argtypes, argnames = _api.FUNCTIONS[c_name]
    first = 1 if handle else 0
    inputs = len(argtypes) - first - len(outs)
    types, names = argtypes[first:first + inputs], argnames[first:first + inputs]
    sig = signature(names, defaults or {})
    # An int "block" is the move's waiting mode; True means "wait for the arrival".
    block_at = names.index("block") if "block" in names and types[names.index("block")] is ctypes.c_int else None

    def method(self, *args, **kwargs):
        bound = sig.bind(self, *args, **kwargs)
        bound.apply_defaults()
        values = list(bound.arguments.values())[1:]
        if block_at is not None:
            values[block_at] = self.block_value(values[block_at])
        c_args = [to_c(v, t) for v, t in zip(values, types)]
        buffers = [o.make() for o in outs]
        head = (self._handle,) if handle else ()
        code = getattr(self._c, c_name)(*head, *c_args, *(o.arg(b) for o, b in zip(outs, buffers)))
        if result is not None:
            check(code, c_name)
        results = [o.read(b, self) for o, b in zip(outs, buffers)]
        if post:
            return post(self, *results)
        return None if not results else results[0] if len(results) == 1 else tuple(results)

    method.__signature__ = sig
    method.__name__ = c_name[3:].lower()
    method.__doc__ = f"Calls {c_name} (see qm_interface.h); raises qm.QmError subclasses on failure."
    return method
