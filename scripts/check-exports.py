#!/usr/bin/env python3
"""Fails when a shared library exports a symbol that no public header declares with QN_API.

usage: check-exports.py LIBRARY HEADER_DIR...

C functions and data must be QN_API names themselves. A C++ symbol passes when a component of
its qualified name is one (a member of an exported class, its vtable or typeinfo). Weak
instantiations of the standard library's templates are listed but tolerated: the compiler gives
them default visibility whatever the library asks for.
"""
import pathlib
import re
import subprocess
import sys

LINKER_SYMBOLS = {"_init", "_fini", "_edata", "_end", "__bss_start"}
SPECIAL_PREFIXES = ("construction vtable for ", "vtable for ", "typeinfo name for ",
                    "typeinfo for ", "VTT for ", "non-virtual thunk to ", "virtual thunk to ",
                    "covariant return thunk to ", "guard variable for ")
STD_NAMESPACES = ("std", "__gnu_cxx")


def strip_comments_and_directives(text):
    text = re.sub(r"/\*.*?\*/", " ", text, flags=re.S)
    text = re.sub(r"//[^\n]*", " ", text)
    text = re.sub(r"\\\n", " ", text)
    return "\n".join(line for line in text.splitlines() if not line.lstrip().startswith("#"))


def declared_name(decl):
    """The name a declaration following QN_API introduces (function, data or operator)."""
    call = re.search(r"(\boperator\b\s*[^\s(]+|[\w:~]+)\s*\(", decl)
    if call:
        return call.group(1).split("::")[-1].replace(" ", "")
    idents = re.findall(r"\w+", re.split(r"[\[=]", decl)[0])
    return idents[-1] if idents else None


def api_names(header_dirs):
    names = set()
    for folder in header_dirs:
        for header in sorted(pathlib.Path(folder).rglob("*.h")):
            text = strip_comments_and_directives(header.read_text(errors="replace"))
            names.update(re.findall(r"\b(?:class|struct|union)\s+QN_API\s+(\w+)", text))
            for m in re.finditer(r"(?<!class )(?<!struct )(?<!union )\bQN_API\b([^;{]*)", text):
                name = declared_name(m.group(1))
                if name:
                    names.add(name)
    return names


def exported_symbols(library):
    """(mangled, demangled, nm type) of every dynamic symbol the library defines."""
    def nm(*extra):
        # Unsorted, so that the plain and the demangled listing pair up line by line.
        out = subprocess.run(["nm", "-D", "-p", "--defined-only", "--format=posix", *extra,
                              library], check=True, capture_output=True, text=True).stdout
        return [re.match(r"(.*) (\w) [0-9a-f]*( [0-9a-f]+)?$", line).groups()[:2]
                for line in out.splitlines() if line.strip()]
    mangled = nm()
    demangled = nm("-C")
    return [(m[0], d[0], m[1]) for m, d in zip(mangled, demangled)]


def name_components(demangled):
    for prefix in SPECIAL_PREFIXES:
        if demangled.startswith(prefix):
            demangled = demangled[len(prefix):]
    depth, plain = 0, []
    for ch in demangled:  # drop template arguments, keep the qualified name
        if ch == "<":
            depth += 1
        elif ch == ">":
            depth -= 1
        elif depth == 0:
            plain.append(ch)
    head = "".join(plain).split("(")[0].strip()
    parts = [part.strip() for part in head.split("::")]
    # A function template's demangled name starts with its return type.
    parts[0] = parts[0].split()[-1] if parts[0].split() else ""
    return parts


def classify(symbol, names):
    mangled, demangled, kind = symbol
    if mangled in LINKER_SYMBOLS:
        return "ok"
    if not mangled.startswith("_Z"):
        return "ok" if mangled in names else "bad"
    parts = name_components(demangled)
    if any(part in names for part in parts):
        return "ok"
    if parts and parts[0] in STD_NAMESPACES and kind in ("W", "V", "u"):
        return "std"
    return "bad"


def main(argv):
    if len(argv) < 3:
        print(__doc__.strip().splitlines()[2], file=sys.stderr)
        return 2
    names = api_names(argv[2:])
    try:
        symbols = exported_symbols(argv[1])
    except subprocess.CalledProcessError as e:
        print(f"error: cannot list the symbols of {argv[1]}: {e.stderr.strip()}")
        return 1
    verdicts = [(classify(s, names), s) for s in symbols]
    for verdict, (_, demangled, _) in verdicts:
        if verdict == "std":
            print(f"note: standard template instance exported: {demangled}")
    bad = [s for verdict, s in verdicts if verdict == "bad"]
    for _, demangled, kind in bad:
        print(f"error: exported but not declared QN_API: {demangled} ({kind})")
    print(f"{len(symbols)} exported symbols, {len(bad)} not declared QN_API")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
