"""Which columns are distances."""

from __future__ import annotations

import numpy as np
import pandas as pd
import pytest

from quorin_libs.utils.fc_methods import FC

NAN = float("nan")

TEXTS = [
    ["3 km", "12.5 km"],
    ["3km", "1,234.5km", None],
    ["0.5 mi", "2 miles", "1 mile"],
    ["100 ft", "5,280 feet"],
    ["100 metres", "200 meters"],
    ["3\u00a0km", " 4 KM "],
    ["12 nmi"],
    ["100 yds", "1 yard"],
]

NOT_TEXTS = [
    ["5 m", "3.2m"],
    ["180 cm", "10 in", "3 mm"],
    ["12 kg"],
    ["80 km/h"],
    ["3 km", "far"],
    ["3 km", 4],
    ["3 km", ""],
    ["km", "miles"],
    ["-3 km"],
    ["3"],
    ["3 minutes"],
    [b"3 km"],
]

NUMBERS = [
    ("distance", [1.5, 2.0, 0.0]),
    ("trip_distance", [1, 2, 3]),
    ("distanceKm", [12, 40, None]),
    ("Mileage", [12000, 45210]),
    ("km", [100.5]),
    ("miles", [3, 5, 8]),
    ("odometer", [100000, 120000]),
    ("dist", [1.5, 2.25]),
    (("trip", "distance"), [3.0, NAN]),
]

NOT_NUMBERS = [
    (None, [1.5, 2.0]),
    (0, [1.5, 2.0]),
    ("price", [1.5, 2.0]),
    ("weight", [1.5, 2.0]),
    ("dist", [1, 2, 3]),  # districts
    ("district", [1.5, 2.5]),
    ("distance", [-1.5, 2.0]),
    ("distance", [0, 0]),
    ("distance", [0, 1, 1, 0]),
    ("distance", [1.5, float("inf")]),
    ("distance", [True, False]),
    ("distance", ["1.5", "2"]),
    ("distance", []),
    ("distance", [None, NAN]),
    ("distance_id", [3, 4]),
    ("price_per_km", [1.5, 2.0]),
    ("km_h", [80.5, 120.0]),
    ("km2", [80.5, 120.0]),
    ("distance_category", [1, 2, 3]),
]


@pytest.mark.parametrize("cells", TEXTS, ids=ascii)
def test_texts_with_a_unit(cells):
    for column in (cells, pd.Series(cells), pd.DataFrame({"x": cells}), np.array(cells, object)):
        assert FC.is_distance(column) is True
    assert FC.is_distance(pd.Series(cells, name="price per km")) is False


@pytest.mark.parametrize("cells", NOT_TEXTS, ids=repr)
def test_other_texts(cells):
    assert FC.is_distance(cells) is False
    assert FC.is_distance(pd.Series(cells, name="distance")) is False


@pytest.mark.parametrize("name, cells", NUMBERS, ids=repr)
def test_numbers_named_as_distance(name, cells):
    column = pd.Series(cells, name=name)
    assert FC.is_distance(column) is True
    assert FC.is_distance(column.to_frame()) is True
    assert FC.is_distance(cells) is False


@pytest.mark.parametrize("name, cells", NOT_NUMBERS, ids=repr)
def test_other_numbers(name, cells):
    column = pd.Series(cells, name=name, dtype=object)
    assert FC.is_distance(column) is False
    assert FC.is_distance(column.to_frame()) is False
