"""A plain-Python model of `quorin_libs.utils.exportable_utils`.

It defines every routine in short Python, without regard to speed, and shares no code with the
extension module. The property tests run both on equal arguments.
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
