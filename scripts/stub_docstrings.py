"""Copy the docstrings of the built module into its stub.

Usage: stub_docstrings.py [--check]

Run it with an interpreter that has the package installed from this checkout (`make run` makes
`.venv/bin/python` one) and `ruff format` the stub afterwards. Of an overloaded routine the first
overload carries the docstring. With --check nothing is written; the exit status is 1 where the stub
would change.
"""

import ast
import inspect
import pathlib
import sys

from quorin_libs.utils import exportable_utils

STUB = pathlib.Path(__file__).resolve().parent.parent / "quorin_libs/utils/exportable_utils.pyi"


def documented(tree):
    """Yield each class and function node of the stub with the object it stands for."""
    for node in tree.body:
        if isinstance(node, ast.ClassDef):
            owner = getattr(exportable_utils, node.name, None)
            if owner is None:  # a name for type checkers only
                continue
            yield node, owner
            for member in node.body:
                if isinstance(member, ast.FunctionDef):
                    yield member, getattr(owner, member.name)
        elif isinstance(node, ast.FunctionDef):
            yield node, getattr(exportable_utils, node.name)


def literal(text, indent):
    text = inspect.cleandoc(text)
    prefix = "r" if "\\" in text else ""
    lines = [prefix + '"""' + text]
    if "\n" in text:
        lines.append('"""')
    else:
        lines[0] += '"""'
    return [(indent + line).rstrip() + "\n" for line in "\n".join(lines).split("\n")]


def rewritten(source):
    lines = source.splitlines(keepends=True)
    edits = []
    seen = set()
    for node, found in documented(ast.parse(source)):
        name = getattr(found, "__qualname__", node.name)
        if name in seen:
            continue
        seen.add(name)
        first = node.body[0]
        indent = " " * (node.col_offset + 4)
        docstring = literal(found.__doc__, indent)
        old = ast.get_docstring(node, clean=True)
        if old is not None:
            if old == inspect.cleandoc(found.__doc__):
                continue
            edits.append((first.lineno, first.end_lineno, docstring))
        elif isinstance(node, ast.ClassDef):
            start = min([first.lineno, *(d.lineno for d in getattr(first, "decorator_list", []))])
            edits.append((start, start - 1, docstring))
        else:
            # The body is the dots behind the colon of the last line of the signature.
            head = lines[first.lineno - 1][: first.col_offset].rstrip() + "\n"
            edits.append((first.lineno, first.end_lineno, [head, *docstring]))
    for start, stop, new in sorted(edits, reverse=True):
        lines[start - 1 : stop] = new
    return "".join(lines)


def main(arguments):
    source = STUB.read_text(encoding="utf-8")
    result = rewritten(source)
    if arguments == ["--check"]:
        return int(result != source)
    STUB.write_text(result, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
