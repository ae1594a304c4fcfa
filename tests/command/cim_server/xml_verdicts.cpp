// xml_verdicts FILE...: a line for each file, the server's verdict on it: "well-formed", or what is wrong.
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "command/cim_server/xml_syntax.h"

int main(int argumentCount, char** arguments) {
  for (int number = 1; number < argumentCount; ++number) {
    std::ifstream stream(arguments[number], std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    try {
      RequireWellFormedXml(text);
      std::cout << "well-formed\n";
    } catch (const TXmlFault& fault) {
      std::cout << fault.what() << '\n';
    }
  }
}
