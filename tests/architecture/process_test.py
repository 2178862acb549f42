"""What belongs to the whole process is taken in one room of diagnosis, and settings are listed whole."""
import re
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
ROOM = "diagnosis/process/"
CALLS = re.compile(r"\b(chdir|fchdir|current_path|setenv|putenv|unsetenv|tzset|sigaction|sigprocmask|pthread_sigmask"
                   r"|SetFaultTreeProperty|SetUserLogger)\s*\(")


def calls_in(text):
    return CALLS.findall(re.sub(r"//.*", "", text))


class ProcessTest(unittest.TestCase):
    def test_state_of_the_process_is_changed_in_one_room(self):
        faults = []
        for folder in ("diagnosis", "tools", "bindings"):
            for path in sorted((ROOT / folder).rglob("*.cpp")) + sorted((ROOT / folder).rglob("*.h")):
                name = path.relative_to(ROOT).as_posix()
                if not name.startswith(ROOM):
                    faults += [f"{name}: {call} belongs into {ROOM}" for call in calls_in(path.read_text())]
        self.assertEqual(faults, [])

    def test_the_room_makes_such_calls(self):
        found = {call for path in (ROOT / ROOM).glob("*.cpp") for call in calls_in(path.read_text())}
        self.assertGreaterEqual(found, {"current_path", "setenv", "tzset", "sigaction", "SetFaultTreeProperty"})

    def test_settings_know_all_of_their_names(self):
        text = (ROOT / "arborist/frame/settings.h").read_text()
        names = re.findall(r"inline constexpr char (\w+)\[\]", text)
        listed = re.search(r"ALL\[\] = \{([^}]*)\}", text).group(1)
        self.assertEqual(sorted(re.findall(r"\w+", listed)), sorted(names))


if __name__ == "__main__":
    sys.exit(unittest.main())
