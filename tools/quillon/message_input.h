// Reading the messages a user hands to the quillon tool: a file of DER or BER octets, or a
// PEM file of one or more "-----BEGIN ...-----" blocks (a certificate bundle, for one).
#ifndef QUILLON_TOOL_MESSAGE_INPUT_H
#define QUILLON_TOOL_MESSAGE_INPUT_H

#include <stdint.h>

#include <string>
#include <vector>

namespace quillon_tool {

struct InputMessage {
  std::string label;            // the PEM armour's label ("CERTIFICATE"), empty for DER/BER
  std::vector<uint8_t> octets;  // the encoding
};

// True when the text starts, after white space, with a PEM armour line.
bool looksLikePem(const std::vector<uint8_t>& content);

// The base64 blocks of a PEM text, decoded in order. Text outside the blocks is ignored, and
// so are header lines ("Proc-Type: ...") inside them. False, with a reason in `error`, for an
// unterminated block, a mismatched END label, bad base64 or a text without any block.
bool parsePem(const std::vector<uint8_t>& content, std::vector<InputMessage>& out,
              std::string& error);

// The whole of a file ("-" for standard input).
bool readFile(const std::string& path, std::vector<uint8_t>& content, std::string& error);

// The messages of a file: its PEM blocks, or the file itself as one DER/BER message.
bool readMessages(const std::string& path, std::vector<InputMessage>& out, std::string& error);

}  // namespace quillon_tool

#endif
