"""Runs a program that shares the C++ runtime with the library, and looks for the file of its last breath.

shared_client_test.py SHARED_CLIENT
"""

import subprocess
import sys
import tempfile
from pathlib import Path

with tempfile.TemporaryDirectory() as folder:
    done = subprocess.run([sys.argv[1], folder], capture_output=True, check=False)
    if done.returncode != 0 or done.stdout.split() != [b"done"]:
        sys.exit(f"ended with {done.returncode}: {done.stdout.decode()}{done.stderr.decode()}")
    kept = Path(folder, "kept.pia").read_bytes()
    expected = b'PIAFILEVERSION_2.0,KEPT_1.0\r\nname="\xC4\nkept=TRUE\n\0'
    if kept != expected:
        sys.exit(f"the program's object left {kept}, not {expected}")
