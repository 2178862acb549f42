"""No code of the library runs before the first call of its host: `initialisers_test.py NM LIBRARY`.

Constants of the namespaces and classes are constexpr; what needs a container is made where it is first asked for.
"""
import re
import subprocess
import sys
import unittest

NM, LIBRARY = sys.argv[1:3]


def initialisers(symbols):
    """What compilers call the code of a file that runs when the library is loaded."""
    return re.findall(r"\b_GLOBAL__sub_I_\S+", symbols)


class InitialisersTest(unittest.TestCase):
    def test_nothing_runs_before_the_first_call(self):
        symbols = subprocess.run([NM, LIBRARY], check=True, stdout=subprocess.PIPE, text=True).stdout
        self.assertIn("Arborist", symbols)  # a stripped library would show nothing
        self.assertEqual(initialisers(symbols), [])

    def test_an_initialiser_is_found(self):
        self.assertEqual(initialisers("0000000000000000 t _GLOBAL__sub_I_gate.cpp\n0000000000000010 T Other\n"),
                         ["_GLOBAL__sub_I_gate.cpp"])


if __name__ == "__main__":
    sys.exit(unittest.main(argv=sys.argv[:1]))
