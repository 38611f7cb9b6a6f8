"""Which columns are degrees of latitude and longitude."""

from __future__ import annotations

import numpy as np
import pandas as pd
import pytest

from quorin_libs.utils.fc_methods import FC

NAN = float("nan")

CITIES_LAT = [40.7128, 34.0522, 41.8781, 29.7604]
CITIES_LON = [-74.0060, -118.2437, -87.6298, -95.3698]
ASIA_LON = [116.4074, 139.6917, 77.209, 126.978]
LONDON_LON = [-0.1276, -0.0899, 0.0098, -0.2416]
WHOLE = [45, 50, 55]
PRICES = [3.45, 12.99, 20.5, 8.25]

LATITUDES = [
    ("lat", CITIES_LAT),
    ("Lat", CITIES_LAT),
    ("LATITUDE", CITIES_LAT),
    ("pickup_latitude", CITIES_LAT),
    ("pickupLat", CITIES_LAT),
    ("geolatitude", CITIES_LAT),
    ("lat1", CITIES_LAT),
    ("gps.lat", CITIES_LAT),
    ("Latitud", CITIES_LAT),
    ("Latitudine", CITIES_LAT),
    ("Breitengrad", CITIES_LAT),
    (("site", "lat"), CITIES_LAT),
    ("lat", [40.7128, None, NAN]),
    ("latitude", WHOLE),
    ("latitude", [90, -90]),
    ("latitude", [51.5]),
    ("lat", [-33.9, 12.5]),
]

NOT_LATITUDES = [
    (None, CITIES_LAT),
    ("", CITIES_LAT),
    (0, CITIES_LAT),
    ("temperature", CITIES_LAT),
    ("plate", CITIES_LAT),
    ("flat_rate", CITIES_LAT),
    ("latency", CITIES_LAT),
    ("altitude", CITIES_LAT),
    ("longitude", CITIES_LAT),
    ("lat_lon", CITIES_LAT),
    ("lat_error", CITIES_LAT),
    ("latitude_diff", CITIES_LAT),
    ("lat_rank", CITIES_LAT),
    ("latitude", [45.5, 90.001]),
    ("latitude", [45.5, -91]),
    ("latitude", [45.5, float("inf")]),
    ("lat", CITIES_LON),
    ("lat", WHOLE),
    ("lat", PRICES),
    ("lat", [12.5, 80.1, 30.0]),  # latency in milliseconds
    ("latitude", [0.0, 0.25, 1.0]),  # rescaled
    ("latitude", [-1.2247449, 0.0, 1.2247449]),  # standardised
    ("latitude", ["40.7128", "34.0522"]),
    ("latitude", [True, False]),
    ("latitude", []),
    ("latitude", [None, NAN]),
]

LONGITUDES = [
    ("lon", CITIES_LON),
    ("lng", CITIES_LON),
    ("long", CITIES_LON),
    ("longitude", CITIES_LON),
    ("dropoff_longitude", CITIES_LON),
    ("startLng", CITIES_LON),
    ("Longitud", CITIES_LON),
    ("L\u00e4ngengrad", CITIES_LON),
    ("lon", ASIA_LON),
    ("lon", LONDON_LON),
    ("longitude", LONDON_LON),
    ("longitude", [0, 90, 180, 270, 359]),
    ("lon", [0.125, 181.625, 359.875]),
    ("longitude", [-180, 180]),
    ("long", [-79.0, -80.5]),
]

NOT_LONGITUDES = [
    (None, CITIES_LON),
    ("balance", CITIES_LON),
    ("latitude", CITIES_LON),
    ("long_lat", CITIES_LON),
    ("salon", CITIES_LON),
    ("lng_price", ASIA_LON),
    ("lng", PRICES),
    ("long", [-0.0123, 0.0045, 0.0101]),  # returns of a long position
    ("long", LONDON_LON),
    ("long", [0, 1, 1]),
    ("longitude", [-180.5, 0.1]),
    ("longitude", [-10.0, 200.0]),
    ("longitude", [0.0, 360.5]),
    ("lon", [10, 20, 30]),
    ("longitude", ["-74.0060"]),
]


def named(name, cells):
    yield pd.Series(cells, name=name, dtype=object)
    if not isinstance(name, tuple):
        yield pd.DataFrame({name: pd.Series(cells, dtype=object)})


@pytest.mark.parametrize("name, cells", LATITUDES, ids=repr)
def test_latitudes(name, cells):
    assert FC.is_latitude(cells, name) is True
    assert FC.is_latitude(np.array(cells, dtype=float), name=name) is True
    for column in named(name, cells):
        assert FC.is_latitude(column) is True
        assert FC.is_latitude(column, "price") is False
        assert FC.is_longitude(column) is False


@pytest.mark.parametrize("name, cells", NOT_LATITUDES, ids=repr)
def test_not_latitudes(name, cells):
    assert FC.is_latitude(cells, name) is False
    for column in named(name, cells):
        assert FC.is_latitude(column) is False


@pytest.mark.parametrize("name, cells", LONGITUDES, ids=ascii)
def test_longitudes(name, cells):
    assert FC.is_longitude(cells, name) is True
    assert FC.is_longitude(np.array(cells, dtype=float), name=name) is True
    for column in named(name, cells):
        assert FC.is_longitude(column) is True
        assert FC.is_longitude(column, "price") is False
        assert FC.is_latitude(column) is False


@pytest.mark.parametrize("name, cells", NOT_LONGITUDES, ids=repr)
def test_not_longitudes(name, cells):
    assert FC.is_longitude(cells, name) is False
    for column in named(name, cells):
        assert FC.is_longitude(column) is False


def test_digits_of_fraction_are_those_of_the_type():
    """0.1 in 32 bits is not a coordinate with nine digits."""
    coarse = np.array([12.1, 45.3, 33.7], dtype="float32")
    fine = np.array([12.1234, 45.3456, 33.7891], dtype="float32")
    assert FC.is_latitude(coarse, "lat") is False
    assert FC.is_latitude(fine, "lat") is True


def test_most_names_in_a_table_are_no_coordinates():
    chance = np.random.RandomState(9)
    names = "score rate x y z return angle residual pc1 tilt plate_id relation flat belong".split()
    for name in names:
        values = chance.normal(0, 20, size=100).clip(-89, 89).round(6)
        assert FC.is_latitude(values, name) is False
        assert FC.is_longitude(values, name) is False
