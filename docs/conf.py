"""Settings of the documentation.

Sphinx with numpydoc: Sphinx imports the built module and asks every routine for its signature and
its docstring, so that the pages say what was built, not what a source or a stub says about it. The
docstrings are numpydoc's, and numpydoc needs nothing else to read them. No page asks the network
for anything, so the build gives the same result everywhere.

Needed: ``sphinx``, ``numpydoc`` and the installed package. Warnings are errors::

    sphinx-build -E -W --keep-going -n docs build/docs
"""
# ruff: noqa: INP001 -- Sphinx reads this file; nobody imports it.

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

sys.path.insert(0, str(pathlib.Path(__file__).parent))  # the directives of measured.py

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
# The routines of a page stand beside it.
html_sidebars = {"**": ["about.html", "searchbox.html", "localtoc.html", "navigation.html"]}
toc_object_entries_show_parents = "hide"
html_static_path = ["_static"]
html_css_files = ["measured.css"]
html_show_sourcelink = False

# The routines' few annotations are coarser than the types their docstrings state.
autodoc_typehints = "none"
add_module_names = False
numpydoc_show_class_members = False

# Single backticks in docstrings: a link where the name is ours, code where it is a parameter or
# somebody else's.
default_role = "name"

MODULE = exportable_utils.__name__
FIELD = re.compile(r":(?:param|return)\b *(?P<name>\w*):")


def _targets() -> dict[str, str]:
    """Return the full name of everything with an entry in the reference, by each short name."""
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
                # Methods name their neighbours without the class.
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
    """What ``quorin-profile --help`` prints."""

    def run(self) -> list[nodes.Node]:
        """Return the text as it stands, in lines that fit the page."""
        os.environ["COLUMNS"] = "90"
        return [nodes.literal_block(text=cli.build_parser().format_help())]


def merge_fields(*event: Any) -> None:
    """Move what ``:param X:`` lines say to the numpydoc entry of X, or leave it out.

    Some docstrings keep their authors' own lines above the sections that this project adds. They
    belong to the docstring, but twice the same list of parameters only puzzles: an entry that has
    a description of its own stands alone.
    """
    lines: list[str] = event[-1]  # to be changed in place
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
    """Keep the signature that Sphinx found. numpydoc's own attempt would show ``self``."""
    args, annotation = event[-2:]
    return None if args is None else (args, annotation)


def setup(app: Sphinx) -> None:
    """Register what is above."""
    app.add_role("name", Name())
    app.add_directive("command-help", CommandHelp)
    # Before numpydoc, whose priority is the usual 500.
    app.connect("autodoc-process-docstring", merge_fields, priority=400)
    app.connect("autodoc-process-signature", keep_signature, priority=400)
