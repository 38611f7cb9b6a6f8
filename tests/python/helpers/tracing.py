"""Records the calls that a routine makes through names.

With a trace, a comparison covers which routines and which functions of numpy and pandas are called,
in what order, and with what arguments.
"""

from __future__ import annotations

import types
from typing import Any, Callable, Dict, List

from reference import ns as model

LIBRARIES = ("np", "pd", "FC")
ROUTINES = [name for name, value in vars(model).items() if isinstance(value, types.FunctionType)]
FEATURES = [name for name, value in vars(model.FCplus).items() if isinstance(value, staticmethod)]


class Library:
    """A library whose functions are recorded when called; its types are unchanged."""

    def __init__(self, name: str, real: Any, note: Callable[[str, Any], Any]) -> None:
        self._name = name
        self._real = real
        self._note = note

    def __getattr__(self, name: str) -> Any:
        value = getattr(self._real, name)
        if callable(value) and not isinstance(value, type):
            return self._note("{}.{}".format(self._name, name), value)
        return value


class Trace:
    """Records the calls of one side; `take` returns and clears them."""

    def __init__(self, names: Any = None) -> None:
        self.calls: List[Any] = []
        self.names = names

    def wrappers(self, namespace: Any, describer: Any) -> Dict[str, Any]:
        def note(name: str, function: Any) -> Any:
            def noted(*args: Any, **kwargs: Any) -> Any:
                self.calls.append((name, describer.describe(args), describer.describe(kwargs)))
                return function(*args, **kwargs)

            return noted

        result: Dict[str, Any] = {}
        for name in LIBRARIES:
            result[name] = Library(name, getattr(namespace, name), note)
        for name in filter(vars(namespace).__contains__, ROUTINES):
            result[name] = note(name, getattr(namespace, name))
        for name in filter(vars(namespace.FCplus).__contains__, FEATURES):
            wrapper = note("FCplus." + name, getattr(namespace.FCplus, name))
            result["FCplus." + name] = staticmethod(wrapper)
        if self.names is not None:
            result = {name: value for name, value in result.items() if name in self.names}
        return result

    def take(self) -> List[Any]:
        calls, self.calls = self.calls, []
        return calls
