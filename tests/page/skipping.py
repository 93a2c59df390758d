"""How a test of this folder ends when the machine lacks a program."""

import os
import shutil
import sys


def need(*programs):
    """Ends with 77, which CTest counts as skipped, unless each program is there; as failed where tests must run."""
    for program in programs:
        if shutil.which(program) is None:
            print(f"left out: {program} is not installed")
            sys.exit(1 if os.environ.get("ZEB_TESTS_MUST_RUN") else 77)
