// The BER encode and decode buffers driven through a control class, as callers use them.
#include <gtest/gtest.h>
#include <quillon/asn1BerCppTypes.h>
#include <quillon/rtUtil.h>

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>
#include <typeinfo>
#include <vector>

#include "integer_control.h"

namespace {

using Bytes = std::vector<ASN1OCTET>;

Bytes encoding(ASN1BEREncodeBuffer& buffer) {
  const ASN1OCTET* p = buffer.getMsgPtr();
  return Bytes(p, p + buffer.getMsgLen());
}

// The status of the exception action throws, "none", or the exception's type when it is not
// the base class itself (callers catch encode and decode failures as ASN1RTLException).
template <class Action>
std::string thrown(Action action) {
  try {
    action();
  } catch (const ASN1RTLException& e) {
    if (typeid(e) != typeid(ASN1RTLException)) return typeid(e).name();
    return std::to_string(e.getStatus());
  }
  return "none";
}

// A file that exists for one test.
class TempFile {
 public:
  explicit TempFile(const Bytes& contents) {
    char pattern[] = "/tmp/qn_berbuf_XXXXXX";
    int fd = mkstemp(pattern);
    path_ = pattern;
    if (fd >= 0) {
      if (!contents.empty() && write(fd, contents.data(), contents.size()) < 0) path_.clear();
      close(fd);
    }
  }
  ~TempFile() { unlink(path_.c_str()); }
  const char* path() const { return path_.c_str(); }

 private:
  std::string path_;
};

}  // namespace

TEST(BEREncodeBuffer, EncodesThroughAControlClass) {
  ASN1BEREncodeBuffer buffer;
  EXPECT_EQ(buffer.getMsgCopy(), nullptr);  // nothing encoded yet
  ASN1INT value = 300;
  IntegerControl control(buffer, value);
  EXPECT_EQ(control.Encode(), 4);
  EXPECT_EQ(encoding(buffer), (Bytes{0x02, 0x02, 0x01, 0x2C}));

  // A successful encode returns its length, which is no failure for operator<<.
  value = 5;
  buffer.init();
  EXPECT_EQ(&(buffer << control), &buffer);
  EXPECT_EQ(encoding(buffer), (Bytes{0x02, 0x01, 0x05}));

  // Without init() the next value goes in front of the last.
  buffer << control;
  EXPECT_EQ(encoding(buffer), (Bytes{0x02, 0x01, 0x05, 0x02, 0x01, 0x05}));
}

TEST(BEREncodeBuffer, MessageCopyRunsToTheBuffersEnd) {
  ASN1OCTET area[16];
  area[15] = 0xEE;  // the byte the backward encoder leaves unused
  ASN1BEREncodeBuffer buffer(area, sizeof area);
  ASN1INT value = 7;
  IntegerControl control(buffer, value);
  ASSERT_EQ(control.Encode(), 3);
  EXPECT_EQ(buffer.getMsgPtr(), area + 12);

  ASN1OCTET* copy = buffer.getMsgCopy();
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, area + 12);
  EXPECT_EQ(Bytes(copy, copy + 4), (Bytes{0x02, 0x01, 0x07, 0xEE}));
  delete[] copy;

  buffer.init();
  EXPECT_EQ(buffer.getMsgLen(), 0);
  EXPECT_EQ(buffer.getMsgCopy(), nullptr);
}

TEST(BEREncodeBuffer, FailuresThrowTheBaseException) {
  ASN1OCTET area[3];  // room for two octets only
  ASN1BEREncodeBuffer buffer(area, sizeof area);
  ASN1INT value = 5;
  IntegerControl control(buffer, value);
  EXPECT_EQ(thrown([&] { buffer << control; }), std::to_string(ASN_E_BUFOVFLW));

  // A fresh caller buffer makes the same value fit.
  ASN1OCTET bigger[8];
  EXPECT_EQ(buffer.setBuffer(bigger, sizeof bigger), 0);
  EXPECT_EQ(thrown([&] { buffer << control; }), "none");
  EXPECT_EQ(encoding(buffer), (Bytes{0x02, 0x01, 0x05}));
}

TEST(BERDecodeBuffer, DecodesAndKeepsItsPositionAcrossInit) {
  const ASN1OCTET msg[] = {0x02, 0x01, 0x05};
  ASN1BERDecodeBuffer buffer(msg, sizeof msg);
  EXPECT_EQ(buffer.getCtxtPtr()->buffer.data, nullptr);  // attached by the first decode
  ASN1INT value = 0;
  IntegerControl control(buffer, value);
  buffer >> control;
  EXPECT_EQ(value, 5);
  EXPECT_EQ(buffer.getMsgPtr(), msg);
  EXPECT_EQ(buffer.getByteIndex(), 3);

  // Neither init() nor the same message again rewinds: the next decode starts behind this one.
  buffer.init();
  EXPECT_EQ(buffer.getByteIndex(), 3);
  EXPECT_EQ(buffer.setBuffer(msg, sizeof msg), 0);
  EXPECT_EQ(buffer.getByteIndex(), 3);
  EXPECT_EQ(thrown([&] { buffer >> control; }), std::to_string(ASN_E_ENDOFBUF));

  // Another message (even with equal bytes) starts from its beginning.
  const ASN1OCTET again[] = {0x02, 0x01, 0x06};
  EXPECT_EQ(buffer.setBuffer(again, sizeof again), 0);
  EXPECT_EQ(buffer.getByteIndex(), 0);
  value = 0;
  buffer >> control;
  EXPECT_EQ(value, 6);
}

TEST(BERDecodeBuffer, SuccessiveDecodesReadSuccessiveMessages) {
  const ASN1OCTET msgs[] = {0x02, 0x01, 0x05, 0x02, 0x02, 0x01, 0x00, 0x02, 0x01, 0x07};
  ASN1BERDecodeBuffer buffer(msgs, sizeof msgs);
  ASN1INT value = 0;
  IntegerControl control(buffer, value);
  std::vector<ASN1INT> values;
  for (int i = 0; i < 3; i++) {
    buffer >> control;
    values.push_back(value);
  }
  EXPECT_EQ(values, (std::vector<ASN1INT>{5, 256, 7}));
  EXPECT_EQ(buffer.getMsgPtr(), msgs + 7);
  EXPECT_EQ(thrown([&] { buffer >> control; }), std::to_string(ASN_E_ENDOFBUF));

  // Half read, the same message stays attached.
  const ASN1OCTET seq[] = {0x30, 0x06, 0x02, 0x01, 0x01, 0x02, 0x01, 0x02, 0x02, 0x01, 0x03};
  ASN1BERDecodeBuffer nested(seq, sizeof seq);
  int len = 0;
  ASSERT_NE(nested.findElement(ASN_ID_INT, len, 1), nullptr);
  IntegerControl inner(nested, value);
  nested >> inner;
  EXPECT_EQ(value, 1);
  nested.init();
  EXPECT_EQ(nested.getMsgPtr(), seq);
  EXPECT_EQ(nested.getByteIndex(), 5);
}

TEST(BERDecodeBuffer, BadMessagesGiveStatusesNotCrashes) {
  const ASN1OCTET octets[] = {0x04, 0x01, 0x00};
  ASN1BERDecodeBuffer buffer(octets, sizeof octets);
  ASN1INT value = 0;
  IntegerControl control(buffer, value);
  EXPECT_EQ(thrown([&] { buffer >> control; }), std::to_string(ASN_E_IDNOTFOU));

  // A length running past the message.
  const ASN1OCTET cut[] = {0x02, 0x05, 0x01};
  EXPECT_LT(buffer.setBuffer(cut, sizeof cut), 0);

  ASN1BERDecodeBuffer empty;
  IntegerControl onEmpty(empty, value);
  EXPECT_LT(onEmpty.Decode(), 0);
  EXPECT_EQ(empty.getStatus(), ASN_E_INVPARAM);
}

TEST(BERDecodeBuffer, FindElementWalksInDocumentOrder) {
  // SEQUENCE { INTEGER 1, SEQUENCE { INTEGER 2, OCTET STRING holding 02 01 09 }, INTEGER 3 }
  const ASN1OCTET msg[] = {0x30, 0x10, 0x02, 0x01, 0x01, 0x30, 0x08, 0x02, 0x01, 0x02,
                           0x04, 0x03, 0x02, 0x01, 0x09, 0x02, 0x01, 0x03};
  ASN1BERDecodeBuffer buffer(msg, sizeof msg);
  int len = -1;
  const ASN1OCTET* found = buffer.findElement(ASN_ID_INT, len, 1);
  EXPECT_EQ(found, msg + 2);
  EXPECT_EQ(len, 1);
  EXPECT_EQ(buffer.getByteIndex(), 2);

  // The next one is inside the nested SEQUENCE; the OCTET STRING's contents are not searched.
  EXPECT_EQ(buffer.findElement(ASN_ID_INT, len, 0), msg + 7);
  EXPECT_EQ(buffer.findElement(ASN_ID_INT, len, 0), msg + 15);
  len = -1;
  EXPECT_EQ(buffer.findElement(ASN_ID_INT, len, 0), nullptr);
  EXPECT_EQ(len, -1);
  EXPECT_EQ(buffer.getByteIndex(), 15);

  // A decode starts at the element found.
  EXPECT_EQ(buffer.findElement(ASN_ID_INT, len, 1), msg + 2);
  EXPECT_EQ(buffer.findElement(ASN_ID_INT, len, 0), msg + 7);
  ASN1INT value = 0;
  IntegerControl control(buffer, value);
  buffer >> control;
  EXPECT_EQ(value, 2);

  // The constructed bit does not matter; a tag not in the message is not found.
  EXPECT_EQ(buffer.findElement(ASN_ID_SEQ, len, 1), msg);
  EXPECT_EQ(len, 16);
  EXPECT_EQ(buffer.findElement(ASN_ID_SEQ | TM_CONS, len, 0), msg + 5);
  len = -1;
  EXPECT_EQ(buffer.findElement(TM_CTXT | 0, len, 1), nullptr);
  EXPECT_EQ(len, -1);
}

TEST(BERDecodeBuffer, FindElementStopsAtTheEndOfAnIndefiniteMessage) {
  // SEQUENCE (indefinite) { INTEGER 1 } followed by bytes that are not part of it.
  const ASN1OCTET msg[] = {0x30, 0x80, 0x02, 0x01, 0x01, 0x00, 0x00, 0x02, 0x01, 0x09};
  ASN1BERDecodeBuffer buffer(msg, sizeof msg);
  int len = 0;
  EXPECT_EQ(buffer.findElement(ASN_ID_INT, len, 1), msg + 2);
  EXPECT_EQ(buffer.findElement(ASN_ID_INT, len, 0), nullptr);

  // Malformed: a length beyond the message ends the search.
  const ASN1OCTET bad[] = {0x30, 0x80, 0x04, 0x7F, 0x00};
  ASN1BERDecodeBuffer badBuffer(bad, sizeof bad);
  EXPECT_EQ(badBuffer.findElement(ASN_ID_INT, len, 1), nullptr);
  ASN1BERDecodeBuffer nothing;
  EXPECT_EQ(nothing.findElement(ASN_ID_INT, len, 0), nullptr);
  EXPECT_EQ(nothing.findElement(ASN_ID_INT, len, 1), nullptr);
}

TEST(BERDecodeBuffer, ReadsMessagesFromFiles) {
  TempFile file(Bytes{0x02, 0x02, 0x01, 0x00});
  ASN1BERDecodeBuffer buffer;
  ASSERT_EQ(buffer.readBinaryFile(file.path()), 0);
  ASN1INT value = 0;
  IntegerControl control(buffer, value);
  buffer >> control;
  EXPECT_EQ(value, 256);

  ASN1CTXT* pctxt = buffer.getCtxtPtr();
  ASN1OCTET* data = nullptr;
  int length = 0;
  ASSERT_EQ(rtFileReadBinary(pctxt, file.path(), &data, &length), 0);
  EXPECT_EQ(length, 4);
  EXPECT_EQ(rtMemHeapCheckPtr(&pctxt->memHeap, data), 1);
  EXPECT_EQ(data[2], 0x01);

  ASN1BERDecodeBuffer missing;
  EXPECT_EQ(missing.readBinaryFile("/nonexistent/qn/file.der"), ASN_E_FILNOTFOU);
  EXPECT_EQ(missing.getStatus(), ASN_E_FILNOTFOU);

  // An empty file would otherwise read as a message of unknown length.
  TempFile emptyFile(Bytes{});
  ASN1BERDecodeBuffer empty;
  EXPECT_EQ(empty.readBinaryFile(emptyFile.path()), ASN_E_ENDOFBUF);

  // A directory opens but does not read.
  ASN1BERDecodeBuffer directory;
  EXPECT_EQ(directory.readBinaryFile("/tmp"), ASN_E_FILEREAD);
}
