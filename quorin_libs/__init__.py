"""Column profiling for tables whose missing values are written in many ways.

``import quorin_libs`` is quick: numpy, pandas and the extension module are imported with the first
name that needs them.

Examples
--------
>>> import io
>>> from quorin_libs import profile_table, read_table
>>> table = read_table(io.BytesIO(b"depth,site\\n12.5,A\\n~,B\\n3.0,B\\n"))
>>> for column in profile_table(table).columns:
...     print(column.name, column.kind, column.new_markers)
depth float_str ('~',)
site char_str ()
"""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

if TYPE_CHECKING:
    from quorin_libs.profiling import ColumnProfile, TableProfile, profile_table
    from quorin_libs.reading import InputError, read_table
    from quorin_libs.rendering import render_json, render_table
    from quorin_libs.table import Table

    __version__: str

__all__ = [
    "ColumnProfile",
    "InputError",
    "Table",
    "TableProfile",
    "__version__",
    "profile_table",
    "read_table",
    "render_json",
    "render_table",
]

_HOMES = {
    "ColumnProfile": "profiling",
    "InputError": "reading",
    "Table": "table",
    "TableProfile": "profiling",
    "profile_table": "profiling",
    "read_table": "reading",
    "render_json": "rendering",
    "render_table": "rendering",
}


def __getattr__(name: str) -> Any:
    if name == "__version__":
        value: Any = _installed_version()
    elif name in _HOMES:
        from importlib import import_module

        value = getattr(import_module(__name__ + "." + _HOMES[name]), name)
    else:
        raise AttributeError(f"module {__name__!r} has no attribute {name!r}")
    globals()[name] = value
    return value


def __dir__() -> list[str]:
    return sorted({name for name in globals() if name.startswith("__")} | set(__all__))


def _installed_version() -> str:
    try:
        from importlib.metadata import PackageNotFoundError, version
    except ImportError:  # CPython 3.7
        return _version_on_path()
    try:
        return version(__name__)
    except PackageNotFoundError:
        return "0+unknown"


def _version_on_path() -> str:
    """Version from the first installed ``METADATA`` of this package, for CPython 3.7."""
    import sys
    from email.parser import HeaderParser
    from pathlib import Path

    for entry in sys.path:
        for metadata in sorted(Path(entry or ".").glob(__name__ + "-*.dist-info/METADATA")):
            with metadata.open(encoding="utf-8") as stream:
                return str(HeaderParser().parse(stream)["Version"])
    return "0+unknown"
