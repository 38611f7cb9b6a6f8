"""Settings of the documentation.

Sphinx imports the built module and takes signatures and docstrings (numpydoc) from it, not from
sources or the stub. No page needs the network.

Needs the ``docs`` extra and the installed package. Warnings are errors::

    sphinx-build -E -W --keep-going -n docs build/docs
"""
# ruff: noqa: INP001 -- Sphinx reads this file by its path.

from __future__ import annotations

import os
import pathlib
import re
import sys
from typing import Any

from docutils import nodes
from sphinx.application import Sphinx
from sphinx.roles import XRefRole
from sphinx.util.docutils import SphinxDirective, SphinxRole

import quorin_libs
from quorin_libs import cli
from quorin_libs.utils import exportable_utils, fc_methods

sys.path.insert(0, str(pathlib.Path(__file__).parent))  # measured.py

project = "quorin_libs"
author = "quorin_libs developers"
copyright = author  # noqa: A001 -- the name is Sphinx's
release = version = quorin_libs.__version__

extensions = ["sphinx.ext.autodoc", "numpydoc", "measured"]
nitpicky = True

html_theme = "alabaster"
html_theme_options = {
    "description": "What a column holds, and what stands for missing.",
    "page_width": "1000px",
    "sidebar_width": "230px",
}
# The sidebar lists the routines of the page.
html_sidebars = {"**": ["about.html", "searchbox.html", "localtoc.html", "navigation.html"]}
toc_object_entries_show_parents = "hide"
html_static_path = ["_static"]
html_css_files = ["measured.css"]
html_show_sourcelink = False

# The docstrings state the types more precisely than the annotations.
autodoc_typehints = "none"
add_module_names = False
numpydoc_show_class_members = False

# Single backticks: a link if the name is in the reference, else code.
default_role = "name"

MODULE = exportable_utils.__name__
FIELD = re.compile(r":(?:param|return)\b *(?P<name>\w*):")


def _targets() -> dict[str, str]:
    """Return the full names of the entries of the reference by their short names."""
    routine = type(exportable_utils.isint)
    targets = {}
    for name, held in vars(exportable_utils).items():
        if isinstance(held, routine):
            targets[name] = "{}.{}".format(MODULE, name)
    for name in quorin_libs.__all__:
        targets[name] = "quorin_libs.{}".format(name)
    owners = [exportable_utils.FCplus, exportable_utils.DatasetS, fc_methods.FC]
    for owner in owners:
        full = "{}.{}".format(owner.__module__, owner.__name__)
        targets[owner.__name__] = full
        for name in vars(owner):
            if not name.startswith("_"):
                targets["{}.{}".format(owner.__name__, name)] = "{}.{}".format(full, name)
                # Docstrings of methods name other methods without the class.
                targets.setdefault(name, "{}.{}".format(full, name))
    return targets


class Name(SphinxRole):
    """A link to the reference, or code."""

    targets = _targets()

    def run(self) -> Any:
        """Return the nodes and messages of one use of the role."""
        target = self.targets.get(self.text)
        if target is None:
            return [nodes.literal(self.rawtext, self.text)], []
        text = "{} <{}>".format(self.text, target)
        return XRefRole()("py:obj", self.rawtext, text, self.lineno, self.inliner)


class CommandHelp(SphinxDirective):
    """The output of ``quorin-profile --help``."""

    def run(self) -> list[nodes.Node]:
        """Return the text, wrapped at the width of the page."""
        os.environ["COLUMNS"] = "90"
        return [nodes.literal_block(text=cli.build_parser().format_help())]


def merge_fields(*event: Any) -> None:
    """Move the text of ``:param X:`` lines to the numpydoc entry of X.

    Some docstrings have both forms. The page shows each parameter once: an entry with a description
    of its own keeps it.
    """
    lines: list[str] = event[-1]  # changed in place
    if "Parameters" not in lines:
        return
    sections = lines.index("Parameters")
    fields: dict[str, str] = {}
    kept: list[str] = []
    field = None
    for line in lines[:sections]:
        start = FIELD.match(line)
        if start is not None:
            field = start["name"] or "return"
            fields[field] = line[start.end() :].strip()
        elif field is not None and line.strip():
            fields[field] += " " + line.strip()
        else:  # a field ends with its paragraph
            field = None
            kept.append(line)
    following = [*lines[sections + 1 :], ""]
    for line, after in zip(lines[sections:], following):
        kept.append(line)
        name, colon, _ = line.partition(" : ")
        text = fields.get(name) if colon else None
        if text and not after.startswith(" "):
            kept.append("    " + text[0].upper() + text[1:].rstrip(".") + ".")
    lines[:] = kept


def keep_signature(*event: Any) -> tuple[str, str] | None:
    """Keep the signature that Sphinx found; numpydoc would show ``self``."""
    args, annotation = event[-2:]
    return None if args is None else (args, annotation)


def setup(app: Sphinx) -> None:
    """Register the role, the directive and the events."""
    app.add_role("name", Name())
    app.add_directive("command-help", CommandHelp)
    # Before numpydoc, which has the default priority, 500.
    app.connect("autodoc-process-docstring", merge_fields, priority=400)
    app.connect("autodoc-process-signature", keep_signature, priority=400)
