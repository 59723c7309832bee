// Our node map beside Aravis's on every real description file, without a device: the kind
// of every node both know, the entries of each enumeration, the members of each category,
// and Min/Max/Inc of integers wherever Aravis can tell them without reading a register.
// Aravis differs from the files in ways this test allows for by name: it lists an
// enumeration's entries in reverse; it keeps the whitespace around an element's text, so in a
// file that writes its texts on lines of their own it finds no category member and misreads
// register lengths and signs (only kinds and entries are compared there); it gives converters,
// and integers whose value is a converter's, the whole 64-bit range instead of what their
// formulas and their own Min/Max say; and it refuses a file with a text line before its XML
// declaration.
#include <arv.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "TestSupport.h"

namespace RyGenApi::testing {
namespace {

std::string Trimmed(const char* text) {
    std::string value = text != nullptr ? text : "";
    const auto first = value.find_first_not_of(" \t\r\n");
    const auto last = value.find_last_not_of(" \t\r\n");
    return first == std::string::npos ? std::string() : value.substr(first, last - first + 1);
}

struct Findings {
    int nodes = 0;
    int enumerations = 0;
    int categories = 0;
    int ranges = 0;
};

bool SameKind(INode& ours, ArvGcNode* theirs) {
    switch (ours.GetPrincipalInterfaceType()) {
        case intfIEnumeration:
            return ARV_IS_GC_ENUMERATION(theirs);
        case intfICategory:
            return ARV_IS_GC_CATEGORY(theirs);
        case intfICommand:
            return ARV_IS_GC_COMMAND(theirs);
        case intfIBoolean:
            return ARV_IS_GC_BOOLEAN(theirs);
        case intfIFloat:
            return ARV_IS_GC_FLOAT(theirs);
        case intfIString:
            return ARV_IS_GC_STRING(theirs);
        case intfIInteger:
            return ARV_IS_GC_INTEGER(theirs);
        default:
            return true;  // ports, registers and entries: no common test
    }
}

void CompareEnumeration(INode& ours, ArvGcNode* theirs, Findings& findings) {
    auto* enumeration = dynamic_cast<IEnumeration*>(&ours);
    NodeList_t entries;
    enumeration->GetEntries(entries);
    std::vector<std::string> ourNames;
    for (INode* entry : entries)
        ourNames.push_back(dynamic_cast<IEnumEntry*>(entry)->GetSymbolic());
    std::vector<std::string> theirNames;
    for (const GSList* item = arv_gc_enumeration_get_entries(ARV_GC_ENUMERATION(theirs));
         item != nullptr; item = item->next) {
        theirNames.push_back(
            Trimmed(arv_gc_feature_node_get_name(ARV_GC_FEATURE_NODE(item->data))));
    }
    // Aravis lists the entries last first.
    std::reverse(theirNames.begin(), theirNames.end());
    EXPECT_EQ(ourNames, theirNames) << ours.GetName();
    ++findings.enumerations;
}

void CompareCategory(INode& ours, ArvGcNode* theirs, Findings& findings) {
    FeatureList_t features;
    dynamic_cast<ICategory*>(&ours)->GetFeatures(features);
    std::vector<std::string> ourNames;
    for (IValue* feature : features)
        ourNames.push_back(feature->GetNode()->GetName());
    std::vector<std::string> theirNames;
    for (const GSList* item = arv_gc_category_get_features(ARV_GC_CATEGORY(theirs));
         item != nullptr; item = item->next) {
        theirNames.push_back(Trimmed(static_cast<const char*>(item->data)));
    }
    EXPECT_EQ(std::set<std::string>(ourNames.begin(), ourNames.end()),
              std::set<std::string>(theirNames.begin(), theirNames.end()))
        << ours.GetName();
    ++findings.categories;
}

bool IsConverter(const INode* node) {
    std::string text, attribute;
    return node != nullptr && node->GetProperty("FormulaTo", text, attribute);
}

// A converter, or an integer whose value goes through one.
bool ConvertsItsValue(const INode& node) {
    std::string target, attribute;
    return IsConverter(&node) || (node.GetProperty("pValue", target, attribute) &&
                                  IsConverter(node.GetNodeMap()->GetNode(target)));
}

void CompareRange(INode& ours, ArvGcNode* theirs, Findings& findings) {
    if (ConvertsItsValue(ours))
        return;
    auto* integer = dynamic_cast<IInteger*>(&ours);
    if (integer == nullptr || !ARV_IS_GC_INTEGER(theirs) || ARV_IS_GC_ENUMERATION(theirs))
        return;
    GError* error = nullptr;
    const gint64 min = arv_gc_integer_get_min(ARV_GC_INTEGER(theirs), &error);
    const gint64 max =
        error == nullptr ? arv_gc_integer_get_max(ARV_GC_INTEGER(theirs), &error) : 0;
    const gint64 inc =
        error == nullptr ? arv_gc_integer_get_inc(ARV_GC_INTEGER(theirs), &error) : 0;
    if (error != nullptr) {
        g_clear_error(&error);
        return;  // Aravis cannot tell without a device
    }
    try {
        EXPECT_EQ(integer->GetMin(), min) << ours.GetName();
        EXPECT_EQ(integer->GetMax(), max) << ours.GetName();
        EXPECT_EQ(integer->GetInc(), inc) << ours.GetName();
        ++findings.ranges;
    } catch (const GenericException&) {
        // Ours needs a register the zero space cannot give; nothing to compare.
    }
}

TEST(AravisComparison, NodesEntriesMembersAndRangesAgreeOnEveryRealFile) {
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(RY_GENICAM_CORPUS_DIR, error)) {
        if (entry.path().extension() == ".xml")
            files.push_back(entry.path());
    }
    if (files.empty())
        GTEST_SKIP() << "corpus not found at " << RY_GENICAM_CORPUS_DIR;
    std::sort(files.begin(), files.end());
    Findings findings;
    for (const auto& path : files) {
        SCOPED_TRACE(path.filename().string());
        std::ifstream in(path, std::ios::binary);
        const std::string xml((std::istreambuf_iterator<char>(in)),
                              std::istreambuf_iterator<char>());
        ArvGc* theirs = arv_gc_new(nullptr, xml.data(), xml.size());
        if (theirs == nullptr) {
            // Aravis refuses a file with a text line before its XML declaration.
            EXPECT_EQ(path.filename(), "Allied_Vision_1800_U-811m.xml");
            continue;
        }
        // Texts on lines of their own, which Aravis reads with their whitespace.
        const bool paddedTexts = xml.find("<pFeature>\n") != std::string::npos;
        CNodeMapRef ours;
        ours._LoadXMLFromString(xml);
        MemoryPort port;
        ours._Connect(&port);
        NodeList_t nodes;
        ours._GetNodeMap()->GetNodes(nodes);
        for (INode* node : nodes) {
            ArvGcNode* theirNode = arv_gc_get_node(theirs, node->GetName().c_str());
            if (theirNode == nullptr)
                continue;
            ++findings.nodes;
            EXPECT_TRUE(SameKind(*node, theirNode)) << node->GetName();
            if (node->GetPrincipalInterfaceType() == intfIEnumeration &&
                ARV_IS_GC_ENUMERATION(theirNode))
                CompareEnumeration(*node, theirNode, findings);
            else if (paddedTexts)
                continue;
            else if (node->GetPrincipalInterfaceType() == intfICategory &&
                     ARV_IS_GC_CATEGORY(theirNode))
                CompareCategory(*node, theirNode, findings);
            else
                CompareRange(*node, theirNode, findings);
        }
        g_object_unref(theirs);
    }
    std::printf("compared %d nodes, %d enumerations, %d categories, %d integer ranges\n",
                findings.nodes, findings.enumerations, findings.categories, findings.ranges);
    EXPECT_GT(findings.ranges, 100);
}

}  // namespace
}  // namespace RyGenApi::testing
