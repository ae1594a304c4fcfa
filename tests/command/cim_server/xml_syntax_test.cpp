#include "command/cim_server/xml_syntax.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// What is wrong with the text; empty when nothing is.
std::string Judge(const std::string& text) try {
  RequireWellFormedXml(text);
  return "";
} catch (const TXmlFault& fault) {
  return fault.what();
}

std::string Repeat(const std::string& piece, std::size_t count) {
  std::string text;
  while (count-- > 0) text += piece;
  return text;
}

}  // namespace

TEST(XmlSyntax, TakesAllThatAWellFormedDocumentMayHave) {
  for (const char* const text : {
           "<a/>",
           "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\" standalone='no' ?>\r\n<a></a>\n",
           "<!-- a - b --><?p i?><a b='1' c = \"&amp;&lt;&gt;&quot;&apos;&#9;&#x1F600;\"/><!----><?p?>",
           "<a>text ]] > <b><![CDATA[<&]] >]]></b> \xC3\xA9</a >",
       }) {
    EXPECT_EQ(Judge(text), "") << text;
  }
}

TEST(XmlSyntax, RefusesWhatIsNotWellFormed) {
  for (const char* const text : {
           "",
           " ",
           "a",
           "<",
           "<a",
           "<a>",
           "</a>",
           "<a></b>",
           "<a/><b/>",
           "<a/>b",
           "<a><b></a></b>",
           "<1/>",
           "<a b/>",
           "<a b=1/>",
           "<a b='1'c='2'/>",
           "<a b='1' b='2'/>",
           "<a b='<'/>",
           "<a b='&'/>",
           "<a>&</a>",
           "<a>&b;</a>",
           "<a>&#;</a>",
           "<a>&#x;</a>",
           "<a>&#0;</a>",
           "<a>&#xD800;</a>",
           "<a>&#xFFFF;</a>",
           "<a>&#x110000;</a>",
           "<a>&#99999999999999999999;</a>",
           "<a>]]></a>",
           "<a><!-- -- --></a>",
           "<a><!-- ",
           "<a><![CDATA[</a>",
           "<![CDATA[a]]>",
           "<a><?xml version='1.0'?></a>",
           " <?xml version='1.0'?><a/>",
           "<?xml?><a/>",
           "<?xml version='2.0'?><a/>",
           "<?xml version='1.0' encoding='utf-16'?><a/>",
           "<a>\x01</a>",
           "<a>\xFF</a>",
           "<a>\xED\xA0\x80</a>",
           "<a>\xEF\xBF\xBF</a>",
           "<\xC3\xA9/>",
       }) {
    EXPECT_NE(Judge(text), "") << text;
  }
}

TEST(XmlSyntax, RefusesAZeroByteWhereverItStands) {
  EXPECT_NE(Judge(std::string("<a/>\0", 5)), "");
  EXPECT_NE(Judge(std::string("<a>\0</a>", 8)), "");
}

TEST(XmlSyntax, RefusesDocumentTypesAndTheirEntities) {
  for (const char* const text :
       {"<!DOCTYPE a><a/>", "<!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;</a>", "<a><!ENTITY b 'c'></a>"}) {
    EXPECT_NE(Judge(text), "") << text;
  }
}

TEST(XmlSyntax, RefusesElementsNestedTooDeep) {
  EXPECT_EQ(Judge(Repeat("<a>", kMaxXmlDepth) + Repeat("</a>", kMaxXmlDepth)), "");
  EXPECT_NE(Judge(Repeat("<a>", kMaxXmlDepth + 1) + Repeat("</a>", kMaxXmlDepth + 1)), "");
}

TEST(XmlSyntax, SaysWhereTheFaultIs) { EXPECT_EQ(Judge("<a></b>"), "an end tag of another element at byte 6"); }
