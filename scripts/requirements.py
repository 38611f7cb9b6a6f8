"""Print requirements that pyproject.toml declares, one a line, for the interpreter that runs this.

Usage: requirements.py build | EXTRA ...

An editable install without build isolation keeps its compiled objects, but pip then leaves the
build requirements to the caller. They stand in pyproject.toml and nowhere else.
"""

import pathlib
import sys

try:
    import tomllib
except ImportError:  # before Python 3.11 pip carries the parser
    from pip._vendor import tomli as tomllib

ROOT = pathlib.Path(__file__).resolve().parent.parent


def main(names):
    declared = tomllib.loads((ROOT / "pyproject.toml").read_text(encoding="utf-8"))
    for name in names:
        if name == "build":
            # A build front end adds cmake and ninja by itself; here there is none.
            requirements = [*declared["build-system"]["requires"], "cmake", "ninja"]
        else:
            requirements = declared["project"]["optional-dependencies"][name]
        print(*requirements, sep="\n")


if __name__ == "__main__":
    main(sys.argv[1:])
