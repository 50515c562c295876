"""asn1Free_<Type> and asn1Copy_<Type>.

Free returns to the context's heap what a value's members point to, checking first
that each block belongs to that heap, so that octets borrowed from a message (fast
copy) or a caller's own strings are never released. Copy makes a deep copy whose every
new block comes from the context's heap.
"""

from .. import model as M
from . import shapes as S

HEAP = "&pctxt->memHeap"


class HeapNeeds:
    """Which named types hold heap memory of their own, so that free functions with
    nothing to do are not called."""

    def __init__(self):
        self.memo = {}

    def of_type(self, a):
        if a in self.memo:
            return self.memo[a]
        self.memo[a] = True             # a type that contains itself holds memory
        kind = S.body_kind(a)
        if kind in ("SEQUENCE OF", "SET OF", "CHOICE"):
            result = kind != "CHOICE" or any(
                S.held_by_pointer(alt.type) or self.of_use(S.Use(alt.type))
                for alt in S.alternatives(a.type))
        elif kind in ("SEQUENCE", "SET"):
            result = a.table_constrained or any(self.of_use(S.Use(c.type))
                                                for c in S.components(a.type))
        else:
            result = self.of_use(S.Use(a.type))
        self.memo[a] = result
        return result

    def of_use(self, use):
        if use.target is not None:
            return self.of_type(use.target)
        return use.prim is not None and use.prim.heap_data


# ------------------------------------------------------------ table objects

def class_name(link):
    return link.object_class.name.replace("-", "_")


def slot(link):
    """Operation names of an information object class: EXTENSION says "Extn"."""
    return "ExtnType" if link.object_class.name == "EXTENSION" else "Type"


def object_member(c):
    return S.c_name(c.name) + "_obj"


def is_list_table(c):
    return isinstance(S.base_of(c.type), M.SequenceOfType)


def object_of(link, obj_expr):
    return "static_cast<const %s*>(%s.object)" % (class_name(link), obj_expr)


# ------------------------------------------------------------ free

def release(w, ptr_expr):
    w("if (rtMemHeapCheckPtr(%s, %s)) rtMemHeapFreePtr(%s, (void*)%s);" % (
        HEAP, ptr_expr, HEAP, ptr_expr))


def emit_free_use(w, needs, use, p):
    if use.target is not None:
        if needs.of_type(use.target):
            w("asn1Free_%s(pctxt, %s);" % (use.name, p))
        return
    prim = use.prim
    if prim is None or not prim.heap_data:
        return
    data = S.deref(p) if prim.text else S.field(p, "data")
    release(w, data)
    w("%s = 0;" % data)


def free_signature(a):
    return "void asn1Free_%s(ASN1CTXT* pctxt, ASN1T_%s* pvalue)" % (a.generated_name,
                                                                  a.generated_name)


def emit_free(w, a, needs):
    with w.function(free_signature(a)):
        if not needs.of_type(a):
            return
        kind = S.body_kind(a)
        if kind in ("alias", "prim"):
            emit_free_use(w, needs, S.Use(a.type), "pvalue")
        elif kind in ("SEQUENCE", "SET"):
            emit_free_structure(w, a, needs)
        elif kind == "CHOICE":
            emit_free_choice(w, a, needs)
        else:
            emit_free_list(w, a, needs)


def emit_free_structure(w, a, needs):
    for c in S.components(a.type):
        use = S.Use(c.type)
        if not needs.of_use(use) and c.table is None:
            continue
        p = "&pvalue->%s" % S.c_name(c.name)
        if needs.of_use(use):
            if c.presence_bit is not None:
                with w.block("if (pvalue->m.%sPresent)" % S.c_name(c.name)):
                    emit_free_use(w, needs, use, p)
            else:
                emit_free_use(w, needs, use, p)
        if c.table is not None:
            emit_free_object(w, c)


def emit_free_object(w, c):
    """The typed value of an open type goes back through its information object."""
    link = c.table
    obj = "pvalue->" + object_member(c)
    with w.block("if (%s.decoded != 0 && %s.object != 0)" % (obj, obj)):
        if not is_list_table(c):
            w("%s->free%s(pctxt, %s);" % (object_of(link, obj), slot(link), obj))
            return
        w("_Asn1RTDList* pdecoded = (_Asn1RTDList*)%s.decoded;" % obj)
        with w.block("for (_Asn1RTDListNode* pnode = pdecoded->head; pnode != 0; "
                     "pnode = pnode->next)"):
            w("Asn1TObject one = { 0, 0, pnode->data, %s.object };" % obj)
            w("%s->free%s(pctxt, one);" % (object_of(link, obj), slot(link)))
        w("rtDListFreeNodes(pctxt, pdecoded);")
        release(w, "pdecoded")
        w("%s.decoded = 0;" % obj)


def emit_free_choice(w, a, needs):
    with w.block("switch (pvalue->t)"):
        for number, alt in enumerate(S.alternatives(a.type), 1):
            use = S.Use(alt.type)
            name = S.c_name(alt.name)
            pointer = S.held_by_pointer(alt.type)
            if not pointer and not needs.of_use(use):
                continue
            w("case %d:  /* %s */" % (number, alt.name))
            with w.indented():
                if pointer:
                    emit_free_use(w, needs, use, "pvalue->u.%s" % name)
                    release(w, "pvalue->u.%s" % name)
                    w("pvalue->u.%s = 0;" % name)
                else:
                    emit_free_use(w, needs, use, "&pvalue->u.%s" % name)
                w("break;")
        w("default:")
        with w.indented():
            w("break;")


def emit_free_list(w, a, needs):
    use = S.element_use(a)
    if needs.of_use(use):
        ctype = use.ctype()
        with w.block("for (_Asn1RTDListNode* pnode = pvalue->head; pnode != 0; "
                     "pnode = pnode->next)"):
            w("%s* pelem = (%s*)pnode->data;" % (ctype, ctype))
            emit_free_use(w, needs, use, "pelem")
    w("rtDListFreeAll(pctxt, pvalue);")


# ------------------------------------------------------------ copy

def copy_signature(a):
    result = "int" if S.is_list(a) else "void"
    return "%s asn1Copy_%s(ASN1CTXT* pctxt, ASN1T_%s* pSrcValue, ASN1T_%s* pDstValue)" % (
        result, a.generated_name, a.generated_name, a.generated_name)


def emit_copy_use(w, use, s, d):
    if use.target is not None:
        w("asn1Copy_%s(pctxt, %s, %s);" % (use.name, s, d))
        return
    kind = use.prim.kind
    if kind == "null":
        return
    if use.prim.scalar or kind == "fixedbits":
        w("%s = %s;" % (S.deref(d), S.deref(s)))
    elif use.prim.text:
        w("rtCopyCharStr(pctxt, %s, &%s);" % (S.deref(s), S.deref(d)))
    elif kind in ("oid", "reloid"):
        w("rtCopyOID(%s, %s);" % (s, d))
    else:
        func = {"octets": "rtCopyDynOctStr", "bits": "rtCopyDynBitStr",
                "bmp": "rtCopy16BitCharStr", "univ": "rtCopy32BitCharStr",
                "open": "rtCopyOpenType"}[kind]
        w("%s(pctxt, %s, %s);" % (func, s, d))


def emit_copy(w, a):
    kind = S.body_kind(a)
    with w.function(copy_signature(a)):
        if kind in ("alias", "prim"):
            use = S.Use(a.type)
            w("if (pSrcValue == pDstValue) return;")
            emit_copy_use(w, use, "pSrcValue", "pDstValue")
        elif kind in ("SEQUENCE", "SET"):
            emit_copy_structure(w, a)
        elif kind == "CHOICE":
            emit_copy_choice(w, a)
        else:
            emit_copy_list(w, a)


def emit_copy_structure(w, a):
    comps = S.components(a.type)
    w("if (pSrcValue == pDstValue) return;")
    if any(c.presence_bit is not None for c in comps):
        w("pDstValue->m = pSrcValue->m;")
    for c in comps:
        use = S.Use(c.type)
        name = S.c_name(c.name)
        if use.target is None and use.prim.kind == "null":
            continue
        s, d = "&pSrcValue->%s" % name, "&pDstValue->%s" % name
        if c.presence_bit is not None:
            with w.block("if (pSrcValue->m.%sPresent)" % name):
                emit_copy_use(w, use, s, d)
        else:
            emit_copy_use(w, use, s, d)
        if c.table is not None:
            emit_copy_object(w, c)


def emit_copy_object(w, c):
    link = c.table
    member = object_member(c)
    src, dst = "pSrcValue->" + member, "pDstValue->" + member
    if is_list_table(c):
        w("%s.numocts = 0;" % dst)
        w("%s.data = 0;" % dst)
    else:
        comp = "pDstValue->" + S.c_name(c.name)
        w("%s.numocts = %s.numocts;" % (dst, comp))
        w("%s.data = %s.data;" % (dst, comp))
    w("%s.decoded = 0;" % dst)
    w("%s.object = %s.object;" % (dst, src))
    with w.block("if (%s.decoded != 0 && %s.object != 0)" % (src, src)):
        if not is_list_table(c):
            w("%s->copy%s(pctxt, %s, %s);" % (object_of(link, src), slot(link), src, dst))
            return
        w("_Asn1RTDList* pcopies = (_Asn1RTDList*)rtMemHeapAllocZ(%s, sizeof(_Asn1RTDList));"
          % HEAP)
        w("if (pcopies == 0) return;")
        w("_Asn1RTDList* pdecoded = (_Asn1RTDList*)%s.decoded;" % src)
        with w.block("for (_Asn1RTDListNode* pnode = pdecoded->head; pnode != 0; "
                     "pnode = pnode->next)"):
            w("Asn1TObject from = { 0, 0, pnode->data, %s.object };" % src)
            w("Asn1TObject to = { 0, 0, 0, %s.object };" % src)
            w("%s->copy%s(pctxt, from, to);" % (object_of(link, src), slot(link)))
            w("if (to.decoded == 0 || rtDListAppend(pctxt, pcopies, to.decoded) == 0) return;")
        w("%s.decoded = pcopies;" % dst)


def emit_copy_choice(w, a):
    w("if (pSrcValue == pDstValue) return;")
    w("pDstValue->t = pSrcValue->t;")
    with w.block("switch (pSrcValue->t)"):
        for number, alt in enumerate(S.alternatives(a.type), 1):
            use = S.Use(alt.type)
            name = S.c_name(alt.name)
            if use.target is None and use.prim.kind == "null":
                continue
            w("case %d:  /* %s */" % (number, alt.name))
            with w.indented():
                if S.held_by_pointer(alt.type):
                    ctype = use.ctype()
                    w("pDstValue->u.%s = (%s*)rtMemHeapAllocZ(%s, sizeof(%s));" % (
                        name, ctype, HEAP, ctype))
                    w("if (pDstValue->u.%s == 0) return;" % name)
                    emit_copy_use(w, use, "pSrcValue->u.%s" % name, "pDstValue->u.%s" % name)
                else:
                    emit_copy_use(w, use, "&pSrcValue->u.%s" % name, "&pDstValue->u.%s" % name)
                w("break;")
        w("default:")
        with w.indented():
            w("break;")


def emit_copy_list(w, a):
    use = S.element_use(a)
    ctype = use.ctype()
    w("if (pSrcValue == pDstValue) return (int)pSrcValue->count;")
    w("rtDListInit(pDstValue);")
    with w.block("for (_Asn1RTDListNode* pnode = pSrcValue->head; pnode != 0; "
                 "pnode = pnode->next)"):
        w("%s* pelem = (%s*)rtMemHeapAllocZ(%s, sizeof(%s));" % (ctype, ctype, HEAP, ctype))
        w("if (pelem == 0 || rtDListAppend(pctxt, pDstValue, pelem) == 0) break;")
        w("%s* psrc = (%s*)pnode->data;" % (ctype, ctype))
        emit_copy_use(w, use, "psrc", "pelem")
    w("return (int)pDstValue->count;")
