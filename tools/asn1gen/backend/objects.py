"""Information objects: one abstract class per information object class, one class
per object that knows its identifier and codes the type it carries, one singleton per
object set with a linear lookup, and the table-constraint functions asn1ETC_/asn1DTC_
that move an open type between its octets and its typed value."""

from .. import model as M
from . import shapes as S
from .freecopy import class_name, is_list_table, object_member, slot

HEAP = "&pctxt->memHeap"


def cpp_class(cls):
    return cls.name.replace("-", "_")


def slot_of_class(cls):
    return "ExtnType" if cls.name == "EXTENSION" else "Type"


def carried(obj):
    """The named type an object carries in its type field, or None."""
    for field in obj.cls.fields:
        if field.kind == "type" and field.name in obj.carried:
            return obj.carried[field.name]
    return None


def object_oid(obj):
    oid = obj.settings.get("&id")
    return oid if isinstance(oid, M.OidValue) else None


def object_name(obj):
    return S.c_name(obj.name)


# ------------------------------------------------------------ declarations

def class_declaration(cls):
    name = cpp_class(cls)
    s = slot_of_class(cls)
    return [
        "class QN_API %s {" % name,
        " public:",
        "  ASN1OBJID id;",
        "",
        "  virtual void* constructASN1T%s(ASN1CTXT* pctxt) const = 0;" % s,
        "  virtual ASN1CType* constructASN1C%s(ASN1MessageBufferIF& msgBuf, void* value) "
        "const = 0;" % s,
        "  virtual void destructASN1C%s(ASN1CType* pType) const = 0;" % s,
        "  virtual ~%s();" % name,
        "  virtual int encodeBER%s(ASN1CTXT* pctxt, Asn1TObject& object) const = 0;" % s,
        "  virtual int decodeBER%s(ASN1CTXT* pctxt, Asn1TObject& object) const = 0;" % s,
        "  virtual void copy%s(ASN1CTXT* pctxt, Asn1TObject& src, Asn1TObject& dst) "
        "const = 0;" % s,
        "  virtual void free%s(ASN1CTXT* pctxt, Asn1TObject& object) const = 0;" % s,
        "",
        " protected:",
        "  %s(ASN1UINT numids, const ASN1UINT* arcs);" % name,
        "};",
        "",
    ]


def object_declaration(obj):
    name = object_name(obj)
    s = slot_of_class(obj.cls)
    return [
        "class QN_API %s : public %s {" % (name, cpp_class(obj.cls)),
        " public:",
        "  %s();" % name,
        "  void* constructASN1T%s(ASN1CTXT* pctxt) const override;" % s,
        "  ASN1CType* constructASN1C%s(ASN1MessageBufferIF& msgBuf, void* value) const "
        "override;" % s,
        "  void destructASN1C%s(ASN1CType* pType) const override;" % s,
        "  int encodeBER%s(ASN1CTXT* pctxt, Asn1TObject& object) const override;" % s,
        "  int decodeBER%s(ASN1CTXT* pctxt, Asn1TObject& object) const override;" % s,
        "  void copy%s(ASN1CTXT* pctxt, Asn1TObject& src, Asn1TObject& dst) const override;"
        % s,
        "  void free%s(ASN1CTXT* pctxt, Asn1TObject& object) const override;" % s,
        "};",
        "",
    ]


def set_declaration(a):
    name = S.c_name(a.name)
    base = cpp_class(set_class(a))
    size = max(1, len(a.spec.objects or []))
    return [
        "class QN_API %s {" % name,
        " public:",
        "  /* The set, made on first use; it lives as long as the process. */",
        "  static %s* instance(ASN1CTXT* pctxt);" % name,
        "  /* The first object whose identifier equals key, or null. */",
        "  const %s* lookupObject(const ASN1TObjId& key) const;" % base,
        "",
        " protected:",
        "  %s();" % name,
        "  static %s* mpInstance;" % name,
        "  const %s* mObjects[%d];" % (base, size),
        "  ASN1UINT mCount;",
        "  /* mObjects by bucket of identifier, for lookupObject. */",
        "  ASN1USINT mFirst[ASN1_OBJSET_BUCKETS];",
        "  ASN1USINT mNext[%d];" % size,
        "};",
        "",
    ]


def set_class(a):
    return a.class_ref.target if a.class_ref.target is not None else a.spec.objects[0].cls


# ------------------------------------------------------------ definitions

def emit_class(w, cls):
    name = cpp_class(cls)
    with w.block("%s::%s(ASN1UINT numids, const ASN1UINT* arcs)" % (name, name)):
        w("id.numids = numids;")
        w("memcpy(id.subid, arcs, numids * sizeof(ASN1UINT));")
    w("")
    w("%s::~%s() {}" % (name, name))
    w("")


def emit_object(w, obj):
    name = object_name(obj)
    s = slot_of_class(obj.cls)
    oid = object_oid(obj)
    t = carried(obj)
    w("static const ASN1UINT %s_arcs[] = { %s };" % (name, ", ".join("%du" % x for x in oid.arcs)))
    w("%s::%s() : %s(%d, %s_arcs) {}" % (name, name, cpp_class(obj.cls), len(oid.arcs), name))
    w("")
    vt = "ASN1T_%s" % t.generated_name if t is not None else None
    with w.function("void* %s::constructASN1T%s(ASN1CTXT* pctxt) const" % (name, s)):
        w("return %s;" % ("rtMemHeapAllocZ(%s, sizeof(%s))" % (HEAP, vt) if vt else "0"))
    w("")
    # The control classes an object can make over a value are generated with the XML
    # layer; until then an object has none to offer.
    with w.function("ASN1CType* %s::constructASN1C%s(ASN1MessageBufferIF& msgBuf, void* value) "
                    "const" % (name, s)):
        w("return 0;")
    w("")
    with w.function("void %s::destructASN1C%s(ASN1CType* pType) const" % (name, s)):
        pass
    w("")
    with w.function("int %s::encodeBER%s(ASN1CTXT* pctxt, Asn1TObject& object) const" % (name, s)):
        if vt:
            w("return asn1E_%s(pctxt, (%s*)object.decoded, ASN1EXPL);" % (t.generated_name, vt))
        else:
            w("return 0;")
    w("")
    with w.function("int %s::decodeBER%s(ASN1CTXT* pctxt, Asn1TObject& object) const" % (name, s)):
        if vt:
            w("%s* pvalue = (%s*)rtMemHeapAllocZ(%s, sizeof(%s));" % (vt, vt, HEAP, vt))
            w("if (pvalue == 0) " + w.fail("ASN_E_NOMEM"))
            w("object.decoded = pvalue;")
            w("return asn1D_%s(pctxt, pvalue, ASN1EXPL, 0);" % t.generated_name)
        else:
            w("return 0;")
    w("")
    with w.function("void %s::copy%s(ASN1CTXT* pctxt, Asn1TObject& src, Asn1TObject& dst) const"
                    % (name, s)):
        if vt:
            w("%s* pcopy = (%s*)rtMemHeapAllocZ(%s, sizeof(%s));" % (vt, vt, HEAP, vt))
            w("if (pcopy == 0) return;")
            w("asn1Copy_%s(pctxt, (%s*)src.decoded, pcopy);" % (t.generated_name, vt))
            w("dst.decoded = pcopy;")
    w("")
    with w.function("void %s::free%s(ASN1CTXT* pctxt, Asn1TObject& object) const" % (name, s)):
        if vt:
            w("%s* pvalue = (%s*)object.decoded;" % (vt, vt))
            w("asn1Free_%s(pctxt, pvalue);" % t.generated_name)
            w("if (rtMemHeapCheckPtr(%s, pvalue)) rtMemHeapFreePtr(%s, pvalue);" % (HEAP, HEAP))
            w("object.decoded = 0;")
    w("")


def emit_set(w, a):
    name = S.c_name(a.name)
    base = cpp_class(set_class(a))
    w("%s* %s::mpInstance = 0;" % (name, name))
    w("")
    with w.block("%s::%s() : mObjects(), mCount(0)" % (name, name)):
        for obj in a.spec.objects or []:
            w("mObjects[mCount++] = new %s();" % object_name(obj))
        w("indexObjectSet(mObjects, mCount, mFirst, mNext);")
    w("")
    # Made without a lock: a program that decodes on several threads looks every set up
    # once before it starts them.
    with w.function("%s* %s::instance(ASN1CTXT* pctxt)" % (name, name)):
        w("if (mpInstance == 0) mpInstance = new %s();" % name)
        w("return mpInstance;")
    w("")
    with w.function("const %s* %s::lookupObject(const ASN1TObjId& key) const" % (base, name)):
        w("return findInObjectSet(mObjects, mFirst, mNext, key);")
    w("")


# ------------------------------------------------------------ table constraints

def table_components(a):
    return [c for c in S.components(a.type) if c.table is not None]


def lookup_lines(w, c, declare=True):
    link = c.table
    key = "pvalue->" + S.c_name(link.key_path[-1])
    w("ASN1TObjId key(%s);" % key)
    w("%spobject = %s::instance(pctxt)->lookupObject(key);" % (
        "const %s* " % class_name(link) if declare else "", S.c_name(link.set.name)))


def present(c):
    return "pvalue->m.%sPresent" % S.c_name(c.name) if c.presence_bit is not None else None


def emit_table_function(w, a, prefix, local, emit_single, emit_list):
    """asn1DTC_/asn1ETC_ of a type: each table-constrained component, when present, handled
    by the single-value or the list emitter."""
    with w.function("int %s_%s(ASN1CTXT* pctxt, ASN1T_%s* pvalue)" % (
            prefix, a.generated_name, a.generated_name)):
        w("int %s;" % local)
        for c in table_components(a):
            cond = present(c)
            with w.block("if (%s)" % cond if cond else ""):
                if is_list_table(c):
                    emit_list(w, c)
                else:
                    emit_single(w, c)
        w("return 0;")


def emit_dtc(w, a):
    emit_table_function(w, a, "asn1DTC", "stat", emit_dtc_single, emit_dtc_list)


def emit_dtc_single(w, c):
    link = c.table
    comp = "pvalue->" + S.c_name(c.name)
    obj = "pvalue->" + object_member(c)
    lookup_lines(w, c)
    w("%s.numocts = %s.numocts;" % (obj, comp))
    w("%s.data = %s.data;" % (obj, comp))
    w("%s.decoded = 0;" % obj)
    w("%s.object = pobject;" % obj)
    # An unknown identifier or an empty value stays as octets.
    with w.block("if (pobject != 0 && %s.numocts != 0)" % comp):
        w("stat = xd_setp(pctxt, %s.data, (int)%s.numocts, 0, 0);" % (comp, comp))
        w.check("stat")
        w("stat = pobject->decodeBER%s(pctxt, %s);" % (slot(link), obj))
        w.check("stat")


def emit_dtc_list(w, c):
    link = c.table
    comp = "pvalue->" + S.c_name(c.name)
    obj = "pvalue->" + object_member(c)
    elem = S.Use(S.base_of(c.type).element).ctype()
    lookup_lines(w, c)
    w("%s.numocts = 0;" % obj)
    w("%s.data = 0;" % obj)
    w("%s.decoded = 0;" % obj)
    w("%s.object = pobject;" % obj)
    with w.block("if (pobject != 0)"):
        # Each value of the list is decoded into its own typed value; the typed values
        # form a list of their own, in the same order.
        w("_Asn1RTDList* pdecoded = (_Asn1RTDList*)rtMemHeapAllocZ(%s, sizeof(_Asn1RTDList));"
          % HEAP)
        w("if (pdecoded == 0) " + w.fail("ASN_E_NOMEM"))
        w("%s.decoded = pdecoded;" % obj)
        with w.block("for (_Asn1RTDListNode* pnode = %s.head; pnode != 0; pnode = pnode->next)"
                     % comp):
            w("%s* pelem = (%s*)pnode->data;" % (elem, elem))
            w("Asn1TObject one = { pelem->numocts, pelem->data, 0, pobject };")
            w("stat = xd_setp(pctxt, pelem->data, (int)pelem->numocts, 0, 0);")
            w.check("stat")
            w("stat = pobject->decodeBER%s(pctxt, one);" % slot(link))
            w("if (one.decoded != 0 && rtDListAppend(pctxt, pdecoded, one.decoded) == 0) "
              + w.fail("ASN_E_NOMEM"))
            w.check("stat")


def emit_etc(w, a):
    emit_table_function(w, a, "asn1ETC", "len", emit_etc_single, emit_etc_list)


def etc_object(w, c, obj):
    """The object that describes the typed value: the one recorded with it, else the
    one the identifier names (a value built by the caller)."""
    link = c.table
    w("const %s* pobject = (const %s*)%s.object;" % (class_name(link), class_name(link), obj))
    with w.block("if (pobject == 0)"):
        lookup_lines(w, c, declare=False)


def emit_etc_single(w, c):
    link = c.table
    comp = "pvalue->" + S.c_name(c.name)
    obj = "pvalue->" + object_member(c)
    etc_object(w, c, obj)
    with w.block("if (pobject != 0 && %s.decoded != 0)" % obj):
        # A buffer of its own, about as large as the last encoding, grown as needed.
        w("xe_setp(pctxt, 0, (int)%s.numocts + 64);" % obj)
        w("len = pobject->encodeBER%s(pctxt, %s);" % (slot(link), obj))
        w.check("len", negative_only=True)
        w("%s.numocts = (ASN1UINT)len;" % obj)
        w("%s.data = xe_getp(pctxt);" % obj)
        w("%s.numocts = %s.numocts;" % (comp, obj))
        w("%s.data = %s.data;" % (comp, obj))


def emit_etc_list(w, c):
    link = c.table
    comp = "pvalue->" + S.c_name(c.name)
    obj = "pvalue->" + object_member(c)
    elem = S.Use(S.base_of(c.type).element).ctype()
    etc_object(w, c, obj)
    with w.block("if (pobject != 0 && %s.decoded != 0)" % obj):
        w("_Asn1RTDList* pdecoded = (_Asn1RTDList*)%s.decoded;" % obj)
        # Typed value i is written into element i, whose octets are replaced; the
        # elements stay where they are, so the list keeps belonging to its own heap.
        w("if (pdecoded->count != %s.count) %s" % (comp, w.fail("ASN_E_INVPARAM")))
        w("_Asn1RTDListNode* pplace = %s.head;" % comp)
        with w.block("for (_Asn1RTDListNode* pnode = pdecoded->head; pnode != 0; "
                     "pnode = pnode->next)"):
            w("%s* pelem = (%s*)pplace->data;" % (elem, elem))
            w("Asn1TObject one = { 0, 0, pnode->data, pobject };")
            w("xe_setp(pctxt, 0, (int)pelem->numocts + 64);")
            w("len = pobject->encodeBER%s(pctxt, one);" % slot(link))
            w.check("len", negative_only=True)
            w("pelem->numocts = (ASN1UINT)len;")
            w("pelem->data = xe_getp(pctxt);")
            w("pplace = pplace->next;")


# ------------------------------------------------------------ value constants

def oid_values(module):
    return [a for a in module.assignments
            if isinstance(a, M.ValueAssignment) and isinstance(a.evaluated, M.OidValue)]


def integer_values(module):
    return [a for a in module.assignments
            if isinstance(a, M.ValueAssignment) and isinstance(a.evaluated, M.IntegerValue)]


def oid_definition(a):
    arcs = a.evaluated.arcs
    return "ASN1OBJID %s = { %d, { %s } };" % (S.c_name(a.name), len(arcs),
                                               ", ".join("%du" % x for x in arcs))
