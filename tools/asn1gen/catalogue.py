"""The catalogue of the generated layer (every module's types in generated order, the
object sets with their members, the table-constrained types) and its comparison
with what the compiler makes of the module texts."""

import bisect

from . import model as M
from .naming import generated_name


class Catalogue:
    def __init__(self):
        self.modules = {}               # module name -> [type names], in order
        self.object_sets = {}           # set name -> (class name or None, [members])
        self.table_constrained = []


def read_catalogue(path):
    cat = Catalogue()
    sections = []                       # (what, count in the header, entries)
    with open(path, encoding="utf-8") as f:
        for number, raw in enumerate(f, 1):
            line = raw.split("#", 1)[0].rstrip()
            if not line:
                continue
            if not line[0].isspace():
                sections.append(start_section(cat, line.split(), path, number))
            elif not sections:
                raise ValueError("%s:%d: entry outside a section" % (path, number))
            else:
                sections[-1][2].append(line.strip())
    # The counts in the headers guard the data file against a lost or doubled line.
    for what, expected, entries in sections:
        if len(entries) != expected:
            raise ValueError("%s: %s lists %d entries, its header says %d"
                             % (path, what, len(entries), expected))
    return cat


def start_section(cat, words, path, number):
    head = words[0]
    if head == "module" and len(words) == 3:
        entries = cat.modules.setdefault(words[1], [])
        return ("module " + words[1], int(words[2]), entries)
    if head == "objectset" and len(words) == 4:
        entries = []
        cat.object_sets[words[1]] = (None if words[2] == "-" else words[2], entries)
        return ("object set " + words[1], int(words[3]), entries)
    if head == "tableconstrained" and len(words) == 2:
        return ("tableconstrained", int(words[1]), cat.table_constrained)
    raise ValueError("%s:%d: unknown section line" % (path, number))


# ------------------------------------------------------------ comparison

def common_order(expected, actual):
    """Names of `actual` that are out of place against `expected`: those outside a
    longest common subsequence of the two orders (the fewest moves that fix it)."""
    shared = set(expected) & set(actual)
    a = [n for n in expected if n in shared]
    b = [n for n in actual if n in shared]
    # Names are distinct, so the LCS is the longest increasing run of positions.
    pos = {n: i for i, n in enumerate(a)}
    seq = [pos[n] for n in b]
    tails, prev, idx = [], [None] * len(seq), []
    for i, v in enumerate(seq):
        k = bisect.bisect_left(tails, v)
        if k == len(tails):
            tails.append(v)
            idx.append(i)
        else:
            tails[k] = v
            idx[k] = i
        prev[i] = idx[k - 1] if k else None
    keep = set()
    i = idx[-1] if idx else None
    while i is not None:
        keep.add(b[i])
        i = prev[i]
    return [n for n in b if n not in keep]


class Report:
    """Differences between the catalogue and the compiler's model. Name and
    membership problems (`failures`) are kept apart from order differences."""

    def __init__(self):
        self.failures = []
        self.order = []
        self.counts = {}

    @property
    def names_ok(self):
        return not self.failures

    @property
    def order_ok(self):
        return not self.order

    def text(self):
        lines = ["catalogue: %(expected)d types expected, %(actual)d made, %(matched)d "
                 "matching" % self.counts]
        lines += ["FAIL " + f for f in self.failures]
        lines += ["ORDER " + o for o in self.order]
        if self.names_ok and self.order_ok:
            lines.append("catalogue matches: every module, type, object set and "
                         "table-constrained type, in order")
        elif self.names_ok:
            lines.append("names and membership match; %d order difference(s)" % len(self.order))
        return "\n".join(lines)


def compare(cat, modules):
    report = Report()
    by_name = {m.name: m for m in modules}
    compare_modules(cat, by_name, report)
    compare_object_sets(cat, modules, report)
    compare_table_types(cat, modules, report)
    return report


def compare_modules(cat, by_name, report):
    expected_total = actual_total = matched = 0
    for name, expected in cat.modules.items():
        expected_total += len(expected)
        module = by_name.get(name)
        if module is None:
            report.failures.append("module %s is missing (%d types expected)"
                                   % (name, len(expected)))
            continue
        actual = [a.generated_name for a in module.types]
        actual_total += len(actual)
        matched += len(set(actual) & set(expected))
        for n in expected:
            if n not in actual:
                report.failures.append("%s: missing type %s" % (name, n))
        for n in actual:
            if n not in expected:
                report.failures.append("%s: extra type %s" % (name, n))
        for n in common_order(expected, actual):
            report.order.append("%s: %s is at position %d, expected %d" % (
                name, n, actual.index(n) + 1, expected.index(n) + 1))
    for name, module in by_name.items():
        if name not in cat.modules:
            actual_total += len(module.types)
            report.failures.append("extra module %s (%d types)" % (name, len(module.types)))
    report.counts = {"expected": expected_total, "actual": actual_total, "matched": matched}


def compare_object_sets(cat, modules, report):
    made = {}
    for m in modules:
        for a in m.assignments:
            if isinstance(a, M.ObjectSetAssignment) and not a.params:
                made[generated_name(a.name)] = a
    for name, (class_name, expected) in cat.object_sets.items():
        a = made.get(name)
        if a is None:
            report.failures.append("object set %s is missing" % name)
            continue
        actual_class = generated_name(a.class_ref.name)
        if class_name is not None and actual_class != class_name:
            report.failures.append("object set %s: class %s, expected %s"
                                   % (name, actual_class, class_name))
        actual = [generated_name(o.name) for o in a.spec.objects or []]
        if actual != expected:
            missing = [n for n in expected if n not in actual]
            extra = [n for n in actual if n not in expected]
            detail = []
            if missing:
                detail.append("missing " + ", ".join(missing))
            if extra:
                detail.append("extra " + ", ".join(extra))
            if not detail:
                detail.append("order %s" % ", ".join(actual))
            report.failures.append("object set %s: %s" % (name, "; ".join(detail)))
    for name in made:
        if name not in cat.object_sets:
            report.failures.append("extra object set %s" % name)


def compare_table_types(cat, modules, report):
    made = sorted(a.generated_name for m in modules for a in m.types
                  if a.table_constrained)
    for n in cat.table_constrained:
        if n not in made:
            report.failures.append("table-constrained type %s is not table-constrained "
                                   "in the model" % n)
    for n in made:
        if n not in cat.table_constrained:
            report.failures.append("extra table-constrained type %s" % n)
