"""Model and module agree on the column classifier."""

from __future__ import annotations

from hypothesis import strategies as st

from helpers.column_strategies import TEXT_KINDS, array_layouts, columns, flags, marked, markers
from helpers.comparison import compare
from helpers.property_tests import property_test
from helpers.replacements import FixedAnswer
from helpers.tracing import Trace

options = st.fixed_dictionaries(
    {},
    optional={
        "stop_at_one_missing_value_flag": flags,
        "use_dtype_str1_flag": flags,
        "return_stats_flag": flags,
    },
)


@property_test(weight=4, case=marked(columns(array_layouts, TEXT_KINDS)), more=options)
def test_text_columns(case, more):
    X, values = case
    compare("numpy_whatis", (X, values), more)
    compare("numpy_whatis", (X, values, False, False, False))


@property_test(weight=4, case=marked(), more=options, traced=st.booleans())
def test_any_column(case, more, traced):
    X, values = case
    trace = Trace() if traced else None
    compare("numpy_whatis", (X,), trace=trace)
    compare("numpy_whatis", (X, values), more, trace=trace)
    known = {"return_stats_flag": True, "use_dtype_str1_flag": False}
    compare("numpy_whatis", (X, values or ["?"]), known)


@property_test(
    weight=1, case=marked(markers=markers), more=options, debug=flags, traced=st.booleans()
)
def test_messages(case, more, debug, traced):
    X, values = case
    trace = Trace() if traced else None
    compare("numpy_whatis", (X, values), dict(more, debug=debug), trace)
    compare("numpy_whatis", (X,), {"debug": True})


@property_test(weight=2, X=columns(array_layouts, TEXT_KINDS), answer=flags)
def test_date_answer_is_handed_on(X, answer):
    name = "FCplus.is_column_string_in_datetime_format"
    stand_ins = {name: staticmethod(FixedAnswer(answer))}
    compare("numpy_whatis", (X, ["?"]), {"return_stats_flag": True}, stand_ins=stand_ins)
    known = {"return_stats_flag": True, "use_dtype_str1_flag": False}
    compare("numpy_whatis", (X, ["?"]), known, stand_ins=stand_ins)
    compare("numpy_whatis", (X, ["?"]), known, Trace(["FC"]))
