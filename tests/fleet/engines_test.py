"""Runs a small fleet on an engine of examples/fleet: its merged lines are those of one machine, each bundle once.

    engines_test.py ARBORIST ENGINE [BUNDLES]

ENGINE is parallel, snakemake, cwl, dask or kubernetes; bundles and shard are what all engines share.
"""
import importlib.util
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import time
import unittest
from pathlib import Path

import fleet


class FleetTest(unittest.TestCase):
    """A fleet with the lines of one machine; every run must have these."""

    def setUp(self):
        self.scratch = fleet.scratch_folder(self)
        self.fleet = fleet.Fleet(ARBORIST, self.scratch / "fleet", BUNDLES, broken_every=10)
        self.expected = self.fleet.lines_of_one_machine()

    def run_in_fleet(self, *command):
        result = subprocess.run(command, cwd=self.fleet.folder, env=self.fleet.environment, capture_output=True, text=True)
        self.assertEqual(result.returncode, 0, result.stderr)
        return result

    def expect_all_lines(self, text):
        self.assertEqual(fleet.faults(self.fleet, self.expected, text), [])

    def lines_of_an_earlier_run(self):
        """Of the first bundles, with seconds of their own."""
        lines = list(self.expected.values())[:9]
        return [line.removesuffix("}") + f', "seconds": {number}.5}}\n' for number, line in enumerate(lines)]

    def line_of_a_crash(self):
        """A line of the next bundle whose failure another try may mend."""
        broken, name = self.fleet.bundles[9], self.fleet.bundles[10]
        line = self.expected[broken].replace(broken, name).replace('"retry": false', '"retry": true')
        return line.removesuffix("}") + ', "seconds": 1}\n'

    def shards(self):
        return "".join(path.read_text() for path in sorted(self.fleet.folder.glob("results/*.jsonl")))


class BundlesTest(FleetTest):
    def test_equal_arguments_make_bundles_with_equal_answers_which_differ_from_device_to_device(self):
        again = fleet.Fleet(ARBORIST, self.scratch / "again", BUNDLES, broken_every=10)
        lines = again.lines_of_one_machine()
        self.assertEqual(len(lines), BUNDLES)
        texts = {name: line.replace("/again/", "/fleet/") for name, line in lines.items()}
        self.assertEqual(texts, self.expected)
        answers = {json.dumps(json.loads(line)["results"]) for line in lines.values()}
        self.assertGreater(len(answers), BUNDLES // 10)

    def test_a_missing_line_a_second_one_and_another_answer_are_found(self):
        lines = list(self.expected.values())
        self.assertIn("no line", fleet.faults(self.fleet, self.expected, "\n".join(lines[1:]))[0])
        with self.assertRaises(AssertionError):
            fleet.faults(self.fleet, self.expected, "\n".join(lines + lines[:1]))
        other = [lines[0].replace('"ok": true', '"ok": false')] + lines[1:]
        self.assertEqual(len(fleet.faults(self.fleet, self.expected, "\n".join(other))), 1)

    def test_seconds_alone_may_differ(self):
        self.assertEqual(fleet.by_bundle('{"bundle": "a", "seconds": 1.5e-3}'),
                         fleet.by_bundle('{"bundle": "a", "seconds": 7}'))
        self.assertNotEqual(fleet.by_bundle('{"bundle": "a", "now": 1}'), fleet.by_bundle('{"bundle": "a", "now": 2}'))


class ShardTest(FleetTest):
    def test_a_shard_that_runs_twice_at_once_is_run_once(self):
        runs = [subprocess.Popen(["./shard.sh", "2", "3"], cwd=self.fleet.folder, env=self.fleet.environment, text=True,
                                 stderr=subprocess.PIPE) for _ in range(2)]
        told = "".join(run.communicate()[1] for run in runs)
        self.assertEqual([run.returncode for run in runs], [0, 0])
        self.assertEqual(told.count(" bundles in "), 1, told)
        self.assertEqual(list(fleet.by_bundle(self.shards())), self.fleet.bundles[1::3])

    def test_the_status_speaks_of_the_shard_and_not_of_its_broken_bundles(self):
        self.run_in_fleet("./shard.sh", "1", "1", "2")
        self.assertIn('"ok": false', self.shards())
        for spoiled, text, status in (("bundles.txt", "", 2), ("rules/FaultTrees.xml", "<a", 3)):
            (self.fleet.folder / spoiled).write_text(text)
            result = subprocess.run(["./shard.sh", "2", "2"], cwd=self.fleet.folder, env=self.fleet.environment,
                                    capture_output=True)
            self.assertEqual(result.returncode, status, result.stderr)
            self.assertFalse((self.fleet.folder / "results/2.jsonl").exists())

    def test_a_shard_that_was_ended_goes_on_behind_its_whole_lines(self):
        results = self.fleet.folder / "results"
        results.mkdir()
        first = self.lines_of_an_earlier_run()
        (results / "1.earlier").write_text("".join(first[:4]))
        (results / "1.part").write_text("".join(first[2:]) + self.line_of_a_crash() + '{"schema": "arbor')
        self.run_in_fleet("./shard.sh", "1", "1")
        text = (results / "1.jsonl").read_text()
        self.assertEqual([line for line in first if line not in text], [])
        self.expect_all_lines(text)
        self.assertEqual(sorted(path.name for path in results.iterdir()), ["1.jsonl", "1.lock"])


    @unittest.skipUnless(shutil.which("jq"), "needs jq")
    def test_the_commands_of_the_page_make_a_fleet_and_find_it_complete(self):
        page = (fleet.ROOT / "docs" / "scale.md").read_text()
        make, check = [block.partition("```")[0] for block in page.split("```sh\n")[1:3]]
        (self.scratch / "page").mkdir()
        (self.scratch / "page" / "examples").symlink_to(fleet.ROOT / "examples")
        script = make.replace("5000", "20") + "for shard in {1..8}; do ./shard.sh $shard 8; done\n"
        told = [subprocess.run(["bash", "-euo", "pipefail", "-c", text], cwd=self.scratch / "page" / place, capture_output=True,
                               env=self.fleet.environment, text=True).stdout
                for text, place in ((script, "."), (check, "fleet"))]
        self.assertEqual(told, ["", "complete\n"])


class ParallelTest(FleetTest):
    def test_shards_run_and_one_that_was_killed_is_run_again(self):
        self.break_first_try_of(3)
        self.run_in_fleet(fleet.EXAMPLES / "parallel.sh")
        tries = (self.fleet.folder / "tries").read_text().split()
        self.assertEqual(sorted(tries), sorted([str(shard) for shard in range(1, 9)] + ["3"]))
        self.expect_all_lines(self.shards())

    def break_first_try_of(self, shard):
        """Lets the first try of a shard end by a signal, as if memory had run out."""
        script = self.fleet.folder / "shard.sh"
        script.write_text(script.read_text().replace("set -euo pipefail\n", f"""set -euo pipefail
echo "$1" >>tries
if [ "$1" = {shard} ] && mkdir first; then
    kill -KILL $$
fi
"""))


class SnakemakeTest(ParallelTest):
    def test_shards_run_and_one_that_was_killed_is_run_again(self):
        self.break_first_try_of(5)
        self.run_in_fleet("snakemake", "--snakefile", fleet.EXAMPLES / "Snakefile", "--cores", "2")
        self.assertEqual((self.fleet.folder / "tries").read_text().split().count("5"), 2)
        self.expect_all_lines((self.fleet.folder / "results.jsonl").read_text())


class CwlTest(FleetTest):
    def test_the_workflow_scatters_shards_and_merges_their_lines(self):
        shutil.copy(fleet.EXAMPLES / "job.yml", self.fleet.folder)
        self.run_in_fleet("cwltool", "--parallel", "--outdir", "out", fleet.EXAMPLES / "fleet.cwl", "job.yml")
        # Each job sees the rule files below a folder of its own, which warnings name.
        text = (self.fleet.folder / "out" / "results.jsonl").read_text()
        self.expect_all_lines(re.sub(r'"file": "[^"]*/rules/', f'"file": "{self.fleet.rules}/', text))

    def test_both_descriptions_are_valid(self):
        for name in ("shard.cwl", "fleet.cwl"):
            self.run_in_fleet("cwltool", "--validate", "--strict", fleet.EXAMPLES / name)


class DaskTest(FleetTest):
    def test_pieces_of_a_worker_that_was_killed_run_on_another(self):
        os.environ.update(self.fleet.environment)
        from distributed import LocalCluster
        with LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None,
                          local_directory=self.scratch) as cluster:
            run = subprocess.Popen([sys.executable, "-B", fleet.EXAMPLES / "dask_fleet.py", self.fleet.folder,
                                    "--scheduler", cluster.scheduler_address, "--piece", "2"], env=self.fleet.environment)
            killed = self.kill_a_busy_worker(cluster, run)
            self.assertEqual(run.wait(), 0)
        self.assertTrue(killed)
        self.expect_all_lines((self.fleet.folder / "results.jsonl").read_text())

    def test_a_run_that_was_ended_goes_on(self):
        first = self.lines_of_an_earlier_run()
        (self.fleet.folder / "results.jsonl").write_text("".join(first) + self.line_of_a_crash() + '{"schema": "arbor')
        self.run_in_fleet(sys.executable, "-B", fleet.EXAMPLES / "dask_fleet.py", self.fleet.folder)
        text = (self.fleet.folder / "results.jsonl").read_text()
        self.assertEqual(text.splitlines(True)[:len(first)], first)
        self.expect_all_lines(text)

    def test_names_may_have_other_separators_of_lines_and_stand_in_the_list_twice(self):
        spec = importlib.util.spec_from_file_location("dask_fleet", fleet.EXAMPLES / "dask_fleet.py")
        dask_fleet = importlib.util.module_from_spec(spec)
        spec.loader.exec_module(dask_fleet)
        earlier = Path(self.scratch) / "earlier.jsonl"
        earlier.write_text('{"bundle": "a\u2028b", "error": {"retry": false}}\n{"bundle": "a\u2028b", "err', encoding="utf-8")
        kept = dask_fleet.kept_lines(earlier)
        self.assertEqual(len(kept), 1)
        self.assertEqual(dask_fleet.rest_of(["a\u2028b", "c", "a\u2028b", ""], kept), ["c", "a\u2028b"])
        dask_fleet.write_anew(earlier, kept)
        self.assertEqual(dask_fleet.kept_lines(earlier), kept)

    def kill_a_busy_worker(self, cluster, run):
        """Kills the process of a worker that has a piece, after the first lines were written."""
        results = self.fleet.folder / "results.jsonl"
        while run.poll() is None:
            busy = [worker for worker in cluster.scheduler.workers.values() if worker.processing]
            if busy and results.exists() and results.stat().st_size > 0:
                os.kill(cluster.workers[busy[0].name].pid, signal.SIGKILL)
                return True
            time.sleep(0.001)
        return False


class KubernetesTest(unittest.TestCase):
    def test_the_job_can_be_parsed_and_fails_an_index_on_statuses_that_another_try_would_repeat(self):
        import yaml
        job = yaml.safe_load((fleet.EXAMPLES / "kubernetes.yaml").read_text())
        self.assertEqual((job["kind"], job["spec"]["completionMode"]), ("Job", "Indexed"))
        self.assertGreater(job["spec"]["backoffLimitPerIndex"], 0)
        failing = next(rule for rule in job["spec"]["podFailurePolicy"]["rules"] if rule["action"] == "FailIndex")
        self.assertEqual(failing["onExitCodes"]["values"], [2, 3, 4])
        container = job["spec"]["template"]["spec"]["containers"][0]
        self.assertEqual(container["name"], failing["onExitCodes"]["containerName"])
        self.assertIn(f" {job['spec']['completions']} ", container["command"][-1])


TESTS = {"bundles": BundlesTest, "shard": ShardTest, "parallel": ParallelTest, "snakemake": SnakemakeTest, "cwl": CwlTest, "dask": DaskTest,
         "kubernetes": KubernetesTest}


if __name__ == "__main__":
    ARBORIST, ENGINE, BUNDLES = sys.argv[1], sys.argv[2], int(sys.argv[3]) if len(sys.argv) > 3 else 60
    suite = unittest.defaultTestLoader.loadTestsFromTestCase(TESTS[ENGINE])
    sys.exit(not unittest.TextTestRunner(verbosity=2).run(suite).wasSuccessful())
