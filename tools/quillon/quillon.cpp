// quillon: the library's command line. Lists the generated types, decodes a DER, BER or PEM
// message as a type (and writes its DER re-encoding), and tells which PKI message types a
// message decodes as.
//
// Reports go to standard error, so that standard output carries only what was asked for: the
// type list, the DER re-encoding, the types a message decodes as. Exit status: 0 success,
// 1 a message that does not decode, 2 a usage or file error.
#include <errno.h>
#include <stdio.h>
#include <string.h>

#include <set>
#include <string>
#include <vector>

#include "message_codec.h"
#include "message_input.h"
#include "open_types.h"
#include "type_registry.h"

namespace quillon_tool {

namespace {

enum ExitStatus { kOk = 0, kNotDecoded = 1, kUsage = 2 };

const char kUsageText[] =
    "usage: quillon types\n"
    "       quillon decode --type TYPE [--to der] [-o OUT] FILE\n"
    "       quillon identify FILE\n"
    "\n"
    "  types     list every type as Module.Type\n"
    "  decode    decode FILE (DER, BER or PEM; \"-\" for standard input) as TYPE, given as\n"
    "            Type or Module.Type; --to der writes the DER re-encoding to standard\n"
    "            output, or to OUT with -o\n"
    "  identify  list the PKI message types that FILE decodes as\n";

// The message types "identify" tries, the ones a PKI file usually holds.
const char* const kMessageTypes[] = {
    "PKIX1Explicit88.Certificate",
    "PKIX1Explicit88.CertificateList",
    "CryptographicMessageSyntax.ContentInfo",
    "CryptographicMessageSyntax.AttributeCertificate",
    "PKIXOCSP.OCSPRequest",
    "PKIXOCSP.OCSPResponse",
    "PKIXOCSP.BasicOCSPResponse",
    "PKIXTSP.TimeStampReq",
    "PKIXTSP.TimeStampResp",
    "PKIXTSP.TSTInfo",
    "PKIXCMP.PKIMessage",
    "PKIXCMP.CertificationRequest",
    "PKIXCRMF.CertReqMessages",
    "PKIXDVCS.DVCSRequest",
    "PKIXDVCS.DVCSResponse",
};

struct Options {
  std::string command;
  std::string type;
  std::string to;
  std::string output;
  std::vector<std::string> files;
};

int usageError(const std::string& message) {
  fprintf(stderr, "quillon: %s\n%s", message.c_str(), kUsageText);
  return kUsage;
}

// Takes the value of an option given as "--name VALUE" or "--name=VALUE".
bool optionValue(const std::vector<std::string>& args, size_t& i, const std::string& name,
                 std::string& value) {
  const std::string& arg = args[i];
  if (arg == name && i + 1 < args.size()) {
    value = args[++i];
    return true;
  }
  if (arg.compare(0, name.size() + 1, name + "=") == 0) {
    value = arg.substr(name.size() + 1);
    return true;
  }
  return false;
}

// False (with the message) for an unknown option or a missing value.
bool parseArguments(const std::vector<std::string>& args, Options& options, std::string& error) {
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (optionValue(args, i, "--type", options.type) || optionValue(args, i, "--to", options.to) ||
        optionValue(args, i, "-o", options.output) ||
        optionValue(args, i, "--output", options.output)) {
      continue;
    }
    if (arg.size() > 1 && arg[0] == '-') {
      error = "unknown option or missing value: " + arg;
      return false;
    }
    if (options.command.empty()) {
      options.command = arg;
    } else {
      options.files.push_back(arg);
    }
  }
  return true;
}

std::string dottedOid(const ASN1OBJID& oid) {
  std::string text;
  for (ASN1UINT i = 0; i < oid.numids && i < ASN_K_MAXSUBIDS; ++i) {
    if (i) text += '.';
    text += std::to_string(oid.subid[i]);
  }
  return text;
}

// Counts the open-type values of a decoded message, by outcome.
class OpenTypeTally : public OpenTypeVisitor {
 public:
  void visit(const OpenTypeVisit& v) override {
    ++total;
    if (v.object->decoded != nullptr) {
      ++typed;
    } else {
      opaque.insert(dottedOid(*v.key));
    }
  }

  int total = 0;
  int typed = 0;
  std::set<std::string> opaque;
};

// "  open-type values: N, M typed" and the identifiers of those left as octets.
std::string describeOpenTypes(const TypeEntry& type, const void* value) {
  OpenTypeTally tally;
  type.walk(value, tally, 0);
  std::string text = "  open-type values: " + std::to_string(tally.total) + ", " +
                     std::to_string(tally.typed) + " typed\n";
  if (!tally.opaque.empty()) {
    text += "  left as octets (identifier not in its object set):";
    for (const std::string& oid : tally.opaque) text += " " + oid;
    text += "\n";
  }
  return text;
}

// "FILE" for a single message, "FILE, block N (LABEL)" for a PEM block among several.
std::string messageName(const std::string& file, const std::vector<InputMessage>& messages,
                        size_t index) {
  if (messages.size() == 1) return file;
  return file + ", block " + std::to_string(index + 1) +
         (messages[index].label.empty() ? "" : " (" + messages[index].label + ")");
}

bool writeOutput(const std::string& path, const std::vector<uint8_t>& octets) {
  FILE* f = path.empty() ? stdout : fopen(path.c_str(), "wb");
  if (f == nullptr) {
    fprintf(stderr, "quillon: cannot write %s: %s\n", path.c_str(), strerror(errno));
    return false;
  }
  bool ok = fwrite(octets.data(), 1, octets.size(), f) == octets.size();
  ok = (path.empty() ? fflush(f) : fclose(f)) == 0 && ok;
  if (!ok) {
    fprintf(stderr, "quillon: write error on %s\n",
            path.empty() ? "standard output" : path.c_str());
  }
  return ok;
}

bool loadMessages(const std::string& file, std::vector<InputMessage>& messages) {
  std::string error;
  if (readMessages(file, messages, error)) return true;
  fprintf(stderr, "quillon: %s\n", error.c_str());
  return false;
}

// Decodes one message and, on success, appends its DER re-encoding to der.
int decodeOne(const TypeEntry& type, const std::string& name, const InputMessage& message,
              std::vector<uint8_t>& der) {
  MessageCodec codec(type);
  int stat = codec.decode(message.octets.data(), message.octets.size());
  if (stat < 0) {
    fprintf(stderr, "%s: does not decode as %s\n%s", name.c_str(), qualifiedName(type).c_str(),
            codec.errorReport().c_str());
    return kNotDecoded;
  }
  std::vector<uint8_t> encoding;
  int len = codec.encode(encoding);
  if (len < 0) {
    fprintf(stderr, "%s: decodes as %s but does not re-encode\n%s", name.c_str(),
            qualifiedName(type).c_str(), codec.errorReport().c_str());
    return kNotDecoded;
  }
  std::string reencoding = encoding == message.octets
                               ? std::string("re-encodes to the same octets")
                               : "re-encodes to " + std::to_string(encoding.size()) +
                                     " other octets (its DER form)";
  fprintf(stderr, "%s: %s, %zu octets, %s\n%s", name.c_str(), qualifiedName(type).c_str(),
          message.octets.size(), reencoding.c_str(),
          describeOpenTypes(type, codec.value()).c_str());
  der.insert(der.end(), encoding.begin(), encoding.end());
  return kOk;
}

int commandDecode(const Options& options) {
  if (options.type.empty()) return usageError("decode needs --type");
  if (options.files.size() != 1) return usageError("decode takes one FILE");
  if (!options.to.empty() && options.to != "der") {
    return usageError("--to supports der only, not " + options.to);
  }
  if (!options.output.empty() && options.to.empty()) return usageError("-o needs --to der");
  const TypeEntry* type = findType(options.type);
  if (type == nullptr) {
    fprintf(stderr, "quillon: no type %s (\"quillon types\" lists them)\n", options.type.c_str());
    return kUsage;
  }
  std::vector<InputMessage> messages;
  if (!loadMessages(options.files[0], messages)) return kUsage;
  std::vector<uint8_t> der;
  int status = kOk;
  for (size_t i = 0; i < messages.size(); ++i) {
    if (decodeOne(*type, messageName(options.files[0], messages, i), messages[i], der) != kOk) {
      status = kNotDecoded;
    }
  }
  if (status == kOk && !options.to.empty() && !writeOutput(options.output, der)) return kUsage;
  return status;
}

// The message types among kMessageTypes that a message decodes as, completely.
std::vector<const TypeEntry*> matchingTypes(const InputMessage& message) {
  std::vector<const TypeEntry*> found;
  for (const char* name : kMessageTypes) {
    const TypeEntry* type = findType(name);
    if (type == nullptr) continue;
    MessageCodec codec(*type);
    if (codec.decode(message.octets.data(), message.octets.size()) == 0) found.push_back(type);
  }
  return found;
}

int commandIdentify(const Options& options) {
  if (options.files.size() != 1) return usageError("identify takes one FILE");
  std::vector<InputMessage> messages;
  if (!loadMessages(options.files[0], messages)) return kUsage;
  int status = kOk;
  for (size_t i = 0; i < messages.size(); ++i) {
    std::string prefix = messages.size() == 1 ? "" : "block " + std::to_string(i + 1) + ": ";
    std::vector<const TypeEntry*> found = matchingTypes(messages[i]);
    for (const TypeEntry* type : found) {
      printf("%s%s\n", prefix.c_str(), qualifiedName(*type).c_str());
    }
    if (found.empty()) {
      fprintf(stderr, "%s: decodes as none of the PKI message types\n",
              messageName(options.files[0], messages, i).c_str());
      status = kNotDecoded;
    }
  }
  return status;
}

int commandTypes(const Options& options) {
  if (!options.files.empty()) return usageError("types takes no arguments");
  for (size_t i = 0; i < kTypeTableSize; ++i) printf("%s\n", qualifiedName(kTypeTable[i]).c_str());
  return kOk;
}

int run(const std::vector<std::string>& args) {
  Options options;
  std::string error;
  if (!parseArguments(args, options, error)) return usageError(error);
  if (options.command == "types") return commandTypes(options);
  if (options.command == "decode") return commandDecode(options);
  if (options.command == "identify") return commandIdentify(options);
  if (options.command == "help" || options.command.empty()) {
    fputs(kUsageText, options.command.empty() ? stderr : stdout);
    return options.command.empty() ? kUsage : kOk;
  }
  return usageError("unknown command " + options.command);
}

}  // namespace

}  // namespace quillon_tool

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) args[0] = "help";
  return quillon_tool::run(args);
}
