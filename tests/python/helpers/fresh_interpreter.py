"""Runs code in a new interpreter."""

from __future__ import annotations

import json
import os
import subprocess
import sys
import textwrap


def run_fresh(code, folder, **environment):
    """Run ``code`` in a new interpreter; ``answer(x)`` in it becomes the returned object."""
    script = "import json, os, sys\ndef answer(x): open('answer', 'w').write(json.dumps(x))\n"
    done = subprocess.run(
        [sys.executable, "-c", script + textwrap.dedent(code)],
        cwd=str(folder),
        env=dict(os.environ, **environment),
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        universal_newlines=True,
        check=False,
    )
    assert done.returncode == 0, "exit status {}\n{}".format(done.returncode, done.stdout)
    return json.loads((folder / "answer").read_text())
