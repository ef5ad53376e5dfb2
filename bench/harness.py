"""What the measurements share: a network of their own, the farm of simulated devices, and one way to measure a program.

PRINTER_DISCOVERY_BUILD names another folder of programs than build/."""
import contextlib
import json
import os
import pathlib
import platform
import signal
import subprocess
import sys
import tempfile
import threading
import time

REPOSITORY = pathlib.Path(__file__).resolve().parent.parent
BUILD = pathlib.Path(os.environ.get("PRINTER_DISCOVERY_BUILD") or REPOSITORY / "build")
FIGURES = REPOSITORY / "docs" / "figures"
DISCOVERY = str(BUILD / "printer-discovery")
SNMP_PORT = 161
INSIDE = "PRINTER_DISCOVERY_BENCH_NETWORK"


def in_own_network():
    """Goes on in a network namespace that has nothing but loopback, so that any program may use any port."""
    if os.environ.get(INSIDE) == "yes":
        subprocess.run(["ip", "link", "set", "lo", "up"], check=True)
        return
    own = ["unshare", "--net"] + ([] if os.geteuid() == 0 else ["--user", "--map-root-user"])
    os.environ[INSIDE] = "yes"
    os.execvp("unshare", own + ["--", sys.executable, *sys.argv])


def machine():
    model = "unknown processor"
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            model = line.split(":", 1)[1].strip()
            break
    memory = int(pathlib.Path("/proc/meminfo").read_text().split()[1]) // 1024
    return {"cores": os.cpu_count(), "processor": model, "memoryMiB": memory,
            "system": f"{platform.system()} {platform.release()}", "date": time.strftime("%Y-%m-%d")}


@contextlib.contextmanager
def farm(network, devices, printers):
    """The lab on the SNMP port; every address of 127.0.0.0/8 that is no device of it is silent."""
    lab = subprocess.Popen(
        [BUILD / "printer-lab", "--port", str(SNMP_PORT), "--network", network, "--devices", str(devices),
         "--printers", str(printers), "--until-stdin-closes"],
        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    try:
        for line in lab.stdout:
            if line.strip() == "ready":
                break
        else:
            raise SystemExit("the lab did not start")
        yield
    finally:
        lab.stdin.close()
        lab.wait(30)


def expected_printers(network, devices, printers):
    """What a discovery should report of the farm, by address."""
    listing = subprocess.run(
        [BUILD / "printer-lab", "--network", network, "--devices", str(devices), "--printers", str(printers), "--list"],
        stdout=subprocess.PIPE, text=True, check=True).stdout
    rows = [json.loads(line) for line in listing.splitlines()]
    return {row["ip"]: row for row in rows if row["printer"]}


class Measured:
    """A program that ran: its output, exit status, and wall seconds, CPU seconds and peak resident MiB of it and its
    children."""

    def __init__(self, output, status, wall, usage, ended):
        self.output = output
        self.status = status
        self.wall = wall
        self.cpu = usage.ru_utime + usage.ru_stime
        self.resident = usage.ru_maxrss / 1024
        self.ended = ended

    def figures(self):
        return {"wallSeconds": round(self.wall, 3), "cpuSeconds": round(self.cpu, 3),
                "residentMiB": round(self.resident, 1), "ended": self.ended}


def measure(command, limit=600, interrupt_after=None):
    """Runs `command`; after `limit` seconds it is ended. `interrupt_after`: seconds until it gets a SIGINT."""
    with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as errors:
        begin = time.monotonic()
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output, stderr=errors,
                                   process_group=0)
        timed_out = threading.Event()

        def end():
            timed_out.set()
            os.killpg(process.pid, signal.SIGKILL)

        timers = [threading.Timer(limit, end)]
        if interrupt_after is not None:
            timers.append(threading.Timer(interrupt_after, process.send_signal, [signal.SIGINT]))
        for timer in timers:
            timer.start()
        _, status, usage = os.wait4(process.pid, 0)
        wall = time.monotonic() - begin
        process.returncode = os.waitstatus_to_exitcode(status)
        for timer in timers:
            timer.cancel()
        output.seek(0)
        return Measured(output.read().decode(errors="replace"), process.returncode, wall, usage,
                        not timed_out.is_set())


def discover(*arguments, limit=600, interrupt_after=None):
    """A sweep by our program; what was measured, and its document."""
    run = measure([DISCOVERY, "discover", *arguments, "-q", "--format", "json"], limit, interrupt_after)
    if run.status not in (0, 130):
        raise SystemExit(f"discover {' '.join(arguments)} ended with {run.status}")
    return run, json.loads(run.output)


def write_json(name, content):
    FIGURES.mkdir(parents=True, exist_ok=True)
    path = FIGURES / name
    path.write_text(json.dumps(content, indent=2, ensure_ascii=False) + "\n", encoding="utf-8")
    return path


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "---|" * len(head)]
    lines += ["| " + " | ".join(str(cell) for cell in row) + " |" for row in rows]
    return "\n".join(lines)
