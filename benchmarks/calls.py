"""Cost of a call: tests of single values, columns of 10 and 100 elements."""

from __future__ import annotations

import re
import timeit
from typing import Any, Callable, Iterator, NamedTuple, Optional, Sequence

from benchmarks import records, table
from benchmarks.columns import MARKERS, ColumnSpec, build
from benchmarks.peers import PEERS
from benchmarks.timing import route
from quorin_libs.utils import exportable_utils as eu

SHORTEST_SAMPLE = 0.005


# The same bodies as Python functions.
def plain_isint(value: Any) -> bool:
    """`isint` in Python."""
    try:
        int(value)
    except ValueError:
        return False
    return True


def plain_isfloat(value: Any) -> bool:
    """`isfloat` in Python."""
    try:
        float(value)
    except ValueError:
        return False
    return True


def plain_default(variable: Any, def_value: Any = None) -> Any:
    """`setValueOrDefault` in Python."""
    return variable if variable is not None else def_value


def plain_compress(s: str, compress_type: str = "string") -> Any:
    """`compress_string` in Python, for the default of `compress_type`."""
    return "".join(s.split()) if compress_type == "string" else None


class Question(NamedTuple):
    """A statement, the statements to compare with, and the names that they use."""

    name: str
    statement: str
    beside: tuple[tuple[str, str], ...]
    names: dict[str, Any]
    both_routes: bool = False


class Answer(NamedTuple):
    """Seconds per call of the statement and of each of the others."""

    name: str
    seconds: float
    beside: dict[str, float]

    @property
    def peer(self) -> Optional[str]:
        """The name of the peer, if the question has one."""
        return next((name for name in self.beside if name not in NO_PEERS), None)

    def as_row(self) -> tuple[str, ...]:
        """Return the answer as CSV holds it: nanoseconds per call, under `HEADER`."""
        others = (*NO_PEERS, self.peer)
        times = [self.beside[name] * 1e9 if name in self.beside else None for name in others]
        interpreter, plain, builtin, peer = map(records.number, times)
        own = records.number(self.seconds * 1e9)
        return (self.name, own, interpreter, plain, builtin, self.peer or "", peer)


NO_PEERS = ("interpreter", "plain def", "len")
HEADER = ("call", "native", "interpreter", "plain_def", "len", "peer", "peer_time")


def _scalars() -> Iterator[Question]:
    functions: tuple[tuple[str, Callable[..., Any], tuple[str, ...]], ...] = (
        ("isint", plain_isint, ("'12'", "'?'", "12", "2.5")),
        ("isfloat", plain_isfloat, ("'1.5'", "'?'", "12", "2.5")),
        ("setValueOrDefault", plain_default, ("None, 5", "0, 5", "None, def_value=5")),
        ("compress_string", plain_compress, ("'a b'", "'ab'")),
    )
    for name, plain, arguments in functions:
        names = {"routine": getattr(eu, name), "plain": plain, "text": "12"}
        for argument in arguments:
            beside = (("plain def", "plain({})".format(argument)), ("len", "len(text)"))
            statement = "routine({})".format(argument)
            yield Question("{}({})".format(name, argument), statement, beside, names)


def _small_columns() -> Iterator[Question]:
    routines = (
        ("numpy_whatis", "kind", "routine(column, markers)"),
        (
            "numpy_whatis statistics",
            "statistics",
            "routine(column, markers, return_stats_flag=True)",
        ),
        ("numpy_isin", "membership", "routine(column, markers)"),
        ("numpy_compute_missing_indicator", "indicator", "routine(column, markers)"),
        ("get_unique_values", "unique", "routine(column, markers)"),
    )
    for rows in (10, 100):
        for name, job, statement in routines:
            for kind in ("words", "integer_text", "float64"):
                column = build(ColumnSpec(kind), rows)
                peers = PEERS[job, kind]
                names = {
                    "routine": getattr(eu, name.split()[0]),
                    "column": column,
                    "markers": MARKERS,
                    "peer": peers[0].call,
                    "subject": peers[0].subject(column),
                }
                beside = ((peers[0].name, "peer(subject)"),)
                title = "{}/{}/{}".format(name, kind, rows)
                yield Question(title, statement, beside, names, both_routes=True)


def _measure(question: Question, repeat: int) -> Answer:
    contestants = [("", question.statement, False)]
    if question.both_routes:
        contestants.append(("interpreter", question.statement, True))
    contestants += [(name, statement, False) for name, statement in question.beside]
    timers = [timeit.Timer(statement, globals=question.names) for _, statement, _ in contestants]
    calls = []
    for timer, (_, _, forced) in zip(timers, contestants):
        with route(forced=forced):
            timer.timeit(10)
            calls.append(max(1, int(SHORTEST_SAMPLE / (timer.timeit(10) / 10))))
    least = [float("inf")] * len(timers)
    for _ in range(repeat):
        for index, (timer, (_, _, forced)) in enumerate(zip(timers, contestants)):
            with route(forced=forced):
                least[index] = min(least[index], timer.timeit(calls[index]) / calls[index])
    names = [name for name, _, _ in contestants]
    return Answer(question.name, least[0], dict(zip(names[1:], least[1:])))


def run(repeat: int, filters: Sequence[str]) -> list[Answer]:
    """Time the questions that match the filters."""
    progress = table.Progress()
    answers = []
    for question in (*_scalars(), *_small_columns()):
        if all(re.search(pattern, question.name) for pattern in filters):
            progress.show(question.name)
            answers.append(_measure(question, repeat))
    progress.show("")
    return answers


def _ratio(answer: Answer, name: Optional[str]) -> str:
    if name is None or name not in answer.beside:
        return ""
    return table.ratio(answer.beside[name] / answer.seconds)


def as_text(answers: Sequence[Answer]) -> str:
    """Return a table of nanoseconds per call and ratios of the others."""
    rows = (
        (
            answer.name,
            "{:,.0f}".format(answer.seconds * 1e9),
            *(_ratio(answer, name) for name in ("len", "plain def", "interpreter", answer.peer)),
            answer.peer or "",
        )
        for answer in answers
    )
    header = ("call", "ns", "len", "plain def", "interpreter", "peer", "peer's name")
    return table.align(header, rows, left=("call", "peer's name"))
