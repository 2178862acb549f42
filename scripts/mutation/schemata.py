"""Writes a source file that has all of its mutants in it, each behind a switch of its own."""


def with_switches(source, mutants):
    """`mutants` are pairs of a number and a Mutant. Their places lie in each other or apart."""
    places = {}
    for number, mutant in mutants:
        places.setdefault((mutant.start, mutant.end), []).append((number, mutant))
    ordered = sorted(places, key=lambda place: (place[0], -place[1]))
    text, end = _render(source, ordered, 0, 0, len(source), places)
    assert end == len(ordered), "mutants overlap"
    return b'#include "mutant.h"\n' + text


# The text from `start` to `stop` with the places from `index` on that lie in it, and the index of the first place behind.
def _render(source, ordered, index, start, stop, places):
    parts = []
    at = start
    while index < len(ordered) and ordered[index][0] < stop:
        place = ordered[index]
        if place[1] > stop:
            raise ValueError(f"a mutant at {place} is half inside of another")
        inside, index = _render(source, ordered, index + 1, place[0], place[1], places)
        parts += [source[at:place[0]], _switched(inside, places[place])]
        at = place[1]
    parts.append(source[at:stop])
    return b"".join(parts), index


def _switched(inside, mutants):
    leaves_out = [number for number, mutant in mutants if mutant.kind == "return" and mutant.replacement == ""]
    if leaves_out:
        return b"{ if (!::mutant::Is(%d)) %s }" % (leaves_out[0], inside)
    # A place that one mutant takes for a condition is one for all: the parts of ?: have one type.
    is_condition = any(mutant.is_condition for _, mutant in mutants)
    whole = b"bool(%s)" if is_condition else b"(%s)"
    text = whole % inside if is_condition else inside
    for number, mutant in reversed(mutants):
        text = b"(::mutant::Is(%d) ? %s : %s)" % (number, whole % mutant.replacement.encode(), text)
    return text
