"""Finds the names that a call looks up: removes all names and restores them one by one."""

from __future__ import annotations

import contextlib
import io
import re
from typing import Any, Callable, Collection, Dict, Iterable, List, Optional, Tuple

from .comparison import DELETED, module, replaced
from .replacements import Looked, OnlyAttributes

UNDEFINED = re.compile("name '([^']+)' is not defined")
GLOBALS = [name for name in vars(module) if not name.startswith("__")]
# Globals whose attributes are looked up.
OWNERS = ("np", "pd", "six", "numbers", "hashlib", "time", "traceback", "logging", "random",
          "logger", "FC", "FCplus", "DatasetS")  # fmt: skip


def one_by_one(look_ups: Iterable[str]) -> List[str]:
    """The single look-ups; a global precedes its first attribute."""
    steps: List[str] = []
    for name in look_ups:
        owner = name.partition(".")[0]
        steps += [step for step in dict.fromkeys([owner, name]) if step not in steps]
    return steps


def only(names: Collection[str]) -> Dict[str, Any]:
    """Replacements that remove all names except these globals and dotted names."""
    result: Dict[str, Any] = {}
    for name in GLOBALS:
        if name not in names:
            result[name] = DELETED
        elif name in OWNERS:
            members = {each[len(name) + 1 :] for each in names if each.startswith(name + ".")}
            result[name] = OnlyAttributes(name, getattr(module, name), members)
    return result


def missing_name(routine: Any, arguments: Callable[[], Tuple[Any, ...]]) -> Optional[str]:
    """The missing name that makes the call fail; None if no name is missing.

    If the routine handles a NameError and another exception follows, the first one counts.
    """
    found = None
    try:
        with contextlib.redirect_stdout(io.StringIO()):
            routine(*arguments())
    except Looked as error:
        return str(error)
    except Exception as error:
        chain: Optional[BaseException] = error
        while chain is not None:
            match = UNDEFINED.search(str(chain))
            found = match.group(1) if match else found
            chain = chain.__context__
    return found


def observe(routine: Any, arguments: Callable[[], Tuple[Any, ...]]) -> List[str]:
    """The single look-ups of the interpreter route of a call, in order."""
    found: List[str] = []
    while True:
        with replaced(module, only(found)):
            name = missing_name(routine, arguments)
        if name is None:
            return found
        assert name not in found, name
        found.append(name)


def without_owners(look_ups: Iterable[str]) -> List[str]:
    """The look-ups without the globals of which attributes are looked up."""
    look_ups = list(look_ups)
    owners = {name.partition(".")[0] for name in look_ups if "." in name}
    return [name for name in look_ups if name not in owners]
