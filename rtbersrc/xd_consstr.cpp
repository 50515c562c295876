/* Constructed strings: walking and joining their segments; copying contents out. */
#include <string.h>

#include "xd_common.h"

using namespace qn::xd;

namespace {

/* One constructed level whose contents start at the position and may not pass limit, the
 * end of the level enclosing it: a segment that overruns its parent is then a bad length
 * rather than a read into whatever follows the string. */
int walkLevel(ASN1CTXT* pctxt, ASN1TagType segTag, int length, ASN1UINT limit, int depth,
              SegmentSink sink, void* state) {
  if (depth > kMaxSegmentDepth) return LOG_RTERR(pctxt, ASN_E_TOODEEP);
  ASN1BUFFER& buf = pctxt->buffer;
  const bool indefinite = length == ASN_K_INDEFLEN;
  if (buf.byteIndex > limit) return LOG_RTERR(pctxt, ASN_E_ENDOFBUF);
  if (!indefinite && (length < 0 || (ASN1UINT)length > limit - buf.byteIndex))
    return LOG_RTERR(pctxt, ASN_E_INVLEN);
  const ASN1UINT end = indefinite ? limit : buf.byteIndex + (ASN1UINT)length;
  while (indefinite || buf.byteIndex < end) {
    ASN1UINT idx = buf.byteIndex;
    ASN1TagType tag;
    int len;
    int stat = readHeaderAt(buf.data, end, &idx, &tag, &len);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
    buf.byteIndex = idx;
    if (indefinite && tag == 0 && len == 0) break;
    if ((tag & ~TM_CONS) != segTag) {
      addTagParms(pctxt, segTag, tag);
      return LOG_RTERR(pctxt, ASN_E_IDNOTFOU);
    }
    if (tag & TM_CONS) {
      stat = walkLevel(pctxt, segTag, len, end, depth + 1, sink, state);
    } else {
      stat = sink(state, buf.data + idx, (ASN1UINT)len);
      buf.byteIndex += (ASN1UINT)len;
    }
    if (stat < 0) return LOG_RTERR(pctxt, stat);
  }
  return 0;
}

struct SizeState {
  ASN1UINT total;
  bool bits;
};

int addSegmentSize(void* state, const ASN1OCTET*, ASN1UINT numocts) {
  SizeState* s = static_cast<SizeState*>(state);
  if (s->bits) {
    /* Every bit string segment starts with its own unused-bits octet. */
    if (numocts == 0) return ASN_E_INVLEN;
    --numocts;
  }
  s->total += numocts;
  return 0;
}

/* Joins a constructed string's segments into dest (capacity octets); *used_p their count. */
int joinSegments(ASN1CTXT* pctxt, int length, ASN1OCTET* dest, ASN1UINT capacity,
                 ASN1UINT* used_p) {
  SegmentCopy state = {dest, capacity, 0};
  int stat = walkSegments(pctxt, ASN_ID_OCTSTR, length, copySegment, &state);
  if (stat < 0) return stat;
  *used_p = state.used;
  return 0;
}

int primitiveContents(ASN1CTXT* pctxt, int length, bool borrow, ASN1UINT pad,
                      const ASN1OCTET** data_p, ASN1UINT* numocts_p, bool* copied_p) {
  int stat = checkContents(pctxt, length);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  ASN1BUFFER& buf = pctxt->buffer;
  const ASN1OCTET* src = buf.data + buf.byteIndex;
  const ASN1UINT n = (ASN1UINT)length;
  *copied_p = false;
  if (borrow) {
    *data_p = n ? src : nullptr;
  } else if (n == 0 && pad == 0) {
    *data_p = nullptr;
  } else {
    ASN1OCTET* mem = static_cast<ASN1OCTET*>(allocValue(pctxt, (size_t)n + pad));
    if (!mem) return LOG_RTERR(pctxt, ASN_E_NOMEM);
    if (n) memcpy(mem, src, n);
    memset(mem + n, 0, pad);
    *data_p = mem;
    *copied_p = true;
  }
  buf.byteIndex += n;
  *numocts_p = n;
  return 0;
}

int constructedContents(ASN1CTXT* pctxt, int length, ASN1UINT pad, const ASN1OCTET** data_p,
                        ASN1UINT* numocts_p, bool* copied_p) {
  int span = length;
  int size = 0;
  int stat = xd_consStrIndefLenAndSize(pctxt, ASN_ID_OCTSTR, &span, &size);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  ASN1OCTET* mem = nullptr;
  if ((ASN1UINT)size + pad > 0) {
    mem = static_cast<ASN1OCTET*>(allocValue(pctxt, (size_t)size + pad));
    if (!mem) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  }
  ASN1UINT used = 0;
  stat = joinSegments(pctxt, length, mem, (ASN1UINT)size, &used);
  if (stat < 0) {
    if (mem) rtMemHeapFreePtr(&pctxt->memHeap, mem);
    return LOG_RTERR(pctxt, stat);
  }
  if (pad) memset(mem + used, 0, pad);
  *data_p = mem;
  *numocts_p = used;
  *copied_p = mem != nullptr;
  return 0;
}

}  // namespace

namespace qn::xd {

int copySegment(void* state, const ASN1OCTET* segment, ASN1UINT numocts) {
  SegmentCopy* s = static_cast<SegmentCopy*>(state);
  if (numocts > s->capacity - s->used) return ASN_E_STROVFLW;
  if (numocts) memcpy(s->dest + s->used, segment, numocts);
  s->used += numocts;
  return 0;
}

int walkSegments(ASN1CTXT* pctxt, ASN1TagType segTag, int length, SegmentSink sink,
                 void* state) {
  return walkLevel(pctxt, segTag, length, pctxt->buffer.size, 1, sink, state);
}

int stringContents(ASN1CTXT* pctxt, int length, bool borrow, ASN1UINT pad,
                   const ASN1OCTET** data_p, ASN1UINT* numocts_p, bool* copied_p) {
  if (constructedString(pctxt, length))
    return constructedContents(pctxt, length, pad, data_p, numocts_p, copied_p);
  return primitiveContents(pctxt, length, borrow, pad, data_p, numocts_p, copied_p);
}

}  // namespace qn::xd

QN_BEGIN_C

int xd_consStrIndefLenAndSize(ASN1CTXT* pctxt, ASN1TagType tag, int* len_p, int* size_p) {
  const ASN1UINT start = pctxt->buffer.byteIndex;
  SizeState state = {0, tag == ASN_ID_BITSTR};
  int stat = walkSegments(pctxt, tag, *len_p, addSegmentSize, &state);
  const ASN1UINT end = pctxt->buffer.byteIndex;
  pctxt->buffer.byteIndex = start;
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  *len_p = (int)(end - start);
  /* The joined bit string has one unused-bits octet in front of all the data. */
  *size_p = (int)(state.total + (state.bits ? 1 : 0));
  return 0;
}

int xd_memcpy(ASN1CTXT* pctxt, ASN1OCTET* object_p, int length) {
  int stat = checkContents(pctxt, length);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  if (length > 0) memcpy(object_p, pctxt->buffer.data + pctxt->buffer.byteIndex, (size_t)length);
  pctxt->buffer.byteIndex += (ASN1UINT)length;
  return 0;
}

QN_END_C
