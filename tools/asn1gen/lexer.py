"""Tokeniser for ASN.1 module texts.

Every token keeps the line and column where it starts so that parse and resolution
errors can point at the exact spot in the module text.
"""

from .errors import AsnError, Location

# Token kinds.
TYPEREF = "typeref"        # starts with an upper-case letter (type, class, module names)
VALUEREF = "valueref"      # starts with a lower-case letter (values, objects, components)
FIELDREF = "fieldref"      # &name: a field of an information object class
KEYWORD = "keyword"
NUMBER = "number"
REALNUM = "realnumber"
BSTRING = "bstring"        # '0101'B
HSTRING = "hstring"        # '0AF3'H
CSTRING = "cstring"        # "text"
SYMBOL = "symbol"
EOF = "eof"

RESERVED = frozenset("""
ABSENT ABSTRACT-SYNTAX ALL ANY APPLICATION AUTOMATIC BEGIN BIT BMPString BOOLEAN BY
CHARACTER CHOICE CLASS COMPONENT COMPONENTS CONSTRAINED CONTAINING DEFAULT DEFINED
DEFINITIONS EMBEDDED ENCODED END ENUMERATED EXCEPT EXPLICIT EXPORTS EXTENSIBILITY
EXTERNAL FALSE FROM GeneralizedTime GeneralString GraphicString IA5String
IDENTIFIER IMPLICIT IMPLIED IMPORTS INCLUDES INSTANCE INTEGER INTERSECTION
ISO646String MAX MIN MINUS-INFINITY NULL NumericString OBJECT ObjectDescriptor OCTET
OF OPTIONAL PATTERN PDV PLUS-INFINITY PRESENT PrintableString PRIVATE REAL
RELATIVE-OID SEQUENCE SET SIZE STRING SYNTAX T61String TAGS TeletexString TRUE
TYPE-IDENTIFIER UNION UNIQUE UNIVERSAL UniversalString UTCTime UTF8String
VideotexString VisibleString WITH
""".split())

# Longest first, so that "::=" wins over ":" and "..." over "..".
SYMBOLS = ("::=", "...", "..", "[[", "]]", "{", "}", "(", ")", "[", "]", ",", ".",
           ";", "|", "^", "@", "!", ":", "<", ">", "-", "=")


class Token:
    __slots__ = ("kind", "text", "loc")

    def __init__(self, kind, text, loc):
        self.kind = kind
        self.text = text
        self.loc = loc

    def is_(self, kind, text=None):
        return self.kind == kind and (text is None or self.text == text)

    def __repr__(self):
        return "Token(%s, %r, %s)" % (self.kind, self.text, self.loc)


class Lexer:
    """Turns a module text into a list of tokens; comments are dropped."""

    def __init__(self, text, filename):
        self.text = text
        self.filename = filename
        self.pos = 0
        self.line = 1
        self.col = 1

    def tokens(self):
        out = []
        while True:
            self._skip_space_and_comments()
            if self.pos >= len(self.text):
                out.append(Token(EOF, "", self._loc()))
                return out
            out.append(self._next_token())

    # -- low level ---------------------------------------------------------

    def _loc(self):
        return Location(self.filename, self.line, self.col)

    def _peek(self, offset=0):
        i = self.pos + offset
        return self.text[i] if i < len(self.text) else ""

    def _advance(self, count=1):
        for _ in range(count):
            if self.text[self.pos] == "\n":
                self.line += 1
                self.col = 1
            else:
                self.col += 1
            self.pos += 1

    def _error(self, message, loc=None):
        raise AsnError(message, loc or self._loc())

    def _skip_space_and_comments(self):
        while self.pos < len(self.text):
            c = self._peek()
            if c.isspace():
                self._advance()
            elif c == "-" and self._peek(1) == "-":
                self._skip_line_comment()
            elif c == "/" and self._peek(1) == "*":
                self._skip_block_comment()
            else:
                return

    def _skip_line_comment(self):
        # A "--" comment ends at the next "--" or at the end of the line.
        self._advance(2)
        while self.pos < len(self.text) and self._peek() != "\n":
            if self._peek() == "-" and self._peek(1) == "-":
                self._advance(2)
                return
            self._advance()

    def _skip_block_comment(self):
        start = self._loc()
        depth = 0
        while self.pos < len(self.text):
            if self._peek() == "/" and self._peek(1) == "*":
                depth += 1
                self._advance(2)
            elif self._peek() == "*" and self._peek(1) == "/":
                depth -= 1
                self._advance(2)
                if depth == 0:
                    return
            else:
                self._advance()
        self._error("unterminated /* comment", start)

    # -- tokens ------------------------------------------------------------

    def _next_token(self):
        c = self._peek()
        if c.isalpha():
            return self._word()
        if c == "&":
            return self._field_reference()
        if c.isdigit():
            return self._number()
        if c == "'":
            return self._bit_or_hex_string()
        if c == '"':
            return self._character_string()
        for sym in SYMBOLS:
            if self.text.startswith(sym, self.pos):
                loc = self._loc()
                self._advance(len(sym))
                return Token(SYMBOL, sym, loc)
        self._error("unexpected character %r" % c)

    def _scan_name(self):
        # Names are letters, digits and single hyphens, never ending in a hyphen;
        # a "--" inside a name starts a comment instead.
        start = self.pos
        while True:
            c = self._peek()
            if c.isalnum():
                self._advance()
            elif c == "-" and self._peek(1).isalnum():
                self._advance()
            else:
                break
        return self.text[start:self.pos]

    def _word(self):
        loc = self._loc()
        name = self._scan_name()
        if name in RESERVED:
            return Token(KEYWORD, name, loc)
        return Token(TYPEREF if name[0].isupper() else VALUEREF, name, loc)

    def _field_reference(self):
        loc = self._loc()
        self._advance()
        if not self._peek().isalpha():
            self._error("'&' must be followed by a field name", loc)
        return Token(FIELDREF, "&" + self._scan_name(), loc)

    def _number(self):
        loc = self._loc()
        start = self.pos
        while self._peek().isdigit():
            self._advance()
        # "1..5" is a range, not a real number; only "1.5" continues the number.
        if self._peek() == "." and self._peek(1).isdigit():
            self._advance()
            while self._peek().isdigit():
                self._advance()
            return Token(REALNUM, self.text[start:self.pos], loc)
        return Token(NUMBER, self.text[start:self.pos], loc)

    def _bit_or_hex_string(self):
        loc = self._loc()
        self._advance()
        start = self.pos
        while self.pos < len(self.text) and self._peek() != "'":
            self._advance()
        if self.pos >= len(self.text):
            self._error("unterminated bit or hex string", loc)
        body = "".join(self.text[start:self.pos].split())
        self._advance()
        suffix = self._peek()
        if suffix in ("B", "b") and set(body) <= set("01"):
            self._advance()
            return Token(BSTRING, body, loc)
        if suffix in ("H", "h") and all(ch in "0123456789ABCDEFabcdef" for ch in body):
            self._advance()
            return Token(HSTRING, body.upper(), loc)
        self._error("malformed bit or hex string", loc)

    def _character_string(self):
        loc = self._loc()
        self._advance()
        chars = []
        while True:
            if self.pos >= len(self.text):
                self._error("unterminated character string", loc)
            c = self._peek()
            self._advance()
            if c == '"':
                if self._peek() == '"':      # "" stands for one quote
                    chars.append('"')
                    self._advance()
                    continue
                return Token(CSTRING, "".join(chars), loc)
            chars.append(c)


def tokenize(text, filename="<text>"):
    return Lexer(text, filename).tokens()
