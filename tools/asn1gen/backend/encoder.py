"""BER/DER encoders asn1E_<Type>: one function per type, components written from the
last to the first because the buffer fills from its end, each call's result checked
and summed, the type's own tags written around the sum."""

from . import shapes as S
from .writer import emit_value_checks

EXPLICIT = "ASN1EXPL"
IMPLICIT = "ASN1IMPL"


def signature(a):
    return "int asn1E_%s(ASN1CTXT* pctxt, ASN1T_%s* pvalue, ASN1TagType tagging)" % (
        a.generated_name, a.generated_name)


# ------------------------------------------------------------ primitives

def prim_call(prim, p, tagging):
    """Expression encoding the primitive at pointer `p`."""
    v = S.deref(p)
    kind = prim.kind
    if kind == "bool":
        return "xe_boolean(pctxt, %s, %s)" % (p, tagging)
    if kind == "int":
        return "xe_integer(pctxt, %s, %s)" % (p, tagging)
    if kind == "uint":
        return "xe_unsigned(pctxt, %s, %s)" % (p, tagging)
    if kind == "bigint":
        return "xe_bigint(pctxt, %s, %s)" % (v, tagging)
    if kind == "null":
        return "xe_null(pctxt, %s)" % tagging
    if kind == "octets":
        return "xe_octstr(pctxt, %s, %s, %s)" % (S.field(p, "data"), S.field(p, "numocts"),
                                                 tagging)
    if kind == "bits":
        return "xe_bitstr(pctxt, %s, %s, %s)" % (S.field(p, "data"), S.field(p, "numbits"),
                                                 tagging)
    if kind == "fixedbits":
        # DER drops trailing zero bits of a named-bit string.
        return "xe_bitstr(pctxt, %s, rtNamedBitsLength(%s, %s), %s)" % (
            S.field(p, "data"), S.field(p, "data"), S.field(p, "numbits"), tagging)
    if kind == "oid":
        return "xe_objid(pctxt, %s, %s)" % (p, tagging)
    if kind == "reloid":
        return "xe_reloid(pctxt, %s, %s)" % (p, tagging)
    if kind == "real":
        return "xe_real(pctxt, %s, %s)" % (p, tagging)
    if kind == "chars":
        return "xe_charstr(pctxt, %s, %s, %d)" % (v, tagging, prim.number)
    if kind == "bmp":
        return "xe_16BitCharStr(pctxt, %s, %s, 30)" % (p, tagging)
    if kind == "univ":
        return "xe_32BitCharStr(pctxt, %s, %s, 28)" % (p, tagging)
    if kind == "open":
        return "xe_OpenType(pctxt, %s, %s)" % (S.field(p, "data"), S.field(p, "numocts"))
    raise ValueError("no encoder for %s" % kind)


def emit_inner(w, use, p, tagging):
    """Statements encoding the value at `p` with the coder of `use` into `ll`."""
    if use.target is not None:
        w("ll = asn1E_%s(pctxt, %s, %s);" % (use.name, p, tagging))
    elif use.prim.kind == "enum":
        w("ASN1ENUM number = (ASN1ENUM)%s;" % S.deref(p))
        w("ll = xe_enum(pctxt, &number, %s);" % tagging)
    else:
        w("ll = %s;" % prim_call(use.prim, p, tagging))


# ------------------------------------------------------------ places of use

def emit_use(w, use, p, label, tagging=None):
    """Encode the value at `p` as `use` says into `ll`. `tagging` None means the place
    writes all its tags (a component); "tagging" passes the caller's argument on (an
    alias), so that its outermost tag is left to the caller."""
    emit_value_checks(w, use.node, use.prim, p, label)
    levels = use.levels
    if not levels:
        emit_inner(w, use, p, tagging or EXPLICIT)
    else:
        emit_inner(w, use, p, IMPLICIT if use.implicit else EXPLICIT)
        emit_tags(w, levels, tagging)
    w.check("ll", negative_only=True)


def emit_tags(w, levels, tagging, var="ll"):
    """Tag and length of each level around `var`, innermost first; a negative length
    passes through xe_tag_len unchanged, so one check after them all is enough."""
    for i in range(len(levels) - 1, -1, -1):
        stmt = "%s = xe_tag_len(pctxt, 0x%08xu, %s);" % (var, levels[i].word(), var)
        if i == 0 and tagging:
            w("if (tagging == ASN1EXPL) " + stmt)
        else:
            w(stmt)


# ------------------------------------------------------------ constructs

def emit(w, a):
    kind = S.body_kind(a)
    with w.function(signature(a)):
        if kind in ("alias", "prim"):
            emit_prim(w, a)
        elif kind in ("SEQUENCE", "SET"):
            emit_sequence(w, a)
        elif kind == "CHOICE":
            emit_choice(w, a)
        else:
            emit_list(w, a)


def finish(w, a, var):
    """The type's own tags around the contents of length `var`, then the result."""
    levels = a.type.wire_tags or []
    emit_tags(w, levels, "tagging", var)
    if levels:
        w.check(var, negative_only=True)
    w("return %s;" % var)


def emit_prim(w, a):
    w("int ll;")
    if S.body_kind(a) == "prim" and S.named_prim(a).kind == "enum":
        top = max(i.value for i in a.type.items + a.type.additions)
        w.violation("*pvalue > %du" % top, None, "*pvalue", "ASN_E_INVENUM")
    emit_use(w, S.Use(a.type), "pvalue", "*pvalue", tagging="tagging")
    w("return ll;")


def emit_sequence(w, a):
    comps = S.components(a.type)
    w("int ll, len = 0;")
    if a.table_constrained:
        emit_table_call(w, a)
    order = comps if a.type.kind == "SEQUENCE" else der_set_order(comps)
    for c in reversed(order):
        emit_component(w, c)
    finish(w, a, "len")


def der_set_order(comps):
    """DER writes the components of a SET in the order of their tags."""
    def key(c):
        tags = S.Use(c.type).first_tags()
        return (0, tags[0].word() & ~0x20000000) if tags and len(tags) == 1 else (1, 0)
    return sorted(comps, key=key)


def emit_table_call(w, a):
    # The open-type values are encoded into their components first, in a context of
    # their own so that the outer buffer position stays where it is.
    w("ASN1CTXT saved;")
    w("rtCopyContext(&saved, pctxt);")
    w("ll = asn1ETC_%s(pctxt, pvalue);" % a.generated_name)
    w("rtCopyContext(pctxt, &saved);")
    w.check("ll", negative_only=True)


def emit_component(w, c):
    name = S.c_name(c.name)
    p = "&pvalue->%s" % name
    use = S.Use(c.type)
    if c.presence_bit is not None:
        cond = "pvalue->m.%sPresent" % name
    elif S.is_boolean_default(c):
        cond = "!pvalue->%s" % name if S.boolean_default(c) else "pvalue->%s" % name
    else:
        cond = None
    if cond is None:
        emit_use(w, use, p, "pvalue->" + name)
        w("len += ll;")
        return
    with w.block("if (%s)" % cond):
        emit_use(w, use, p, "pvalue->" + name)
        w("len += ll;")


def emit_choice(w, a):
    w("int ll;")
    with w.block("switch (pvalue->t)"):
        for number, alt in enumerate(S.alternatives(a.type), 1):
            name = S.c_name(alt.name)
            pointer = S.held_by_pointer(alt.type)
            p = "pvalue->u.%s" % name if pointer else "&pvalue->u.%s" % name
            w("case %d:  /* %s */" % (number, alt.name))
            with w.indented():
                if pointer:
                    w("if (%s == 0) %s" % (p, w.fail("ASN_E_BADVALUE")))
                emit_use(w, S.Use(alt.type), p, "pvalue->u." + name)
                w("break;")
        w("default:")
        with w.indented():
            w(w.fail("ASN_E_INVOPT"))
    finish(w, a, "ll")


def emit_list(w, a):
    use = S.element_use(a)
    ctype = use.ctype()
    w("int ll, len = 0;")
    emit_count_check(w, a)
    der_sort = S.body_kind(a) == "SET OF"
    if der_sort:
        w("_Asn1RTDList places;")
        w("rtDListInit(&places);")
    with w.block("for (_Asn1RTDListNode* pnode = pvalue->tail; pnode != 0; "
                 "pnode = pnode->prev)"):
        w("%s* pelem = (%s*)pnode->data;" % (ctype, ctype))
        emit_use(w, use, "pelem", "pvalue->element")
        if der_sort:
            with w.block("if (pvalue->count > 1)"):
                emit_place(w)
        w("len += ll;")
    if der_sort:
        # DER wants the elements of a SET OF in ascending order of their encodings.
        with w.block("if (pvalue->count > 1)"):
            w("len = xe_derCanonicalSort(pctxt, &places);")
            w.check("len", negative_only=True)
    finish(w, a, "len")


def emit_place(w):
    w("Asn1BufLocDescr* pplace = (Asn1BufLocDescr*)rtMemHeapAlloc(&pctxt->memHeap, "
      "sizeof(Asn1BufLocDescr));")
    w("if (pplace == 0) " + w.fail("ASN_E_NOMEM"))
    w("xe_getBufLocDescr(pctxt, ll, pplace);")
    w("if (rtDListAppend(pctxt, &places, pplace) == 0) " + w.fail("ASN_E_NOMEM"))


def emit_count_check(w, a):
    r = S.size_range(a.type)
    if not S.needs_check(r, 0):
        return
    w.violation(S.range_condition("pvalue->count", r, True), "pvalue->count", "pvalue->count")
