#include "message_input.h"

#include <quillon/rtBase64.h>
#include <quillon/rtContext.h>

#include <errno.h>
#include <stdio.h>
#include <string.h>

namespace quillon_tool {

namespace {

const char kBegin[] = "-----BEGIN ";
const char kEnd[] = "-----END ";
const char kDashes[] = "-----";

bool startsWith(const std::string& s, const char* prefix) {
  return s.compare(0, strlen(prefix), prefix) == 0;
}

// The label of an armour line "<prefix>LABEL-----", or false when the line is not one.
bool armourLabel(const std::string& line, const char* prefix, std::string& label) {
  size_t start = strlen(prefix);
  size_t dashes = strlen(kDashes);
  if (!startsWith(line, prefix) || line.size() < start + dashes ||
      line.compare(line.size() - dashes, dashes, kDashes) != 0) {
    return false;
  }
  label = line.substr(start, line.size() - start - dashes);
  return true;
}

std::string trimRight(const std::string& s) {
  size_t end = s.find_last_not_of(" \t\r");
  return end == std::string::npos ? std::string() : s.substr(0, end + 1);
}

std::vector<std::string> splitLines(const std::vector<uint8_t>& content) {
  std::vector<std::string> lines;
  std::string line;
  for (uint8_t c : content) {
    if (c == '\n') {
      lines.push_back(trimRight(line));
      line.clear();
    } else {
      line += static_cast<char>(c);
    }
  }
  if (!line.empty()) lines.push_back(trimRight(line));
  return lines;
}

bool decodeBase64(const std::string& text, std::vector<uint8_t>& out, std::string& error) {
  ASN1CTXT ctxt;
  if (rtInitContext(&ctxt, nullptr) != 0) {
    error = "cannot initialise a context";
    return false;
  }
  int len = rtBase64DecodedLen(&ctxt, text.data(), text.size());
  if (len >= 0) {
    out.resize(static_cast<size_t>(len));
    len = rtBase64Decode(&ctxt, text.data(), text.size(), out.data(), out.size());
  }
  rtFreeContext(&ctxt);
  if (len < 0) {
    error = "invalid base64 text in a PEM block";
    return false;
  }
  out.resize(static_cast<size_t>(len));
  return true;
}

}  // namespace

bool looksLikePem(const std::vector<uint8_t>& content) {
  size_t i = 0;
  while (i < content.size() && strchr(" \t\r\n", content[i]) != nullptr) ++i;
  size_t n = strlen(kBegin);
  return content.size() - i >= n && memcmp(&content[i], kBegin, n) == 0;
}

bool parsePem(const std::vector<uint8_t>& content, std::vector<InputMessage>& out,
              std::string& error) {
  bool inBlock = false;
  std::string label, text, endLabel;
  size_t found = 0;
  for (const std::string& line : splitLines(content)) {
    if (!inBlock) {
      inBlock = armourLabel(line, kBegin, label);
      text.clear();
      continue;
    }
    if (armourLabel(line, kEnd, endLabel)) {
      if (endLabel != label) {
        error = "PEM block \"" + label + "\" ends with \"" + endLabel + "\"";
        return false;
      }
      InputMessage message;
      message.label = label;
      if (!decodeBase64(text, message.octets, error)) return false;
      out.push_back(std::move(message));
      ++found;
      inBlock = false;
    } else if (line.find(':') == std::string::npos) {
      // Lines with a colon are the headers of the older encrypted form, not base64.
      text += line;
    }
  }
  if (inBlock) {
    error = "PEM block \"" + label + "\" has no END line";
    return false;
  }
  if (found == 0) {
    error = "no PEM block found";
    return false;
  }
  return true;
}

bool readFile(const std::string& path, std::vector<uint8_t>& content, std::string& error) {
  bool isStdin = path == "-";
  FILE* f = isStdin ? stdin : fopen(path.c_str(), "rb");
  if (f == nullptr) {
    error = path + ": " + strerror(errno);
    return false;
  }
  uint8_t buf[65536];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, f)) > 0) content.insert(content.end(), buf, buf + n);
  bool failed = ferror(f) != 0;
  if (!isStdin) fclose(f);
  if (failed) {
    error = path + ": read error";
    return false;
  }
  return true;
}

bool readMessages(const std::string& path, std::vector<InputMessage>& out, std::string& error) {
  std::vector<uint8_t> content;
  if (!readFile(path, content, error)) return false;
  if (looksLikePem(content)) {
    if (parsePem(content, out, error)) return true;
    error = path + ": " + error;
    return false;
  }
  if (content.empty()) {
    error = path + ": empty file";
    return false;
  }
  out.push_back(InputMessage{std::string(), std::move(content)});
  return true;
}

}  // namespace quillon_tool
