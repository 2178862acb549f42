"""The answers of calls. Each keeps the JSON that it was made of, which is the command's, byte for byte."""

from __future__ import annotations

import json
from dataclasses import dataclass, field
from typing import Any


@dataclass(frozen=True)
class Warning:
    """Something that makes an answer less reliable. All but `code` and `message` may be empty; `line` 0 is none, too."""

    code: str
    message: str
    id: str = ""
    rule: str = ""
    event: str = ""
    file: str = ""
    line: int = 0


@dataclass(frozen=True)
class Repair:
    """A repair that mends a root cause."""

    id: str
    extra: str
    operation: str


@dataclass(frozen=True)
class RootCause:
    """An event that explains the fault of a tree, and its cut set: each member is its path, ids joined by "/"."""

    id: str
    name: str
    user_defined: str
    fault_description: str
    suggestions: tuple[str, ...]
    repairs: tuple[Repair, ...]
    cut_set: tuple[str, ...]


@dataclass(frozen=True)
class Check:
    """A check of an event that was left open: `check` says how ("no_data", "not_checked" ...), `reason` why."""

    event: str
    rule: str
    check: str
    reason: str
    detail: str
    rests_on_default: bool


@dataclass(frozen=True)
class CheckCounts:
    """How many checks a verdict rests on, and how many of them were decided or are open."""

    total: int
    decided: int
    not_applicable: int
    not_selected: int
    not_checked: int
    no_data: int
    error: int


@dataclass(frozen=True)
class PossibleCause:
    """A cut set that answers of open checks would add to the root causes; each member is its path, ids joined by "/"."""

    id: str
    cut_set: tuple[str, ...]


@dataclass(frozen=True)
class Tree:
    """The answer of one fault tree. `verdict` is "fault", "no_fault", "undecided" or "not_applicable"."""

    id: str
    version: str
    is_fault: bool
    root_causes: tuple[RootCause, ...]
    verdict: str
    complete: bool
    checks: CheckCounts
    open: tuple[Check, ...]
    possible_causes: tuple[PossibleCause, ...]
    possible_causes_truncated: bool


@dataclass(frozen=True)
class Detection:
    """The answer of one detection: a tree for each of the rule set, in file order.

    Answers can be compared if `engine`, the version, and `rule_set`, a digest of the rule files, are the same. `device` is
    a keyed hash of the device's id, or empty; `now` the moment of the detection; `repaired` the repairs that the bundle has
    on record at that moment, in the order in which they were first written; `seconds` how long it took, which is the one
    thing that differs between detections of the same.
    """

    bundle: str
    trees: tuple[Tree, ...]
    warnings: tuple[Warning, ...]
    device: str
    engine: str
    rule_set: str
    now: str
    repaired: tuple[RepairRecord, ...]
    seconds: float = field(compare=False)
    json: str = field(repr=False, compare=False)

    @property
    def is_fault(self) -> bool:
        """Whether any tree is a fault."""
        return any(tree.is_fault for tree in self.trees)

    def tree(self, tree_id: str) -> Tree:
        """The tree of an id; KeyError if there is none."""
        for tree in self.trees:
            if tree.id == tree_id:
                return tree
        raise KeyError(tree_id)


@dataclass(frozen=True)
class Explanation:
    """A detection with its evidence: `results` is the list that docs/explain.md describes. `json` has all of it, too, and
    stands for it in the hash."""

    bundle: str
    results: list[dict[str, Any]] = field(repr=False, hash=False)
    warnings: tuple[Warning, ...]
    json: str = field(repr=False)


@dataclass(frozen=True)
class Query:
    """What the rule set says about a detection code. An id is empty if there is none."""

    bundle: str
    code: str
    would_run: bool
    fault_description: str
    suggestion: str
    repair: str
    warnings: tuple[Warning, ...]
    json: str = field(repr=False)


@dataclass(frozen=True)
class RepairRecord:
    """A repair and the local time of the last time that it was carried out. Warnings are those of the record's making."""

    id: str
    date: str
    warnings: tuple[Warning, ...] = ()


@dataclass(frozen=True)
class RuleSet:
    """What a rule set has: `tags` is the list that docs/rules.schema.json describes. `json` has all of it, too, and stands
    for it in the hash."""

    rules: str
    tags: list[dict[str, Any]] = field(repr=False, hash=False)
    json: str = field(repr=False)


@dataclass(frozen=True)
class CodeQuestion:
    """A test that only the host can carry out; the ids are those of the first event that uses the rule."""

    user_defined_info: str
    fault_description_ids: tuple[str, ...]
    suggestion_ids: tuple[str, ...]
    repair_ids: tuple[str, ...]


def warnings_of(text: str) -> tuple[Warning, ...]:
    # Later versions may tell more.
    names = Warning.__dataclass_fields__
    return tuple(Warning(**{name: entry[name] for name in names}) for entry in json.loads(text))


def _root_cause_of(entry: dict[str, Any]) -> RootCause:
    repairs = tuple(Repair(each["id"], each["extra"], each["operation"]) for each in entry["repairs"])
    return RootCause(
        entry["id"],
        entry["name"],
        entry["userDefined"],
        entry["faultDescription"],
        tuple(entry["suggestions"]),
        repairs,
        tuple(entry["cutSet"]),
    )


def _check_of(entry: dict[str, Any]) -> Check:
    return Check(
        entry["event"], entry["rule"], entry["check"], entry["reason"], entry["detail"], entry["restsOnDefault"]
    )


def _tree_of(entry: dict[str, Any]) -> Tree:
    counts = entry["checks"]
    return Tree(
        id=entry["treeId"],
        version=entry["version"],
        is_fault=entry["isFault"],
        root_causes=tuple(_root_cause_of(cause) for cause in entry["rootCauses"]),
        verdict=entry["verdict"],
        complete=entry["complete"],
        # Later versions may count more; these are there in all.
        checks=CheckCounts(**{name: counts[name] for name in CheckCounts.__dataclass_fields__}),
        open=tuple(_check_of(check) for check in entry["open"]),
        possible_causes=tuple(PossibleCause(each["id"], tuple(each["cutSet"])) for each in entry["possibleCauses"]),
        possible_causes_truncated=entry["possibleCausesTruncated"],
    )


def detection_of(text: str, warnings: str) -> Detection:
    answer = json.loads(text)
    return Detection(
        bundle=answer["bundle"],
        trees=tuple(_tree_of(entry) for entry in answer["results"]),
        warnings=warnings_of(warnings),
        device=answer["device"],
        engine=answer["engine"],
        rule_set=answer["ruleSet"],
        now=answer["now"],
        repaired=tuple(RepairRecord(entry["id"], entry["date"]) for entry in answer["repaired"]),
        seconds=answer["seconds"],
        json=text,
    )


def explanation_of(text: str, warnings: str) -> Explanation:
    answer = json.loads(text)
    return Explanation(answer["bundle"], answer["results"], warnings_of(warnings), text)


def query_of(text: str, warnings: str) -> Query:
    answer = json.loads(text)
    return Query(
        answer["bundle"],
        answer["code"],
        answer["wouldRun"],
        answer["faultDescription"],
        answer["suggestion"],
        answer["repair"],
        warnings_of(warnings),
        text,
    )


def records_of(text: str, warnings: str) -> list[RepairRecord]:
    told = warnings_of(warnings)
    # Each line has its end, and an id may hold what else ends a line in Python.
    lines = text.split("\n")[:-1]
    return [RepairRecord(entry["id"], entry["date"], told) for entry in map(json.loads, lines)]


def rule_set_of(text: str) -> RuleSet:
    answer = json.loads(text)
    return RuleSet(answer["rules"], answer["tags"], text)


def question_of(text: str) -> CodeQuestion:
    question = json.loads(text)
    return CodeQuestion(
        question["userDefinedInfo"],
        tuple(question["faultDescriptionIds"]),
        tuple(question["suggestionIds"]),
        tuple(question["repairIds"]),
    )
