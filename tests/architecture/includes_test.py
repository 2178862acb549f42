"""The includes of this tree point down, and the check that says so finds what it is there for."""
import sys
import unittest
from pathlib import Path

import includes

ROOT = Path(__file__).resolve().parents[2]
PUBLIC = {"arborist.h", "frame/log.h", "model/event_status.h"}


def faults(name, include):
    return includes.library_faults(name, f'#include "{include}"\n', PUBLIC)


class TreeTest(unittest.TestCase):
    def test_every_include_points_down(self):
        self.assertEqual(includes.faults_of(ROOT), [])

    def test_public_headers_are_found(self):
        self.assertIn("frame/log.h", includes.public_headers(ROOT))


class CheckTest(unittest.TestCase):
    def test_what_points_down_passes(self):
        self.assertEqual(faults("loading/tree_parser.cpp", "arborist/model/gate.h"), [])
        self.assertEqual(faults("evaluation/rule_engine.cpp", "arborist/stores/event_log/log_event.h"), [])
        self.assertEqual(faults("stores/repairs/repair_db_util.cpp", "arborist/stores/sql/sql_table.h"), [])
        self.assertEqual(faults("frame/arborist.cpp", "arborist/deduction/fault_tree_visitor.h"), [])

    def test_upwards_and_sideways_are_faults(self):
        for name, include in [
                ("model/gate.h", "arborist/loading/tree_parser.h"),
                ("loading/tree_parser.cpp", "arborist/stores/event_log/log_event.h"),
                ("evaluation/rule_engine.cpp", "arborist/deduction/cause_node.h"),
                ("utilities/file_util.cpp", "arborist/model/gate.h"),
                ("stores/sql/sql_table.h", "arborist/utilities/file_util.h"),
                ("stores/sql/sql_table.h", "arborist/stores/event_log/log_event.h"),
                ("evaluation/rule_engine.cpp", "arborist/frame/arborist.h"),
                ("frame/log.cpp", "arborist/utilities/file_util.h")]:
            self.assertEqual(len(faults(name, include)), 1, (name, include))

    def test_foreign_headers_stay_behind_their_doors(self):
        self.assertEqual(faults("loading/tree_parser.cpp", "tinyxml2.h"), [])
        self.assertEqual(len(faults("model/gate.cpp", "tinyxml2.h")), 1)
        self.assertEqual(len(faults("stores/repairs/repair_db_util.cpp", "sqlite3.h")), 1)

    def test_public_headers_know_no_private_ones(self):
        self.assertEqual(len(faults("frame/log.h", "arborist/frame/fault_tree_prop_global.h")), 1)

    def test_tools_see_public_headers_alone(self):
        self.assertEqual(includes.outside_faults("tools/x.cpp", '#include "arborist/frame/log.h"\n', PUBLIC), [])
        self.assertEqual(len(includes.outside_faults("tools/x.cpp", '#include "arborist/model/gate.h"\n', PUBLIC)), 1)

    def test_a_cycle_is_found(self):
        self.assertIsNone(includes.cycle_in({"a": ["b"], "b": ["c"], "c": []}))
        self.assertEqual(includes.cycle_in({"a": ["b"], "b": ["c"], "c": ["b"]}), ["b", "c", "b"])


if __name__ == "__main__":
    sys.exit(unittest.main())
