"""The Python package: the command's answers as Python objects, and a log, callbacks and threads that a host can live with.

usage: python_package_test.py COMMAND     with the built package in PYTHONPATH
"""
import dataclasses
import datetime
import gc
import json
import logging
import os
import pickle
import re
import shutil
import subprocess
import sys
import tempfile
import threading
import unittest
import zipfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from unittest import mock

import arborist
from arborist import _log

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "support"))
from unchanged_inputs import UnchangedInputs

ROOT = Path(__file__).resolve().parents[3]
MOST_GROWN = 2 * 1024 * 1024


def command(*arguments):
    return without_seconds(subprocess.run([COMMAND, *arguments], capture_output=True, check=False, text=True).stdout)


def without_seconds(lines):
    """Lines of results without the one value that equal inputs don't share."""
    return re.sub(r'"seconds": [0-9]+[.][0-9]+', '"seconds": 0', lines)


def pages():
    return int(Path("/proc/self/statm").read_text().split()[1])


def grown_by(call, log, times):
    """Bytes by which the process grows from a tenth of the calls to the last one. What the log brought is forgotten."""
    for done in range(times):
        if done == times // 10:
            gc.collect()
            before = pages()
        call()
        log.records.clear()
    gc.collect()
    return (pages() - before) * os.sysconf("SC_PAGESIZE")


class Records(logging.Handler):
    """Keeps the engine's log as long as it exists."""

    def __init__(self, level=logging.DEBUG):
        super().__init__()
        self.records = []
        self.logger = logging.getLogger("arborist")
        self.level_asked = level

    def emit(self, record):
        self.records.append(record)

    def __enter__(self):
        self.logger.addHandler(self)
        self.logger.setLevel(self.level_asked)
        self.logger.propagate = False
        return self

    def __exit__(self, *_):
        self.logger.removeHandler(self)
        self.logger.setLevel(logging.NOTSET)
        self.logger.propagate = True


class PackageTest(UnchangedInputs):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        os.chdir(cls.folder.name)
        subprocess.run([ROOT / "examples/laptop/prepare.sh", COMMAND, "laptop"], check=True, capture_output=True)

    @classmethod
    def tearDownClass(cls):
        os.chdir("/")
        cls.folder.cleanup()

    def test_json_is_the_commands(self):
        self.assertEqual(without_seconds(arborist.detect("laptop").json), command("detect", "--json", "laptop"))
        self.assertEqual(without_seconds(arborist.detect(Path("laptop"), now="2024-06-01 00:00:00", tz="UTC", tree=True).json),
                         command("detect", "--json", "--tree", "--now", "2024-06-01 00:00:00", "--tz", "UTC", "laptop"))
        self.assertEqual(without_seconds(arborist.detect("laptop", as_of=1715000000, rules="laptop/rules").json),
                         command("detect", "--json", "--as-of", "1715000000", "--rules", "laptop/rules", "laptop"))
        self.assertEqual(arborist.explain("laptop", near_misses=1, minimal=True).json,
                         command("explain", "--json", "--near-misses", "1", "--minimal", "laptop"))
        self.assertEqual(arborist.query("laptop", "KEYBOARD_TEST").json,
                         command("query", "--json", "laptop", "KEYBOARD_TEST"))
        self.assertEqual(arborist.rule_set("laptop/rules").json, command("rules", "list", "--json", "laptop/rules"))

    def test_a_detection_is_frozen_and_has_all_of_the_json(self):
        detection = arborist.detect("laptop")
        answer = json.loads(detection.json)
        self.assertEqual([tree.id for tree in detection.trees], [tree["treeId"] for tree in answer["results"]])
        for tree, entry in zip(detection.trees, answer["results"]):
            self.assertEqual((tree.version, tree.is_fault, tree.verdict, tree.complete),
                             (entry["version"], entry["isFault"], entry["verdict"], entry["complete"]))
            self.assertEqual(dataclasses.asdict(tree.checks), entry["checks"])
            self.assertEqual([(check.event, check.rule, check.check, check.reason, check.detail, check.rests_on_default)
                              for check in tree.open], [tuple(check.values()) for check in entry["open"]])
            self.assertEqual([(cause.id, cause.name, cause.user_defined, cause.fault_description,
                               list(cause.suggestions), [dataclasses.asdict(repair) for repair in cause.repairs], list(cause.cut_set))
                              for cause in tree.root_causes], [tuple(cause.values()) for cause in entry["rootCauses"]])
            self.assertEqual([(cause.id, list(cause.cut_set)) for cause in tree.possible_causes],
                             [tuple(cause.values()) for cause in entry["possibleCauses"]])
        self.assertEqual([(warning.code, warning.line) for warning in detection.warnings],
                         [(warning["code"], warning["line"]) for warning in answer["warnings"]])
        self.assertEqual((detection.device, detection.engine, detection.rule_set, detection.now, detection.seconds),
                         tuple(answer[key] for key in ("device", "engine", "ruleSet", "now", "seconds")))
        self.assertEqual(arborist.detect("laptop"), detection)
        self.assertNotEqual(arborist.detect("laptop", now=1716200000), detection)
        self.assertTrue(detection.is_fault)
        self.assertTrue(detection.tree("LAPTOP_POWER").is_fault)
        self.assertRaises(KeyError, detection.tree, "LAPTOP_SAIL")
        with self.assertRaises(dataclasses.FrozenInstanceError):
            detection.trees[0].id = "other"
        self.assertEqual(pickle.loads(pickle.dumps(detection)), detection)

    def test_a_failure_is_an_exception_with_the_commands_code(self):
        Path("lacking").mkdir(exist_ok=True)
        Path("lacking/bundle.json").write_text('{"detectScene": 1, "treeTag": "Laptop"}')
        for kind, code, bundle in [(arborist.InputError, "no_bundle", "nowhere"),
                                   (arborist.RuleSetError, "rule_file_missing", "lacking"),
                                   (arborist.WrongUseError, "bad_request", "")]:
            with self.assertRaises(kind) as raised:
                arborist.detect(bundle)
            self.assertIsInstance(raised.exception, arborist.ArboristError)
            self.assertEqual(raised.exception.code, code)
            self.assertTrue(str(raised.exception).startswith(code + ": "))
            copy = pickle.loads(pickle.dumps(raised.exception))
            self.assertEqual((copy.code, copy.message, copy.json), (code, raised.exception.message, raised.exception.json))
            self.assertFalse(raised.exception.retry)
        with self.assertRaises(arborist.InputError) as raised:
            arborist.query("nowhere", "X")
        self.assertEqual(raised.exception.json, command("query", "--json", "nowhere", "X"))
        self.assertRaises(TypeError, arborist.detect, 5)

    def test_a_failure_tells_whether_another_try_may_help(self):
        with mock.patch.dict(os.environ, {"TMPDIR": "/nowhere"}), self.assertRaises(arborist.InternalError) as raised:
            arborist.detect("laptop")
        self.assertEqual(raised.exception.code, "no_scratch")
        self.assertIs(raised.exception.retry, True)
        self.assertIs(json.loads(raised.exception.json)["error"]["retry"], True)
        self.assertIs(pickle.loads(pickle.dumps(raised.exception)).retry, True)

    def test_answers_can_be_members_of_sets(self):
        answers = [(arborist.detect, "laptop"), (arborist.explain, "laptop"), (arborist.rule_set, "laptop/rules")]
        self.assertEqual(len({call(argument) for call, argument in answers * 2}), len(answers))

    def test_a_moment_is_a_text_or_whole_seconds(self):
        class Whole:
            def __index__(self):
                return 1716200000

        self.assertEqual(arborist.detect("laptop", now=Whole()), arborist.detect("laptop", now=1716200000))
        for moment in (1716200000.5, float("nan"), b"2024-05-20 12:00:00", True, datetime.date(2024, 5, 20)):
            for name in ("now", "as_of"):
                with self.assertRaises(TypeError) as raised:
                    arborist.detect("laptop", **{name: moment})
                self.assertEqual(str(raised.exception), f'{name} must be a text "YYYY-MM-DD HH:MM:SS" or whole seconds'
                                 f" since the epoch, not {type(moment).__name__}")

    def test_a_time_limit_is_a_number_of_seconds(self):
        for limit in (-1, float("nan"), float("inf")):
            with self.assertRaisesRegex(arborist.WrongUseError, "is no number of seconds from 0 to 86400$"):
                arborist.detect("laptop", time_limit=limit)

    def test_a_path_that_is_no_utf_8_is_found(self):
        name = os.fsdecode(b"lap\xfftop")
        shutil.copytree("laptop", name)
        self.assertTrue(arborist.detect(name).is_fault)
        self.assertTrue(arborist.detect(os.fsencode(name)).is_fault)

    def test_repairs_are_recorded_and_listed(self):
        shutil.copytree("laptop", "mended")
        record = arborist.record_repair("mended", "REPAIR_FAN", now="2024-05-19 08:00:00")
        self.assertEqual((record.id, record.date, record.warnings), ("REPAIR_FAN", "2024-05-19 08:00:00", ()))
        earlier = arborist.record_repair("mended", "REPAIR_LID", now="2024-05-19 08:00:00", as_of="2024-05-18 08:00:00")
        self.assertEqual(earlier.date, "2024-05-18 08:00:00")
        unknown = arborist.record_repair("mended", "REPAIR_FON")
        self.assertEqual([warning.code for warning in unknown.warnings], ["unknown_repair"])
        self.assertEqual([record.id for record in arborist.repairs("mended")],
                         ["REPAIR_KEYBOARD", "REPAIR_FAN", "REPAIR_LID", "REPAIR_FON"])

    def test_a_repair_may_have_what_ends_a_line_in_its_id(self):
        shutil.copytree("laptop", "odd")
        known = len(arborist.repairs("odd"))
        odd = ["A\u2028B", "A\u2029B", "A\x85B", "A\x1cB", "A\x0bB", "A\x0cB"]
        self.assertEqual([arborist.record_repair("odd", repair).id for repair in odd], odd)
        self.assertEqual([record.id for record in arborist.repairs("odd")][known:], odd)

    def test_a_detection_has_the_repairs_on_record(self):
        shutil.copytree("laptop", "repaired")
        arborist.record_repair("repaired", "REPAIR_FAN", now="2024-05-19 08:00:00")
        detection = arborist.detect("repaired", now="2024-05-20 12:00:00")
        self.assertEqual(detection.repaired[-1], arborist.RepairRecord("REPAIR_FAN", "2024-05-19 08:00:00"))
        self.assertEqual([{"id": record.id, "date": record.date} for record in detection.repaired],
                         json.loads(detection.json)["repaired"])
        self.assertEqual(detection.repaired, tuple(arborist.repairs("repaired")))

    def test_the_host_answers_code_rules(self):
        questions = []

        def answer(question):
            questions.append(question)
            return None if "pixel" in question.user_defined_info else True

        detection = arborist.detect("laptop", code_runner=answer)
        self.assertEqual(questions[1], arborist.CodeQuestion('{"test": "keyboard"}', ("DESC_KEYBOARD_DEAD",),
                                                             ("SUGGEST_KEYBOARD_DEAD",), ("REPAIR_KEYBOARD",)))
        self.assertTrue(detection.tree("LAPTOP_INPUT").is_fault)
        self.assertEqual([warning.code for warning in detection.warnings], ["code_runner"])

    def test_an_exception_of_the_runner_stops_the_detection_and_is_raised(self):
        asked = []

        def fail(question):
            asked.append(question)
            raise LookupError("no hands free")

        with self.assertRaisesRegex(LookupError, "no hands free"):
            arborist.detect("laptop", code_runner=fail)
        self.assertEqual(len(asked), 1)

    def test_a_runner_that_returns_no_answer_is_a_wrong_runner(self):
        class Undecided:
            def __bool__(self):
                raise ValueError("no truth")

        for answer, kind in [("no", "str"), (1, "int"), (Undecided(), "Undecided")]:
            with self.assertRaisesRegex(TypeError, f"the code runner returned {kind}, not True, False or None"):
                arborist.detect("laptop", code_runner=lambda _, answer=answer: answer)

    def test_a_signal_ends_a_detection_that_runs(self):
        shutil.copytree(ROOT / "tests/bindings/python/endless_rules", "endless/rules")
        Path("endless/bundle.json").write_text('{"detectScene": 1, "treeTag": "Tag"}')
        for number, exception in [("SIGINT", "KeyboardInterrupt"), ("SIGUSR1", "LookupError")]:
            host = subprocess.run([sys.executable, "-B", Path(__file__).parent / "interrupted_host.py", "endless", number],
                                  capture_output=True, check=False, text=True, timeout=120)
            self.assertEqual((host.stdout, host.stderr), (f"{exception} ['asked']\n", ""))

    def test_the_runner_is_called_on_the_thread_of_the_call(self):
        for call in (lambda work: work(), self.in_thread):
            threads = []

            def answer(_, threads=threads):
                threads.append(threading.current_thread())
                return True

            def detect(answer=answer, threads=threads):
                self.assertTrue(arborist.detect("laptop", code_runner=answer).is_fault)
                self.assertEqual(threads, [threading.current_thread()] * 2)

            call(detect)

    def test_a_call_is_made_where_no_thread_can_be_started(self):
        with mock.patch.object(threading.Thread, "start", side_effect=RuntimeError("can't start new thread")):
            detection = arborist.detect("laptop", code_runner=lambda _: True)
        self.assertTrue(detection.tree("LAPTOP_INPUT").is_fault)

    def in_thread(self, work):
        with ThreadPoolExecutor(1) as pool:
            pool.submit(work).result(60)

    def test_a_call_out_of_the_runner_is_busy(self):
        codes = []

        def call_again(_):
            try:
                arborist.detect("laptop")
            except arborist.WrongUseError as error:
                codes.append(error.code)
            return False

        arborist.detect("laptop", code_runner=call_again)
        self.assertEqual(codes, ["busy", "busy"])

    def test_a_stop_leaves_the_rest_open(self):
        stop = arborist.Stop()
        stop.stop()  # nothing runs: nothing happens

        def stop_and_answer(_):
            stop.stop()
            return True

        detection = arborist.detect("laptop", code_runner=stop_and_answer, stop=stop)
        self.assertIn("stopped", [warning.code for warning in detection.warnings])
        self.assertTrue(detection.tree("LAPTOP_POWER").is_fault)
        self.assertIn("stopped", {check.reason for check in detection.tree("LAPTOP_RADIO").open})

    def test_a_stop_ends_the_unpacking_of_a_zip(self):
        with zipfile.ZipFile("large.zip", "w", zipfile.ZIP_DEFLATED) as archive:
            archive.writestr("bundle.json", '{"detectScene": 1, "treeTag": "Tag"}')
            archive.writestr("zeros", bytes(100 * 1024 * 1024))
        stop, is_over = arborist.Stop(), threading.Event()

        def stop_all_the_time():
            while not is_over.is_set():
                stop.stop()

        with ThreadPoolExecutor(1) as pool:
            pool.submit(stop_all_the_time)
            try:
                with self.assertRaisesRegex(arborist.InternalError, "^timeout: large.zip: stopped before it was unpacked$"):
                    arborist.detect("large.zip", stop=stop)
            finally:
                is_over.set()

    def test_the_log_comes_when_the_call_has_ended(self):
        with Records() as log:
            during = []

            def count(_):
                during.append(len(log.records))
                return False

            arborist.detect("laptop", code_runner=count)
            self.assertEqual(during, [0, 0])
            self.assertGreater(len(log.records), 10)
            self.assertEqual({record.name for record in log.records}, {"arborist"})
            self.assertEqual({record.levelno for record in log.records},
                             {logging.DEBUG, logging.INFO, logging.WARNING})

    def test_the_log_has_what_the_logger_asks_for_and_no_more_than_its_bound(self):
        with Records(logging.WARNING) as log:
            arborist.detect("laptop")
            self.assertEqual({record.levelno for record in log.records}, {logging.WARNING})
        most, _log.MOST_MESSAGES = _log.MOST_MESSAGES, 3
        try:
            with Records() as log:
                arborist.detect("laptop")
        finally:
            _log.MOST_MESSAGES = most
        self.assertEqual(len(log.records), 4)
        self.assertRegex(log.records[-1].getMessage(), r"^\d+ further messages of this call were dropped$")

    def test_a_call_that_waits_or_runs_leaves_other_threads_running(self):
        may_answer, answers = threading.Event(), []

        def wait(_):
            self.assertTrue(may_answer.wait(60))
            return False

        threads = [threading.Thread(target=lambda: answers.append(arborist.detect("laptop", code_runner=wait).is_fault))
                   for _ in range(3)]
        for thread in threads:
            thread.start()
        may_answer.set()  # with Python's lock held by a waiting call, this thread would not get here
        for thread in threads:
            thread.join(60)
        self.assertEqual(answers, [True] * 3)

    def test_the_example_prints_what_it_should(self):
        Path("fleet").mkdir()
        printed = subprocess.run([sys.executable, "-B", ROOT / "examples/python-host/fleet.py", "laptop", "fleet"],
                                 check=True, capture_output=True, text=True)
        self.assertEqual(printed.stdout, (ROOT / "examples/python-host/expected.txt").read_text())
        self.assertEqual(printed.stderr, "")

    def test_the_blocks_of_the_page_run(self):
        blocks = re.findall(r"^```python\n(.*?)^```", (ROOT / "docs/python.md").read_text(), re.MULTILINE | re.DOTALL)
        printed, asked = [], []

        def answer(question):
            asked.append(question)
            return "yes"

        names = {"print": lambda *words: printed.append(words), "input": answer}
        for block in blocks:
            exec(block, names)  # pylint: disable=exec-used
        self.assertEqual(len(blocks), 2)
        self.assertIn(("LAPTOP_POWER", "The battery has lost capacity", ["REPAIR_BATTERY"]), printed)
        self.assertEqual(asked[1], '{"test": "keyboard"}: is the fault present? ')
        self.assertTrue(names["detection"].tree("LAPTOP_INPUT").is_fault)

    def test_memory_stays_flat(self):
        """Of ARBORIST_CALLS calls of each kind; scripts/flat-memory.sh makes many."""
        shutil.copytree(ROOT / "tests/bindings/c/code_rules", "flat/rules")
        Path("flat/bundle.json").write_text('{"detectScene": 1, "treeTag": "Tag"}')

        def fail(_):
            raise LookupError("no hands free")

        def answered():
            arborist.detect("flat", code_runner=lambda question: True, tree=True)

        def failing():
            self.assertRaises(LookupError, arborist.detect, "flat", code_runner=fail)
            self.assertRaises(arborist.InputError, arborist.detect, "nowhere")

        for call in (answered, failing, lambda: arborist.explain("flat")):
            with Records(logging.DEBUG) as log:
                self.assertLess(grown_by(call, log, int(os.environ.get("ARBORIST_CALLS", "300"))), MOST_GROWN)

    def test_types_are_strict(self):
        if shutil.which("mypy") is None:
            self.skipTest("no mypy")
        for target in (ROOT / "bindings/python/arborist", ROOT / "examples/python-host/fleet.py"):
            checked = subprocess.run(["mypy", "--strict", "--cache-dir", "mypy-cache", target], capture_output=True,
                                     text=True, check=False, env={**os.environ, "MYPYPATH": f"{ROOT}/bindings/python"})
            self.assertEqual(checked.returncode, 0, checked.stdout)


if __name__ == "__main__":
    COMMAND = sys.argv[1]
    sys.exit(unittest.main(argv=sys.argv[:1] + sys.argv[2:]))
