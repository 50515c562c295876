// The error record: first-status-wins recording, the trace and parameter limits, message
// formatting, the three report forms and their consumption of the record, the xu_ forwarders,
// tag texts and the diagnostic switch.
#include <gtest/gtest.h>

#include <quillon/rtContext.h>
#include <quillon/rtMemHeap.h>
#include <quillon/rtUtil.h>

#include <stdio.h>
#include <string.h>

#include <string>
#include <utility>
#include <vector>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

std::string fmtMsg(ASN1ErrInfo* info) {
  char buf[512];
  return rtErrFmtMsg(info, buf);
}

std::string fmtStatus(int status) {
  ASN1ErrInfo info{};
  info.status = status;
  return fmtMsg(&info);
}

bool isConsumed(const ASN1ErrInfo& info) {
  return info.status == 0 && info.stkx == 0 && info.parmcnt == 0;
}

// An unexpected-tag error as a decoder reports it: detected, then passed up twice.
void recordTagError(ASN1ErrInfo* info) {
  rtErrAddTagParm(info, TM_UNIV | ASN_ID_INT);
  rtErrAddTagParm(info, TM_CTXT | TM_CONS | 3);
  rtErrSetData(info, ASN_E_IDNOTFOU, "rtbersrc/xd_common", 120);
  rtErrSetData(info, ASN_E_IDNOTFOU, "PKIX1Explicit88", 4410);
  rtErrSetData(info, ASN_E_IDNOTFOU, "PKIX1Explicit88", 5023);
}

const char kTagReport[] =
    "ASN.1 ERROR: Status -3\n"
    "Unexpected tag encountered: expected = [UNIVERSAL 2], parsed = [3]\n"
    "Stack trace:  Module: PKIX1Explicit88, Line 5023\n"
    "  Module: PKIX1Explicit88, Line 4410\n"
    "  Module: rtbersrc/xd_common, Line 120\n";

std::vector<std::string> g_logged;

int collect(const char* text, void* arg) {
  g_logged.push_back(text);
  *static_cast<int*>(arg) += 1;
  return 0;
}

std::string dumpToString(const ASN1OCTET* data, ASN1UINT n) {
  char* text = nullptr;
  size_t len = 0;
  FILE* fp = open_memstream(&text, &len);
  rtHexDumpToFile(fp, data, n);
  fclose(fp);
  std::string out(text, len);
  free(text);
  return out;
}

}  // namespace

TEST(ErrorRecord, FirstStatusWinsAndTheTraceIsBounded) {
  ASN1ErrInfo info{};
  EXPECT_EQ(rtErrSetData(&info, ASN_E_IDNOTFOU, "a", 1), ASN_E_IDNOTFOU);
  EXPECT_EQ(rtErrSetData(&info, ASN_E_INVLEN, "b", 2), ASN_E_INVLEN) << "returns its argument";
  EXPECT_EQ(info.status, ASN_E_IDNOTFOU);
  EXPECT_EQ(info.stkx, 2);
  EXPECT_STREQ(info.stack[1].module, "b");
  EXPECT_EQ(info.stack[1].lineno, 2);
  for (int i = 0; i < 7; i++) rtErrSetData(&info, ASN_E_INVLEN, "c", 10 + i);
  EXPECT_EQ(info.stkx, ASN_K_MAXERRSTK);
  EXPECT_EQ(info.stack[7].lineno, 15) << "entries past the eighth are dropped";

  for (int i = 0; i < 5; i++) EXPECT_EQ(rtErrAddIntParm(&info, i), 1);
  EXPECT_EQ(rtErrAddStrParm(&info, "sixth"), 0);
  EXPECT_EQ(info.parmcnt, 5);
  EXPECT_STREQ(info.parms[4], "4");

  // Freeing the parameters also clears the status, but only a reset clears the trace.
  rtErrFreeParms(&info);
  EXPECT_EQ(info.status, 0);
  EXPECT_EQ(info.parmcnt, 0);
  EXPECT_EQ(info.stkx, 8);
  EXPECT_EQ(rtErrReset(&info), 0);
  EXPECT_TRUE(isConsumed(info));

  // A parameter is a copy of its own.
  char text[] = "field";
  rtErrAddStrParm(&info, text);
  text[0] = 'X';
  EXPECT_STREQ(info.parms[0], "field");
  rtErrAddUIntParm(&info, 4000000000u);
  EXPECT_STREQ(info.parms[1], "4000000000");
  rtErrAddIntParm(&info, -7);
  EXPECT_STREQ(info.parms[2], "-7");
  rtErrReset(&info);
}

TEST(ErrorRecord, MessagesFillTheirPlacesFromTheParameters) {
  // Without parameters every place shows "?".
  const std::pair<int, const char*> cases[] = {
      {0, "normal completion status"}, {17, "normal completion status"},
      {-1, "Encode buffer overflow"}, {-12, "No dynamic memory available"},
      {-46, "Invalid XML interface library"}, {-47, "unrecognized completion status"},
      {INT32_MIN, "unrecognized completion status"},
      {-23, "Value constraint violation: field ?, value ?"}};
  for (const auto& c : cases) EXPECT_EQ(fmtStatus(c.first), c.second) << c.first;

  ASN1ErrInfo info{};
  info.status = ASN_E_IDNOTFOU;
  rtErrAddStrParm(&info, "[1]");
  EXPECT_EQ(fmtMsg(&info), "Unexpected tag encountered: expected = [1], parsed = ?");
  rtErrAddStrParm(&info, "[2]");
  EXPECT_EQ(fmtMsg(&info), "Unexpected tag encountered: expected = [1], parsed = [2]");
  EXPECT_EQ(info.parmcnt, 2) << "formatting does not consume";

  // "%d" is not a place: parameters are always text.
  rtErrReset(&info);
  info.status = ASN_E_INVUTF8;
  rtErrAddIntParm(&info, 12);
  EXPECT_EQ(fmtMsg(&info), "Invalid UTF-8 character at index %d");

  // A parameter containing "%s" is copied, not expanded again.
  rtErrReset(&info);
  info.status = ASN_E_XMLPARSE;
  rtErrAddStrParm(&info, "not well-formed %s");
  EXPECT_EQ(fmtMsg(&info), "Error condition returned from XML parser:\nnot well-formed %s");
  rtErrReset(&info);
}

TEST(ErrorRecord, TagParametersShowClassAndThirteenBitNumber) {
  ASN1ErrInfo info{};
  rtErrAddTagParm(&info, TM_UNIV | ASN_ID_SEQ | TM_CONS);
  rtErrAddTagParm(&info, TM_APPL | 1);
  rtErrAddTagParm(&info, TM_CTXT | 0);
  rtErrAddTagParm(&info, TM_PRIV | 8191);
  rtErrAddTagParm(&info, TM_CTXT | 8192 | 5);
  EXPECT_STREQ(info.parms[0], "[UNIVERSAL 16]");
  EXPECT_STREQ(info.parms[1], "[APPLICATION 1]");
  EXPECT_STREQ(info.parms[2], "[0]");
  EXPECT_STREQ(info.parms[3], "[PRIVATE 8191]");
  EXPECT_STREQ(info.parms[4], "[5]");
  rtErrReset(&info);

  // The utility itself shows the whole number and never overruns a short buffer.
  char buf[32];
  EXPECT_STREQ(rtTagToString(TM_CTXT | TM_CONS | 70000, buf, sizeof buf), "[70000]");
  EXPECT_STREQ(rtTagToString(TM_APPL | TM_IDCODE_MASK, buf, sizeof buf),
               "[APPLICATION 536870911]");
  char tiny[6];
  memset(tiny, 'x', sizeof tiny);
  rtTagToString(TM_PRIV | 123, tiny, sizeof tiny);
  EXPECT_STREQ(tiny, "[PRIV");
}

TEST(ErrorReport, TextLeadsWithStatusAndTracesNewestFirst) {
  ASN1CTXT ctxt;
  ASSERT_EQ(rtInitContext(&ctxt, nullptr), 0);
  recordTagError(&ctxt.errInfo);
  char* text = rtErrGetText(&ctxt);
  ASSERT_NE(text, nullptr);
  EXPECT_STREQ(text, kTagReport);
  EXPECT_EQ(rtMemHeapCheckPtr(&ctxt.memHeap, text), 1) << "the text belongs to the context heap";
  EXPECT_TRUE(isConsumed(ctxt.errInfo));

  // An empty record still reports, with no trace entries.
  EXPECT_STREQ(rtErrGetText(&ctxt),
               "ASN.1 ERROR: Status 0\nnormal completion status\nStack trace:");

  // The text is sized by the trace depth: an oversized parameter is cut, never overrun.
  std::string huge(5000, 'p');
  rtErrAddStrParm(&ctxt.errInfo, huge.c_str());
  rtErrSetData(&ctxt.errInfo, ASN_E_INVENUM, "m", 1);
  text = rtErrGetText(&ctxt);
  EXPECT_EQ(strlen(text), 1u * 100 + 700 - 1);
  EXPECT_TRUE(isConsumed(ctxt.errInfo));
  rtFreeContext(&ctxt);
}

TEST(ErrorReport, PrintWritesTheSameReportToStandardOutput) {
  ASN1ErrInfo info{};
  recordTagError(&info);
  CaptureStdout();
  rtErrPrint(&info);
  EXPECT_EQ(GetCapturedStdout(), kTagReport);
  EXPECT_TRUE(isConsumed(info));

  ASN1CTXT ctxt;
  ASSERT_EQ(rtInitContext(&ctxt, nullptr), 0);
  EXPECT_EQ(xu_error(&ctxt, ASN_E_NOMEM, "rtsrc/x", 9), ASN_E_NOMEM);
  CaptureStdout();
  xu_perror(&ctxt);
  EXPECT_EQ(GetCapturedStdout(),
            "ASN.1 ERROR: Status -12\nNo dynamic memory available\n"
            "Stack trace:  Module: rtsrc/x, Line 9\n");
  EXPECT_TRUE(isConsumed(ctxt.errInfo));
  rtFreeContext(&ctxt);
}

TEST(ErrorReport, CallbackReceivesTheReportPieceByPiece) {
  ASN1ErrInfo info{};
  recordTagError(&info);
  int calls = 0;
  g_logged.clear();
  rtErrLogUsingCB(&info, collect, &calls);
  std::vector<std::string> expected = {
      "ASN.1 ERROR: Status -3",
      "Unexpected tag encountered: expected = [UNIVERSAL 2], parsed = [3]",
      "  Module: PKIX1Explicit88, Line 5023\n",
      "  Module: PKIX1Explicit88, Line 4410\n",
      "  Module: rtbersrc/xd_common, Line 120\n",
  };
  EXPECT_EQ(g_logged, expected);
  EXPECT_EQ(calls, 5);
  EXPECT_TRUE(isConsumed(info));

  ASN1CTXT ctxt;
  ASSERT_EQ(rtInitContext(&ctxt, nullptr), 0);
  xu_error(&ctxt, ASN_E_SETDUPL, "m", 3);
  g_logged.clear();
  xu_log_error(&ctxt, collect, &calls);
  ASSERT_EQ(g_logged.size(), 3u);
  EXPECT_EQ(g_logged[1], "Duplicate element in SET");
  EXPECT_TRUE(isConsumed(ctxt.errInfo));
  rtFreeContext(&ctxt);
}

TEST(ErrorRecord, CopyOverwritesStatusAndAppendsWithinLimits) {
  ASN1ErrInfo src{}, dst{};
  rtErrSetData(&dst, ASN_E_INVLEN, "dst", 1);
  for (int i = 0; i < 4; i++) rtErrAddIntParm(&dst, i);
  rtErrAddStrParm(&src, "s1");
  rtErrAddStrParm(&src, "s2");
  for (int i = 0; i < 9; i++) rtErrSetData(&src, ASN_E_BADTAG, "src", 100 + i);

  EXPECT_EQ(rtErrCopyData(&src, &dst), ASN_E_BADTAG);
  EXPECT_EQ(dst.status, ASN_E_BADTAG) << "not first-wins";
  EXPECT_EQ(dst.parmcnt, 5);
  EXPECT_STREQ(dst.parms[4], "s1");
  EXPECT_EQ(dst.stkx, 8);
  EXPECT_STREQ(dst.stack[0].module, "dst");
  EXPECT_EQ(dst.stack[1].lineno, 100) << "oldest source entry first";
  EXPECT_EQ(dst.stack[7].lineno, 106);
  EXPECT_EQ(src.parmcnt, 2) << "the source keeps its own";
  rtErrReset(&src);
  rtErrReset(&dst);
}

TEST(ErrorRecord, ForwardersActOnTheContextRecord) {
  ASN1CTXT ctxt;
  ASSERT_EQ(rtInitContext(&ctxt, nullptr), 0);
  xu_error(&ctxt, ASN_E_CONSVIO, "m", 1);
  xu_addErrParm(&ctxt, "version");
  xu_addIntErrParm(&ctxt, -2);
  char buf[256];
  EXPECT_STREQ(xu_fmtErrMsg(&ctxt, buf), "Value constraint violation: field version, value -2");
  xu_freeErrParms(&ctxt);
  EXPECT_EQ(ctxt.errInfo.parmcnt, 0);
  EXPECT_EQ(ctxt.errInfo.stkx, 1);
  rtFreeContext(&ctxt);
}

TEST(Diagnostics, PrintOnlyWhileSwitchedOn) {
  const ASN1OCTET bytes[] = {0x30, 0x03, 0x41};
  CaptureStdout();
  rtdiag("hidden %d\n", 1);
  rtDiagHexDump(bytes, sizeof bytes);
  EXPECT_EQ(GetCapturedStdout(), "");

  rtSetDiag(1);
  CaptureStdout();
  rtdiag("shown %d\n", 2);
  rtDiagHexDump(bytes, sizeof bytes);
  std::string out = GetCapturedStdout();
  rtSetDiag(0);
  EXPECT_EQ(out.rfind("shown 2\n", 0), 0u);
  EXPECT_EQ(out.substr(8), dumpToString(bytes, sizeof bytes));
}
