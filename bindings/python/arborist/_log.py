"""The engine's log as records of logging.getLogger("arborist")."""

from __future__ import annotations

import logging
from typing import Any

from arborist._native import ffi, lib
from arborist._text import sized_text

LOGGER = logging.getLogger("arborist")
# A host that hasn't set up logging sees nothing, instead of warnings on standard error.
LOGGER.addHandler(logging.NullHandler())

# One call may log this much; what goes beyond is counted, and the count is logged.
MOST_MESSAGES = 10_000
MOST_BYTES = 16 * 1024 * 1024

# The engine's levels, from trace to fatal.
LEVELS = (5, logging.DEBUG, logging.INFO, logging.WARNING, logging.ERROR, logging.CRITICAL)


class LogQueue:
    """Keeps the messages of one call, and hands them to the logger when the call has ended."""

    def __init__(self, engine: Any) -> None:
        least = next((place for place, level in enumerate(LEVELS) if LOGGER.isEnabledFor(level)), None)
        self._log: Any = None
        if least is not None:
            self._log = ffi.gc(lib.python_log_new(MOST_MESSAGES, MOST_BYTES), lib.python_log_free)
            if self._log != ffi.NULL:
                lib.python_log_attach(self._log, engine, least)

    def empty(self) -> None:
        """Logs what was kept. Call it once, after the call."""
        if not self._log:
            return
        for place in range(lib.python_log_size(self._log)):
            level = LEVELS[lib.python_log_level(self._log, place)]
            if LOGGER.isEnabledFor(level):
                LOGGER.log(level, "%s", sized_text(lib.python_log_text, self._log, place))
        dropped = lib.python_log_dropped(self._log)
        if dropped:
            LOGGER.warning("%d further messages of this call were dropped", dropped)
