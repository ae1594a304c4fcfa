// Answers a CIM client's request made from any text. It must be refused with a status and a CIMError, or answered in
// well-formed XML with the request's ID.
//
// Input: the body of the HTTP request.
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <sstream>

#include "command/base/xml_reader.h"
#include "command/cim_server/cim_operations.h"
#include "command/cim_server/cim_xml_reader.h"
#include "fuzz/input.h"
#include "fuzz/require.h"
#include "tests/command/cim_server/cim_answer.h"

namespace {

bool IsWellFormed(const std::string& text) try {
  static_cast<void>(ReadXml(text));
  return true;
} catch (const TXmlFault&) {
  return false;
}

void RequireRefusal(const TRefused& refused, const std::string& text) {
  Require(refused.GetStatus() == 400 || refused.GetStatus() == 501, "a refusal has its status");
  const bool isFault = refused.GetCimError() == "request-not-well-formed";
  Require(isFault != IsWellFormed(text), "what is well-formed is refused for something else, and nothing else is");
}

void RequireAnswer(const TCimRequest& request, const std::string& answer) {
  Require(IsWellFormed(answer), "an answer is well-formed");
  std::istringstream stream(answer);
  boost::property_tree::ptree tree;
  read_xml(stream, tree);
  Require(tree.get<std::string>("CIM.MESSAGE.<xmlattr>.ID") == request.messageId, "an answer bears the request's ID");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const TCimModel model(MakeTwoMonitorsJson());
  static TEnumerations enumerations;
  const std::string text = TInput(data, size).TakeRest();
  try {
    const TCimRequest request = ReadCimRequest(text);
    Require(IsWellFormed(text), "what is read is well-formed");
    RequireAnswer(request, AnswerCim(request, model, enumerations, "host").xml);
    RequireAnswer(request, AnswerFailure(request, text).xml);
  } catch (const TRefused& refused) {
    RequireRefusal(refused, text);
  }
  return 0;
}
