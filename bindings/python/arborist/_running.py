"""How a call runs: on which thread, who answers its code rules, and what ends it early."""

from __future__ import annotations

from contextlib import contextmanager
from queue import Empty, SimpleQueue
from threading import Lock, Thread, current_thread, local, main_thread
from typing import Any, Callable, Iterator, Optional

from arborist import _results
from arborist._errors import WrongUseError
from arborist._native import ffi, lib
from arborist._results import CodeQuestion
from arborist._text import text_of

#: Decides a code rule: True for present, False for not present, None for no answer.
CodeRunner = Callable[[CodeQuestion], Optional[bool]]

_NO_ANSWER = int(lib.ARBORIST_NO_ANSWER)
_NUMBERS = {None: _NO_ANSWER, True: int(lib.ARBORIST_PRESENT), False: int(lib.ARBORIST_NOT_PRESENT)}


class Stop:
    """Ends detections early, from any thread: hand it to one call at a time, and call `stop` while that runs. The
    detection still returns; what was not decided is open with the reason "stopped". A call that still waits for its turn
    or unpacks a zip raises InternalError ("timeout"). Without a call it does nothing."""

    def __init__(self) -> None:
        self._lock = Lock()
        self._engine: Any = None

    def stop(self) -> None:
        with self._lock:
            if self._engine is not None:
                lib.arborist_engine_stop(self._engine)

    def _reach(self, engine: Any) -> None:
        with self._lock:
            self._engine = engine


class Answers:
    """The code rules of one call, answered by the host's runner, and the exception that ends the call."""

    def __init__(self, engine: Any, runner: CodeRunner | None) -> None:
        self.exception: BaseException | None = None
        #: Takes the questions from the thread of the call to that of the runner, where they differ.
        self.passes_on: Callable[[str], int] | None = None
        self._engine = engine
        self._runner = runner

    def stop(self) -> None:
        lib.arborist_engine_stop(self._engine)

    def end(self, exception: BaseException) -> None:
        """Lets the call end as early as it can. The first exception is raised then."""
        if self.exception is None:
            self.exception = exception
        self.stop()

    def number_of(self, question: str) -> int:
        """The runner's answer. What it raises ends the call: no exception can pass through the engine."""
        if self.exception is not None or self._runner is None:
            return _NO_ANSWER
        try:
            answer = self._runner(_results.question_of(question))
            if answer is not None and not isinstance(answer, bool):
                raise TypeError(f"the code runner returned {type(answer).__name__}, not True, False or None")
            return _NUMBERS[answer]
        except BaseException as exception:
            self.end(exception)
            return _NO_ANSWER


def _answer_code_rule(user: Any, question: Any, length: int) -> int:
    answers: Answers = ffi.from_handle(user)
    return (answers.passes_on or answers.number_of)(text_of(question, length))


ffi.def_extern("python_code_rule", error=lib.ARBORIST_NO_ANSWER)(_answer_code_rule)


class _InThread:
    """Makes a call of the main thread on a thread of its own. Python handles signals on the main thread alone, and not
    while that is in the engine; here it waits for the questions of the call, and a signal interrupts the wait."""

    def __init__(self, call: Callable[[], object], answers: Answers) -> None:
        self._call = call
        self._answers = answers
        self._has_ended = False
        # None when the call has ended: it wakes who waits.
        self._questions: SimpleQueue[str | None] = SimpleQueue()
        self._numbers: SimpleQueue[int] = SimpleQueue()
        self._thread = Thread(target=self._make_call, name="arborist")

    def run(self) -> None:
        try:
            self._start()
            while not self._has_ended:
                question = self._questions.get()
                if question is not None:
                    self._numbers.put(self._answers.number_of(question))
        except BaseException as exception:  # of the handler of a signal: KeyboardInterrupt, as a rule
            self._answers.end(exception)
            self._numbers.put(_NO_ANSWER)  # to a question that the exception has overtaken
            self._wait()

    def _start(self) -> None:
        try:
            self._thread.start()
        except RuntimeError:  # no thread can be started any more, as at the interpreter's end
            self._call()
            self._has_ended = True

    def _wait(self) -> None:
        """Returns when the call has ended, or if its thread has not begun, which then makes no call."""
        while self._thread.is_alive() and not self._has_ended:
            try:
                self._questions.get(timeout=0.05)
            except Empty:
                self._answers.stop()  # again: the first may have come before the call
            except BaseException:  # a second Ctrl-C: it ends already
                pass

    def _make_call(self) -> None:
        self._answers.passes_on = self._pass_on
        try:
            if self._answers.exception is None:
                self._call()
        except BaseException as exception:
            self._answers.end(exception)
        finally:
            self._answers.passes_on = None
            self._has_ended = True
            self._questions.put(None)

    def _pass_on(self, question: str) -> int:
        if self._answers.exception is not None:
            return _NO_ANSWER
        self._questions.put(question)
        return self._numbers.get()


_here = local()


@contextmanager
def turn() -> Iterator[None]:
    """Refuses a call out of a code runner, or out of a signal's handler, of a call that this thread makes: they would
    wait for each other."""
    if getattr(_here, "is_in_call", False):
        raise WrongUseError("busy", "the call comes out of a callback of a call that runs")
    _here.is_in_call = True
    try:
        yield
    finally:
        _here.is_in_call = False


def run(call: Callable[[], object], answers: Answers) -> None:
    """Makes a call and returns when it has ended, whatever happens: an exception is in `answers` then."""
    if current_thread() is main_thread():
        _InThread(call, answers).run()
    else:
        call()
