"""Exceptions carrying the library's result codes and what each code means."""

# The result codes every command shares; a function's own extra meanings are in its header comment.
MEANINGS = {
    1: "the controller refused the command, or an argument was rejected locally",
    -1: "unknown handle, disconnected arm, or the request could not be sent",
    -2: "no reply within the timeout",
    -3: "the reply could not be parsed or lacked a member",
    -4: "blocking move: the arrival named another device; elsewhere a refusal before sending",
    -5: "blocking move, single-thread mode: no arrival within the given seconds",
    -6: "blocking move, threaded modes: the arrival timed out",
}


class QmError(Exception):
    """A qm_* function returned a code other than 0: `code`, its `meaning` and the `function`."""

    def __init__(self, code, function, meaning=None):
        self.code = code
        self.function = function
        self.meaning = meaning or MEANINGS.get(code, "unexpected result code")
        super().__init__(f"{function} returned {code}: {self.meaning}")


class CommandRefused(QmError):
    """1: the controller answered and said no."""


class Disconnected(QmError, ConnectionError):
    """-1: the arm is not connected, or the request could not be sent."""


class Timeout(QmError, TimeoutError):
    """-2: no reply (or no realtime record) in time."""


class BadReply(QmError):
    """-3: the reply did not parse or lacked a member."""


class WrongDevice(QmError):
    """-4: another device arrived, or the library refused before sending."""


class NoArrival(QmError, TimeoutError):
    """-5: no arrival event within the given seconds (single-thread mode)."""


class ArrivalTimeout(QmError, TimeoutError):
    """-6: waiting for the arrival event timed out (threaded modes)."""


class ConnectFailed(Disconnected):
    """Connecting to the controller or reading its configuration failed; the slot is freed again."""


class TooManyArms(QmError):
    """All five connection slots are taken."""


class KinematicsError(QmError):
    """A local kinematics function returned a failure code (its meaning is the function's own)."""


class LibraryNotFound(OSError):
    """libqm_api.so could not be found or loaded."""


_BY_CODE = {1: CommandRefused, -1: Disconnected, -2: Timeout, -3: BadReply, -4: WrongDevice,
            -5: NoArrival, -6: ArrivalTimeout}


def error_for(code, function):
    return _BY_CODE.get(code, QmError)(code, function)


def check(code, function):
    """Raises the exception of `code` unless it is 0."""
    if code != 0:
        raise error_for(code, function)
