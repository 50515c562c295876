"""Helpers shared by the compiler's tests."""

import os
import textwrap

from asn1gen.compiler import compile_modules
from asn1gen.parser import parse_text

HERE = os.path.dirname(os.path.abspath(__file__))
REPO = os.path.normpath(os.path.join(HERE, "..", "..", ".."))
MODULES_DIR = os.path.join(REPO, "modules")
CATALOGUE = os.path.join(HERE, "data", "catalogue.txt")
# The published module texts sit beside the checkout, in shared/asn1-reference.
REFERENCE_DIR = os.path.normpath(os.path.join(REPO, "..", "shared", "asn1-reference"))


def module_text(name, body, tagging="EXPLICIT", imports=""):
    return "%s DEFINITIONS %s TAGS ::= BEGIN\n%s\n%s\nEND\n" % (
        name, tagging, imports, textwrap.dedent(body))


def compile_texts(*texts):
    """Parse and run every pass over module texts given as strings; returns
    {module name: Module}."""
    modules = []
    for i, text in enumerate(texts):
        modules.extend(parse_text(text, "m%d.asn" % i))
    return {m.name: m for m in compile_modules(modules)}


def compile_one(body, tagging="EXPLICIT"):
    return compile_texts(module_text("M", body, tagging))["M"]


def type_named(module, name):
    for a in module.types:
        if a.generated_name == name:
            return a
    raise KeyError("%s has no type %s (has %s)" % (module.name, name,
                                                   [a.generated_name for a in module.types]))


def names(module):
    return [a.generated_name for a in module.types]


def component(seq_type, name):
    for c in seq_type.components if hasattr(seq_type, "components") else seq_type.alternatives:
        if c.name == name:
            return c
    raise KeyError(name)


def tag_words(t):
    return [w.word() for w in t.wire_tags]
