"""What a failed operation raises."""


class Error(Exception):
    """A failed operation; ``str()`` is the library's text, made fit for a terminal.

    ``operation`` is the name of the operation that failed, such as ``"ztbFindSymbol"``, and
    ``text`` the library's text as it is, control characters and broken UTF-8 included.
    """

    def __init__(self, text: str, operation: str = "", exact: str | None = None) -> None:
        super().__init__(text or f"{operation} failed without a reason")
        self.operation = operation
        self.text = self.args[0] if exact is None else exact

    def __str__(self) -> str:
        return str(self.args[0])


class NotFoundError(Error, KeyError):
    """There is no such symbol, label or record."""
