/* Character strings: 8-bit text, and strings of 16 and 32-bit characters. */
#include "xd_common.h"

using namespace qn::xd;

namespace {

/* Every string type of the modules has a one-octet tag, and nearly every string a short
 * length: that header is matched in place; anything else goes through the general match. */
int matchStringTag(ASN1CTXT* pctxt, ASN1TagType tag, int* len_p) {
  const ASN1UINT number = tag & TM_IDCODE_MASK;
  if (number < 31) {
    const ASN1OCTET octet = (ASN1OCTET)(((tag >> 24) & 0xC0u) | number);
    const ASN1BUFFER& buf = pctxt->buffer;
    const ASN1UINT idx = buf.byteIndex;
    if (idx < buf.size && (buf.data[idx] & ~0x20) == octet) return xd_Tag1AndLen(pctxt, len_p);
  }
  int stat = xd_match(pctxt, tag, len_p, XM_ADVANCE);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  return 0;
}

template <typename Char>
Char charAt(const ASN1OCTET* p) {
  Char c = 0;
  for (size_t i = 0; i < sizeof(Char); ++i) c = (Char)((c << 8) | p[i]);
  return c;
}

/* Characters of sizeof(Char) octets each, most significant first. The contents are read in
 * place when primitive; a constructed string is joined first and its copy dropped after. */
template <typename Char, typename Str>
int decodeWideString(ASN1CTXT* pctxt, Str* object_p, int tagging, ASN1TagType tag,
                     int length) {
  if (tagging) {
    int stat = matchStringTag(pctxt, tag, &length);
    if (stat < 0) return stat;
  }
  const ASN1OCTET* octets;
  ASN1UINT numocts;
  bool copied;
  int stat = stringContents(pctxt, length, true, 0, &octets, &numocts, &copied);
  if (stat < 0) return LOG_RTERR(pctxt, stat);

  Char* chars = nullptr;
  const ASN1UINT nchars = numocts / sizeof(Char);
  if (numocts % sizeof(Char) != 0) {
    stat = ASN_E_INVLEN;
  } else if (nchars > 0) {
    chars = static_cast<Char*>(allocValue(pctxt, (size_t)nchars * sizeof(Char)));
    if (!chars) stat = ASN_E_NOMEM;
  }
  if (chars) {
    for (ASN1UINT i = 0; i < nchars; ++i) chars[i] = charAt<Char>(octets + i * sizeof(Char));
  }
  if (copied) rtMemHeapFreePtr(&pctxt->memHeap, const_cast<ASN1OCTET*>(octets));
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  object_p->nchars = nchars;
  object_p->data = chars;
  return 0;
}

}  // namespace

QN_BEGIN_C

int xd_charstr(ASN1CTXT* pctxt, const char** object_p, int tagging, ASN1TagType tag,
               int length) {
  if (tagging) {
    int stat = matchStringTag(pctxt, tag, &length);
    if (stat < 0) return stat;
  }
  /* Always copied: the text needs its terminator, which the message does not have. */
  const ASN1OCTET* text;
  ASN1UINT numocts;
  bool copied;
  int stat = stringContents(pctxt, length, false, 1, &text, &numocts, &copied);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  *object_p = reinterpret_cast<const char*>(text);
  return 0;
}

int xd_16BitCharStr(ASN1CTXT* pctxt, Asn116BitCharString* object_p, int tagging,
                    ASN1TagType tag, int length) {
  return decodeWideString<ASN1USINT>(pctxt, object_p, tagging, tag, length);
}

int xd_32BitCharStr(ASN1CTXT* pctxt, Asn132BitCharString* object_p, int tagging,
                    ASN1TagType tag, int length) {
  return decodeWideString<ASN1UINT>(pctxt, object_p, tagging, tag, length);
}

QN_END_C
