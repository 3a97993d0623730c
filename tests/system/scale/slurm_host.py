# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Slurm on this machine alone: a controller and two machines of one processor each, with all its files in a folder."""

import getpass
import os
import pathlib
import socket
import subprocess

import processes

CONFIGURATION = """
ClusterName=onehost
SlurmctldHost=localhost(127.0.0.1)
SlurmctldPort={controller}
SlurmUser={user}
SlurmdUser={user}
AuthType=auth/munge
AuthInfo=socket={root}/munge.socket,cred_expire=5
CredType=cred/munge
StateSaveLocation={root}/state
SlurmdSpoolDir={root}/spool-%n
SlurmctldPidFile={root}/slurmctld.pid
SlurmdPidFile={root}/slurmd-%n.pid
SlurmctldLogFile={root}/slurmctld.log
SlurmdLogFile={root}/slurmd-%n.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
MpiDefault=none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SchedulerParameters=sched_interval=1,batch_sched_delay=0,sched_min_interval=0
MailProg=/bin/true
SlurmdTimeout=3
MessageTimeout=3
KillWait=1
NodeName=machine1 NodeHostname=localhost NodeAddr=127.0.0.1 Port={machine1} CPUs=1
NodeName=machine2 NodeHostname=localhost NodeAddr=127.0.0.1 Port={machine2} CPUs=1
PartitionName=pages Nodes=machine[1-2] Default=YES State=UP
"""


def free_ports(count):
    sockets = [socket.socket() for _ in range(count)]
    for one in sockets:
        one.bind(("127.0.0.1", 0))
    ports = [one.getsockname()[1] for one in sockets]
    for one in sockets:
        one.close()
    return ports


class SlurmHost:
    """Started when made; ended by processes.kill_all."""

    def __init__(self, root):
        self.root = pathlib.Path(root)
        self.environment = dict(os.environ, SLURM_CONF=str(self.root / "slurm.conf"))
        for folder in ("state", "spool-machine1", "spool-machine2"):
            (self.root / folder).mkdir()
        ports = dict(zip(("controller", "machine1", "machine2"), free_ports(3)))
        (self.root / "slurm.conf").write_text(CONFIGURATION.format(root=root, user=getpass.getuser(), **ports))
        key = self.root / "munge.key"
        key.write_bytes(os.urandom(1024))
        key.chmod(0o400)

        files = [f"--{name}-file={self.root}/munge.{name}" for name in ("key", "pid", "log", "seed")]
        # By force, because the socket is not within everybody's reach: only this user needs it.
        self.start("munged", "--foreground", "--force", f"--socket={self.root}/munge.socket", *files)
        processes.wait_until((self.root / "munge.socket").exists, 5, "munged")
        self.start("slurmctld", "-D")
        for machine in ("machine1", "machine2"):
            self.start_machine(machine)
        processes.wait_until(lambda: self.run("sinfo", "-h", "-o", "%t %D") == "idle 2", 10, "two idle machines")

    def start(self, *command):
        path = os.environ["PATH"] + ":/usr/sbin:/sbin"
        environment = dict(self.environment, PATH=path)
        return processes.start(["env", *command], self.root / "daemons.log", env=environment, start_new_session=True)

    def start_machine(self, machine):
        self.start("slurmd", "-D", "-N", machine)

    def run(self, *command):
        """What a command of Slurm says, or None if it fails."""
        command = [str(word) for word in command]
        done = subprocess.run(command, env=self.environment, capture_output=True, text=True, timeout=20)
        return done.stdout.strip() if done.returncode == 0 else None

    def lose(self, machine):
        """Ends all that runs on a machine, as if its plug were pulled."""
        everything = processes.descendants(os.getpid())
        lost = [pid for pid in everything if f"-N {machine}" in processes.command_of(pid)]
        for pid in everything:
            if f"spool-{machine}/" in processes.command_of(pid):    # a job's script; above it is what watches it
                lost += [pid, *processes.descendants(pid), parent(pid)]
        processes.kill(set(lost) - {os.getpid(), 1})
        return lost


def parent(pid):
    try:
        return int(pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()[1])
    except OSError:
        return 1
