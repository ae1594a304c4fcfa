#include "command/cim_server/http_mapping.h"

#include <algorithm>
#include <charconv>

#include "command/base/text_encoding.h"
#include "command/base/xml_text.h"
#include "command/cim_server/cim_xml_reader.h"
#include "command/cim_server/object_name.h"

namespace {

constexpr unsigned int kBadRequest = 400;
constexpr unsigned int kForbidden = 403;
constexpr unsigned int kMethodNotAllowed = 405;
constexpr unsigned int kNotExtended = 510;

constexpr const char* kPost = "POST";
constexpr const char* kExtendedPost = "M-POST";
constexpr const char* kUnsupported = "unsupported-operation";
constexpr const char* kMismatch = "header-mismatch";

/// RFC 2774: the headers of an M-POST begin with the number that its header Man gives to the extension, such as "73-".
std::string GetPrefix(const THttpRequest& request) {
  if (request.method != kExtendedPost) return "";
  const std::string man = request.GetHeader("Man");
  const std::size_t first = man.find("ns=");
  if (first == std::string::npos) throw TRefused(kNotExtended, "", "an M-POST without the header Man: ...; ns=NN");
  const std::size_t last = std::min(man.size(), man.find_first_not_of("0123456789", first + 3));
  return man.substr(first + 3, last - first - 3) + "-";
}

void RequireMethod(const THttpRequest& request) {
  if (request.method == kPost || request.method == kExtendedPost) return;
  throw TRefused(kMethodNotAllowed, kUnsupported, "CIM operations come by POST");
}

void RequireNoWebPage(const THttpRequest& request) {
  if (request.GetHeader("Origin").empty()) return;
  throw TRefused(kForbidden, "", "web pages are not answered (the header Origin)");
}

/// "root%2Fcimv2" as "root/cimv2".
std::string UndoPercents(const std::string& text) {
  std::string plain;
  for (std::size_t position = 0; position < text.size(); ++position) {
    unsigned char byte = 0;
    const char* const digits = text.data() + position + 1;
    const bool isCode = text[position] == '%' && position + 2 < text.size() &&
                        std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2;
    plain += isCode ? static_cast<char>(byte) : text[position];
    if (isCode) position += 2;
  }
  return plain;
}

/// Proxies decide by the headers, so they must not say other than the XML.
void RequireSame(const std::string& header, const std::string& value, const std::string& inXml) {
  if (value.empty() || IsSameName(UndoPercents(value), inXml)) return;
  throw TRefused(kBadRequest, kMismatch, header + " is " + value + ", and the XML says " + inXml);
}

}  // namespace

std::string THttpRequest::GetHeader(const std::string& name) const {
  const auto found =
      std::find_if(headers.begin(), headers.end(), [&](const auto& header) { return IsSameName(header.first, name); });
  return found == headers.end() ? std::string() : found->second;
}

TCimRequest ReadHttpRequest(const THttpRequest& request) {
  RequireMethod(request);
  RequireNoWebPage(request);
  const std::string prefix = GetPrefix(request);
  if (!IsSameName(request.GetHeader(prefix + "CIMOperation"), "MethodCall")) {
    throw TRefused(kBadRequest, kUnsupported, "not a CIM operation: no header " + prefix + "CIMOperation: MethodCall");
  }
  TCimRequest read = ReadCimRequest(request.body);
  RequireSame("CIMMethod", request.GetHeader(prefix + "CIMMethod"), read.operation);
  RequireSame("CIMObject", request.GetHeader(prefix + "CIMObject"), read.nameSpace);
  return read;
}

THttpAnswer MakeHttpAnswer(const THttpRequest& request, std::string xml) {
  THttpAnswer answer;
  const std::string prefix = GetPrefix(request);
  answer.headers = {{"Content-Type", "application/xml; charset=\"utf-8\""},
                    {"Cache-Control", "no-cache"},
                    {prefix + "CIMOperation", "MethodResponse"}};
  if (!prefix.empty()) {
    answer.headers.emplace_back("Ext", "");
    answer.headers.emplace_back("Man",
                                "http://www.dmtf.org/cim/mapping/http/v1.0; ns=" + prefix.substr(0, prefix.size() - 1));
  }
  answer.body = std::move(xml);
  return answer;
}

THttpAnswer MakeRefusal(const TRefused& refused) {
  THttpAnswer answer;
  answer.status = refused.GetStatus();
  answer.headers.emplace_back("Content-Type", "text/plain; charset=\"utf-8\"");
  if (!refused.GetCimError().empty()) answer.headers.emplace_back("CIMError", refused.GetCimError());
  if (refused.GetStatus() == kMethodNotAllowed) answer.headers.emplace_back("Allow", "POST, M-POST");
  answer.body = ToPrintable(refused.what()) + "\n";
  return answer;
}

std::string GetHost(const THttpRequest& request, const std::string& fallback) {
  constexpr std::size_t maxSize = 255;
  const std::string host = request.GetHeader("Host");
  return host.empty() || host.size() > maxSize || !IsXmlText(host) ? fallback : host;
}
