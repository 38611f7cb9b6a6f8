"""Print requirements declared in pyproject.toml, one a line.

Usage: requirements.py build | EXTRA ...

Without build isolation pip does not install the build requirements.
"""

import pathlib
import sys

try:
    import tomllib
except ImportError:  # before Python 3.11; pip has a copy
    from pip._vendor import tomli as tomllib

ROOT = pathlib.Path(__file__).resolve().parent.parent


def main(names):
    declared = tomllib.loads((ROOT / "pyproject.toml").read_text(encoding="utf-8"))
    for name in names:
        if name == "build":
            # With build isolation the build backend adds cmake and ninja.
            requirements = [*declared["build-system"]["requires"], "cmake", "ninja"]
        else:
            requirements = declared["project"]["optional-dependencies"][name]
        print(*requirements, sep="\n")


if __name__ == "__main__":
    main(sys.argv[1:])
