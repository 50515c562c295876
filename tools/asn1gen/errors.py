"""Errors of the compiler, each tied to a place in a module text."""


class Location:
    """A position in a module text; lines and columns count from 1."""

    __slots__ = ("file", "line", "column")

    def __init__(self, file, line, column):
        self.file = file
        self.line = line
        self.column = column

    def __str__(self):
        return "%s:%d:%d" % (self.file, self.line, self.column)

    def __repr__(self):
        return "Location(%r, %d, %d)" % (self.file, self.line, self.column)


class AsnError(Exception):
    """A fault in a module text. str() gives "file:line:column: message", the form
    editors and build logs recognise, so a reviewer can jump to the spot."""

    def __init__(self, message, location=None):
        super().__init__(message)
        self.message = message
        self.location = location

    def __str__(self):
        if self.location is None:
            return self.message
        return "%s: %s" % (self.location, self.message)


class AsnErrors(Exception):
    """Several faults found in one pass; reported together so that one run of the
    compiler shows every broken reference rather than the first only."""

    def __init__(self, errors):
        super().__init__("\n".join(str(e) for e in errors))
        self.errors = list(errors)
