"""Many SSH servers on loopback addresses of a network namespace that is made for them, each with its own host key and
its own `displayinfo`. Whoever runs in it finds their names in /etc/hosts, their keys in ~/.ssh, and reaches them with
plain ssh.

Nothing of it is seen from outside, and everything in it ends with the process that made it."""
import ctypes
import fcntl
import os
import pathlib
import re
import select
import shutil
import signal
import socket
import struct
import subprocess
import sys
import time

SKIPPED = 77
libc = ctypes.CDLL(None, use_errno=True)


def skip(reason):
    print(f"SKIPPED, nothing was tested: {reason}")
    sys.exit(SKIPPED)


def require(*programs):
    for program in programs:
        if shutil.which(program) is None:
            skip(f"{program} is not installed here")


def find_sshd(unpacked):
    """The installed server, or one that was only unpacked, so that none starts on this machine. With its
    environment."""
    environment = dict(os.environ)
    for sshd in (pathlib.Path("/usr/sbin/sshd"), unpacked / "openssh-server/usr/sbin/sshd"):
        libraries = [str(folder.parent) for folder in unpacked.glob("*/usr/lib/*/lib*.so*")]
        environment["LD_LIBRARY_PATH"] = ":".join(sorted(set(libraries)))
        if not sshd.exists():
            continue
        tried = subprocess.run([sshd, "-t", "-h", "/dev/null"], env=environment, capture_output=True)
        if tried.returncode != 127:
            return sshd, environment
    skip(f"there is no sshd here (Debian package openssh-server), nor one unpacked in {unpacked}")


def enter_namespaces():
    """Runs this script again in its own network, mounts and process ids. Only root becomes nobody else in it: an
    ordinary user keeps the name, so that sshd does not take itself for root's."""
    if "DISPLAYINFO_NAMESPACES" in os.environ:
        return
    command = ["unshare", "--net", "--mount", "--pid", "--fork", "--kill-child", "--mount-proc"]
    if os.getuid() != 0:
        command += ["--user", "--map-current-user", "--keep-caps"]
    require("unshare")
    tried = subprocess.run([*command, "true"], capture_output=True, text=True)
    if tried.returncode != 0:
        skip(f"namespaces cannot be made here: {tried.stderr.strip()}")
    os.environ["DISPLAYINFO_NAMESPACES"] = "1"
    os.execvp(command[0], [*command, sys.executable, *sys.argv])


def set_loopback_up():
    """All of 127.0.0.0/8 is this machine's then; no address needs to be added."""
    SIOCGIFFLAGS, SIOCSIFFLAGS, IFF_UP = 0x8913, 0x8914, 1
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as control:
        request = fcntl.ioctl(control, SIOCGIFFLAGS, struct.pack("16sh14x", b"lo", 0))
        flags = struct.unpack("16sh14x", request)[1]
        fcntl.ioctl(control, SIOCSIFFLAGS, struct.pack("16sh14x", b"lo", flags | IFF_UP))


def mount(source, target, type=None, flags=0, data=None):
    """mount(8) serves root only; the system call serves whoever has the capability."""
    arguments = [argument.encode() if argument else None for argument in (str(source), str(target), type)]
    if libc.mount(*arguments, flags, data.encode() if data else None) != 0:
        raise OSError(ctypes.get_errno(), f"{target} cannot be mounted")


def replace_file(path, text, folder):
    MS_BIND = 4096
    own = folder / path.strip("/").replace("/", "-")
    own.write_text(text)
    mount(own, path, flags=MS_BIND)


def list_processes():
    """(process, its parent, its session) for each that has not ended."""
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            state, parent, _, session = (folder / "stat").read_text().rpartition(")")[2].split()[:4]
        except (FileNotFoundError, ProcessLookupError):
            continue
        if state != "Z":
            yield int(folder.name), int(parent), int(session)


def kill(pids):
    for pid in pids:
        try:
            os.kill(pid, signal.SIGKILL)
        except ProcessLookupError:
            pass


def kill_tree(process):
    """As when a machine loses its power: nothing in it has a last word."""
    parents = {pid: parent for pid, parent, _ in list_processes()}
    tree = [process.pid]
    for one in tree:
        tree += [pid for pid, parent in parents.items() if parent == one]
    kill(tree)
    process.wait()


def kill_session(process):
    """The same for what was started with a session of its own, and may be starting more."""
    while session := [pid for pid, _, session in list_processes() if session == process.pid]:
        kill(session)
    process.wait()


WRAPPER = """#!/bin/sh
echo "{name} $*" >>{folder}/asked
if [ -e {folder}/hold-{name} ]; then
  echo {name} >{folder}/arrived
  read -r nothing <{folder}/never
fi
case " $* " in
  *" --machines "*) exec {command} "$@" ;;
  *) exec {command} --machine {folder}/machines/{name} "$@" ;;
esac
"""


class Hosts:
    """`count` hosts, ws-01 and so on. What answers there is folder/machines/NAME, or the list that --machines names."""

    def __init__(self, folder, count, command, unpacked_sshd):
        require("ssh", "ssh-keygen")
        self.folder = folder
        self.sshd, self.environment = find_sshd(unpacked_sshd)
        self.names = [f"ws-{number:02}" for number in range(1, count + 1)]
        self.servers = {}
        (folder / "machines").mkdir()
        (folder / "asked").touch()
        for fifo in ("arrived", "never"):
            os.mkfifo(folder / fifo)
        self.arrived = open(os.open(folder / "arrived", os.O_RDWR), "rb", buffering=0)
        set_loopback_up()
        addresses = {name: f"127.0.0.{number + 10}" for number, name in enumerate(self.names)}
        self.make_user(addresses)
        for name, address in addresses.items():
            self.make_host(name, address, command)

    def make_user(self, addresses):
        home = self.folder / "home"
        (home / ".ssh").mkdir(parents=True, mode=0o700)
        user = f"tester:*:{os.getuid()}:{os.getgid()}::{home}:/bin/sh\n"
        replace_file("/etc/passwd", user + "sshd:*:65500:65534::/run/sshd:/usr/sbin/nologin\n", self.folder)
        replace_file("/etc/hosts", "127.0.0.1 localhost\n" +
                     "".join(f"{address} {name}\n" for name, address in addresses.items()), self.folder)
        mount("tmpfs", "/run", "tmpfs", data="mode=755")
        pathlib.Path("/run/sshd").mkdir(mode=0o755)
        self.make_key(home / ".ssh/id_ed25519")
        os.environ.update(HOME=str(home), USER="tester", LOGNAME="tester")
        os.environ.pop("SSH_AUTH_SOCK", None)

    @staticmethod
    def make_key(file):
        subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-C", "", "-f", file], check=True)
        return file.with_suffix(".pub").read_text()

    def make_host(self, name, address, command):
        host = self.folder / name
        (host / "bin").mkdir(parents=True)
        key = self.make_key(host / "key")
        with open(self.folder / "home/.ssh/known_hosts", "a") as known:
            known.write(f"{name},{address} {key}")
        wrapper = host / "bin/displayinfo"
        wrapper.write_text(WRAPPER.format(name=name, folder=self.folder, command=command))
        wrapper.chmod(0o755)
        options = [f"ListenAddress {address}:22", f"HostKey {host / 'key'}", "PidFile none", "UsePAM no",
                   "StrictModes no", "PasswordAuthentication no",
                   f"AuthorizedKeysFile {self.folder / 'home/.ssh/id_ed25519.pub'}",
                   f"SetEnv PATH={host / 'bin'}:{os.environ['PATH']}"]
        for option, program in (("SshdSessionPath", "sshd-session"), ("SshdAuthPath", "sshd-auth")):
            own = self.sshd.parent.parent / "lib/openssh" / program
            if own.exists():
                options.append(f"{option} {own}")
        (host / "config").write_text("\n".join(options) + "\n")

    def start(self, name):
        """Returns when the server can be reached."""
        server = subprocess.Popen([self.sshd, "-D", "-e", "-f", self.folder / name / "config"],
                                  stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                                  text=True, env=self.environment)
        self.servers[name] = server
        said = []
        for line in server.stderr:
            if "Server listening" in line:
                return
            said.append(line)
        raise AssertionError(f"the server of {name} does not start: {''.join(said)}")

    def start_all(self):
        for name in self.names:
            self.start(name)

    def kill(self, name):
        kill_tree(self.servers.pop(name))

    def restart_all(self):
        """What was asked before goes on at none of them."""
        for name in self.names:
            self.kill(name)
        self.start_all()

    def hold(self, name):
        """Whoever asks this host from now on waits there, until something is killed."""
        (self.folder / f"hold-{name}").touch()

    def release(self, name):
        (self.folder / f"hold-{name}").unlink()

    def wait_for_arrival(self):
        """The host at which somebody waits."""
        ready, _, _ = select.select([self.arrived], [], [], PATIENCE)
        assert ready, "nobody asks the host that holds"
        return os.read(self.arrived.fileno(), 64).decode().strip()

    def take_asked(self):
        """What displayinfo was asked since the last time: host and arguments, a list for each."""
        file = self.folder / "asked"
        asked = [line.split(" ", 1) for line in file.read_text().splitlines()]
        file.write_text("")
        return asked


PATIENCE = 120  # seconds, after which something hangs


def wait_until(condition, what):
    end = time.monotonic() + PATIENCE
    while not condition():
        assert time.monotonic() < end, what
        time.sleep(0.02)


def copy_with(script, folder, **constants):
    """A copy of a script, as users make one, with other constants."""
    text = script.read_text()
    for name, value in constants.items():
        text, count = re.subn(rf"^readonly {name}=\S+", f"readonly {name}={value}", text, flags=re.MULTILINE)
        assert count == 1, name
    copy = folder / script.name
    copy.write_text(text)
    copy.chmod(0o755)
    return copy
