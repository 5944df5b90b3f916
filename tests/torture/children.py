"""Work in processes of their own: a crash, a hang or a kill costs one trial and not the bench."""

import os
import pickle
import select
import signal
import traceback


class Failure(Exception):
    """What a trial found."""


class Ending:
    """How a child ended: with a value, or by a signal, or not at all in time."""

    def __init__(self, value=None, signal_number=0, hung=False):
        self.value, self.signal, self.hung = value, signal_number, hung

    def expect_value(self):
        """The value; anything else is a failure of the trial."""
        if self.hung:
            raise Failure("hangs")
        if self.signal:
            raise Failure(f"crashes: {signal.Signals(self.signal).name}")
        if isinstance(self.value, BaseException):
            raise self.value
        return self.value

    @property
    def killed(self):
        return self.signal == signal.SIGKILL and not self.hung


def in_child(work, limit=60):
    """The ending of work() in a forked child, which is killed after `limit` seconds."""
    reading, writing = os.pipe()
    child = os.fork()
    if child == 0:
        os.close(reading)
        try:
            value = work()
        except Failure as failure:
            value = failure
        except BaseException:  # the bench's own mistakes must not look like a passed trial
            value = Failure("the bench itself failed:\n" + traceback.format_exc())
        with os.fdopen(writing, "wb") as out:
            pickle.dump(value, out)
        os._exit(0)
    os.close(writing)
    data, hung = b"", False
    with os.fdopen(reading, "rb", buffering=0) as source:
        while True:
            if not select.select([source], [], [], limit)[0]:
                hung = True
                os.kill(child, signal.SIGKILL)
                break
            block = source.read(1 << 20)
            if not block:
                break
            data += block
    _, status = os.waitpid(child, 0)
    if os.WIFSIGNALED(status):
        return Ending(signal_number=os.WTERMSIG(status), hung=hung)
    if not data:
        return Ending(Failure(f"ends with exit code {os.waitstatus_to_exitcode(status)} in the middle"))
    return Ending(pickle.loads(data))
