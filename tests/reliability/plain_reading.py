"""What a detection must answer, read off the files of a bundle as plainly as can be, and apart from the library: the two XML
files by ElementTree, the event log by one SELECT for each question, cut sets by expanding all gates.

Knows alarm and node rules. Raises nothing on purpose: whatever is missing counts as the library counts it.
"""
import itertools
import json
import os
import re
import sqlite3
import struct
import time
import xml.etree.ElementTree as ElementTree
from pathlib import Path

TRUE, FALSE, UNKNOWN = "TRUE", "FALSE", "UNKNOWN"
COMPARISONS = ("eq", "gt", "lt", "ge", "le", "ne", "in")
WEIGHTED = ((920000000, 929999999), (909030000, 909031999), (912001000, 912001999))
LOG = "Comms/Lumbra/workDir/0/log.db"


def int32(number):
    return (number + 2**31) % 2**32 - 2**31


def whole(text, default=0):
    """The number at the front of a text, in 32 bits."""
    match = re.match(r"[ \t\n\v\f\r]*([+-]?[0-9]+)", text)
    if not match or not -2**63 <= int(match[1]) < 2**63:
        return default
    return int32(int(match[1]))


def real(text):
    """The number at the front of a text; 0 where there is none."""
    match = re.match(r"[ \t\n\v\f\r]*([+-]?(?:0[xX][0-9a-fA-F]+|(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][+-]?[0-9]+)?))", text)
    if not match:
        return 0.0
    return float.fromhex(match[1]) if "x" in match[1].lower() else float(match[1])


def single(text):
    return struct.unpack("f", struct.pack("f", real(text)))[0]


def holds(logic, kind, configured, observed):
    """One comparison of a rule."""
    if not (logic and kind and configured and observed):
        return False
    if kind == "string":
        return (logic == "eq" and configured == observed) or (logic == "ne" and configured != observed)
    read = {"int": whole, "long": whole, "float": single, "double": real}.get(kind)
    if read is None:
        return False
    limit, value = read(configured), read(observed)
    return {"gt": value > limit, "lt": value < limit, "le": value <= limit, "ge": value >= limit, "eq": value == limit,
            "ne": value != limit}.get(logic, False)


def split(text, delimiter):
    return [part for part in text.split(delimiter) if part]


def text_of(element, name):
    child = element.find(name) if element is not None else None
    return (child.text or "") if child is not None else ""


# The tree file.

class Event:
    def __init__(self, element):
        self.kind = element.tag
        self.id = text_of(element, "ID").strip(" ")
        self.mode = text_of(element, "DetectMode")
        self.gate, self.children = None, []
        if self.kind == "Intermediate-Event":
            gates = [element.find(name) for name in ("Or-Gate", "And-Gate")]
            gate = next((gate for gate in gates if gate is not None), None)
            if gate is not None:
                self.gate = gate.tag
                self.children = [Event(child) for child in gate]
        self.status = UNKNOWN if self.kind not in ("Intermediate-Event", "Basic-Event") else FALSE

    def everything(self):
        return [self] + [event for child in self.children for event in child.everything()]


def trees_of(path, tag):
    section = ElementTree.parse(path).getroot().find(tag)
    return [(tree.get("id"), Event(tree.find("Intermediate-Event"))) for tree in (section if section is not None else [])
            if tree.find("Intermediate-Event") is not None]


# The rule file.

class Alternative:
    def __init__(self, element):
        self.type, self.name, self.names, self.result = element.get("type"), "", [], False
        if self.type == "singleRule":
            self.name = text_of(element.find("Rule"), "Rule-name")
        elif self.type == "multipleRule" and element.find("and") is not None:
            self.names = [name for name in (text_of(rule, "Rule-name") for rule in element.find("and").findall("Rule")) if name]


class Entry:
    def __init__(self, element):
        self.alternatives = [Alternative(one) for one in element.findall("or") if one.get("type") is not None]
        self.result = False

    def find(self, name):
        if not name:
            return None
        for one in self.alternatives:
            if one.type == "singleRule" and one.name == name:
                return one
            parts = split(name, ",")
            if parts and one.names and all(part in one.names for part in parts):
                return one
        return None


def entries_of(root, tag):
    section = root.find("EventRules")
    section = section.find(tag) if section is not None else None
    events = section.findall("Event") if section is not None else []
    return {text_of(event, "ID"): Entry(event) for event in events if text_of(event, "ID")}


def rules_of(root, tag):
    section = root.find("RuleList")
    section = section.find(tag) if section is not None else None
    rules = [rule for group in (section.findall("rule") if section is not None else []) for rule in group]
    return {rule.get("name"): rule for rule in rules if rule.get("name")}


def params_of(element):
    """(id, key, type) by id, in the order of ids."""
    found = {}
    block = element.find("params")
    for param in block.findall("param") if block is not None else []:
        values = [param.get(name) for name in ("id", "key", "type")]
        if None not in values and values[0] not in found:
            found[values[0]] = values
    return dict(sorted(found.items(), key=lambda item: item[0].encode()))


def tests_of(element):
    """The alternatives of a condition: (type, [(logic, parameter, value)])."""
    condition = element.find("condition")
    alternatives = []
    for one in condition.findall("or") if condition is not None else []:
        kind = one.get("type")
        if kind == "single_logic" and len(one):
            test = one[0]
            if test.tag not in COMPARISONS:
                alternatives.append((kind, [("", "", "")]))
            elif text_of(test, "id"):
                alternatives.append((kind, [(test.tag, text_of(test, "id"), text_of(test, "value"))]))
        elif kind == "multiple_logic" and one.find("and") is not None:
            tests = [(test.tag, text_of(test, "id"), text_of(test, "value")) for test in one.find("and")
                     if test.tag in COMPARISONS and text_of(test, "id") and text_of(test, "value")]
            if tests:
                alternatives.append((kind, tests))
    return alternatives


# The event log.

class Row:
    def __init__(self, event, extra, moment):
        self.event, self.extra = event, extra
        try:
            self.day = time.localtime(moment).tm_mday
        except (OverflowError, ValueError, OSError):
            self.day = 0


class Log:
    QUESTION = ("select cast(event_info.extra as text), cast(event_info_flow.occurrence_time as text), "
                "cast(event_version.VERSION_NAME as text) from event_info "
                "join event_info_flow on event_info._ID = event_info_flow._ID "
                "join event_version on event_info.version_id = event_version._ID "
                "where event_id = ? and occurrence_time >= ?")

    def __init__(self, path, version, member):
        self.version, self.member = version, member
        self.connection = sqlite3.connect(f"file:{path}?mode=ro", uri=True)
        self.connection.text_factory = bytes
        self.known = {}

    def rows(self, event, start, own_version_only):
        key = (event, start, own_version_only)
        if key not in self.known:
            found = []
            for extra, moment, version in self.connection.execute(self.QUESTION, (event, start)):
                extra, moment, version = ((value or b"").split(b"\0")[0].decode("utf-8", "surrogateescape")
                                          for value in (extra, moment, version))
                if not own_version_only or not version or version == self.version:
                    number = re.match(r"[ \t\n\v\f\r]*([+-]?[0-9]+)", moment)
                    found.append(Row(event, extra, int(number[1]) if number else 0))
            self.known[key] = found
        return self.known[key]

    def value(self, row, key):
        return self.member(row.extra, key) if row.extra and key else ""

    def weight(self, row):
        if not any(first <= row.event <= last for first, last in WEIGHTED):
            return 1
        if not row.extra:
            return 0
        count = self.member(row.extra, "COUNT")
        return whole(count) if count else 1


def is_alarm(rule, log, now):
    for item in rule.findall("alarmId"):
        last, first = (whole(item.get(name) or "0") for name in ("Eventid_Max", "Eventid_Min"))
        first = first or last
        if first == 0 or first > last:
            return False
        windows = {window.get("type"): window for window in item.findall("time")}
        for kind in ("duration", "daily_peak", "latest"):
            if kind in windows and is_window(item, windows[kind], kind, range(first, last + 1), log, now):
                return True
    return False


def is_window(item, window, kind, ids, log, now):
    period, threshold = whole(window.get("period") or ""), whole(window.get("threshold") or "")
    if period == 0 and threshold == 0:
        return False
    start = now - int32((period or 30) * 86400)
    own = item.get("BeginFlag", "1") in ("1", "2")
    rows = [log.rows(event, start, own) for event in ids]
    reaches = peak_reaches if kind == "daily_peak" else count_reaches
    if item.get("type") != "param_eventid":
        return any(reaches(found, log.weight, threshold) for found in rows)
    params = params_of(item)

    def test_of(logic, param, value):
        _, key, kind_of_value = params.get(param, ("", "", ""))
        return lambda row: 1 if holds(logic, kind_of_value, value, log.value(row, key)) else 0

    for alternative, tests in tests_of(item) if params else []:
        checks = [test_of(*test) for test in tests]
        if alternative == "single_logic":
            hit = any(reaches(found, checks[0], threshold) for found in rows)
        elif kind == "duration":  # one row must pass all tests
            hit = any(found and sum(all(check(row) for check in checks) for row in found) >= threshold for found in rows)
        else:  # each test counts its own rows, of the last number
            hit = all(count_reaches(rows[-1], check, threshold) for check in checks)
        if hit:
            return True
    return False


def count_reaches(rows, count, threshold):
    return bool(rows) and sum(count(row) for row in rows) % 2**64 >= threshold % 2**64


def peak_reaches(rows, count, threshold):
    """By day of the month, whatever month."""
    days = [int32(sum(count(row) for row in rows if row.day == day)) for day in range(1, 32)]
    return bool(rows) and max(0, *days) >= threshold


# Node rules.

def formula(tokens):
    """Operators of one level from the right: a - b - c is a - (b - c)."""
    def factor():
        token = tokens.pop(0)
        if token == "(":
            value = level()
            tokens.pop(0)
            return value
        return real(token)

    def product():
        left = factor()
        if tokens and tokens[0] in "*/":
            multiplies = tokens.pop(0) == "*"
            right = product()
            return left * right if multiplies else (left / right if right != 0 else 0.0)
        return left

    def level():
        left = product()
        if tokens and tokens[0] in "+-":
            adds = tokens.pop(0) == "+"
            right = level()
            return left + right if adds else left - right
        return left

    return level()


def is_node(rule, root):
    """For formulas that don't name their own result, which would be that of the last call."""
    params = [values + [""] for values in params_of(rule).values()]
    nodes = rule.findall("nodeInfo")
    if not nodes or not params:
        return False
    for node in nodes:
        path = root / (node.get("path") or "").lstrip("/")
        value = path.read_text() if path.is_file() else ""
        for param in params:
            if param[1] == (node.get("param") or ""):
                param[3] = value
    expression = rule.find("logicExpression")
    if expression is not None and all(expression.get(name) for name in ("type", "ret", "express")):
        names = {}
        for param in reversed(params):
            names[param[1]] = param[3]
        parts = [part.replace(" ", "") for part in re.split(r"([-+*/()])", expression.get("express"))]
        result = "%f" % formula([names.get(part) or part for part in parts if part])
        for param in params:
            if param[1] == expression.get("ret"):
                param[3] = result
    for kind, tests in tests_of(rule):
        if kind == "single_logic":
            logic, _, value = tests[0]
            return any(holds(logic, param[2], value, param[3]) for param in params)
        return all(any(param[0] == name and holds(logic, param[2], value, param[3]) for param in params)
                   for logic, name, value in tests)
    return False


# The detection.

class Detection:
    def __init__(self, bundle, member):
        self.bundle = Path(bundle)
        self.description = json.loads((self.bundle / "bundle.json").read_text())
        os.environ["TZ"] = self.description["tz"]
        time.tzset()
        settings = self.description["settings"]
        tag = self.description["treeTag"]
        root = ElementTree.parse(self.bundle / "rules" / "FaultTreeRules.xml").getroot()
        self.trees = trees_of(self.bundle / "rules" / "FaultTrees.xml", tag)
        self.entries, self.rules = entries_of(root, tag), rules_of(root, tag)
        self.log = Log(self.bundle / settings["ProgramDataDir"] / LOG, settings["VersionName"], member)
        self.root = self.bundle / settings["DeviceRootDir"]

    def answer(self):
        """[(tree, [root causes])]"""
        answers = []
        for name, top in self.trees:
            events = top.everything()
            for event in events:
                if event.id in self.entries and self.is_happened(event):
                    event.status = TRUE
            self.fold(top)
            answers.append((name, self.causes(top)))
        self.log.connection.close()
        return answers

    def is_happened(self, event):
        entry = self.entries[event.id]
        if event.mode == "2" or not entry.alternatives:
            return False
        for name in [one.name if one.type == "singleRule" else ",".join(one.names) for one in entry.alternatives]:
            parts = split(name, ",") if "," in name else [name]
            fires = all(self.is_fired(part) for part in parts)
            found = entry.find(name)
            if found is not None:
                found.result = fires
        entry.result = entry.result or any(one.result for one in entry.alternatives)
        return entry.result

    def is_fired(self, name):
        rule = self.rules.get(name)
        if rule is None or not self.is_for_this_device(rule):
            return False
        if rule.tag == "alarmRule":
            return is_alarm(rule, self.log, self.description["now"])
        return rule.tag == "nodeRule" and is_node(rule, self.root)

    def is_for_this_device(self, rule):
        device = self.description["device"]
        product = device["Product"]
        if rule.get("blackProducts") and product in rule.get("blackProducts"):
            return False
        if rule.get("production") and product not in rule.get("production"):
            return False
        if str(self.description["detectScene"]) not in (rule.get("detectScene") or ""):
            return False
        return all(not rule.get(field) or device[key] in rule.get(field)
                   for field, key in (("platform", "Platform"), ("deviceType", "DeviceType")))

    def fold(self, event):
        for child in event.children:
            self.fold(child)
        if event.gate is None or event.id in self.entries:
            return
        below = [child.status for child in event.children]
        if event.gate == "Or-Gate":
            event.status = TRUE if TRUE in below else UNKNOWN if UNKNOWN in below else FALSE
        else:
            event.status = next((status for status in below if status != TRUE), TRUE)

    @staticmethod
    def cut_sets(event, path):
        result = []
        for child in event.children:
            way = f"{path}/{child.id}"
            if child.kind == "Intermediate-Event":
                below = Detection.cut_sets(child, way)
                if event.gate == "Or-Gate" or not result:
                    result = result + below
                else:
                    result = [f"{left}&{right}" for left, right in itertools.product(result, below)]
            elif event.gate == "Or-Gate" or not result:
                result = result + [way]
            else:
                result = [f"{left}&{way}" for left in result]
        return result

    @staticmethod
    def ways(event, above, path):
        """The chains of (path, event) from each leaf up to the top, in the order of the leaves."""
        path = f"{path}/{event.id}" if above else event.id
        chain = [(path, event)] + above
        if not event.children:
            return [chain]
        return [way for child in event.children for way in Detection.ways(child, chain, path)]

    def causes(self, top):
        chains = self.ways(top, [], "")
        found = []
        for cut_set in self.cut_sets(top, top.id):
            firsts = []
            for member in split(cut_set, "&"):
                way = next((chain[place:] for chain in chains for place in range(len(chain)) if chain[place][0] == member), None)
                if way is None or any(event.status != TRUE for _, event in way):
                    break
                firsts.append(way[0][1].id)
            else:
                found.append(firsts[0])
        return found
