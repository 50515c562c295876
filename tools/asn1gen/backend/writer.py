"""Line-oriented C++ writer shared by the emitters, and the statements every
generated function repeats (the error convention, constraint checks)."""

import re
from contextlib import contextmanager

from . import shapes as S


class Code:
    """Collects indented lines; `block` opens a brace scope."""

    def __init__(self, module_label):
        self.lines = []
        self.depth = 0
        self.module = module_label      # ASN.1 module name recorded with errors

    def __call__(self, text=""):
        self.lines.append("  " * self.depth + text if text else "")

    @contextmanager
    def block(self, head):
        self(head + " {" if head else "{")
        self.depth += 1
        yield
        self.depth -= 1
        self("}")

    @contextmanager
    def function(self, signature):
        """A function definition; parameters its body never names are left unnamed, so
        that no function needs to mention an argument it does not use."""
        start = len(self.lines)
        self.depth += 1
        yield
        self.depth -= 1
        body = "\n".join(self.lines[start:])
        for name in re.findall(r"(\w+)(?=[,)])", signature):
            if not re.search(r"\b%s\b" % name, body):
                signature = re.sub(r"\b%s(?=[,)])" % name, "/* %s */" % name, signature)
        self.lines.insert(start, "  " * self.depth + signature + " {")
        self("}")

    @contextmanager
    def indented(self):
        self.depth += 1
        yield
        self.depth -= 1

    def text(self):
        return "\n".join(self.lines) + "\n"

    # -------------------------------------------------------- error convention

    def fail(self, status):
        """The statement that records `status` with this module and line and returns it."""
        return 'return rtErrSetData(&pctxt->errInfo, %s, "%s", __LINE__);' % (status, self.module)

    def check(self, var, negative_only=False):
        self("if (%s %s 0) %s" % (var, "<" if negative_only else "!=", self.fail(var)))

    def violation(self, cond, label, value_expr, status="ASN_E_CONSVIO"):
        """Records the field name (when given) and the value as the error's parameters."""
        with self.block("if (%s)" % cond):
            if label is not None:
                self('rtErrAddStrParm(&pctxt->errInfo, "%s");' % label)
            self("rtErrAddIntParm(&pctxt->errInfo, (int)%s);" % value_expr)
            self(self.fail(status))


def comment_block(text):
    """A C comment holding ASN.1 text (which may itself contain anything but "*/")."""
    body = text.replace("*/", "* /").rstrip().splitlines()
    if len(body) == 1:
        return ["/* %s */" % body[0]]
    return ["/*"] + [" * " + line if line.strip() else " *" for line in body] + [" */"]


# ------------------------------------------------------------ constraint checks

def emit_value_checks(w, t, prim, p, label):
    """Size and value-range checks of a primitive value at pointer expression `p`."""
    if prim is None:
        return
    value = S.deref(p)
    if prim.kind == "chars":
        r = S.size_range(t)
        if S.needs_check(r, 0):
            length = "strlen(%s)" % value
            w.violation("%s != 0 && (%s)" % (value, S.range_condition(length, r, True)),
                        label, length)
    elif prim.kind in ("octets", "bits", "bmp", "univ"):
        count = {"octets": "numocts", "bits": "numbits"}.get(prim.kind, "nchars")
        r = S.size_range(t)
        if S.needs_check(r, 0):
            expr = S.field(p, count)
            w.violation(S.range_condition(expr, r, True), label, expr)
    elif prim.kind in ("int", "uint"):
        r = S.int_range(t)
        if r is None:
            return
        unsigned = prim.kind == "uint"
        lo, hi = r
        if unsigned and lo is not None and lo <= 0:
            lo = None
        if (lo, hi) == (None, None) or (not unsigned and lo is not None and hi is not None and
                                        lo <= -2 ** 31 and hi >= 2 ** 31 - 1):
            return
        if unsigned and hi is not None and hi >= 2 ** 32 - 1:
            hi = None
            if lo is None:
                return
        w.violation(S.range_condition(value, (lo, hi), unsigned), label, value)
