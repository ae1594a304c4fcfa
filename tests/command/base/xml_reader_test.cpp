#include "command/base/xml_reader.h"

#include <gmock/gmock.h>

#include <string>

namespace {

/// What is wrong with the text; empty if nothing is.
std::string Judge(const std::string& text) try {
  static_cast<void>(ReadXml(text));
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

TEST(XmlReader, TakesAllThatAWellFormedDocumentMayHave) {
  for (const char* const text : {
           "<a/>",
           "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\" standalone='no' ?>\r\n<a></a>\n",
           "<!-- a - b --><?p i?><a b='1' c = \"&amp;&lt;&gt;&quot;&apos;&#9;&#x1F600;\"/><!----><?p?>",
           "<a>text ]] > <b><![CDATA[<&]] >]]></b> \xC3\xA9</a >",
       }) {
    EXPECT_EQ(Judge(text), "") << text;
  }
}

TEST(XmlReader, RefusesWhatIsNotWellFormed) {
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

TEST(XmlReader, SaysWhatIsWrongWithAReference) {
  EXPECT_THAT(Judge("<a>&#0;</a>"), testing::HasSubstr("a reference to no character"));
  EXPECT_THAT(Judge("<a>&#x110000;</a>"), testing::HasSubstr("a reference to no character"));
}

TEST(XmlReader, RefusesAZeroByteWhereverItStands) {
  EXPECT_NE(Judge(std::string("<a/>\0", 5)), "");
  EXPECT_NE(Judge(std::string("<a>\0</a>", 8)), "");
}

TEST(XmlReader, RefusesDocumentTypesAndTheirEntities) {
  for (const char* const text :
       {"<!DOCTYPE a><a/>", "<!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;</a>", "<a><!ENTITY b 'c'></a>"}) {
    EXPECT_NE(Judge(text), "") << text;
  }
}

TEST(XmlReader, ReadsATree) {
  const TXmlElement root = ReadXml("<a x='1' y='&lt;2'>b<c>d<e/></c><!-- f --><![CDATA[<g>]]><c z=''/></a>");
  EXPECT_EQ(root.name, "a");
  EXPECT_EQ(root.text, "b<g>");
  const std::vector<std::pair<std::string, std::string>> attributes = {{"x", "1"}, {"y", "<2"}};
  EXPECT_EQ(root.attributes, attributes);
  ASSERT_EQ(root.children.size(), 2U);
  EXPECT_EQ(root.children[0].text, "d");
  EXPECT_EQ(root.children[0].children.at(0).name, "e");
  EXPECT_EQ(*root.children[1].FindAttribute("z"), "");
  EXPECT_EQ(root.children[1].FindAttribute("x"), nullptr);
  EXPECT_EQ(root.FindChild("c"), &root.children[0]);
  EXPECT_EQ(root.FindChild("e"), nullptr);
}

TEST(XmlReader, ReadsLineEndsAsLineFeedsAndBlanksOfAttributesAsSpaces) {
  const TXmlElement root = ReadXml("<a b='1\r\n2\t3\n&#10;'>4\r\n5\r6&#13;<![CDATA[\r]]></a>");
  EXPECT_EQ(*root.FindAttribute("b"), "1 2 3 \n");
  EXPECT_EQ(root.text, "4\n5\n6\r\n");
}

TEST(XmlReader, ReadsReferencesAsTheirCharacters) {
  EXPECT_EQ(ReadXml("<a>&amp;&lt;&gt;&quot;&apos;&#65;&#xe9;&#x20AC;&#x1F600;</a>").text,
            "&<>\"'A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(XmlReader, RefusesWhatIsBeyondItsLimits) {
  TXmlLimits limits;
  limits.size = 40;
  limits.depth = 3;
  limits.attributes = 2;
  limits.elements = 4;
  const auto judge = [&](const std::string& text) -> std::string {
    try {
      static_cast<void>(ReadXml(text, limits));
      return "";
    } catch (const TXmlFault& fault) {
      return fault.what();
    }
  };
  EXPECT_EQ(judge("<a><a><a></a></a></a>"), "");
  EXPECT_EQ(judge("<a><a><a><a></a></a></a></a>"), "elements nested too deep at byte 12");
  EXPECT_EQ(judge("<a b='' c=''/>"), "");
  EXPECT_EQ(judge("<a b='' c='' d=''/>"), "too many attributes of an element at byte 14");
  EXPECT_EQ(judge("<a><a/><a/><a/></a>"), "");
  EXPECT_EQ(judge("<a><a/><a/><a/><a/></a>"), "too many elements at byte 16");
  EXPECT_EQ(judge("<a>" + std::string(33, ' ') + "</a>"), "");
  EXPECT_EQ(judge("<a>" + std::string(34, ' ') + "</a>"), "a document that is too large at byte 0");
}

TEST(XmlReader, RefusesElementsNestedTooDeep) {
  const std::size_t depth = TXmlLimits().depth;
  EXPECT_EQ(Judge(Repeat("<a>", depth) + Repeat("</a>", depth)), "");
  EXPECT_NE(Judge(Repeat("<a>", depth + 1) + Repeat("</a>", depth + 1)), "");
}

TEST(XmlReader, SaysWhereTheFaultIs) { EXPECT_EQ(Judge("<a></b>"), "an end tag of another element at byte 6"); }
