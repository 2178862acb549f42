"""Texts of the C interface as texts of Python."""

from __future__ import annotations

from typing import Any

from arborist._native import ffi


def text_of(pointer: Any, length: int | None = None) -> str:
    """The text at a pointer, of `length` bytes or up to its NUL."""
    raw: bytes = ffi.string(pointer) if length is None else bytes(ffi.buffer(pointer, length))
    return raw.decode("utf-8", "replace")


def sized_text(function: Any, *arguments: Any) -> str:
    """What a function gives that stores the length of its text through its last argument."""
    length = ffi.new("size_t*")
    return text_of(function(*arguments, length), length[0])
