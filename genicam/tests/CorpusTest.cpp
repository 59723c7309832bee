// Every real description file must load and every node must evaluate against a register
// space of zeros without crashing. Exceptions raised by a node's own rules are expected
// (a zero divisor in a formula, a zero that is no entry of an enumeration, a register whose
// length comes out as zero, an address computed from an unavailable selector).
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>

#include "TestSupport.h"

namespace RyGenApi::testing {
namespace {

std::vector<std::filesystem::path> CorpusFiles() {
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(RY_GENICAM_CORPUS_DIR, error)) {
        if (entry.path().extension() == ".xml") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

void Exercise(INode* node) {
    try {
        const EAccessMode mode = node->GetAccessMode();
        ASSERT_LE(static_cast<int>(mode), 4) << node->GetName();
        if (auto* value = dynamic_cast<IValue*>(node); value && IsReadable(mode)) {
            value->ToString();
        }
        if (auto* integer = dynamic_cast<IInteger*>(node)) {
            integer->GetMin();
            integer->GetMax();
        }
    } catch (const GenericException&) {
        // A rule of the node itself refused the zero register space.
    }
}

TEST(Corpus, EveryFileLoadsAndEveryNodeEvaluates) {
    const auto files = CorpusFiles();
    if (files.empty()) {
        GTEST_SKIP() << "corpus not found at " << RY_GENICAM_CORPUS_DIR;
    }
    EXPECT_GE(files.size(), 28u);
    for (const auto& path : files) {
        SCOPED_TRACE(path.filename().string());
        CNodeMapRef map("Device");
        ASSERT_NO_THROW(map._LoadXMLFromFile(path.string()));
        MemoryPort port;
        ASSERT_TRUE(map._Connect(&port));
        ASSERT_NE(dynamic_cast<ICategory*>(map._GetNode("Root")), nullptr);
        NodeList_t nodes;
        map._GetNodeMap()->GetNodes(nodes);
        EXPECT_GT(nodes.size(), 50u);
        for (INode* node : nodes) {
            Exercise(node);
        }
    }
}

TEST(Corpus, KnownFeaturesOfRealFiles) {
    const std::string dir = RY_GENICAM_CORPUS_DIR;
    if (!std::filesystem::exists(dir + "/Basler-acA640-300gm.xml")) {
        GTEST_SKIP();
    }
    CNodeMapRef basler;
    basler._LoadXMLFromFile(dir + "/Basler-acA640-300gm.xml");
    MemoryPort port;
    basler._Connect(&port);
    auto* width = dynamic_cast<IInteger*>(basler._GetNode("Width"));
    ASSERT_NE(width, nullptr);
    std::string target, attribute;
    EXPECT_TRUE(basler._GetNode("Width")->GetProperty("pValue", target, attribute));
    EXPECT_NE(basler._GetNode(target), nullptr);
    auto* pixelFormat = dynamic_cast<IEnumeration*>(basler._GetNode("PixelFormat"));
    ASSERT_NE(pixelFormat, nullptr);
    ASSERT_NE(pixelFormat->GetEntryByName("Mono8"), nullptr);
    EXPECT_EQ(pixelFormat->GetEntryByName("Mono8")->GetValue(), 0x01080001);
    auto* start = dynamic_cast<ICommand*>(basler._GetNode("AcquisitionStart"));
    ASSERT_NE(start, nullptr);

    // A text line before the declaration.
    CNodeMapRef alvium;
    EXPECT_NO_THROW(alvium._LoadXMLFromFile(dir + "/Allied_Vision_1800_U-811m.xml"));
}

// Features without a range of their own that reach their value through a selector-indexed
// node report the range of the node the selector picks, as their files declare it.
TEST(Corpus, RangesFollowTheNodeTheIndexSelects) {
    const std::string file = std::string(RY_GENICAM_CORPUS_DIR) + "/Basler-a2A2600-20gmBAS.xml";
    if (!std::filesystem::exists(file)) {
        GTEST_SKIP();
    }
    CNodeMapRef basler;
    basler._LoadXMLFromFile(file);
    MemoryPort port;
    basler._Connect(&port);
    auto* binning = dynamic_cast<IInteger*>(basler._GetNode("BinningHorizontal"));
    ASSERT_NE(binning, nullptr);
    EXPECT_EQ(binning->GetMin(), 1);
    EXPECT_EQ(binning->GetMax(), 4);
    EXPECT_EQ(binning->GetInc(), 1);
    for (const char* name : {"ActionGroupKey", "ActionGroupMask", "TriggerDelay"}) {
        INode* node = basler._GetNode(name);
        ASSERT_NE(node, nullptr) << name;
        if (auto* integer = dynamic_cast<IInteger*>(node)) {
            EXPECT_GT(integer->GetMin(), std::numeric_limits<int64_t>::min()) << name;
            EXPECT_LT(integer->GetMax(), std::numeric_limits<int64_t>::max()) << name;
        } else if (auto* floating = dynamic_cast<IFloat*>(node)) {
            EXPECT_GT(floating->GetMin(), std::numeric_limits<double>::lowest()) << name;
            EXPECT_LT(floating->GetMax(), std::numeric_limits<double>::max()) << name;
        }
    }
}

TEST(Corpus, DumpToolPrintsOneLinePerNode) {
    const std::string file = std::string(RY_GENICAM_CORPUS_DIR) + "/Aravis_tests_genicam.xml";
    if (!std::filesystem::exists(file)) {
        GTEST_SKIP();
    }
    FILE* pipe = popen((std::string(RY_GENICAM_DUMP) + " " + file).c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::string output;
    char buffer[4096];
    while (size_t count = fread(buffer, 1, sizeof buffer, pipe)) {
        output.append(buffer, count);
    }
    EXPECT_EQ(pclose(pipe), 0);
    EXPECT_NE(output.find("Root\tICategory\tRO\t-\n"), std::string::npos);
    EXPECT_NE(output.find("RWInteger\tIInteger\tRW\t1\n"), std::string::npos);
    EXPECT_NE(output.find("Enumeration\tIEnumeration\tRW\tEntry0\n"), std::string::npos);
    EXPECT_NE(output.find("StringNodeB\tIString\tRW\tHello World!\n"), std::string::npos);

    const std::string zipped = "/tmp/ry-genicam-dump-test.zip";
    {
        std::ifstream plain(file, std::ios::binary);
        const std::string text((std::istreambuf_iterator<char>(plain)),
                               std::istreambuf_iterator<char>());
        std::ofstream(zipped, std::ios::binary) << ZipOf("camera.xml", text);
    }
    FILE* zipPipe = popen((std::string(RY_GENICAM_DUMP) + " " + zipped).c_str(), "r");
    std::string zipOutput;
    while (size_t count = fread(buffer, 1, sizeof buffer, zipPipe)) {
        zipOutput.append(buffer, count);
    }
    EXPECT_EQ(pclose(zipPipe), 0);
    EXPECT_EQ(zipOutput, output);
    std::remove(zipped.c_str());

    const std::string bad = "/tmp/ry-genicam-dump-bad.xml";
    std::ofstream(bad) << "<RegisterDescription><Integer Name=\"A\"><pValue>B</pValue></Integer>"
                          "</RegisterDescription>";
    FILE* failing = popen((std::string(RY_GENICAM_DUMP) + " " + bad + " 2>&1").c_str(), "r");
    std::string reason;
    while (size_t count = fread(buffer, 1, sizeof buffer, failing)) {
        reason.append(buffer, count);
    }
    EXPECT_NE(pclose(failing), 0);
    EXPECT_NE(reason.find("undefined node 'B'"), std::string::npos) << reason;
    std::remove(bad.c_str());
}

}  // namespace
}  // namespace RyGenApi::testing
