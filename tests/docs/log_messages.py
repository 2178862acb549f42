"""Holds docs/log-messages.md against the messages that the sources log."""
import re

import pages

PAGE = pages.DOCS / "log-messages.md"

STRING = r'"(?:[^"\\]|\\.)*"'
LITERAL = re.compile(rf"{STRING}(?:\s*{STRING})*")
CALL = re.compile(rf'Output\(\s*(?:FT::)?LEVEL_(\w+),\s*"FUNc:%s: ((?:[^"\\]|\\.)*)"\s*,\s*"([^"]*)"')


def text_of(literal):
    """The text of adjacent C++ string literals."""
    joined = "".join(part[1:-1] for part in re.findall(STRING, literal))
    return joined.replace('\\"', '"').replace("\\\\", "\\")


def source_texts():
    # A quoted quote begins no text.
    return [path.read_text().replace("'\"'", "") for path in sorted((pages.ROOT / "arborist").rglob("*.cpp"))]


def messages_of(source):
    """Every message format of a source, without what all of them begin with."""
    texts = (text_of(literal) for literal in LITERAL.findall(source))
    return {text[len("FUNc:%s: "):] for text in texts if text.startswith("FUNc:%s: ")}


def calls_of(source):
    """(level, message, function) of each call that spells all three out."""
    return {(level, message.replace('\\"', '"'), function) for level, message, function in CALL.findall(source)}


def rows_of(page):
    """(level, message, function) of each line of the page; a line may name several functions."""
    rows = set()
    for cells in pages.table_rows(page):
        if len(cells) == 4 and cells[0] in ("DEBUG", "INFO", "WARN", "ERROR", "FATAL"):
            message = re.fullmatch(r"`(.*)`", cells[2])[1]
            rows.update((cells[0], message, function) for function in re.findall(r"`([^`]*)`", cells[1]))
    return rows


def fits(message, source_format):
    """Whether a message of the page is this format, some texts perhaps filled in by a word or function name."""
    if message == source_format:
        return True
    pattern = "".join(r"(?:%s|[\w:]+)" if part == "%s" else re.escape(part)
                      for part in re.split(r"(%s)", source_format))
    return re.fullmatch(pattern, message) is not None
