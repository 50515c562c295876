"""BER decoders asn1D_<Type>: tags matched level by level, components taken in order
with optional ones recognised by a look at the next identifier, every element read
from the context's buffer and every allocation taken from its heap.

Whoever decodes the contents of an indefinite length also consumes its end-of-contents
octets: a constructed type called with implicit tagging does it for the caller's tag,
as the runtime's string decoders do for constructed strings, and a place that reads an
explicit wrapper closes that wrapper itself.
"""

from . import shapes as S
from .writer import emit_value_checks

EXPLICIT = "ASN1EXPL"
IMPLICIT = "ASN1IMPL"
NO_TAG = "ASN_K_NOTAG"


def signature(a):
    return "int asn1D_%s(ASN1CTXT* pctxt, ASN1T_%s* pvalue, ASN1TagType tagging, int length)" % (
        a.generated_name, a.generated_name)


def tag_word(tag):
    """A tag as the decoder reports it: class and number, constructed bit clear."""
    return "0x%08xu" % (tag.word() & ~0x20000000)


def match_stmt(tag, len_ptr):
    if tag.number < 31:
        octet = (tag.word() >> 24) & 0xC0 | tag.number
        return "stat = xd_match1(pctxt, 0x%02x, %s);" % (octet, len_ptr)
    return "stat = xd_match(pctxt, %s, %s, XM_ADVANCE);" % (tag_word(tag), len_ptr)


# ------------------------------------------------------------ primitives

def emit_prim(w, prim, p, tagging, length, named=None):
    """Statements decoding the primitive at pointer `p` into `stat`."""
    kind = prim.kind
    calls = {
        "bool": "xd_boolean(pctxt, %s, %s, %s)",
        "int": "xd_integer(pctxt, %s, %s, %s)",
        "uint": "xd_unsigned(pctxt, %s, %s, %s)",
        "bigint": "xd_bigint(pctxt, %s, %s, %s)",
        "oid": "xd_objid(pctxt, %s, %s, %s)",
        "reloid": "xd_reloid(pctxt, %s, %s, %s)",
        "real": "xd_real(pctxt, %s, %s, %s)",
    }
    if kind in calls:
        w("stat = %s;" % (calls[kind] % (p, tagging, length)))
    elif kind == "null":
        w("stat = xd_null(pctxt, %s, %s);" % (tagging, length))
    elif kind == "octets":
        w("stat = xd_octstr(pctxt, &%s, &%s, %s, %s);" % (S.field(p, "data"),
                                                        S.field(p, "numocts"), tagging, length))
    elif kind == "bits":
        w("stat = xd_bitstr(pctxt, &%s, &%s, %s, %s);" % (S.field(p, "data"),
                                                        S.field(p, "numbits"), tagging, length))
    elif kind == "fixedbits":
        # The runtime decodes into the fixed array and refuses more bits than it holds.
        w("%s = %du;" % (S.field(p, "numbits"), named.type.repr.bit_capacity))
        w("stat = xd_bitstr_s(pctxt, %s, &%s, %s, %s);" % (
            S.field(p, "data"), S.field(p, "numbits"), tagging, length))
    elif kind == "chars":
        w("stat = xd_charstr(pctxt, %s, %s, %d, %s);" % (p, tagging, prim.number, length))
    elif kind == "bmp":
        w("stat = xd_16BitCharStr(pctxt, %s, %s, 30, %s);" % (p, tagging, length))
    elif kind == "univ":
        w("stat = xd_32BitCharStr(pctxt, %s, %s, 28, %s);" % (p, tagging, length))
    elif kind == "open":
        w("stat = xd_OpenType(pctxt, &%s, &%s);" % (S.field(p, "data"), S.field(p, "numocts")))
    elif kind == "enum":
        w("ASN1ENUM number;")
        w("stat = xd_enum(pctxt, &number, %s, %s);" % (tagging, length))
        w.check("stat")
        top = max(i.value for i in named.type.items + named.type.additions)
        w.violation("(ASN1UINT)number > %du" % top, None, "number", "ASN_E_INVENUM")
        w("%s = (ASN1UINT)number;" % S.deref(p))
        return
    else:
        raise ValueError("no decoder for %s" % kind)
    w.check("stat")


def emit_inner(w, use, p, tagging, length, named=None):
    if use.target is not None:
        w("stat = asn1D_%s(pctxt, %s, %s, %s);" % (use.name, p, tagging, length))
        w.check("stat")
    else:
        emit_prim(w, use.prim, p, tagging, length, named)


# ------------------------------------------------------------ places of use

def emit_use(w, use, p, label, tagging=None, named=None):
    """Decode the value at `p` as `use` says. `tagging` None: every level's header is
    read here. "tagging": with implicit tagging the caller has read the outermost header
    and `length` is its contents length."""
    levels = use.levels
    if not levels:
        emit_inner(w, use, p, tagging or EXPLICIT, "length" if tagging else "0", named)
        emit_value_checks(w, use.node, use.prim, p, label)
        return
    with w.block(""):
        wrappers = levels[:-1] if use.implicit else levels
        if wrappers:
            w("ASN1CCB %s;" % ", ".join("wrap%d" % i for i in range(len(wrappers))))
        if use.implicit:
            w("int clen;")
        for i, tag in enumerate(levels):
            contents = use.implicit and i == len(levels) - 1
            emit_level(w, tag, "clen" if contents else "wrap%d" % i, contents,
                       given=(i == 0 and tagging is not None))
        if use.implicit:
            emit_inner(w, use, p, IMPLICIT, "clen", named)
        else:
            emit_inner(w, use, p, EXPLICIT, "0", named)
        emit_value_checks(w, use.node, use.prim, p, label)
        for i in range(len(wrappers) - 1, -1, -1):
            w("stat = xd_closeContents(pctxt, &wrap%d);" % i)
            w.check("stat")


def emit_level(w, tag, var, contents, given):
    """Read one level's header into `var` (an int length when `contents`, else a
    contents record); `given` makes it the caller's when tagging is implicit."""
    len_ptr = "&" + var if contents else "&%s.len" % var
    if given:
        w("if (tagging == ASN1EXPL) {")
        with w.indented():
            w(match_stmt(tag, len_ptr))
            w.check("stat")
        if var == "length":
            w("}")
        else:
            w("} else {")
            with w.indented():
                w("%s = length;" % len_ptr[1:])
            w("}")
    else:
        w(match_stmt(tag, len_ptr))
        w.check("stat")
    if not contents:
        w("%s.ptr = pctxt->buffer.data + pctxt->buffer.byteIndex;" % var)


# ------------------------------------------------------------ constructs

def emit(w, a, recursive):
    kind = S.body_kind(a)
    with w.function(signature(a)):
        w("int stat;")
        if recursive:
            # Types that can contain themselves stop at a fixed depth instead of
            # letting a hostile message exhaust the stack.
            w("ASN1DecodeNesting nesting(pctxt);")
            w("if (nesting.tooDeep()) " + w.fail("ASN_E_TOODEEP"))
        if kind in ("alias", "prim"):
            emit_use(w, S.Use(a.type), "pvalue", "*pvalue", tagging="tagging", named=a)
            w("return 0;")
            return
        levels = a.type.wire_tags or []
        has_contents = kind != "CHOICE"
        wrappers = levels[:-1] if has_contents else levels
        if wrappers:
            w("ASN1CCB %s;" % ", ".join("wrap%d" % i for i in range(len(wrappers))))
        for i, tag in enumerate(levels):
            contents = has_contents and i == len(levels) - 1
            emit_level(w, tag, "length" if contents else "wrap%d" % i, contents, given=(i == 0))
        if kind in ("SEQUENCE", "SET"):
            emit_structure(w, a)
        elif kind == "CHOICE":
            emit_choice(w, a)
        else:
            emit_list(w, a)
        for i in range(len(wrappers) - 1, -1, -1):
            w("stat = xd_closeContents(pctxt, &wrap%d);" % i)
            w.check("stat")
        w("return 0;")


def open_contents(w):
    w("ASN1CCB ccb;")
    w("ccb.ptr = pctxt->buffer.data + pctxt->buffer.byteIndex;")
    w("ccb.len = length;")


def close_contents(w):
    w("stat = xd_closeContents(pctxt, &ccb);")
    w.check("stat")


def init_structure(w, comps):
    for c in comps:
        name = S.c_name(c.name)
        if c.presence_bit is not None:
            w("pvalue->m.%sPresent = 0;" % name)
        elif S.is_boolean_default(c):
            w("pvalue->%s = %s;" % (name, "ASN1TRUE" if S.boolean_default(c) else "ASN1FALSE"))


def emit_structure(w, a):
    comps = S.components(a.type)
    if a.type.kind == "SET":
        emit_set(w, a, comps)
    else:
        emit_sequence(w, a, comps)
    if a.table_constrained:
        # The open types are decoded out of their own octets; the outer position is
        # put back afterwards.
        w("ASN1CTXT saved;")
        w("rtCopyContext(&saved, pctxt);")
        w("stat = asn1DTC_%s(pctxt, pvalue);" % a.generated_name)
        w("rtCopyContext(pctxt, &saved);")
        w.check("stat")


def emit_sequence(w, a, comps):
    open_contents(w)
    if any(S.optional(c) for c in comps):
        w("ASN1TagType tag;")
    init_structure(w, comps)
    for c in comps:
        name = S.c_name(c.name)
        use = S.Use(c.type)
        p = "&pvalue->%s" % name
        w("/* %s */" % c.name)
        if not S.optional(c):
            w("if (xd_endOfContents(pctxt, &ccb)) " + w.fail("ASN_E_SETMISRQ"))
            emit_use(w, use, p, "pvalue->" + name)
            continue
        tags = use.first_tags()
        w("tag = xd_endOfContents(pctxt, &ccb) ? %s : xd_peekTag(pctxt);" % NO_TAG)
        if tags is None:
            cond = "tag != %s" % NO_TAG
        else:
            cond = " || ".join("tag == %s" % tag_word(t) for t in tags)
        with w.block("if (%s)" % cond):
            emit_use(w, use, p, "pvalue->" + name)
            if c.presence_bit is not None:
                w("pvalue->m.%sPresent = 1;" % name)
    if a.type.extensible:
        # Elements added by a later version of the type are passed over.
        with w.block("while (!xd_endOfContents(pctxt, &ccb))"):
            w("stat = xd_NextElement(pctxt);")
            w.check("stat")
    w("if (!xd_endOfContents(pctxt, &ccb)) " + w.fail("ASN_E_SEQOVFLW"))
    close_contents(w)


def emit_tag_switch(w, members, emit_member, emit_unknown):
    """A switch on the next element's tag with a case for each tag a member can start with;
    a member that can start with any tag (an open type) takes the default branch, which is
    otherwise emit_unknown's. `members` are (payload, component or alternative)."""
    w("ASN1TagType tag = xd_peekTag(pctxt);")
    fallback = None
    with w.block("switch (tag)"):
        for payload, member in members:
            use = S.Use(member.type)
            tags = use.first_tags()
            if tags is None:
                fallback = (payload, member, use)
                continue
            for t in tags:
                w("case %s:" % tag_word(t))
            with w.indented():
                emit_member(payload, member, use)
        w("default:")
        with w.indented():
            if fallback is not None:
                emit_member(*fallback)
            else:
                emit_unknown()


def emit_unknown_tag(w, status):
    w("if (tag == %s) %s" % (NO_TAG, w.fail("ASN_E_ENDOFBUF")))
    w("xu_addTagErrParm(pctxt, tag);")
    w(w.fail(status))


def emit_set(w, a, comps):
    open_contents(w)
    w("ASN1OCTET seen[%d] = { 0 };" % ((len(comps) + 7) // 8))
    init_structure(w, comps)

    def unknown():
        if a.type.extensible:
            w("stat = xd_NextElement(pctxt);")
            w.check("stat")
            w("break;")
        else:
            emit_unknown_tag(w, "ASN_E_NOTINSET")

    with w.block("while (!xd_endOfContents(pctxt, &ccb))"):
        emit_tag_switch(w, list(enumerate(comps)),
                        lambda i, c, use: emit_set_member(w, i, c, use), unknown)
    for i, c in enumerate(comps):
        if not S.optional(c):
            w("if (!(seen[%d] & 0x%02x)) %s" % (i // 8, 1 << (i % 8), w.fail("ASN_E_SETMISRQ")))
    close_contents(w)


def emit_set_member(w, i, c, use):
    name = S.c_name(c.name)
    bit = "seen[%d] & 0x%02x" % (i // 8, 1 << (i % 8))
    w("if (%s) %s" % (bit, w.fail("ASN_E_SETDUPL")))
    emit_use(w, use, "&pvalue->%s" % name, "pvalue->" + name)
    w("seen[%d] |= 0x%02x;" % (i // 8, 1 << (i % 8)))
    if c.presence_bit is not None:
        w("pvalue->m.%sPresent = 1;" % name)
    w("break;")


def emit_choice(w, a):
    emit_tag_switch(w, list(enumerate(S.alternatives(a.type), 1)),
                    lambda number, alt, use: emit_alternative(w, number, alt, use),
                    lambda: emit_unknown_tag(w, "ASN_E_INVOPT"))


def emit_alternative(w, number, alt, use):
    name = S.c_name(alt.name)
    w("/* %s */" % alt.name)
    if S.held_by_pointer(alt.type):
        ctype = use.ctype()
        w("pvalue->u.%s = (%s*)rtMemHeapAllocZ(&pctxt->memHeap, sizeof(%s));" % (name, ctype,
                                                                                 ctype))
        w("if (pvalue->u.%s == 0) %s" % (name, w.fail("ASN_E_NOMEM")))
        p = "pvalue->u.%s" % name
    else:
        p = "&pvalue->u.%s" % name
    emit_use(w, use, p, "pvalue->u." + name)
    w("pvalue->t = %d;" % number)
    w("break;")


def emit_list(w, a):
    use = S.element_use(a)
    ctype = use.ctype()
    w("rtDListInit(pvalue);")
    open_contents(w)
    with w.block("while (!xd_endOfContents(pctxt, &ccb))"):
        w("if (pvalue->count > 0x7FFFFFFEu) " + w.fail("ASN_E_SEQOVFLW"))
        # Node and element in one block: one allocation per element.
        w("_Asn1RTDListNode* pnode = (_Asn1RTDListNode*)rtMemHeapAllocZ(&pctxt->memHeap, "
          "sizeof(_Asn1RTDListNode) + sizeof(%s));" % ctype)
        w("if (pnode == 0) " + w.fail("ASN_E_NOMEM"))
        w("%s* pelem = (%s*)(pnode + 1);" % (ctype, ctype))
        emit_use(w, use, "pelem", "pvalue->element")
        w("rtDListAppendNode(pctxt, pvalue, pelem);")
    close_contents(w)
    r = S.size_range(a.type)
    if S.needs_check(r, 0):
        w.violation(S.range_condition("pvalue->count", r, True), "pvalue->count",
                    "pvalue->count")
