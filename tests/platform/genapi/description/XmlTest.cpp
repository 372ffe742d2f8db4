// XML as descriptions write it: what a text is, and what is no XML.
#include <gtest/gtest.h>

#include <string>

#include "../MemoryPort.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

std::string LoadError(const std::string& xml) {
  try {
    CNodeMapRef map;
    map._LoadXMLFromString(gcstring(xml.data(), xml.size()));
  } catch (const RuntimeException& error) {
    return error.GetDescription();
  }
  return "no error";
}

struct TextRow {
  const char* written;
  const char* read;
};

TEST(Xml, TextsAreDecoded) {
  const TextRow rows[] = {
      {"plain", "plain"},
      {" kept ", " kept "},
      {" \n\t ", ""},
      {"a &lt; b &amp;&amp; c &gt; d &quot;e&apos;", "a < b && c > d \"e'"},
      {"&#65;&#x42;&#xB5;&#x20AC;&#x1F4F7;", "AB\xC2\xB5\xE2\x82\xAC\xF0\x9F\x93\xB7"},
      {"&unknown; & &#; &#x; &#0; &#xD800; &#x110000; &#65",
       "&unknown; & &#; &#x; &#0; &#xD800; &#x110000; &#65"},
      {"one\r\ntwo\rthree\nfour", "one\ntwo\nthree\nfour"},
      {"a<!-- - -- b -->c", "ac"},
      {"a<?pi b?>c", "ac"},
      {"a <![CDATA[<b> & &lt;]]> c", "a <b> & &lt; c"},
      {"<![CDATA[ ]]>", " "},
      {"a<b>not<c/> this</b>d", "ad"},
      {"", ""},
  };
  for (const TextRow& row : rows) {
    Camera camera("<Integer Name=\"I\"><ToolTip>" + std::string(row.written) +
                  "</ToolTip><Description/><Value>1</Value></Integer>");
    EXPECT_STREQ(camera.Node("I").GetToolTip().c_str(), row.read) << row.written;
    EXPECT_EQ(camera.Integer("I").GetValue(), 1) << row.written;
  }
}

TEST(Xml, AttributesAreDecodedAndMayBeQuotedEitherWay) {
  CNodeMapRef map;
  map._LoadXMLFromString(
      "<?xml version='1.0'?><!DOCTYPE R [<!ENTITY x \"a>b\"><!-- > -->]>\n"
      "<g:RegisterDescription ModelName = '\"M\" &amp; &#65;\r\n\tx' VendorName\n=\"it's\" ToolTip=\"a > b\" "
      "xmlns:g=\"u\"><g:Integer\tName=\"I\"\n><g:Value>7</g:Value></g:Integer></g:RegisterDescription >");
  CDeviceInfoPtr info(map._Ptr);
  EXPECT_STREQ(info->GetModelName().c_str(), "\"M\" & A  x");
  EXPECT_STREQ(info->GetVendorName().c_str(), "it's");
  EXPECT_STREQ(info->GetToolTip().c_str(), "a > b");
  EXPECT_EQ(CIntegerPtr(map._GetNode("I"))->GetValue(), 7);
}

struct MalformedRow {
  const char* inside;
  const char* error;
};

// What stands inside begins in line 2, in the root element.
TEST(Xml, WhatIsMalformedIsRefusedWithLineAndElement) {
  const MalformedRow rows[] = {
      {"\n<A>\n</B>", "line 4 in element 'A': an end tag does not match"},
      {"<A></A", "line 2 in element 'A': an end tag is malformed"},
      {"<A", "line 2 in element 'A': a tag is malformed"},
      {"<A b", "line 2 in element 'A': an attribute is malformed"},
      {"<A b=c/>", "line 2 in element 'A': an attribute is malformed"},
      {"<A b=\"c/>", "line 2 in element 'A': an attribute has no end"},
      {"<A b=\"c\"d=\"e\"/>", "line 2 in element 'A': a tag is malformed"},
      {"<A b=\"c\" /", "line 2 in element 'A': an attribute is malformed"},
      {"\n<!-- ", "line 3 in element 'RegisterDescription': a comment has no end"},
      {"<![CDATA[", "a CDATA section has no end"},
      {"<?a", "a processing instruction has no end"},
      {"<!DOCTYPE a>", "a tag is malformed"},
      {"< A/>", "a tag is malformed"},
      {"<1/>", "a tag is malformed"},
      {"<", "a tag is malformed"},
      {"<A>text", "line 2 in element 'A': the document ends too early"},
      {"<Integer Name=\"I\"><Value>1</Value>", "line 2 in element 'Integer': the document ends too early"},
  };
  for (const MalformedRow& row : rows) {
    const std::string error = LoadError("<RegisterDescription>\n" + std::string(row.inside));
    EXPECT_NE(error.find("Error while parsing XML at"), std::string::npos)
        << row.inside << " gives " << error;
    EXPECT_NE(error.find(row.error), std::string::npos) << row.inside << " gives " << error;
  }
  EXPECT_NE(LoadError("text <RegisterDescription/>").find("text before the root"), std::string::npos);
  EXPECT_NE(LoadError("<!DOCTYPE a").find("a document type has no end"), std::string::npos);
  EXPECT_NE(LoadError(std::string("<RegisterDescription>\n\0</RegisterDescription>", 46)).find("line 2"),
            std::string::npos);
}

TEST(Xml, LongLinesAndManyAttributesTakeLinearTime) {
  std::string oneLine;
  for (int i = 0; i < 100000; ++i) oneLine += "<Node Name=\"N" + std::to_string(i) + "\"/>";
  Camera camera(oneLine);
  EXPECT_EQ(camera.map._Ptr->GetNumNodes(), 100001U);
  std::string attributes;
  for (int i = 0; i < 100000; ++i) attributes += " a" + std::to_string(i) + "=\"\"";
  Camera many("<Node" + attributes + " Name=\"N\"/>");
  EXPECT_NE(many.map._GetNode("N"), nullptr);
}

}  // namespace
