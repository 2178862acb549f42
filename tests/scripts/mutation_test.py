"""The mutation check finds the mistakes that it should, switches them one by one, and counts what it tried."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPTS = Path(__file__).resolve().parents[2] / "scripts/mutation"
sys.path.insert(0, str(SCRIPTS))

import choice
import programs
import refused
import rooms
import survivors

try:
    from clang.cindex import Index, LibclangError
    import mutants
    import schemata
    Index.create()
    HAS_CLANG = True
except (ImportError, LibclangError):
    HAS_CLANG = False

FUNCTION = """#include <cstdio>
static int g(int a, int b) { return a * 10 + b; }
int f(int x, int y)
{
    if (x < 3) {
        return g(x, y);
    }
    const bool both = x == 7 && y != 8;
    return both ? 1 : 2;
}
int main() { std::printf("%d %d %d", f(2, 4), f(3, 4), f(7, 9)); }
"""


def found_in(code):
    """The mutants of a function `f` as "what was -> what is"."""
    source = code.encode()
    unit = Index.create().parse("a.cpp", args=["-std=c++20"], unsaved_files=[("a.cpp", code)])
    return mutants.mutants_of(unit, "a.cpp", source)


def texts(code):
    return [f"{mutant.original} -> {mutant.replacement}" for mutant in found_in(code) if mutant.function == "f"]


@unittest.skipUnless(HAS_CLANG, "needs python3-clang")
class MutantsTest(unittest.TestCase):
    def test_comparisons_move_their_border_and_turn_around(self):
        self.assertEqual(texts("bool f(int a, int b) { return a <= b; }"), ["a <= b -> a < b", "a <= b -> a > b"])
        self.assertEqual(texts("#include <string>\nbool f(std::string a, std::string b) { return a != b; }"),
            ["a != b -> a == b"])

    def test_conditions_lose_a_part_or_are_joined_the_other_way(self):
        self.assertEqual(texts("bool f(bool a, bool b) { return a && b; }"),
            ["a && b -> (a) || (b)", "a && b -> a", "a && b -> b"])
        self.assertIn("a -> !(a)", texts("int f(bool a) { if (a) { return 1; } return 2; }"))
        self.assertIn("!a -> a", texts("int f(bool a) { return !a ? 1 : 2; }"))

    def test_constants_are_off_by_one_or_turned_around(self):
        self.assertEqual(texts("int f() { return 7; }"), ["7 -> (7 + 1)"])
        self.assertEqual(texts("bool f() { return true; }"), ["true -> false"])
        self.assertEqual(texts('const char* f() { return "a"; }'), ['"a" -> ""'])

    def test_what_must_be_constant_stays(self):
        self.assertEqual(texts("enum { A = 7 }; void f() { constexpr int x = 8; int y[9]; static_assert(x == 8); }"), [])
        self.assertEqual(texts("int f() { return 7; }\nconstexpr int G = 9;"), ["7 -> (7 + 1)"])

    def test_early_returns_are_left_out_and_the_last_is_not(self):
        self.assertEqual(texts("void f(bool a) { if (a) { return; } a = false; }"),
            ["a -> !(a)", "return; -> ", "false -> true"])
        self.assertNotIn("return; -> ", texts("void f(bool a) { if (a) { return; } }"))
        self.assertIn("continue; -> ", texts("void f(int a) { while (a) { if (a) { continue; } --a; } }"))

    def test_arguments_are_swapped_and_replaced(self):
        found = texts("int g(int, int); int f(int a, int b) { return g(a, b); }")
        self.assertEqual(found, ["g(a, b) -> g((a) + 1, b)", "g(a, b) -> g(a, (b) + 1)", "g(a, b) -> g(b, a)"])
        self.assertEqual(texts("void g(int&, int&); void f(int a, int b) { g(a, b); }"), [])

    def test_a_call_that_is_a_condition_stays_one(self):
        code = "#include <optional>\nstd::optional<int> g(int);\nint f(int a) { return g(a) ? 1 : 2; }"
        numbered = [pair for pair in enumerate(found_in(code)) if pair[1].original == "g(a)"]
        self.assertEqual(len(numbered), 2)
        text = schemata.with_switches(code.encode(), numbered).decode()
        self.assertIn("(::mutant::Is(0) ? bool(!(g(a))) : (::mutant::Is(1) ? bool(g((a) + 1)) : bool(g(a))))", text)

    def test_each_mutant_is_on_alone(self):
        with tempfile.TemporaryDirectory() as folder:
            numbered = list(enumerate(mutant for mutant in found_in(FUNCTION) if mutant.function == "f"))
            path = Path(folder) / "a.cpp"
            path.write_bytes(schemata.with_switches(FUNCTION.encode(), numbered))
            program = Path(folder) / "a"
            subprocess.run(["c++", "-w", "-I", SCRIPTS, "-o", program, path], check=True)
            def printed(number):
                return subprocess.run([program], env={"ARBORIST_MUTANT": str(number)}, capture_output=True,
                                      text=True, check=True).stdout
            self.assertEqual(printed(-1), "24 2 1")
            answers = {f"{mutant.original} -> {mutant.replacement}": printed(number) for number, mutant in numbered}
            self.assertEqual(answers["x < 3 -> x <= 3"], "24 34 1")
            self.assertEqual(answers["g(x, y) -> g(y, x)"], "42 2 1")
            self.assertEqual(answers["return g(x, y); -> "], "2 2 1")
            self.assertEqual(answers["x == 7 && y != 8 -> (x == 7) || (y != 8)"], "24 1 1")
            self.assertEqual(answers["1 -> (1 + 1)"], "24 2 2")


class ToolTest(unittest.TestCase):
    MUTANTS = {str(number): {"room": room, "file": "a.cpp", "function": "f", "original": str(number), "replacement": "x"}
               for number, room in enumerate(["evaluation"] * 50 + ["stores"] * 3)}

    def test_a_larger_choice_has_a_smaller_one_and_takes_from_each_room(self):
        survivors.number_twins(self.MUTANTS)
        few, many = choice.chosen(self.MUTANTS, 4, "1"), choice.chosen(self.MUTANTS, 20, "1")
        self.assertEqual(few, many[:4])
        self.assertEqual(sum(self.MUTANTS[number]["room"] == "stores" for number in few), 2)
        self.assertNotEqual(few, choice.chosen(self.MUTANTS, 4, "2"))

    def test_mutants_of_one_name_are_told_apart(self):
        twins = {"1": dict(self.MUTANTS["1"]), "2": dict(self.MUTANTS["1"])}
        survivors.number_twins(twins)
        self.assertNotEqual(survivors.key_of(twins["1"]), survivors.key_of(twins["2"]))

    def test_a_row_is_read_as_it_is_written(self):
        mutant = {"file": "a.cpp", "function": "A::f", "original": "a ||\n  b", "replacement": ""}
        row = survivors.row_of(mutant, "no caller sees it")
        self.assertEqual(survivors.reasons([row]), {("a.cpp", "A::f", "a ¦¦ b", "nothing"): "no caller sees it"})

    def test_the_compiler_refuses_the_mutant_before_its_error(self):
        text = "a\n(::mutant::Is(4) ? (b) : (::mutant::Is(17) ? (c) : d))"
        self.assertEqual(refused.number_at(text, 2, text.splitlines()[1].index("(c)") + 1), 17)
        self.assertEqual(refused.number_at(text, 2, text.splitlines()[1].index("(b)") + 1), 4)
        self.assertIsNone(refused.number_at(text, 1, 1))

    def test_each_file_belongs_to_one_room(self):
        root = SCRIPTS.parents[1]
        files = [name for room in rooms.ROOMS for name in rooms.files_of(room, root)]
        self.assertEqual(len(files), len(set(files)))
        self.assertTrue(all((root / name).is_file() for name in files))

    def test_a_program_that_hangs_is_ended(self):
        self.assertEqual(programs.run("/bin/sh", ["-c", ":"], 10), 2) # it doesn't know the option that comes first
        with tempfile.TemporaryDirectory() as folder:
            sleeper = Path(folder) / "sleeper"
            sleeper.write_text("#!/bin/sh\nread line </dev/zero\n")
            sleeper.chmod(0o755)
            self.assertEqual(programs.run(sleeper, [], 0.2), "time")


if __name__ == "__main__":
    unittest.main()
