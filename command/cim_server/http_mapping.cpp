#include "command/cim_server/http_mapping.h"

#include <arpa/inet.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>

#include "command/base/text_encoding.h"
#include "command/base/xml_text.h"
#include "command/cim_server/cim_xml_reader.h"
#include "command/cim_server/object_name.h"

namespace {

constexpr unsigned int kHttpBadRequest = 400;
constexpr unsigned int kForbidden = 403;
constexpr unsigned int kMethodNotAllowed = 405;
constexpr unsigned int kNotExtended = 510;

constexpr const char* kPost = "POST";
constexpr const char* kExtendedPost = "M-POST";
constexpr std::string_view kMapping = "http://www.dmtf.org/cim/mapping/http/";  // the version follows
constexpr const char* kUnsupported = "unsupported-operation";
constexpr const char* kMismatch = "header-mismatch";

std::string_view Trim(std::string_view text) {
  constexpr std::string_view blanks = " \t";
  const std::size_t first = std::min(text.size(), text.find_first_not_of(blanks));
  return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

/// Removes the text up to the next separator, and the separator, and returns the text without blanks around it.
std::string_view CutUpTo(std::string_view& text, char separator) {
  const std::string_view piece = text.substr(0, text.find(separator));
  text.remove_prefix(std::min(text.size(), piece.size() + 1));
  return Trim(piece);
}

std::string_view RemoveQuotes(std::string_view text) {
  const bool isQuoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  return isQuoted ? text.substr(1, text.size() - 2) : text;
}

/// The number with which the headers of CIM operations begin; empty if the extensions do not include them.
/// `extensions`: the header Man (RFC 2774), such as "http://..."; ns=73.
std::string FindNumber(std::string_view extensions) {
  while (!extensions.empty()) {
    std::string_view extension = CutUpTo(extensions, ',');
    if (!IsSameName(RemoveQuotes(CutUpTo(extension, ';')).substr(0, kMapping.size()), kMapping)) continue;
    while (!extension.empty()) {
      std::string_view parameter = CutUpTo(extension, ';');
      if (!IsSameName(CutUpTo(parameter, '='), "ns")) continue;
      const std::string_view number = RemoveQuotes(Trim(parameter));
      const bool isNumber = number.find_first_not_of("0123456789") == std::string_view::npos;
      if (isNumber) return std::string(number);
    }
  }
  return "";
}

/// The prefix of the names of an M-POST's headers, such as "73-"; empty for a POST.
std::string GetPrefix(const THttpRequest& request) {
  if (request.method != kExtendedPost) return "";
  for (const auto& [name, value] : request.headers) {
    const std::string number = IsSameName(name, "Man") ? FindNumber(value) : "";
    if (!number.empty()) return number + "-";
  }
  throw TRefused(kNotExtended, "", "an M-POST without the header Man: " + std::string(kMapping) + "...; ns=NN");
}

void RequireMethod(const THttpRequest& request) {
  if (request.method == kPost || request.method == kExtendedPost) return;
  throw TRefused(kMethodNotAllowed, kUnsupported, "CIM operations come by POST");
}

void RequireNoWebPage(const THttpRequest& request) {
  if (request.GetHeader("Origin").empty()) return;
  throw TRefused(kForbidden, "", "web pages are not answered (the header Origin)");
}

bool IsLoopback(std::string host) {
  const std::size_t colon = host.find(':', host.front() == '[' ? host.find(']') : 0);
  if (colon != std::string::npos) {
    if (host.find_first_not_of("0123456789", colon + 1) != std::string::npos) return false;
    host.resize(colon);
  }
  in_addr address = {};
  constexpr std::uint32_t loopback = 127;  // its first byte
  const bool isNumber = inet_pton(AF_INET, host.c_str(), &address) == 1 && ntohl(address.s_addr) >> 24 == loopback;
  return isNumber || host == "[::1]" || IsSameName(host, "localhost");
}

/// Refuses requests of web pages from a stranger's name that resolves to this machine: the browser takes this server as
/// the page's own and sends no Origin. CIM clients use only loopback names; a reverse proxy gives its name in another
/// header.
void RequireLoopbackName(const THttpRequest& request) {
  for (const auto& [name, value] : request.headers) {
    if (!IsSameName(name, "Host") || value.empty() || IsLoopback(value)) continue;
    throw TRefused(kForbidden, "",
                   "the header Host is " + value +
                       " and not localhost, 127.0.0.1 or [::1]; a reverse proxy sends "
                       "Host: localhost, and the name that its client used as X-Forwarded-Host");
  }
}

/// Decodes "root%2Fcimv2" to "root/cimv2".
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

/// Proxies decide by the headers, so the headers must agree with the XML.
void RequireSame(const std::string& header, const std::string& value, const std::string& inXml) {
  if (value.empty() || IsSameName(UndoPercents(value), inXml)) return;
  throw TRefused(kHttpBadRequest, kMismatch, header + " is " + value + ", and the XML says " + inXml);
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
  RequireLoopbackName(request);
  const std::string prefix = GetPrefix(request);
  if (!IsSameName(request.GetHeader(prefix + "CIMOperation"), "MethodCall")) {
    throw TRefused(kHttpBadRequest, kUnsupported,
                   "not a CIM operation: no header " + prefix + "CIMOperation: MethodCall");
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
    answer.headers.emplace_back("Man", std::string(kMapping) + "v1.0; ns=" + prefix.substr(0, prefix.size() - 1));
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
  for (const char* const name : {"X-Forwarded-Host", "Host"}) {
    std::string host = request.GetHeader(name);
    if (!host.empty() && host.size() <= maxSize && IsXmlText(host)) return host;
  }
  return fallback;
}
