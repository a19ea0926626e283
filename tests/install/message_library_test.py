#!/usr/bin/env python3
"""Where the library looks for its message library: beside itself, in pm9/ there, then where the system says.

    message_library_test.py COMPILER SHOW_MESSAGE LIBRARY

The program SHOW_MESSAGE prints a message, or an empty line; each place gets a message library that says where it lies.
"""

import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

SOURCE = """
extern "C" __attribute__((visibility("default"))) const char16_t* pmres9_text(unsigned);
const char16_t* pmres9_text(unsigned) { return u"from %s"; }
"""


class Places:
    def __init__(self, compiler, program, library, folder):
        self.compiler, self.program, self.folder = compiler, program, folder
        for name in ("lib/pm9", "system", "current", "links"):
            (folder / name).mkdir(parents=True)
        shutil.copy(library, folder / "lib" / "libpm9.so.9")
        (folder / "links" / "libpm9.so.9").symlink_to("../lib/libpm9.so.9")

    def put(self, place):
        """A message library in that folder."""
        source = self.folder / "messages.cpp"
        source.write_text(SOURCE % place, encoding="ascii")
        subprocess.run([self.compiler, "-std=c++20", "-shared", "-fPIC", source,
                        "-o", self.folder / place / "libpmres9.so"], check=True)

    def expect(self, message, library="lib"):
        """Run in the folder "current"; the system searches the library's folder as given, then "system"."""
        folders = [str(self.folder / library) if library[0] != "." else library, str(self.folder / "system")]
        run = subprocess.run([self.program], env={**os.environ, "LD_LIBRARY_PATH": ":".join(folders)},
                             cwd=self.folder / "current", capture_output=True, text=True)
        if run.returncode != 0 or run.stdout != message + "\n":
            sys.exit(f"library in {library}: expected {message!r}, not {run.stdout!r} {run.stderr}")


def main(compiler, program, library):
    with tempfile.TemporaryDirectory() as name:
        places = Places(compiler, program, library, Path(name).resolve())
        places.put("current")
        places.expect("")
        # Each goes before those of the lines above.
        for place in ("system", "lib/pm9", "lib"):
            places.put(place)
            places.expect(f"from {place}")
        places.expect("from lib", library="links")
        places.expect("from lib", library="../lib")
        (places.folder / "lib").rename(places.folder / "moved")
        places.expect("from lib", library="moved")


main(*sys.argv[1:])
