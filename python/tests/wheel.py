#!/usr/bin/env python3
"""Makes the wheel, installs it into a fresh virtual environment without a network and uses it there.

    wheel.py MAKE_WHEEL...     the command that makes the wheel, without the result's folder
"""

from __future__ import annotations

import os
import subprocess
import sys
import tempfile
from pathlib import Path

ENVIRONMENT = {name: value for name, value in os.environ.items()
               if name not in ("PYTHONPATH", "PM9_LIBRARY", "LD_LIBRARY_PATH")}

USE = r"""
import pm9
print(pm9.__file__)
tree = pm9.Tree({"media": {"copies": 2}})
tree.save("a.pia")
print(pm9.load("a.pia").to_dict(), pm9.error_text(57))
"""


def run(*command: object, folder: Path) -> str:
    done = subprocess.run([str(part) for part in command], env=ENVIRONMENT, cwd=folder, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if done.returncode != 0:
        sys.exit(f"{command}\n{done.stdout}")
    return done.stdout


def main(*make_wheel: str) -> None:
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name).resolve()
        run(*make_wheel, folder / "wheel", folder=folder)
        wheels = [wheel.name for wheel in (folder / "wheel").iterdir()]
        if len(wheels) != 1 or not wheels[0].startswith("pm9-9.0.0-py3-none-linux_"):
            sys.exit(f"wheels: {wheels}")
        # cffi is the system's; nothing else is taken from there.
        run(sys.executable, "-m", "venv", "--system-site-packages", folder / "venv", folder=folder)
        python = folder / "venv/bin/python"
        run(python, "-m", "pip", "install", "--no-index", folder / "wheel" / wheels[0], folder=folder)
        told = run(python, "-c", USE, folder=folder).splitlines()
        place = str(folder / "venv/lib")
        if not told[0].startswith(place) or told[1] != "{'media': {'copies': 2}} The line isn't valid":
            sys.exit(f"the installed package told {told}")


main(*sys.argv[1:])
