"""How every measuring script describes the machine and writes its figures."""

import datetime
import json
import os
import platform
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent


def processor():
    for line in Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def describe_machine():
    """`load` is the one-minute load average before the run: well below 1 on an idle machine."""
    return {"date": datetime.date.today().isoformat(), "processor": processor(), "cores": os.cpu_count(),
            "system": f"{platform.system()} {platform.release()}", "load": round(os.getloadavg()[0], 2)}


def write_json(path, figures):
    path.write_text(json.dumps(figures, indent=1) + "\n")
