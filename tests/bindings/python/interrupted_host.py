"""A host that gets a signal while the engine works, and prints what leaves the call and what was asked before.

usage: interrupted_host.py BUNDLE SIGNAL     a bundle with endless_rules; SIGUSR1 has a handler that raises LookupError
"""
import os
import signal
import sys
import threading

import arborist

asked = []


def is_in_runner():
    frame = sys._current_frames()[threading.main_thread().ident]
    while frame is not None and frame.f_code is not answer.__code__:
        frame = frame.f_back
    return frame is not None


def send_when_answered():
    while is_in_runner():
        pass
    os.kill(os.getpid(), signal.Signals[sys.argv[2]])


def answer(question):
    asked.append(question.user_defined_info)
    threading.Thread(target=send_when_answered).start()
    return False


def on_signal(*_):
    raise LookupError("called away")


signal.signal(signal.SIGUSR1, on_signal)
try:
    arborist.detect(sys.argv[1], code_runner=answer)
    print("returned", asked)
except BaseException as exception:
    print(type(exception).__name__, asked)
