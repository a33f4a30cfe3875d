"""The library: started in a thread mode, connections, callbacks, the realtime queue and the
kinematics. One Library is open at a time: the C library's state is global to the process."""
import atexit
import collections
import logging
import threading

from . import _api, _dispatch, _loader
from .arm import Arm
from .errors import QmError, Timeout, check
from .kinematics import Kinematics

# block=True in single-thread mode: the number of one-second waits for a move's arrival.
SINGLE_MODE_BLOCK_SECONDS = 60

_open = None


class Library:
    """qm_init on creation, qm_destory on close(); `with qm.Library(...) as lib:` closes it."""

    def __init__(self, mode=_api.ThreadMode.TRIPLE, log_level=None):
        """mode: a qm.ThreadMode. log_level: the C library's threshold (a qm.LogLevel); by default
        the one that passes what the "qm" logger shows."""
        global _open
        if _open is not None:
            raise QmError(None, "qm_init", "a qm.Library is already open in this process")
        self.c = _loader.load()
        self.mode = _api.ThreadMode(mode)
        self._arms = set()
        self.kinematics = Kinematics(self)
        if log_level is None:
            log_level = _dispatch.c_level(logging.getLogger("qm").getEffectiveLevel())
        _dispatch.handlers = _dispatch.Handlers()
        _dispatch.register(self.c, _api.LogLevel(log_level))
        check(self.c.qm_init(self.mode), "qm_init")
        _open = self

    @property
    def version(self):
        return self.c.qm_api_version().decode()

    @property
    def closed(self):
        return _open is not self

    def connect(self, ip, port=8080):
        """Connects to the controller at ip:port; raises qm.ConnectFailed or qm.TooManyArms."""
        return Arm(self, ip, port)

    def set_timeout(self, milliseconds):
        """Reply timeout of queries and set commands (qm_set_timeout)."""
        self.c.qm_set_timeout(milliseconds)

    def block_value(self, block):
        if block is True:
            return SINGLE_MODE_BLOCK_SECONDS if self.mode == _api.ThreadMode.SINGLE else _api.QM_MOVE_MULTI_BLOCK
        return int(block)

    def on_event(self, fn):
        """Calls fn(qm.EventPushData) for every trajectory-arrival and program-finished event, on the
        receive thread. Returns fn, so it serves as a decorator."""
        _dispatch.handlers.events += (fn,)
        return fn

    def on_realtime(self, fn):
        """Calls fn(qm.RealtimeArmJointState) for every realtime push datagram (triple mode), on the
        UDP thread; fn must return quickly. Returns fn."""
        _dispatch.handlers.realtime += (fn,)
        return fn

    def remove_callback(self, fn):
        h = _dispatch.handlers
        h.events = tuple(f for f in h.events if f != fn)
        h.realtime = tuple(f for f in h.realtime if f != fn)

    def realtime_states(self, maxsize=100, timeout=None):
        """An iterator over the realtime records as they arrive, keeping the newest maxsize; next()
        raises qm.Timeout after timeout seconds without one. Close it (or use `with`) to stop."""
        return RealtimeStates(self, maxsize, timeout)

    def close(self):
        """Deletes every connection and stops the library's threads (qm_destory)."""
        global _open
        if _open is not self:
            return
        self.c.qm_destory()
        for arm in list(self._arms):
            arm._forget()
        _dispatch.handlers = _dispatch.Handlers()
        self.c.qm_set_log_call_back(_api.LogCallback(), _api.LogLevel.ERROR)  # the default sink again
        _open = None

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()

    def __repr__(self):
        return f"<qm.Library {self.mode.name} {'closed' if self.closed else 'open'}>"


class RealtimeStates:
    """Realtime records queued as the UDP thread delivers them; the oldest go when it is full."""

    def __init__(self, lib, maxsize, timeout):
        self._lib, self._timeout = lib, timeout
        self._queue = collections.deque(maxlen=maxsize)
        self._ready = threading.Condition()
        lib.on_realtime(self._put)

    def _put(self, record):
        with self._ready:
            self._queue.append(record)
            self._ready.notify()

    def get(self, timeout=None):
        with self._ready:
            if not self._ready.wait_for(lambda: self._queue, timeout):
                raise Timeout(-2, "realtime_states", f"no realtime record within {timeout} s")
            return self._queue.popleft()

    def __iter__(self):
        return self

    def __next__(self):
        return self.get(self._timeout)

    def close(self):
        self._lib.remove_callback(self._put)

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()


@atexit.register
def _close_at_exit():
    # The C threads must not call into an interpreter that is shutting down.
    if _open is not None:
        _open.close()
