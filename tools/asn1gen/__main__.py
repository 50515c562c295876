"""Command line of the compiler's front end and middle.

    python3 -m asn1gen --check                     parse and resolve every module
    python3 -m asn1gen --list [Module]             types in generated order
    python3 -m asn1gen --dump Module.Type ...      resolved model of types
    python3 -m asn1gen --dump Module               every type of a module
    python3 -m asn1gen --values Module             object identifier constants
    python3 -m asn1gen --objects [Module]          information objects and object sets
    python3 -m asn1gen --catalogue-test            compare with the catalogue
    python3 -m asn1gen --generate --out DIR         C++ header and source per module
    python3 -m asn1gen --generate-tests --out DIR   sample values for the generated tests
Run from tools/ (or with tools/ on PYTHONPATH); --modules names the folder of
module texts (default: the repository's modules/).
"""

import argparse
import os
import sys
import time

from . import model as M
from .catalogue import compare, read_catalogue
from .compiler import compile_directory
from .dump import dump_object, dump_object_set, dump_type, dump_values
from .backend.generate import generate
from .backend.samples import generate_samples
from .errors import AsnError, AsnErrors

HERE = os.path.dirname(os.path.abspath(__file__))
DEFAULT_MODULES = os.path.normpath(os.path.join(HERE, "..", "..", "modules"))
DEFAULT_CATALOGUE = os.path.join(HERE, "tests", "data", "catalogue.txt")


def arguments(argv):
    p = argparse.ArgumentParser(prog="asn1gen", description=__doc__.split("\n")[0])
    p.add_argument("--modules", default=DEFAULT_MODULES, help="folder of .asn module texts")
    p.add_argument("--check", action="store_true", help="parse and resolve, print a summary")
    p.add_argument("--list", nargs="?", const="", metavar="MODULE",
                   help="list the types of every module (or of one) in generated order")
    p.add_argument("--dump", nargs="+", metavar="NAME",
                   help="dump Module.Type, Type or a whole Module")
    p.add_argument("--values", metavar="MODULE", help="object identifier constants")
    p.add_argument("--objects", nargs="?", const="", metavar="MODULE",
                   help="information objects and object sets")
    p.add_argument("--catalogue-test", nargs="?", const=DEFAULT_CATALOGUE, metavar="FILE",
                   help="compare the model with the catalogue (default: the test data)")
    p.add_argument("--generate", action="store_true",
                   help="write <Module>.h and <Module>.cpp of every module into --out")
    p.add_argument("--generate-tests", action="store_true",
                   help="write the sample-value functions of the generated tests into --out")
    p.add_argument("--out", metavar="DIR", help="folder for --generate and --generate-tests")
    p.add_argument("--stamp", metavar="FILE",
                   help="touched after generating, for build systems that track one output")
    args = p.parse_args(argv)
    if (args.generate or args.generate_tests) and not args.out:
        p.error("--generate and --generate-tests need --out")
    return args


def find_module(modules, name):
    for m in modules:
        if m.name == name:
            return m
    raise AsnError("no module named %s" % name)


def find_types(modules, name):
    """Module.Type, Type (searched in every module) or Module (all its types)."""
    module_name, _, type_name = name.rpartition(".")
    candidates = [m for m in modules if m.name == module_name] if module_name else modules
    if not module_name and any(m.name == name for m in modules):
        return find_module(modules, name).types
    found = [a for m in candidates for a in m.types
             if a.generated_name == type_name.replace("-", "_") or a.name == type_name]
    if not found:
        raise AsnError("no type %s" % name)
    return found


def summary(modules, seconds):
    types = sum(len(m.types) for m in modules)
    values = sum(1 for m in modules for a in m.assignments if isinstance(a, M.ValueAssignment))
    objects = sum(1 for m in modules for a in m.assignments if isinstance(a, M.ObjectAssignment))
    sets = sum(1 for m in modules for a in m.assignments
               if isinstance(a, M.ObjectSetAssignment))
    return ("%d modules parsed and resolved: %d types, %d values, %d information objects, "
            "%d object sets (%.2f s)" % (len(modules), types, values, objects, sets, seconds))


def list_types(modules, only):
    lines = []
    for m in modules:
        if only and m.name != only:
            continue
        lines.append("%s (%d types)" % (m.name, len(m.types)))
        lines += ["  " + a.generated_name for a in m.types]
    return "\n".join(lines)


def list_objects(modules, only):
    lines = []
    for m in modules:
        if only and m.name != only:
            continue
        for a in m.assignments:
            if isinstance(a, M.ObjectSetAssignment) and not a.params:
                lines.append(dump_object_set(a))
                lines += [dump_object(o) for o in a.spec.objects or [] if o.inline]
            elif isinstance(a, M.ObjectAssignment):
                lines.append(dump_object(a.object))
    return "\n".join(lines)


def run(args, out):
    start = time.time()
    modules = compile_directory(args.modules)
    status = 0
    if args.check:
        out.write(summary(modules, time.time() - start) + "\n")
    if args.list is not None:
        out.write(list_types(modules, args.list) + "\n")
    for name in args.dump or []:
        for a in find_types(modules, name):
            out.write(dump_type(a) + "\n\n")
    if args.values:
        out.write(dump_values(find_module(modules, args.values)) + "\n")
    if args.objects is not None:
        out.write(list_objects(modules, args.objects) + "\n")
    if args.generate:
        generate(modules, args.out)
    if args.generate_tests:
        generate_samples(modules, args.out)
    if args.stamp:
        with open(args.stamp, "w"):
            pass
    if args.catalogue_test:
        report = compare(read_catalogue(args.catalogue_test), modules)
        out.write(report.text() + "\n")
        status = 0 if report.names_ok and report.order_ok else 1
    return status


def main(argv=None):
    args = arguments(sys.argv[1:] if argv is None else argv)
    try:
        return run(args, sys.stdout)
    except AsnErrors as e:
        for err in e.errors:
            sys.stderr.write("%s\n" % err)
        sys.stderr.write("%d error(s)\n" % len(e.errors))
    except AsnError as e:
        sys.stderr.write("%s\n" % e)
    except (OSError, ValueError) as e:
        sys.stderr.write("asn1gen: %s\n" % e)
    return 1


if __name__ == "__main__":
    sys.exit(main())
