"""The calls: a request goes out as JSON, the answer or an exception comes back."""

from __future__ import annotations

import json
import math
import operator
import os
from typing import Any, Union

from arborist import _results
from arborist._errors import BY_STATUS, ArboristError, WrongUseError
from arborist._log import LogQueue
from arborist._native import ffi, lib
from arborist._results import Detection, Explanation, Query, RepairRecord, RuleSet
from arborist._running import Answers, CodeRunner, Stop, run, turn
from arborist._text import sized_text, text_of

Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]
Moment = Union[str, int]


def _new_engine() -> Any:
    engine, error = ffi.new("arborist_engine**"), ffi.new("arborist_error**")
    if lib.arborist_engine_new(engine, error) != lib.ARBORIST_OK:
        raise _error_of(error[0])
    return ffi.gc(engine[0], lib.arborist_engine_free)


def _error_of(handle: Any) -> ArboristError:
    error = ffi.gc(handle, lib.arborist_error_free)
    kind = BY_STATUS.get(int(lib.arborist_error_status(error)), ArboristError)
    return kind(
        text_of(lib.arborist_error_code(error)),
        text_of(lib.arborist_error_message(error)),
        sized_text(lib.arborist_error_json, error),
        bool(lib.arborist_error_retry(error)),
    )


def _request_of(keys: dict[str, Any]) -> bytes:
    """The request without what was not given. A path that is no UTF-8 keeps its bytes."""
    given = {key: value for key, value in keys.items() if value is not None and value is not False}
    return json.dumps(given, ensure_ascii=False).encode("utf-8", "surrogateescape")


def _call(
    function: Any, keys: dict[str, Any], code_runner: CodeRunner | None = None, stop: Stop | None = None
) -> tuple[str, str]:
    """The JSON of the answer and of its warnings. The engine's log and an exception of the runner come first."""
    with turn():
        return _call_in_turn(function, keys, code_runner, stop)


def _call_in_turn(
    function: Any, keys: dict[str, Any], code_runner: CodeRunner | None, stop: Stop | None
) -> tuple[str, str]:
    engine = _new_engine()
    queue = LogQueue(engine)
    answers = Answers(engine, code_runner)
    handle = ffi.new_handle(answers)
    if code_runner is not None:
        lib.arborist_engine_on_code_rule(engine, lib.python_code_rule, handle)
    request = _request_of(keys)
    result, error = ffi.new("arborist_result**"), ffi.new("arborist_error**")
    if stop is not None:
        stop._reach(engine)
    try:
        # The thread of the call keeps what the call uses, the handle and the queue, too.
        run(lambda: (function(engine, request, len(request), result, error), handle, queue), answers)
    finally:
        if stop is not None:
            stop._reach(None)
    answer = ffi.gc(result[0], lib.arborist_result_free)
    failure = _error_of(error[0]) if error[0] != ffi.NULL else None
    queue.empty()
    if answers.exception is not None:
        raise answers.exception
    if failure is not None:
        raise failure
    return sized_text(lib.arborist_result_json, answer), sized_text(lib.arborist_result_warnings, answer)


def _path(path: Path | None) -> str | None:
    return None if path is None else os.fsdecode(path)


def _moment(name: str, moment: Moment | None) -> Moment | None:
    if moment is None or isinstance(moment, str):
        return moment
    try:
        if not isinstance(moment, bool):
            return operator.index(moment)
    except TypeError:
        pass  # told below, in words of this argument
    raise TypeError(f'{name} must be a text "YYYY-MM-DD HH:MM:SS" or whole seconds since the epoch, not {type(moment).__name__}')


def _seconds(limit: float | None) -> float | None:
    """JSON has neither NaN nor infinity."""
    if limit is not None and not math.isfinite(limit):
        raise WrongUseError("bad_request", '"time_limit" is no number of seconds from 0 to 86400')
    return limit


def _moments(now: Moment | None, as_of: Moment | None) -> dict[str, Any]:
    return {"now": _moment("now", now), "asOf": _moment("as_of", as_of)}


def detect(
    bundle: Path,
    *,
    now: Moment | None = None,
    as_of: Moment | None = None,
    tz: str | None = None,
    rules: Path | None = None,
    live: bool = False,
    time_limit: float | None = None,
    tree: bool = False,
    code_runner: CodeRunner | None = None,
    stop: Stop | None = None,
) -> Detection:
    """Diagnoses a bundle, a folder or a zip. `now` and `as_of` are "YYYY-MM-DD HH:MM:SS" or seconds since the epoch;
    `tree` adds the events of each tree to the JSON. An exception of `code_runner` stops the detection and is raised."""
    keys: dict[str, Any] = {"bundle": _path(bundle), **_moments(now, as_of), "tz": tz, "rules": _path(rules)}
    keys.update({"live": live, "timeLimit": _seconds(time_limit), "tree": tree})
    return _results.detection_of(*_call(lib.arborist_detect, keys, code_runner, stop))


def explain(
    bundle: Path,
    *,
    event: str | None = None,
    rule: str | None = None,
    cause: str | None = None,
    near_misses: int | None = None,
    limit: int | None = None,
    minimal: bool = False,
    brief: bool = False,
    now: Moment | None = None,
    as_of: Moment | None = None,
    tz: str | None = None,
    rules: Path | None = None,
    live: bool = False,
    time_limit: float | None = None,
    code_runner: CodeRunner | None = None,
    stop: Stop | None = None,
) -> Explanation:
    """Diagnoses a bundle and tells why: every rule with all that it looked at."""
    keys: dict[str, Any] = {"bundle": _path(bundle), "event": event, "rule": rule, "cause": cause}
    keys.update({"nearMisses": near_misses, "limit": limit, "minimal": minimal, "brief": brief})
    keys.update({**_moments(now, as_of), "tz": tz, "rules": _path(rules), "live": live, "timeLimit": _seconds(time_limit)})
    return _results.explanation_of(*_call(lib.arborist_explain, keys, code_runner, stop))


def query(
    bundle: Path,
    code: str,
    *,
    now: Moment | None = None,
    as_of: Moment | None = None,
    tz: str | None = None,
    rules: Path | None = None,
    live: bool = False,
) -> Query:
    """What the rule set says about a detection code, without a detection."""
    keys = {"bundle": _path(bundle), "code": code, **_moments(now, as_of), "tz": tz, "rules": _path(rules), "live": live}
    return _results.query_of(*_call(lib.arborist_query, keys))


def record_repair(
    bundle: Path,
    repair: str,
    *,
    now: Moment | None = None,
    as_of: Moment | None = None,
    tz: str | None = None,
    rules: Path | None = None,
    live: bool = False,
) -> RepairRecord:
    """Records in the bundle, a folder, that a repair was carried out at the moment `as_of`, or else `now`."""
    keys = {"bundle": _path(bundle), "id": repair, **_moments(now, as_of), "tz": tz, "rules": _path(rules), "live": live}
    return _results.records_of(*_call(lib.arborist_repair_record, keys))[0]


def repairs(bundle: Path, *, live: bool = False) -> list[RepairRecord]:
    """The records of repairs, in the order in which they were first made."""
    return _results.records_of(*_call(lib.arborist_repair_list, {"bundle": _path(bundle), "live": live}))


def rule_set(rules: Path, *, prefix: str | None = None, tag: str | None = None) -> RuleSet:
    """What a rule set has, and who names whom."""
    text, _ = _call(lib.arborist_rule_set, {"rules": _path(rules), "prefix": prefix, "tag": tag})
    return _results.rule_set_of(text)
