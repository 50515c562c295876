"""The compiler's front end and middle as one call: parse every module text, then
resolve, lift and name, tag and choose representations."""

import glob
import os

from .errors import AsnError, AsnErrors
from .naming import name_modules
from .parser import parse_file
from .represent import assign_representations
from .resolve import resolve
from .tags import assign_tags


def module_files(directory):
    return sorted(glob.glob(os.path.join(directory, "*.asn")))


def parse_files(paths):
    modules, errors = [], []
    for path in paths:
        try:
            modules.extend(parse_file(path))
        except AsnError as e:
            errors.append(e)
    if errors:
        raise AsnErrors(errors)
    return modules


def compile_modules(modules):
    """Run the passes over parsed modules; returns them, fully modelled."""
    modules = resolve(modules)
    name_modules(modules)
    assign_tags(modules)
    assign_representations(modules)
    return modules


def compile_files(paths):
    return compile_modules(parse_files(paths))


def compile_directory(directory):
    paths = module_files(directory)
    if not paths:
        raise AsnError("no .asn module texts in %s" % directory)
    return compile_files(paths)
