"""The includes of this tree point down, and the check that says so finds what it is there for."""
import re
import sys
import unittest
from pathlib import Path

import includes

ROOT = Path(__file__).resolve().parents[2]
PUBLIC = {"arborist.h", "frame/log.h", "model/event_status.h"}


def faults(path, include):
    return includes.file_faults(path, f'#include "{include}"\n', PUBLIC)


def circles(storey, **files):
    """Circles in a storey with these files: `a__b="c__d"` is the file a/b, which includes c/d."""
    def path(name):
        return f"{storey.folder}/" + name.replace("__", "/") + ".h"
    return includes.cycle_faults(storey, {path(name): f'#include "{path(target)}"\n' for name, target in files.items()})


class TreeTest(unittest.TestCase):
    def test_every_include_points_down(self):
        self.assertEqual(includes.faults_of(ROOT), [])

    def test_public_headers_are_found(self):
        self.assertIn("frame/log.h", includes.public_headers(ROOT))

    # Only the preset release builds the bench, which replaces these calls in a copy of the headers.
    def test_the_bench_of_the_observer_finds_the_calls_that_it_replaces(self):
        lists = (ROOT / "bench/CMakeLists.txt").read_text()
        for header in re.search(r"foreach\(header IN ITEMS ([^)]*)\)", lists).group(1).split():
            text = (ROOT / "arborist" / header).read_text()
            self.assertRegex(text, r"return (mObserver|mRecord|mComparisons);", header)

    def test_every_room_holds_files(self):
        files = includes.source_files(ROOT)
        for storey in includes.STOREYS:
            held = {storey.room(path) for path in files if storey.owns(path)}
            self.assertEqual(set(storey.level_of) - held, set(), storey.folder)


class CheckTest(unittest.TestCase):
    def assert_passes(self, *pairs):
        for path, include in pairs:
            self.assertEqual(faults(path, include), [], (path, include))

    def assert_faults(self, *pairs):
        for path, include in pairs:
            self.assertEqual(len(faults(path, include)), 1, (path, include))

    def test_what_points_down_passes(self):
        self.assert_passes(
            ("arborist/loading/tree_parser.cpp", "arborist/model/gate.h"),
            ("arborist/evaluation/rule_engine.cpp", "arborist/stores/event_log/log_event.h"),
            ("arborist/stores/repairs/repair_db_util.cpp", "arborist/stores/sql/sql_table.h"),
            ("arborist/frame/arborist.cpp", "arborist/deduction/fault_tree_visitor.h"),
            ("diagnosis/report/report_page.cpp", "diagnosis/drawing/svg_tree.h"),
            ("tools/arborist/commands/detect_command.cpp", "tools/arborist/render/detection_text.h"))

    def test_upwards_and_sideways_are_faults(self):
        self.assert_faults(
            ("arborist/model/gate.h", "arborist/loading/tree_parser.h"),
            ("arborist/loading/tree_parser.cpp", "arborist/stores/event_log/log_event.h"),
            ("arborist/evaluation/rule_engine.cpp", "arborist/deduction/root_cause.h"),
            ("arborist/frame/arborist.cpp", "arborist/deduction/plain/cause_node.h"),
            ("arborist/utilities/file_util.cpp", "arborist/model/gate.h"),
            ("arborist/stores/sql/sql_table.h", "arborist/utilities/file_util.h"),
            ("arborist/stores/sql/sql_table.h", "arborist/stores/event_log/log_event.h"),
            ("diagnosis/text/json_text.cpp", "diagnosis/results/detection_json.h"),
            ("diagnosis/analysis/gate_logic.cpp", "diagnosis/detection/detection.h"),
            ("tools/arborist/batch/batch.cpp", "tools/arborist/commands/commands.h"))

    def test_the_files_of_the_frame_stand_on_three_levels(self):
        self.assert_passes(
            ("arborist/frame/arborist.cpp", "arborist/frame/detect_info.h"),
            ("arborist/frame/detect_info.h", "arborist/frame/log.h"),
            ("arborist/frame/detect_info.h", "arborist/model/event_status.h"))
        self.assert_faults(
            ("arborist/evaluation/rule_engine.cpp", "arborist/frame/arborist.h"),
            ("arborist/frame/log.cpp", "arborist/frame/detect_info.h"),
            ("arborist/frame/log.cpp", "arborist/utilities/file_util.h"),
            ("arborist/frame/detect_info.cpp", "arborist/frame/arborist.h"))
        self.assertEqual(faults("arborist/frame/newcomer.h", "string"), ["arborist/frame/newcomer.h: in no known room"])

    def test_a_storey_sees_none_above_it(self):
        self.assert_passes(("tools/arborist/commands/x.cpp", "diagnosis/detection/detection.h"))
        self.assert_faults(
            ("arborist/frame/arborist.cpp", "diagnosis/problem.h"),
            ("diagnosis/detection/detection.cpp", "tools/arborist/terminal/output.h"))

    def test_bindings_stand_beside_the_command(self):
        self.assert_passes(("bindings/c/x.cpp", "diagnosis/detection/detection.h"),
                           ("bindings/c/x.cpp", "arborist/arborist_c.h"),
                           ("examples/x.cpp", "arborist/arborist_c.h"))
        self.assert_faults(("bindings/c/x.cpp", "tools/arborist/terminal/output.h"),
                           ("tools/arborist/terminal/x.cpp", "bindings/c/answer.h"),
                           ("diagnosis/detection/x.cpp", "arborist/arborist_c.h"),
                           ("arborist/frame/arborist.cpp", "arborist/arborist_c.h"))

    def test_other_storeys_and_examples_see_public_headers_alone(self):
        for path in ("diagnosis/text/x.cpp", "tools/arborist/batch/x.cpp", "examples/x.cpp"):
            self.assert_passes((path, "arborist/frame/log.h"))
            self.assert_faults((path, "arborist/model/gate.h"))

    def test_a_source_for_one_system_sees_what_the_engine_knows_of_it(self):
        self.assert_passes(("diagnosis/process/local_time_windows.cpp", "arborist/utilities/platform.h"))
        self.assert_faults(("diagnosis/process/local_time_windows.cpp", "arborist/utilities/zip_util.h"),
                           ("diagnosis/process/local_time.cpp", "arborist/utilities/platform.h"))

    def test_foreign_headers_stay_behind_their_doors(self):
        self.assert_passes(("arborist/loading/tree_parser.cpp", "tinyxml2.h"),
                           ("diagnosis/sqlite/connection.cpp", "sqlite3.h"),
                           ("diagnosis/digest/digest.cpp", "sodium/utils.h"))
        self.assert_faults(("arborist/model/gate.h", "tinyxml2.h"),
                           ("arborist/stores/repairs/repair_db_util.cpp", "sqlite3.h"),
                           ("diagnosis/log_db/event_log.cpp", "sqlite3.h"),
                           ("diagnosis/results/x.cpp", "sodium.h"),
                           ("tools/arborist/render/query_text.cpp", "CLI/CLI.hpp"))

    def test_a_source_runs_sql_in_one_way(self):
        text = '#include "arborist/stores/sql/sql_%s.h"\n'
        both = {"arborist/stores/a.h": text % "table", "arborist/stores/a.cpp": text % "cursor"}
        self.assertEqual(includes.sql_faults(both), ["arborist/stores/a: objects and streams of stores/sql in one source"])
        self.assertEqual(includes.sql_faults({"arborist/stores/a.h": text % "table", "arborist/stores/b.cpp": text % "scan",
                                              "arborist/stores/sql/c.cpp": (text % "scan") + text % "table"}), [])

    def test_public_headers_know_no_private_ones(self):
        self.assert_faults(("arborist/frame/log.h", "arborist/frame/fault_tree_prop_global.h"),
                           ("arborist/frame/log.h", "json/value.h"))

    def test_a_file_outside_every_room_is_a_fault(self):
        self.assert_faults(("diagnosis/attic/x.cpp", "string"), ("diagnosis/newcomer.h", "string"))

    def test_a_circle_is_found(self):
        self.assertIsNone(includes.cycle_in({"a": ["b"], "b": ["c"], "c": []}))
        self.assertEqual(includes.cycle_in({"a": ["b"], "b": ["c"], "c": ["b"]}), ["b", "c", "b"])

    def test_a_circle_of_folders_is_found_where_no_files_go_in_one(self):
        engine = includes.ENGINE
        self.assertEqual(circles(engine, stores__a__x="stores__b__y", stores__c__z="stores__a__x"), [])
        self.assertEqual(circles(engine, stores__a__x="stores__b__y", stores__b__z="stores__a__w"),
                         ["arborist: a circle of folders: stores/a -> stores/b -> stores/a"])

    def test_the_levels_of_the_frame_make_no_circle(self):
        self.assertEqual(circles(includes.ENGINE, frame__arborist="model__gate", model__gate="frame__log"), [])


if __name__ == "__main__":
    sys.exit(unittest.main())
