"""Descriptions that are equal if and only if two objects are indistinguishable.

1, 1.0, True, np.int64(1), "1" and np.str_("1") have different descriptions; all NaN of one type
have the same. The description of an object says whether it is an argument or occurred before.
"""

from __future__ import annotations

from typing import Any, Dict, List, Tuple

import numpy as np
import pandas as pd

CONTAINERS = (list, tuple, dict, set, frozenset)


class Describer:
    """Describes arguments and result of a call; an object is named after its first place."""

    def __init__(self) -> None:
        self.names: Dict[int, str] = {}
        self.kept: List[Any] = []
        self.arrays: List[Tuple[str, np.ndarray]] = []

    def register(self, args: Tuple[Any, ...], kwargs: Dict[str, Any]) -> None:
        """Name the arguments and all objects inside them."""
        for i, arg in enumerate(args):
            self._register(arg, str(i))
        for key, arg in kwargs.items():
            self._register(arg, key)

    def _register(self, value: Any, place: str) -> None:
        if not self._name(value, place):
            return
        if isinstance(value, np.ndarray):
            self.arrays.append((place, value))
        if isinstance(value, np.ndarray) and value.dtype == object:
            for i, item in enumerate(value.ravel().tolist()):
                self._register(item, "{}[{}]".format(place, i))
        elif isinstance(value, dict):
            for key, item in value.items():
                self._register(item, "{}[{!r}]".format(place, key))
        elif isinstance(value, CONTAINERS):
            for i, item in enumerate(value):
                self._register(item, "{}[{}]".format(place, i))

    def _name(self, value: Any, place: str) -> bool:
        """Names the object after its place. Returns false if it is known or always shared."""
        if id(value) in self.names or is_shared(value):
            return False
        self.names[id(value)] = place
        self.kept.append(value)
        return True

    def describe(self, value: Any) -> Any:
        if is_shared(value):
            return (type(value), repr(value))
        known = self.names.get(id(value))
        if known is None and is_changeable(value):
            self._name(value, "new {}".format(len(self.names)))
            known = self.names[id(value)]
        elif known is not None and known.startswith("new "):
            return (type(value), known)
        return (type(value), known) + self._content(value)

    def _content(self, value: Any) -> Tuple[Any, ...]:
        if isinstance(value, np.ndarray):
            return self._array(value)
        if isinstance(value, (pd.Series, pd.DataFrame)):
            return self._pandas(value)
        if isinstance(value, (pd.Index, pd.api.extensions.ExtensionArray)):
            return (str(value.dtype), self._items(list(value)))
        if isinstance(value, dict):
            return tuple((repr(key), self.describe(item)) for key, item in value.items())
        if isinstance(value, (set, frozenset)):
            return tuple(sorted((self.describe(item) for item in value), key=repr))
        if isinstance(value, (list, tuple)):
            return self._items(value)
        return (plain_value(value),)

    def _items(self, values: Any) -> Tuple[Any, ...]:
        return tuple([self.describe(item) for item in values])

    def _array(self, value: np.ndarray) -> Tuple[Any, ...]:
        layout = (
            value.flags.c_contiguous,
            value.flags.f_contiguous,
            value.flags.writeable,
            tuple(place for place, arg in self.arrays if np.may_share_memory(arg, value)),
        )
        return (repr(value.dtype), value.dtype.str, value.shape, layout, self._cells(value))

    def _cells(self, value: np.ndarray) -> Any:
        plain = np.asarray(value)
        if plain.dtype == object:
            return self._items(plain.ravel().tolist())
        if plain.dtype.kind in "mM":
            return plain.astype("i8").tobytes()
        if plain.dtype.kind in "fc":
            return tuple([str(item) for item in plain.ravel()])
        return plain.tobytes()

    def _pandas(self, value: Any) -> Tuple[Any, ...]:
        parts: List[Any] = [repr(list(value.index)), value.shape]
        if isinstance(value, pd.Series):
            return tuple(parts) + (str(value.dtype), repr(value.name), self._items(list(value)))
        for position, name in enumerate(value.columns):
            cells = value.iloc[:, position]
            parts.append((repr(name), str(cells.dtype), self._items(list(cells))))
        return tuple(parts)


def is_shared(value: Any) -> bool:
    """Whether the interpreter may keep a single object of this value: identity is not compared."""
    kind = type(value)
    if value is None or kind is bool or kind is type:
        return True
    if kind is int:
        return -6 < value < 257
    return kind in (str, bytes) and len(value) < 2


def is_changeable(value: Any) -> bool:
    return isinstance(value, (np.ndarray, list, dict, set, pd.Series, pd.DataFrame))


def plain_value(value: Any) -> Any:
    """The text of a value: exact for floats, one text for every NaN."""
    if isinstance(value, BaseException):
        return (str(value), repr(value.args))
    if isinstance(value, (str, bytes)):
        return value.encode("utf-32", "surrogatepass") if isinstance(value, str) else bytes(value)
    if isinstance(value, np.generic):
        return (repr(value.dtype), str(value))
    text = repr(value)
    return type(value) if " at 0x" in text else text
