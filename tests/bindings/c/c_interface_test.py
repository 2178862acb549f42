"""The C interface answers as the command does, byte for byte, and keeps what its header promises.

usage: c_interface_test.py C_CALL C_CONTRACT COMMAND LIBRARY NM
"""
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "support"))
from unchanged_inputs import UnchangedInputs

ROOT = Path(__file__).resolve().parents[3]


def call(operation, request, *options, **more):
    text = request if isinstance(request, str) else json.dumps(request)
    return subprocess.run([C_CALL, operation, text, *options], capture_output=True, check=False, **more)


def command(*arguments):
    return subprocess.run([COMMAND, *arguments], capture_output=True, check=False)


def without_seconds(lines):
    """Lines of results without the one value that equal inputs don't share."""
    return re.sub(rb'"seconds": [0-9]+[.][0-9]+', b'"seconds": 0', lines)


def warnings_of(result):
    line = next(line for line in result.stderr.decode().splitlines() if line.startswith("warnings "))
    return json.loads(line.removeprefix("warnings "))


def error_of(result):
    return next((line for line in result.stderr.decode().splitlines() if line.startswith("error ")), "")


class CInterfaceTest(UnchangedInputs):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        os.chdir(cls.folder.name)
        subprocess.run([ROOT / "examples/laptop/prepare.sh", COMMAND, "laptop"], check=True, capture_output=True)

    @classmethod
    def tearDownClass(cls):
        os.chdir("/")
        cls.folder.cleanup()

    def assert_as_command(self, operation, request, *arguments):
        ours, theirs = call(operation, request), command(*arguments)
        self.assertEqual(without_seconds(ours.stdout), without_seconds(theirs.stdout), arguments)
        self.assertEqual(ours.returncode, theirs.returncode, arguments)
        return ours

    def test_answers_are_those_of_the_command(self):
        answer = self.assert_as_command("detect", {"bundle": "laptop"}, "detect", "--json", "laptop")
        self.assertTrue(json.loads(answer.stdout)["ok"])
        for operation, request, arguments in [
                ("detect", {"tree": True, "explain": True}, ["detect", "--json", "--tree", "--explain"]),
                ("detect", {"now": "2024-06-20 12:00:00", "tz": "UTC"},
                 ["detect", "--json", "--now", "2024-06-20 12:00:00", "--tz", "UTC"]),
                ("detect", {"now": 1716200000}, ["detect", "--json", "--now", "1716200000"]),
                ("detect", {"asOf": "2024-05-10 12:00:00"}, ["detect", "--json", "--as-of", "2024-05-10 12:00:00"]),
                ("detect", {"rules": "laptop/rules"}, ["detect", "--json", "--rules", "laptop/rules"]),
                ("explain", {}, ["explain", "--json"]),
                ("explain", {"nearMisses": 2, "limit": 3, "minimal": True, "brief": True},
                 ["explain", "--json", "--near-misses", "2", "--limit", "3", "--minimal", "--brief"]),
                ("explain", {"event": "BATTERY_WORN"}, ["explain", "--json", "--event", "BATTERY_WORN"]),
                ("repair_list", {}, ["repair", "list", "--json"])]:
            answer = self.assert_as_command(operation, {"bundle": "laptop", **request}, *arguments, "laptop")
            self.assertEqual(answer.returncode, 0, arguments)
            self.assertNotEqual(answer.stdout, b"", arguments)
        self.assert_as_command("query", {"bundle": "laptop", "code": "KEYBOARD_TEST"},
                               "query", "--json", "laptop", "KEYBOARD_TEST")
        self.assert_as_command("rule_set", {"rules": "laptop/rules"}, "rules", "list", "--json", "laptop/rules")
        self.assert_as_command("rule_set", {"rules": "laptop/rules", "tag": "Laptop"},
                               "rules", "list", "--json", "laptop/rules", "--tag", "Laptop")

    def test_failures_are_those_of_the_command(self):
        Path("broken").mkdir(exist_ok=True)
        Path("broken/bundle.json").write_text("{")
        Path("lacking").mkdir(exist_ok=True)
        Path("lacking/bundle.json").write_text('{"detectScene": 1, "treeTag": "Laptop", "now": "2024-05-20 12:00:00"}')
        for bundle, code, status in [("nowhere", "no_bundle", 4), ("broken", "bad_json", 4),
                                     ("lacking", "rule_file_missing", 3)]:
            for operation, arguments in [("detect", ["detect", "--json", bundle]), ("explain", ["explain", "--json", bundle]),
                                         ("query", ["query", "--json", bundle, "X"])]:
                request = {"bundle": bundle, **({"code": "X"} if operation == "query" else {})}
                answer = self.assert_as_command(operation, request, *arguments)
                self.assertEqual(answer.returncode, status)
                self.assertEqual(json.loads(answer.stdout)["error"]["code"], code)
                self.assertTrue(error_of(answer).startswith(f"error {code}: "), error_of(answer))
        answer = self.assert_as_command("explain", {"bundle": "laptop", "event": "BATTERY_WORM"},
                                        "explain", "--json", "--event", "BATTERY_WORM", "laptop")
        self.assertIn("BATTERY_WORN", error_of(answer))
        answer = self.assert_as_command("rule_set", {"rules": "nowhere"}, "rules", "list", "--json", "nowhere")
        self.assertEqual(answer.returncode, 3)
        code = json.loads(answer.stdout)["error"]["code"]
        self.assertTrue(error_of(answer).startswith(f"error {code}: "), error_of(answer))

    def test_a_repair_is_recorded_as_by_the_command(self):
        for name in ("one", "two"):
            subprocess.run(["cp", "-r", "laptop", name], check=True)
        request = {"bundle": "one", "id": "REPAIR_FAN", "now": "2024-05-19 08:00:00"}
        ours = call("repair_record", request)
        theirs = command("repair", "record", "--json", "two", "REPAIR_FAN", "--now", "2024-05-19 08:00:00")
        self.assertEqual((ours.stdout, ours.returncode), (theirs.stdout, 0))
        self.assertEqual(call("repair_list", {"bundle": "one"}).stdout,
                         command("repair", "list", "--json", "two").stdout)
        unknown = call("repair_record", {"bundle": "one", "id": "REPAIR_KEYBORD"})
        self.assertEqual([warning["code"] for warning in warnings_of(unknown)], ["unknown_repair"])
        subprocess.run(["python3", "-m", "zipfile", "-c", "z.zip", "laptop/"], check=True)
        self.assertTrue(error_of(call("repair_record", {"bundle": "z.zip", "id": "R"})).startswith("error bundle_is_zip: "))

    def test_a_wrong_request_is_refused_with_the_reason(self):
        for operation, request, reason in [
                ("detect", "", "line 1, column 1"), ("detect", "[]", "is a list, not an object"),
                ("detect", "{", "line 1"), ("detect", "{} x", "line 1"), ("detect", "[" * 5000, "nested too deep"),
                ("detect", "[" * 18, "17 brackets are open: nested too deep"),
                ("detect", {}, '"bundle" is missing or empty'), ("detect", {"bundle": ""}, '"bundle" is missing or empty'),
                ("detect", {"bundle": 5}, '"bundle" is a number, not a text'),
                ("detect", {"bundle": "laptop\0x"}, '"bundle" has a NUL character'),
                ("detect", {"bundle": "laptop", "treee": True}, 'unknown key "treee"; did you mean "tree"?'),
                ("detect", {"bundle": "laptop", "tree": 1}, '"tree" is a number, not true or false'),
                ("detect", {"bundle": "laptop", "now": "soon"}, '"now" is neither'),
                ("detect", {"bundle": "laptop", "tz": "Nowhere/Land"}, '"tz" names no time zone'),
                ("detect", {"bundle": "laptop", "timeLimit": -1}, '"timeLimit" is no number of seconds'),
                ("detect", {"bundle": "laptop", "event": "E"}, 'unknown key "event"'),
                ("explain", {"bundle": "laptop", "limit": 0}, '"limit" is no whole number from 1 to 100000'),
                ("explain", {"bundle": "laptop", "nearMisses": 101}, '"nearMisses" is no whole number from 0 to 100'),
                ("query", {"bundle": "laptop"}, '"code" is missing or empty'),
                ("repair_record", {"bundle": "laptop"}, '"id" is missing or empty'),
                ("repair_list", {"bundle": "laptop", "now": 5}, 'unknown key "now"'),
                ("rule_set", {"bundle": "laptop"}, '"rules" is missing or empty')]:
            answer = call(operation, request)
            with self.subTest(request=request):
                self.assertEqual((answer.returncode, answer.stdout), (2, b""))
                self.assertTrue(error_of(answer).startswith("error bad_request: the request: "), error_of(answer))
                self.assertIn(reason, error_of(answer))

    def test_a_message_is_one_line_of_a_bounded_length(self):
        answer = call("detect", {"bundle": "a\nb\x1b[31m"})
        self.assertIn("error no_bundle: a\\x0Ab\\x1B[31m: no such folder", error_of(answer))
        message = error_of(call("detect", {"bundle": "x" * 20000}))
        self.assertRegex(message, "^error no_bundle: x{500}.*[.][.][.]x.*: no such folder")
        self.assertLess(len(message), 4096)

    def test_the_host_answers_code_rules(self):
        settled = self.code_bundle()
        for answer, is_fault, warnings in [("1", True, []), ("0", False, []), ("2", False, ["code_runner"]),
                                           ("77", False, ["code_runner"])]:
            result = call("detect", {"bundle": settled}, "--answer", answer)
            self.assertEqual(json.loads(result.stdout)["results"][0]["isFault"], is_fault)
            self.assertEqual([warning["code"] for warning in warnings_of(result)], warnings)
            question = re.search(r"asked (.*)", result.stderr.decode())[1]
            self.assertEqual(json.loads(question), {"faultDescriptionIds": [], "suggestionIds": [], "repairIds": [],
                                                    "userDefinedInfo": "KEY"})
        nobody = self.assert_as_command("detect", {"bundle": settled, "now": 1716200000},
                                        "detect", "--json", "--now", "1716200000", settled)
        self.assertEqual([warning["code"] for warning in warnings_of(nobody)], ["no_code_runner"] * 2)

    def test_a_stopped_detection_keeps_what_was_decided(self):
        result = call("detect", {"bundle": self.code_bundle()}, "--answer", "1", "--stop")
        self.assertEqual(result.returncode, 0)
        self.assertEqual([warning["code"] for warning in warnings_of(result)], ["stopped"])

    def test_the_log_has_the_messages_of_the_command_from_a_level_on(self):
        theirs = [line.split("]:", 1)[1] for line in
                  command("detect", "--log-level", "trace", "laptop").stderr.decode().splitlines() if "]:" in line]
        ours = [line for line in call("detect", {"bundle": "laptop"}, "--log", "0").stderr.decode().splitlines()
                if line.startswith("log ")]
        self.assertGreater(len(ours), 3)
        self.assertEqual([line.split(": ", 1)[1] for line in ours], theirs)
        louder = call("detect", {"bundle": "laptop"}, "--log", "3").stderr.decode().splitlines()
        self.assertEqual([line for line in louder if line.startswith("log ")],
                         [line for line in ours if int(line.split()[1].rstrip(":")) >= 3])
        silent = call("detect", {"bundle": "laptop"})
        self.assertEqual([line for line in silent.stderr.decode().splitlines() if line.startswith("log ")], [])

    def test_contract_of_handles_and_threads(self):
        result = subprocess.run([C_CONTRACT, self.code_bundle(), "laptop"], capture_output=True, check=False)
        self.assertEqual((result.returncode, result.stderr.decode()), (0, ""))

    def test_memory_stays_flat(self):
        times = os.environ.get("ARBORIST_CALLS", "300")
        for operation, request in [("detect", {"bundle": self.code_bundle(), "tree": True}),
                                   ("explain", {"bundle": self.code_bundle()}), ("detect", {"bundle": "nowhere"}),
                                   ("detect", {"bundle": "laptop", "trees": 1})]:
            result = call(operation, request, "--times", times, "--answer", "1")
            grown = int(re.search(rb"grown by (-?\d+)\n$", result.stdout)[1])
            # Sanitizers keep what is freed for a while, and tell leaks themselves.
            self.assertLess(grown, MOST_GROWN if NM else grown + 1, request)

    def test_only_the_functions_of_the_header_leave_the_library(self):
        if not NM:
            self.skipTest("no nm")
        lines = subprocess.run([NM, "-D", "--defined-only", LIBRARY], check=True, capture_output=True, text=True).stdout
        exported = sorted(line.split()[-1].split("@")[0] for line in lines.splitlines() if " A " not in line)
        listed = (Path(__file__).parent / "exported_symbols.txt").read_text().split()
        self.assertEqual(exported, listed)
        header = (ROOT / "bindings/c/include/arborist/arborist_c.h").read_text()
        self.assertEqual(sorted(re.findall(r"^ARBORIST_C_API [^(]*?\b(arborist_\w+)\(", header, re.MULTILINE)), listed)

    def test_the_host_of_the_page_builds_and_runs(self):
        if not NM:
            self.skipTest("a plain host can't be linked with an instrumented library")
        page = (ROOT / "docs/c-interface.md").read_text()
        Path("host.c").write_text(re.search(r"^```c\n(.*?)^```", page, re.MULTILINE | re.DOTALL)[1])
        folder = Path(LIBRARY).parent
        subprocess.run(["cc", "-std=c11", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "host.c", "-o", "host",
                        f"-I{ROOT}/bindings/c/include", LIBRARY, f"-Wl,-rpath,{folder}"], check=True)
        ours = subprocess.run(["./host"], capture_output=True, check=True)
        self.assertEqual(without_seconds(ours.stdout),
                         without_seconds(command("detect", "--json", "--tree", "laptop").stdout))

    def code_bundle(self):
        """A bundle whose one event is decided by a code rule that nobody has answered yet."""
        folder = Path(self._testMethodName)
        if not folder.exists():
            (folder / "rules").mkdir(parents=True)
            (folder / "bundle.json").write_text('{"detectScene": 1, "treeTag": "Tag"}')
            for name in ("FaultTrees.xml", "FaultTreeRules.xml"):
                (folder / "rules" / name).write_text((Path(__file__).parent / "code_rules" / name).read_text())
        return str(folder)


if __name__ == "__main__":
    C_CALL, C_CONTRACT, COMMAND, LIBRARY, NM = sys.argv[1:6]
    MOST_GROWN = 2048
    sys.exit(unittest.main(argv=sys.argv[:1] + sys.argv[6:]))
