"""Runs a fleet in eight shards on a Slurm cluster of its own; one shard and one node daemon are killed on the way.

    slurm_test.py ARBORIST [BUNDLES]
"""
import sys
import time
import unittest

import fleet
from slurm_cluster import Cluster, processes_of, wait_until

SCRIPT = fleet.EXAMPLES / "slurm.sh"
SHARDS = 8


def lines_of(folder, shard):
    """The whole lines that an unfinished shard has written so far."""
    try:
        return [line for line in (folder / f"results/{shard}.part").read_text().splitlines(True) if line.endswith("\n")]
    except FileNotFoundError:
        return []


class SlurmTest(unittest.TestCase):
    def setUp(self):
        self.start = time.monotonic()
        self.scratch = fleet.scratch_folder(self)
        self.kept = []  # lines, with their seconds, that a shard had written when it was killed

    def test_lines_are_those_of_one_machine_after_a_shard_and_a_node_were_lost(self):
        with Cluster(self.scratch) as cluster:
            self.tell("controller and nodes are up")
            self.fleet = fleet.Fleet(ARBORIST, self.scratch / "fleet", BUNDLES)
            self.tell(f"{BUNDLES} bundles are made")
            expected = self.fleet.lines_of_one_machine()
            self.tell("they ran on one machine")
            try:
                self.run_fleet(cluster)
            except Exception:
                print(cluster.logs(), file=sys.stderr)
                raise
            merged = "".join(path.read_text() for path in sorted(self.fleet.folder.glob("results/*.jsonl")))
        self.assertEqual(fleet.faults(self.fleet, expected, merged), [])
        merged_lines = set(merged.splitlines(True))
        self.assertEqual([line for line in self.kept if line not in merged_lines], [])
        self.assertEqual((processes_of(self.scratch), self.scratch.exists()), ([], False))

    def run_fleet(self, cluster):
        job = cluster.submit(SCRIPT, f"1-{SHARDS}", self.fleet)
        killed = self.kill_a_shard(cluster, job)
        lost = self.kill_a_node(cluster, job)
        wait_until(lambda: not cluster.tasks(job), "the array", 1800)
        self.assertEqual(self.shards_that_ended(cluster, "COMPLETED"), set(range(1, SHARDS + 1)) - {killed})
        self.assertTrue(lost, "no shard was running on the node that was killed")
        again = cluster.submit(SCRIPT, killed, self.fleet)
        wait_until(lambda: not cluster.tasks(again), "the shard that was submitted again", 600)
        self.tell("the shard that was submitted again has ended")

    def kill_a_shard(self, cluster, job):
        shard = min(self.wait_for_tasks_in_the_middle(cluster, job, "node1"))
        cluster.ask("scancel", "--signal=KILL", "--full", f"{job}_{shard}")
        wait_until(lambda: shard not in cluster.tasks(job), "the end of the shard that was killed")
        self.keep_lines_of(shard)
        return shard

    def kill_a_node(self, cluster, job):
        self.wait_for_tasks_in_the_middle(cluster, job, "node2")
        cluster.kill_node("node2")
        shards = [shard for shard, node in cluster.tasks(job, "R").items() if node == "node2"]
        self.tell(f"node2 was killed with shards {shards}")
        for shard in shards:
            self.keep_lines_of(shard)
        wait_until(lambda: cluster.node_state("node2").startswith("down"), "the controller to miss node2")
        self.tell("the controller misses node2")
        return shards

    def keep_lines_of(self, shard):
        lines = lines_of(self.fleet.folder, shard)
        self.tell(f"shard {shard} was killed behind {len(lines)} lines")
        self.kept += lines[:-1]  # the last one, which might have been torn, is run again

    def shards_that_ended(self, cluster, state):
        return {int(task["ArrayTaskId"]) for task in cluster.ended_tasks() if task["JobState"] == state}

    def tell(self, what):
        print(f"{time.monotonic() - self.start:6.1f} s: {what}", flush=True)

    def wait_for_tasks_in_the_middle(self, cluster, job, node):
        """The running tasks of a node of which some lines are written and some not."""
        share = BUNDLES // SHARDS

        def in_the_middle():
            running = [shard for shard, where in cluster.tasks(job, "R").items() if where == node]
            return [shard for shard in running if share // 5 < len(lines_of(self.fleet.folder, shard)) < share * 4 // 5]
        return wait_until(in_the_middle, f"shards in the middle on {node}")


if __name__ == "__main__":
    ARBORIST = sys.argv.pop(1)
    BUNDLES = int(sys.argv.pop(1)) if len(sys.argv) > 1 else 5000
    sys.exit(unittest.main())
