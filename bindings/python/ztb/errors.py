"""What a failed operation raises."""


class Error(Exception):
    """A failed operation; ``str()`` is the library's text.

    ``operation`` is the name of the operation that failed, such as ``"ztbFindSymbol"``.
    """

    def __init__(self, text: str, operation: str = "") -> None:
        super().__init__(text or f"{operation} failed without a reason")
        self.operation = operation

    def __str__(self) -> str:
        return str(self.args[0])


class NotFoundError(Error, KeyError):
    """There is no such symbol, label or record."""
