"""Fault tree diagnosis for consumer devices: what is wrong with a device, and why.

    >>> import arborist
    >>> detection = arborist.detect("devices/4711")
    >>> [cause.name for tree in detection.trees for cause in tree.root_causes]

One call runs at a time in a process: while it runs, the working directory and the time zone are those of the bundle. A
call from another thread waits, without holding Python's lock. docs/python.md describes everything."""

from arborist._calls import detect, explain, query, record_repair, repairs, rule_set
from arborist._errors import ArboristError, InputError, InternalError, RuleSetError, WrongUseError
from arborist._native import lib as _lib
from arborist._results import (
    Check,
    CheckCounts,
    CodeQuestion,
    Detection,
    Explanation,
    PossibleCause,
    Query,
    Repair,
    RepairRecord,
    RootCause,
    RuleSet,
    Tree,
    Warning,
)
from arborist._running import CodeRunner, Stop
from arborist._text import text_of as _text_of

__version__: str = _text_of(_lib.arborist_library_version())
"""The version of the engine, which is in the module."""

__all__ = [
    "ArboristError",
    "Check",
    "CheckCounts",
    "CodeQuestion",
    "CodeRunner",
    "Detection",
    "Explanation",
    "InputError",
    "InternalError",
    "PossibleCause",
    "Query",
    "Repair",
    "RepairRecord",
    "RootCause",
    "RuleSet",
    "RuleSetError",
    "Stop",
    "Tree",
    "Warning",
    "WrongUseError",
    "__version__",
    "detect",
    "explain",
    "query",
    "record_repair",
    "repairs",
    "rule_set",
]
