"""The C callbacks, registered once per process (the C library cannot unregister them): the log
sink routed to the "qm" logger, and the event and realtime callbacks handed on to the Python
callables of the open Library. An exception in a callable is logged, never raised into the C
thread."""
import ctypes
import logging

from . import _api

log = logging.getLogger("qm")

_libc = ctypes.CDLL(None)
_libc.vsnprintf.argtypes = (ctypes.c_char_p, ctypes.c_size_t, ctypes.c_char_p, ctypes.c_void_p)
_libc.vsnprintf.restype = ctypes.c_int

# Python logging level of each C log level: the C sink is not told a message's level, only that
# it is at or above the threshold, so every message is logged at the threshold's level.
PYTHON_LEVEL = {_api.LogLevel.DEBUG: logging.DEBUG, _api.LogLevel.INFO: logging.INFO,
                _api.LogLevel.WARN: logging.WARNING, _api.LogLevel.ERROR: logging.ERROR}


def c_level(python_level):
    """The C threshold that passes the messages a logger at python_level shows."""
    for level in (_api.LogLevel.DEBUG, _api.LogLevel.INFO, _api.LogLevel.WARN):
        if python_level <= PYTHON_LEVEL[level]:
            return level
    return _api.LogLevel.ERROR


class Handlers:
    """What the C callbacks deliver to; replaced whole, so the C threads never see a half update."""
    log_level = logging.ERROR
    events = ()
    realtime = ()


handlers = Handlers()


def _deliver(callables, record, what):
    for fn in callables:
        try:
            fn(record)
        except Exception:
            log.exception("the %s callback %r raised", what, fn)


@_api.LogCallback
def _log_sink(fmt, args):
    try:
        text = ctypes.create_string_buffer(4096)
        _libc.vsnprintf(text, len(text), fmt, args)
        log.log(handlers.log_level, "%s", text.value.decode("utf-8", "replace").rstrip("\n"))
    except Exception:  # nothing may escape into the C thread
        pass


@_api.qm_event_callback_ptr
def _on_event(data):
    callables = handlers.events
    if callables:
        _deliver(callables, data.as_record(), "event")


@_api.qm_realtime_arm_state_callback_ptr
def _on_realtime(data):
    callables = handlers.realtime
    if callables:
        _deliver(callables, data.as_record(), "realtime")


def register(c, level):
    handlers.log_level = PYTHON_LEVEL[level]
    c.qm_set_log_call_back(_log_sink, level)
    c.qm_get_arm_event_call_back(_on_event)
    c.qm_realtime_arm_state_call_back(_on_realtime)
