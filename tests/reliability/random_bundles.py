"""Random bundles, small and hostile: odd column types, NULL, UTF-16, odd JSON, eight time zones, nasty ids."""
import json
import random
import sqlite3
from xml.sax.saxutils import escape, quoteattr

ZONES = ("UTC0", "CET-1CEST,M3.5.0,M10.5.0/3", "EST5EDT,M3.2.0,M11.1.0", "IST-5:30", "NPT-5:45", "<+13>-13",
         "<-0330>3:30<-0230>,M3.2.0,M11.1.0", "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0")
NOW = 1700000000
DAY = 86400
TAG = "t"
IDS = (931000001, 931000002, 931000003, 920000001, 909030000, 912001999, 1, 2147483647)
VERSIONS = ("4.1", "4.0", "", "4.1 ")

# Texts of "extra" with what their members are as texts. A member that has no text, and what is no object, fails every test.
EXTRAS = {
    "": {}, "{}": {}, '{"a": 1}': {"a": "1"}, '{"a": "2", "b": "x"}': {"a": "2", "b": "x"}, '{"a": 2.5}': {"a": "2.5"},
    '{"a": -3, "COUNT": 4}': {"a": "-3", "COUNT": "4"}, '{"COUNT": "7"}': {"COUNT": "7"}, '{"COUNT": -2}': {"COUNT": "-2"},
    '{"COUNT": "x"}': {"COUNT": "x"}, '{"a": true, "b": false}': {"a": "true", "b": "false"}, '{"a": null}': {},
    '{"a": 1, "a": 2}': {"a": "2"}, '{"a": 4294967297}': {"a": "4294967297"}, '{"a": "\\u0031\\u00e9"}': {"a": "1é"},
    '{"b": "\u0434"}': {"b": "д"}, '{"a": " 7y"}': {"a": " 7y"}, '{"a": ""}': {}, '{"a": {}}': {}, '{"a": [1]}': {}, "[1]": {},
    "no json": {}, '{"a": 1} x': {"a": "1"}, '/* c */ {"a": 5 // d\n}': {"a": "5"}, '{"a": 1,}': {"a": "1"}, "17": {},
    '{"a": "0x10"}': {"a": "0x10"}, '{"b": "a\\"b\\\\"}': {"b": 'a"b\\'}, '{"A": 1}': {"A": "1"},
}


def member(extra, key):
    """The member of an "extra" as text; empty where it has none. Bytes in a log of UTF-16 are other texts, and no JSON."""
    return EXTRAS.get(extra, {}).get(key, "")


def xml(name, content="", /, **attributes):
    """An element; None leaves an attribute out."""
    given = "".join(f" {key}={quoteattr(str(value))}" for key, value in attributes.items() if value is not None)
    return f"<{name}{given}>{content}</{name}>"


class Bundle:
    def __init__(self, seed):
        self.random = random.Random(seed)
        self.events = self.some(("A", "B", "C", "D", "A/B", "A&B", "Ä", "T/A", "e f", "<"), 3, 7)
        self.rules = self.some(("r1", "r2", "r3", "r4", "r,5", "r 6"), 2, 6)

    def of(self, *choices):
        return self.random.choice(choices)

    def some(self, choices, least, most):
        return self.random.sample(choices, self.random.randint(least, most))

    def times(self, least, most, make):
        return "".join(make() for _ in range(self.random.randint(least, most)))

    def write(self, folder):
        zone = self.of(*ZONES)
        for path in ("rules", "device/sys", "data/Comms/Lumbra/workDir/0"):
            (folder / path).mkdir(parents=True)
        (folder / "rules/FaultTrees.xml").write_text(xml("r", xml(TAG, self.times(1, 2, self.tree) + self.all_events()), version=1))
        (folder / "rules/FaultTreeRules.xml").write_text(self.rule_file())
        for node in "xy":
            if self.random.random() < 0.9:
                (folder / "device/sys" / node).write_text(self.of("3\n", "0", "2.5", "12 V", "on", "", "1e2", " 4", "7", "9"))
        self.write_log(folder / "data/Comms/Lumbra/workDir/0/log.db")
        (folder / "bundle.json").write_text(json.dumps({
            "detectScene": 1, "treeTag": TAG, "now": NOW + self.random.randint(0, 20) * DAY // 2, "tz": zone,
            "device": {"DeviceType": "laptop", "Product": "AB", "Platform": "x86", "CpuName": "c", "RamSize": "8",
                       "Resolution": "1x1", "BatteryCapacity": "50"},
            "settings": {"ProgramDataDir": "data", "DeviceRootDir": "device", "VersionName": self.of("4.1", "4.1", "4.1", "4.0", "")},
        }))

    # Trees.

    def tree(self):
        return xml("x", self.gate_event("T", 0), id=self.of("T1", "T2"), version=1, type="t")

    def all_events(self):
        """A tree of which each event that fires is a root cause."""
        events = "".join(xml("Basic-Event", xml("ID", escape(event))) for event in self.events)
        return xml("x", xml("Intermediate-Event", xml("ID", "ALL") + xml("Or-Gate", events)), id="ALL", version=1, type="t")

    def gate_event(self, name, depth):
        gate = self.of("Or-Gate", "Or-Gate", "And-Gate")
        below = self.times(0 if self.random.random() < 0.1 else 1, 3, lambda: self.event(depth))
        return xml("Intermediate-Event", xml("ID", escape(name)) + xml(gate, below))

    def event(self, depth):
        if depth < 3 and self.random.random() < 0.4:
            return self.gate_event(self.of("G", "H", *self.events), depth + 1)
        name = self.of(*self.events)
        mode = xml("DetectMode", "2") if self.random.random() < 0.05 else ""
        return xml(self.of("Basic-Event", "Basic-Event", "Basic-Event", "Undeveloped-Event"),
                   xml("ID", escape(self.of("", " ") + name + self.of("", "  "))) + mode)

    # Rules.

    def rule_file(self):
        seldom = [event for event in ("T", "G", "H") if self.random.random() < 0.15]
        entries = "".join(self.entry(event) for event in self.some(self.events, 2, len(self.events)) + seldom)
        rules = "".join(self.rule(name) for name in self.rules)
        return xml("r", xml("EventRules", xml(TAG, entries)) + xml("RuleList", xml(TAG, xml("rule", rules))))

    def entry(self, event):
        return xml("Event", xml("ID", escape(event)) + self.times(1, 3, self.alternative))

    def alternative(self):
        def name():
            return xml("Rule", xml("Rule-name", self.of(*self.rules * 3, "none", "r1", "")))
        if self.random.random() < 0.6:
            return xml("or", name(), type="singleRule")
        kind = "multipleRule" if self.random.random() < 0.8 else "other"
        return xml("or", xml("and", self.times(0, 3, name)), type=kind)

    def rule(self, name):
        given = {"name": name, "detectScene": 1}
        if self.random.random() < 0.25:
            given.update(detectScene=self.of(1, "2,1", "12", "3", None), production=self.of(None, "ABC", "X"),
                         blackProducts=self.of(None, "AB"), platform=self.of(None, "x86,arm", "arm"))
        if self.random.random() < 0.65:
            return xml("alarmRule", self.times(1, 3, self.item), **given)
        return self.node_rule(given)

    def item(self):
        first = self.of(*IDS, *IDS[:4], *IDS[:4])
        last = self.of(*[first] * 9, *[min(first + 2, 2147483647)] * 9, first - 1)
        windows = self.times(1, 3, lambda: xml(
            "time", type=self.of(*["duration", "daily_peak", "latest"] * 4, "other"), period=self.of(0, 1, 7, 30, 30, 60, 60, 30000, -1),
            threshold=self.of(0, 1, 1, 1, 2, 2, 3, 5, -1)))
        tests = self.params("a", "a", "a", "b", "b", "A", "COUNT") + self.condition() if self.random.random() < 0.9 else ""
        return xml("alarmId", windows + tests, type=self.of("param_eventid", None), BeginFlag=self.of(None, 1, 2, 3, 4),
                   Eventid_Min=self.of(*[first] * 5, None, 0, 4294967296 + first),
                   Eventid_Max=self.of(*[last] * 20, None, "x"))

    def params(self, *keys):
        return xml("params", self.times(0, 6, lambda: xml(
            "param", id=self.of("p", "q"), key=self.of(*keys), type=self.of("int", "long", "float", "double", "string", "string", "bool"),
        )))

    def test(self):
        values = xml("value", self.of("0", "1", "2.5", "x", "-3", "7", " 7y", "100", "0x10", "1é")) if self.random.random() < 0.9 else ""
        return xml(self.of("gt", "lt", "le", "ge", "eq", "ne", "in", "foo"), xml("id", self.of("p", "p", "q", "q", "r")) + values)

    def condition(self):
        return xml("condition", self.times(1, 3, lambda: xml("or", self.test(), type="single_logic")
                                           if self.random.random() < 0.5 else
                                           xml("or", xml("and", self.times(0, 3, self.test)), type="multiple_logic")))

    def node_rule(self, given):
        if self.random.random() < 0.2:
            nodes = self.times(0, 3, lambda: xml("nodeInfo", param=self.of("a", "b"), path=self.of("/sys/x", "/sys/y", "/sys/none")))
            expression = xml("logicExpression", type=self.of("x", "x", "x", ""), ret=self.of("c", ""), express=self.formula(0))
            return xml("nodeRule", nodes + self.params("a", "b", "c") + self.of(expression, "") + self.condition(), **given)
        nodes = xml("nodeInfo", param="a", path="/sys/x") + xml("nodeInfo", param="b", path="/sys/y")
        params = xml("params", "".join(xml("param", id=name, key=key, type=kind) for name, key, kind in
                                       (("p", "a", ""), ("q", "b", ""), ("r", "c", self.of("double", "float", "int")))))
        test = xml(self.of("gt", "le"), xml("id", "r") + xml("value", self.of("0", "1", "2.5", "3", "-1", "10")))
        condition = xml("condition", xml("or", test, type="single_logic"))
        return xml("nodeRule", nodes + params + xml("logicExpression", type="x", ret="c", express=self.formula(0)) + condition,
                   **given)

    def formula(self, depth):
        if depth > 3 or (depth > 0 and self.random.random() < 0.25):
            return self.of("a", "a", "b", "b", "2", "0.5", "10")
        left, right = self.formula(depth + 1), self.formula(depth + 1)
        inner = left + self.of("", " ") + self.of("+", "-", "*", "/") + right
        return f"({inner})" if self.random.random() < 0.4 else inner

    # The log.

    def write_log(self, path):
        database = sqlite3.connect(path)
        database.executescript("PRAGMA synchronous = OFF; PRAGMA encoding = '" + self.of("UTF-8", "UTF-16le", "UTF-16be") + "';")
        kind = self.of("integer", "integer", "integer", "", "text", "real")
        database.execute("CREATE TABLE event_version (_ID integer primary key, VERSION_NAME text)")
        key = "_ID integer primary key"
        database.execute(f"CREATE TABLE event_info ({key}, event_id {kind}, extra {self.of('text', '')}, version_id integer)")
        database.execute(f"CREATE TABLE event_info_flow ({key}, event_pid integer, occurrence_time {self.of('integer', kind)})")
        database.executemany("insert into event_version values (?, ?)", enumerate(VERSIONS, 1))
        for row in range(1, self.random.randint(0, 120)):
            extra = self.of(*EXTRAS) if self.random.random() < 0.8 else '{"a": 1}'
            database.execute("insert into event_info values (?, ?, ?, ?)", (
                row, self.odd(self.of(*IDS, *IDS[:4], *IDS[:4])), self.of(extra, extra, extra, extra, None, 17, extra.encode()),
                self.of(1, 1, 1, 1, 1, 2, 3, 4, 9, None)))
            database.execute("insert into event_info_flow values (?, ?, ?)", (
                self.of(row, row, row, row + 1000), row, self.odd(NOW + self.random.randint(-30 * DAY, 10 * DAY))))
        database.commit()
        database.close()

    def odd(self, number):
        """The number, and now and then something that a column takes in its place."""
        if self.random.random() < 0.9:
            return number
        return self.of(str(number), float(number), number + 0.5, None, "x", f" {number}", f"{number}x", str(number).encode())
