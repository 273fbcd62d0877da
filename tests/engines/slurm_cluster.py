"""A cluster of Slurm on this machine, in a folder of its own: munged, slurmctld and one slurmd, none
of which needs systemd or control groups."""

import os
import shutil
import socket
import subprocess
import time

DAEMONS = ("munged", "slurmctld", "slurmd", "sbatch", "squeue", "scontrol")
PATH = os.pathsep.join((os.environ.get("PATH", ""), "/usr/sbin", "/sbin"))

CONFIGURATION = """\
ClusterName=ztbtest
SlurmctldHost={host}(127.0.0.1)
SlurmctldPort={controller}
SlurmdPort={worker}
AuthType=auth/munge
AuthInfo=socket={folder}/munge/socket
SlurmUser=root
SlurmdUser=root
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/spool
SlurmctldPidFile={folder}/slurmctld.pid
SlurmdPidFile={folder}/slurmd.pid
SlurmctldLogFile={folder}/slurmctld.log
SlurmdLogFile={folder}/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SchedulerParameters=sched_interval=1,bf_interval=1,batch_sched_delay=0
SlurmdParameters=config_overrides
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
MpiDefault=none
ReturnToService=2
KillWait=5
NodeName={host} NodeAddr=127.0.0.1 CPUs=4 RealMemory=1000 State=UNKNOWN
PartitionName=main Nodes=ALL Default=YES MaxTime=INFINITE State=UP
"""


def _free_port():
    with socket.socket() as found:
        found.bind(("127.0.0.1", 0))
        return found.getsockname()[1]


class SlurmCluster:
    """Started at once; an error says what keeps it from that."""

    def __init__(self, folder):
        self.folder = str(folder)
        self.started = []
        missing = [name for name in DAEMONS if shutil.which(name, path=PATH) is None]
        if missing:
            raise RuntimeError(f"Slurm cannot be started here, there is no {', '.join(missing)}")
        if os.getuid() != 0:
            raise RuntimeError("Slurm cannot be started here, its daemons want root")
        os.chmod(self.folder, 0o755)
        for name, mode in (("munge", 0o755), ("state", 0o755), ("spool", 0o755)):
            os.makedirs(os.path.join(self.folder, name))
            os.chmod(os.path.join(self.folder, name), mode)
        host = socket.gethostname()
        with open(self.file("slurm.conf"), "w", encoding="utf-8") as out:
            out.write(
                CONFIGURATION.format(
                    host=host, folder=self.folder, controller=_free_port(), worker=_free_port()
                )
            )
        with open(self.file("cgroup.conf"), "w", encoding="utf-8") as out:
            out.write("CgroupPlugin=cgroup/v1\n")
        key = os.path.join(self.folder, "munge", "key")
        with open(key, "wb") as out:
            out.write(os.urandom(1024))
        os.chmod(key, 0o400)
        try:
            munge = os.path.join(self.folder, "munge")
            self._start(
                "munged", "--force", "--foreground", f"--key-file={key}", f"--socket={munge}/socket",
                f"--pid-file={munge}/pid", f"--log-file={munge}/log", f"--seed-file={munge}/seed",
            )  # fmt: skip
            self._wait("munged", lambda: os.path.exists(os.path.join(munge, "socket")))
            self._start("slurmctld", "-D", "-f", self.file("slurm.conf"))
            self._start("slurmd", "-D", "-f", self.file("slurm.conf"), "-N", host)
            self._wait("the node", lambda: "idle" in self.run("sinfo", "--noheader").stdout)
        except BaseException:
            self.close()
            raise

    def file(self, name):
        return os.path.join(self.folder, name)

    @property
    def environment(self):
        return {**os.environ, "PATH": PATH, "SLURM_CONF": self.file("slurm.conf")}

    def run(self, *command):
        return subprocess.run(
            command, env=self.environment, capture_output=True, text=True, check=False
        )

    def _start(self, *command):
        name = command[0]
        with open(self.file(name + ".out"), "wb") as out:
            process = subprocess.Popen(
                command, env=self.environment, stdin=subprocess.DEVNULL, stdout=out, stderr=out,
                start_new_session=True,
            )  # fmt: skip
        self.started.append((name, process))

    def _wait(self, what, is_there):
        end = time.monotonic() + 60
        while not is_there():
            ended = [name for name, process in self.started if process.poll() is not None]
            if ended or time.monotonic() > end:
                told = ""
                for name, _ in self.started:
                    for ending in (".out", ".log"):
                        if os.path.exists(self.file(name + ending)):
                            with open(self.file(name + ending), encoding="utf-8") as text:
                                told += "".join(text.readlines()[-10:])
                raise RuntimeError(f"Slurm cannot be started here, {what} does not come up:\n{told}")
            time.sleep(0.1)

    def close(self):
        if len(self.started) > 1:
            self.run("scancel", "--user=root")
        for _, process in reversed(self.started):
            process.terminate()
            try:
                process.wait(20)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
