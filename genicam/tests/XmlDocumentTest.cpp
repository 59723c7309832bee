#include <gtest/gtest.h>

#include "ry/genicam/Exceptions.h"
#include "xml/XmlDocument.h"

namespace RyGenApi::detail::xml {
namespace {

std::string ChildText(const Document& doc, std::string_view name) {
    for (const Element* child = doc.FirstChild(doc.Root()); child;
         child = doc.NextSibling(*child)) {
        if (child->name == name) {
            return std::string(child->text);
        }
    }
    return "<missing>";
}

TEST(XmlDocument, AcceptsDocumentShellVariants) {
    // Byte-order mark, a label line before the declaration, CRLF line ends, namespace prefixes.
    const auto doc = Document::Parse(
        "Camera-123 (USB3)\r\n\xEF\xBB\xBF"
        "<?xml version=\"1.0\"?>\r\n<g:Root xmlns:g=\"x\">\r\n<g:A>1</g:A>\r\n</g:Root>\r\n");
    EXPECT_EQ(doc->Root().name, "Root");
    EXPECT_EQ(ChildText(*doc, "A"), "1");
    const auto bomOnly = Document::Parse("\xEF\xBB\xBF<R><A> x </A></R>");
    EXPECT_EQ(ChildText(*bomOnly, "A"), "x");
}

TEST(XmlDocument, DecodesTextForms) {
    const auto doc = Document::Parse(
        "<R><!-- comment <A>no</A> -->"
        "<A>a &lt;&gt; b &amp;&amp; c &quot;&apos; &#65;&#x42;&#xE9;</A>"
        "<B><![CDATA[x < y && z]]></B>"
        "<C>\n   padded\t\n</C>"
        "<?pi ignored?><D attr=\"1 &lt; 2\"/></R>");
    EXPECT_EQ(ChildText(*doc, "A"), "a <> b && c \"' AB\xC3\xA9");
    EXPECT_EQ(ChildText(*doc, "B"), "x < y && z");
    EXPECT_EQ(ChildText(*doc, "C"), "padded");
    const Element* d = doc->FirstChild(doc->Root());
    while (d->name != "D") {
        d = doc->NextSibling(*d);
    }
    EXPECT_EQ(doc->AttributeValue(*d, "attr"), "1 < 2");
    EXPECT_TRUE(doc->AttributeValue(*d, "missing").empty());
}

TEST(XmlDocument, RejectsMalformedInputWithPosition) {
    const char* const bad[] = {
        "",                      // nothing
        "just text",             // no element
        "<R><A></R>",            // mismatched close
        "<R><A>",                // unclosed
        "<R a=1></R>",           // unquoted attribute
        "<R>&bogus;</R>",        // unknown entity
        "<R>&#0;</R>",           // bad character reference
        "<R>&#x110000;</R>",     // beyond Unicode
        "<R><!-- open </R>",     // unterminated comment
        "<R><![CDATA[x</R>",     // unterminated CDATA
        "<R/><S/>",              // two roots
        "<R></R>trailing text",  // text after the root
        "</R>",                  // closing without opening
    };
    for (const char* text : bad) {
        EXPECT_THROW(Document::Parse(text), RuntimeException) << text;
    }
    try {
        Document::Parse("<R><A></B></R>");
        FAIL();
    } catch (const RuntimeException& error) {
        EXPECT_NE(std::string(error.what()).find("byte"), std::string::npos);
    }
}

TEST(XmlDocument, BoundsNestingDepthWithoutRecursion) {
    std::string deep;
    for (int i = 0; i < 100000; ++i) {
        deep += "<a>";
    }
    EXPECT_THROW(Document::Parse(deep), RuntimeException);
}

}  // namespace
}  // namespace RyGenApi::detail::xml
