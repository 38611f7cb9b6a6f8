"""A plain-Python model of `quorin_libs.utils.exportable_utils`.

It says what every routine does in the shortest Python there is, with no thought for speed, and
shares no code with the extension module.  The property tests run both on the same arguments.
"""

from __future__ import annotations

from . import (
    categories,
    classify,
    companions,
    conversion,
    dataset,
    detectors,
    frame,
    listing,
    missing,
    replacement,
    selection,
)
from .namespace import ns

__all__ = [
    "categories",
    "classify",
    "companions",
    "conversion",
    "dataset",
    "detectors",
    "frame",
    "listing",
    "missing",
    "ns",
    "replacement",
    "selection",
]
