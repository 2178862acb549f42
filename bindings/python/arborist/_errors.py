"""Why a call has no answer."""

from __future__ import annotations


class ArboristError(Exception):
    """A call that failed. `code` is one of the error codes of the command, or "bad_request" or "busy"; `json` what the
    command prints for the failure, empty if it prints nothing; `retry` whether the reason lies in the machine and may be
    gone at another try."""

    def __init__(self, code: str, message: str, json: str = "", retry: bool = False) -> None:
        super().__init__(message)
        self.code = code
        self.message = message
        self.json = json
        self.retry = retry

    def __str__(self) -> str:
        return f"{self.code}: {self.message}"

    def __reduce__(self) -> tuple[type[ArboristError], tuple[str, str, str, bool]]:
        return type(self), (self.code, self.message, self.json, self.retry)


class WrongUseError(ArboristError):
    """An argument is wrong, or the call came out of a code runner."""


class RuleSetError(ArboristError):
    """A rule set could not be used."""


class InputError(ArboristError):
    """Other input could not be used: a bundle, repair records."""


class InternalError(ArboristError):
    """An internal error or a limit."""


BY_STATUS: dict[int, type[ArboristError]] = {2: WrongUseError, 3: RuleSetError, 4: InputError, 5: InternalError}
