#!/usr/bin/env python3
"""Opens the page about many results in a real browser, with every section filled, in both schemes of colours and at the
width of a desk and of a phone: nothing sticks out, is too faint to be read or leads nowhere, and its texts have the figures
of the database.

usage: results_browser_test.py ARBORIST SOURCE_DIR. Exit status 77 without Chromium, which skips the test.
"""
import copy
import datetime
import hashlib
import json
import pathlib
import subprocess
import sys
import tempfile

import browser

WEEKS = 9
FIRST = datetime.datetime(2024, 3, 4, 9, 30)
LONG_NAME = "2024/warehouse-north/returns-of-the-second-quarter/laptop-with-a-name-that-has-no-place-to-break.zip"
SECTIONS = ["runs", "verdicts", "causes", "open", "failures", "times", "trend", "repairs"]


def lines_of_fleet(examples):
    """The recorded results over again for nine weeks and 48 devices, some of which are repaired in the fourth week; from
    then on each has other results."""
    lines = []
    for week in range(WEEKS):
        for number in range(3 * len(examples)):
            line = copy.deepcopy(examples[(number + 3 * (week // 4)) % len(examples)])
            line["bundle"] = f"week{week}/{number}-{line['bundle']}"
            line["seconds"] = round(0.01 * (week + 1) + 0.001 * number, 3)
            moment = FIRST + datetime.timedelta(days=7 * week + number % 5)
            if line["ok"]:
                line["now"] = str(moment)
                line["device"] = hashlib.md5(f"{number}".encode()).hexdigest()
                if number % 4 < 2 and week >= 4:
                    line["repaired"] = [{"id": id, "date": str(FIRST + datetime.timedelta(days=25))}
                                        for id in ("REPAIR_FAN", "REPAIR_BATTERY", "REPAIR_KEYBOARD")]
                if week % 3 == number % 3:
                    line["results"] = [tree for tree in line["results"] if tree["treeId"] != "LAPTOP_RADIO"]
            lines.append(line)
    lines[2]["bundle"] = LONG_NAME
    lines[2]["seconds"] = 7.5
    hostile = copy.deepcopy(lines[0])
    hostile["bundle"] = "<script>document.title='gone'</script>&amp;.zip"
    hostile["results"][0]["treeId"] = "<img src=x onerror=alert(1)>"
    hostile["results"][0]["rootCauses"][0]["name"] = "</style><b>Ärger & \"quotes\""
    hostile["engine"] = "0.2.0"
    return lines + [hostile]


def page_and_figures(arborist, source, folder):
    """The page of the fleet, and the figures of its database."""
    examples = []
    for name in ("before.jsonl", "after.jsonl"):
        text = (source / "examples" / "results" / name).read_text(encoding="utf-8")
        examples += [json.loads(line) for line in text.splitlines()]
    lines = folder / "fleet.jsonl"
    lines.write_text("".join(json.dumps(line) + "\n" for line in lines_of_fleet(examples)), encoding="utf-8")
    database, page = folder / "fleet.db", folder / "fleet.html"
    subprocess.run([arborist, "results", "import", lines, "--to", database, "--mixed-rules"], check=True, capture_output=True)
    report = subprocess.run([arborist, "results", "report", database, "--html", page, "--json"], check=True,
                            capture_output=True, text=True).stdout
    return page, json.loads(report)


def missing_texts(figures, sections):
    """Figures that a section should have and has not."""
    total = figures["bundles"]["total"]
    wanted = [("verdicts", f"All bundles\t{figures['bundles']['fault']}\t{figures['bundles']['undecided']}\t"),
              ("causes", f"{figures['causes'][0]['bundles']} bundles, "),
              ("open", f"{figures['openChecks']} checks are open."),
              ("trend", figures["weeks"][0]["monday"]),
              ("trend", figures["weeks"][-1]["monday"]),
              ("repairs", f"Devices\n{figures['devices']}")]
    wanted += [("runs", f"{run['engine']}\t{run['ruleSet'] or 'not known'}\t{run['bundles']}") for run in figures["runs"]]
    wanted += [("verdicts", f"{tree['tree']}\t{tree['fault']}\t{tree['undecided']}\t{tree['noFault']}\t"
                f"{tree['notApplicable']}\t{tree['absent']}\t{figures['bundles']['failed']}\t{total}") for tree in figures["trees"]]
    wanted += [("causes", f"{cause['tree']}: {cause['id']}"[:33]) for cause in figures["causes"]]
    wanted += [("open", f"{reason['check']}\t{reason['reason']}\t{reason['checks']}\t") for reason in figures["openByReason"]]
    wanted += [("open", f"\t{source['undecidedTrees']}\t{source['checks']}\t") for source in figures["openBySource"]]
    wanted += [("failures", f"{failure['code']}\t{failure['bundles']}\t") for failure in figures["failures"]]
    wanted += [("times", f"{slow['bundle']}\t{slow['now']}\t{slow['seconds']:.3f} s") for slow in figures["slowest"]]
    for repair in figures["repairs"]:
        wanted.append(("repairs", f"{repair['id']}\t{repair['devices']}\t{repair['repaired']['followed']}\t"
                       f"{repair['repaired']['again']}\t"))
        if repair["repaired"]["followed"]:
            wanted.append(("repairs", f"{repair['repaired']['again']} of {repair['repaired']['followed']} device"))
    for number in [number for row in figures["together"] for number in row]:
        wanted.append(("causes", str(number)))
    return [(section, text) for section, text in wanted if text not in sections[section]]


def main():
    arborist, source = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    if not browser.is_there():
        print("skipped: there is no chromium")
        return 77
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        page, figures = page_and_figures(arborist, source, folder)
        for key in ("runs", "trees", "causes", "together", "openByReason", "openBySource", "failures", "slowest", "weeks",
                    "repairs"):
            assert len(figures[key]) > 1, f"the fleet has no two {key}"
        for where, look in browser.assert_readable(folder, page):
            assert sorted(look["sections"]) == sorted(SECTIONS), sorted(look["sections"])
            missing = missing_texts(figures, look["sections"])
            assert not missing, f"the page lacks {where}: {missing}"
        on_paper = browser.printed(folder, page)
        assert "What these figures can" in on_paper and "REPAIR_FAN" in on_paper, "the page is not printed whole"
    print("the page about many results can be read")
    return 0


if __name__ == "__main__":
    sys.exit(main())
