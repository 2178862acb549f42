"""A Slurm cluster of two nodes on this machine's loopback: daemons without systemd, cgroups or a database.

Configuration, key, sockets, state and spool are in a folder of the caller; nothing of a system-wide Slurm is read or changed.
A process beside the caller, "slurm_cluster.py FOLDER", waits until the cluster is left or the caller dies in whatever way. It
then kills everything that has the cluster's configuration in its environment, daemons and jobs, and removes the folder.
"""
import os
import pwd
import secrets
import shutil
import signal
import socket
import subprocess
import sys
import time
from pathlib import Path

NODES = ("node1", "node2")
CONFIGURATION = """\
ClusterName=arborist
SlurmctldHost={host}(127.0.0.1)
SlurmctldPort={ports[0]}
SlurmUser={user}
SlurmdUser={user}
AuthType=auth/munge
AuthInfo=socket={folder}/munge.socket,cred_expire=10
CredType=cred/munge
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/spool-%n
SlurmctldPidFile={folder}/slurmctld.pid
SlurmdPidFile={folder}/slurmd-%n.pid
SlurmctldLogFile={folder}/slurmctld.log
SlurmdLogFile={folder}/slurmd-%n.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
AccountingStorageType=accounting_storage/none
JobAcctGatherType=jobacct_gather/none
JobCompType=jobcomp/filetxt
JobCompLoc={folder}/jobcomp.txt
MpiDefault=none
SwitchType=switch/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
SchedulerType=sched/backfill
PropagateResourceLimits=NONE
SlurmdTimeout=10
KillWait=2
MinJobAge=3600
NodeName={nodes[0]} NodeHostname={host} NodeAddr=127.0.0.1 Port={ports[1]} CPUs={cpus}
NodeName={nodes[1]} NodeHostname={host} NodeAddr=127.0.0.1 Port={ports[2]} CPUs={cpus}
PartitionName=all Nodes={nodes[0]},{nodes[1]} Default=YES MaxTime=60 State=UP
"""


def free_ports(count):
    """Ports that nobody listened on a moment ago."""
    sockets = [socket.create_server(("127.0.0.1", 0)) for _ in range(count)]
    ports = [taken.getsockname()[1] for taken in sockets]
    for taken in sockets:
        taken.close()
    return ports


def wait_until(is_so, what, seconds=120):
    """Asks again and again; what took too long is a TimeoutError."""
    end = time.monotonic() + seconds
    while not (answer := is_so()):
        if time.monotonic() > end:
            raise TimeoutError(f"waited {seconds} s for {what}")
        time.sleep(0.05)
    return answer


class Cluster:
    """Controller and nodes; `with` starts them, ends them and removes their folder with whatever is in it."""

    def __init__(self, folder):
        self.folder = Path(folder)
        self.environment = self._with_configuration(os.environ)
        self.daemons = {}

    def __enter__(self):
        self.end = subprocess.Popen([sys.executable, "-B", __file__, self.folder], stdin=subprocess.PIPE,
                                    start_new_session=True)
        try:
            self._configure()
            self._start_all()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        self.end.stdin.close()
        self.end.wait()
        for daemon in self.daemons.values():
            daemon.wait()

    def ask(self, *command, environment=None, cwd=None):
        """What one of Slurm's commands prints, without the line end."""
        return subprocess.run(command, env=environment or self.environment, cwd=cwd, capture_output=True, text=True,
                              timeout=60, check=True).stdout.strip()

    def submit(self, script, array, fleet):
        """Runs shards of a fleet in its folder and with its environment; the number of the job."""
        return self.ask("sbatch", "--parsable", f"--array={array}", script, cwd=fleet.folder,
                        environment=self._with_configuration(fleet.environment))

    def tasks(self, job, state=None):
        """The tasks of an array that are in the queue, as {number: node}; those in one state only, as "R", if it is named."""
        lines = self.ask("squeue", "--noheader", "--array", f"--jobs={job}", "--format=%K %t %N",
                         "--states=PD,R,CG,RQ,S").splitlines()
        fields = [(line.split() + [""])[:3] for line in lines]
        return {int(number): node for number, now, node in fields if state in (None, now)}

    def node_state(self, node):
        return self.ask("sinfo", "--noheader", f"--nodes={node}", "--format=%T")

    def kill_node(self, node):
        """As a machine that loses power: its daemon and all that this started, at once."""
        daemon = self.daemons.pop(node)
        daemon.kill()
        daemon.wait()
        tasks = processes_of(self.folder, f"SLURMD_NODENAME={node}")
        for process in {parent_of(task) for task in tasks} & set(processes_of(self.folder)) | set(tasks):
            kill(process)

    def ended_tasks(self):
        """What Slurm kept of each task that ended, in the order of ends: its keys by name, as "JobState"."""
        lines = (self.folder / "jobcomp.txt").read_text().splitlines()
        return [dict(field.split("=", 1) for field in line.split() if "=" in field) for line in lines]

    def logs(self):
        """The last lines of each log, for a failure."""
        return "\n".join(f"== {log.name}\n" + "\n".join(log.read_text(errors="replace").splitlines()[-15:])
                         for log in sorted(self.folder.glob("*.log")))

    def _with_configuration(self, environment):
        return {**environment, "PATH": f"{environment['PATH']}:/usr/sbin", "SLURM_CONF": f"{self.folder}/slurm.conf"}

    def _configure(self):
        key = self.folder / "munge.key"
        key.write_bytes(secrets.token_bytes(1024))
        key.chmod(0o400)
        for name in ("state", *(f"spool-{node}" for node in NODES)):
            (self.folder / name).mkdir()
        host = socket.gethostname().partition(".")[0]
        (self.folder / "slurm.conf").write_text(CONFIGURATION.format(
            host=host, user=pwd.getpwuid(os.geteuid()).pw_name, folder=self.folder, nodes=NODES, ports=free_ports(3),
            cpus=len(os.sched_getaffinity(0))))

    def _start_all(self):
        self._start("munged", "munged", "--foreground", f"--key-file={self.folder}/munge.key",
                    f"--socket={self.folder}/munge.socket", f"--pid-file={self.folder}/munged.pid",
                    f"--log-file={self.folder}/munged.log", f"--seed-file={self.folder}/munge.seed")
        wait_until(lambda: self._is_up("munged") and (self.folder / "munge.socket").exists(), "munge", 60)
        self._start("slurmctld", "slurmctld", "-D")
        for node in NODES:
            self._start(node, "slurmd", "-D", "-N", node)
        wait_until(lambda: all(map(self._is_idle, NODES)), "both nodes", 60)

    def _is_up(self, name):
        if self.daemons[name].poll() is not None:
            raise RuntimeError(f"{name} ended with {self.daemons[name].returncode}:\n{self.logs()}")
        return True

    def _is_idle(self, node):
        try:
            return self._is_up(node) and self._is_up("slurmctld") and self.node_state(node) == "idle"
        except subprocess.CalledProcessError:
            return False  # the controller doesn't answer yet

    def _start(self, name, program, *arguments):
        with (self.folder / f"{name}.out.log").open("wb") as out:
            self.daemons[name] = subprocess.Popen([program, *arguments], env=self.environment, stdin=subprocess.DEVNULL,
                                                  stdout=out, stderr=out)


def processes_of(folder, *marks):
    """The ids of all processes with a cluster's configuration, which no other has, and these marks in their environment."""
    needed = {mark.encode() for mark in (f"SLURM_CONF={folder}/slurm.conf", *marks)}
    found = []
    for process in Path("/proc").glob("[0-9]*"):
        try:
            if needed <= set((process / "environ").read_bytes().split(b"\0")):
                found.append(int(process.name))
        except OSError:
            continue  # it has ended, or belongs to somebody else
    return found


def parent_of(process):
    try:
        return int(Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[1])
    except OSError:
        return 0


def kill(process):
    try:
        os.kill(process, signal.SIGKILL)
    except ProcessLookupError:
        pass


def end(folder):
    while left := processes_of(folder):
        for process in left:
            kill(process)
        time.sleep(0.05)
    shutil.rmtree(folder)


if __name__ == "__main__":
    sys.stdin.read()  # to the end of it, which comes with that of the caller
    end(Path(sys.argv[1]))
