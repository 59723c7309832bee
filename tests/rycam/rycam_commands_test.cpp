// rycam's subcommands run as a user runs them, against an emulated camera whose serial
// number carries a terminal escape sequence.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "private_network.h"
#include "ry/emulator/camera.h"

namespace {

struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
};

std::string Quoted(const std::string& argument) {
    std::string quoted = "'";
    for (char c : argument) {
        if (c == '\'')
            quoted += "'\\''";
        else
            quoted.push_back(c);
    }
    return quoted + "'";
}

Outcome RunRycam(const std::vector<std::string>& arguments) {
    const std::string errPath = ::testing::TempDir() + "rycam_stderr.txt";
    std::string command = RY_RYCAM_PATH;
    for (const auto& argument : arguments) {
        command += ' ';
        command += Quoted(argument);
    }
    command += " 2>" + Quoted(errPath);
    Outcome outcome;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return outcome;
    char chunk[4096];
    for (size_t n; (n = std::fread(chunk, 1, sizeof(chunk), pipe)) > 0;)
        outcome.out.append(chunk, n);
    const int raw = pclose(pipe);
    outcome.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    std::ifstream err(errPath);
    std::stringstream text;
    text << err.rdbuf();
    outcome.err = text.str();
    return outcome;
}

class RycamCommands : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!rytest::InPrivateNetwork())
            GTEST_SKIP() << rytest::kPrivateNetworkAdvice;
        ry::emulator::CameraConfig config;
        config.address = "127.0.0.2";
        config.model = "RY-CLI";
        config.serial = "SN\x1b]0;owned\x07";
        emulator_ = std::make_unique<ry::emulator::Camera>(config);
    }

    std::unique_ptr<ry::emulator::Camera> emulator_;
};

struct Case {
    std::vector<std::string> arguments;
    int status;
    const char* inOut;  // a text stdout must hold
    const char* inErr;  // a text stderr must hold
};

TEST_F(RycamCommands, EachCommandGivesItsTextAndStatus) {
    const Case cases[] = {
        {{"list"}, 0, "model=RY-CLI", ""},
        {{"info", "0"}, 0, "DeviceModelName        RY-CLI", ""},
        {{"info", "127.0.0.2"}, 0, "IP address             127.0.0.2", ""},
        {{"info", "9"}, 3, "", "no camera matches '9'"},
        {{"features", "0"}, 0, "  ImageFormatControl\n    SensorWidth = ", ""},
        {{"get", "0", "Width"}, 0, "640\n", ""},
        {{"get", "0", "NoSuchFeature"}, 1, "", "ERROR_XML_NOT_EXIST_NODE (18)"},
        {{"set", "0", "Width", "320"}, 0, "320\n", ""},
        {{"set", "0", "PixelFormat", "Nonsense"}, 1, "", "writing PixelFormat failed"},
        {{"set", "0", "DeviceVendorName", "x"}, 1, "", "ERROR_RYCAMERA_READ_ONLY (34)"},
        {{"serial", "0", "gsn"}, 0, "SN\\x1B]0;owned\\x07", ""},
        {{"get", "0"}, 2, "", "usage: rycam get"},
        {{"list", "--timeout", "soon"}, 2, "", "--timeout needs a number"},
        {{"file", "move", "0", "a", "b"}, 2, "", "usage: rycam file"},
        {{"frobnicate"}, 2, "", "unknown command 'frobnicate'"},
        {{"emulate", "--width", "wide"}, 2, "", "--width needs a number"},
    };
    for (const Case& c : cases) {
        std::vector<std::string> arguments = c.arguments;
        if (arguments[0] != "emulate" && arguments.back() != "soon")
            arguments.insert(arguments.end(), {"--timeout", "200"});
        const Outcome outcome = RunRycam(arguments);
        const std::string what = arguments[0] + (arguments.size() > 1 ? " " + arguments[1] : "");
        EXPECT_EQ(outcome.status, c.status) << what << "\n" << outcome.err;
        EXPECT_NE(outcome.out.find(c.inOut), std::string::npos) << what << "\n" << outcome.out;
        EXPECT_NE(outcome.err.find(c.inErr), std::string::npos) << what << "\n" << outcome.err;
        EXPECT_EQ(outcome.out.find('\x1b'), std::string::npos) << what << ": raw escape printed";
    }
}

TEST_F(RycamCommands, AFileGoesToTheCameraAndComesBack) {
    const std::string in = ::testing::TempDir() + "rycam_in.bin";
    const std::string back = ::testing::TempDir() + "rycam_back.bin";
    const std::string data("\x00\x01\xff payload", 11);
    std::ofstream(in, std::ios::binary) << data;
    EXPECT_EQ(RunRycam({"file", "put", "0", "UserData", in}).status, 0);
    const Outcome got = RunRycam({"file", "get", "0", "UserData", back});
    EXPECT_EQ(got.status, 0) << got.err;
    EXPECT_NE(got.err.find("UserData: 11 bytes"), std::string::npos) << got.err;
    std::stringstream text;
    text << std::ifstream(back, std::ios::binary).rdbuf();
    EXPECT_EQ(text.str(), data);
    EXPECT_EQ(RunRycam({"file", "get", "0", "NoSuchFile", back}).status, 1);
}

// The PNG colour type: 0 grey, 2 RGB (byte 25 of the file, in the IHDR chunk).
int PngColourType(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    char header[26] = {};
    file.read(header, sizeof(header));
    return file && std::string(header + 1, 3) == "PNG" ? header[25] : -1;
}

TEST_F(RycamCommands, GrabWritesEveryFrameAsPngAndReportsTheStream) {
    emulator_.reset();
    ry::emulator::CameraConfig config;
    config.address = "127.0.0.2";
    config.pixel_format = "BayerGB8";
    config.width = 64;
    config.height = 48;
    config.fps = 200;
    emulator_ = std::make_unique<ry::emulator::Camera>(config);

    const std::string directory = ::testing::TempDir() + "rycam_grab";
    const Outcome grab =
        RunRycam({"grab", "0", "--count", "12", "--output", directory, "--timeout", "200"});
    EXPECT_EQ(grab.status, 0) << grab.err;
    EXPECT_NE(grab.out.find("frames received          12\n"), std::string::npos) << grab.out;
    EXPECT_NE(grab.out.find("files written            12\n"), std::string::npos) << grab.out;
    EXPECT_NE(grab.out.find("lost (no free buffer)    0\n"), std::string::npos) << grab.out;
    EXPECT_EQ(PngColourType(directory + "/frame_00000.png"), 2) << "Bayer frames become colour";
    EXPECT_EQ(PngColourType(directory + "/frame_00011.png"), 2);
    EXPECT_EQ(PngColourType(directory + "/frame_00012.png"), -1) << "one file a frame";
    EXPECT_EQ(grab.err.find('['), std::string::npos) << "no progress bar off a terminal";

    const Outcome stats = RunRycam({"stats", "0", "--seconds", "1", "--timeout", "200"});
    EXPECT_EQ(stats.status, 0) << stats.err;
    EXPECT_NE(stats.out.find("delivered by stream"), std::string::npos) << stats.out;

    EXPECT_EQ(RunRycam({"grab", "0", "--count", "0"}).status, 2);
    const Outcome unwritable =
        RunRycam({"grab", "0", "--count", "1", "--output", "/proc/rycam", "--timeout", "200"});
    EXPECT_EQ(unwritable.status, 1);
    EXPECT_NE(unwritable.err.find("cannot create /proc/rycam"), std::string::npos)
        << unwritable.err;
}

TEST_F(RycamCommands, NoCameraIsItsOwnStatus) {
    emulator_.reset();
    const Outcome outcome = RunRycam({"list", "--timeout", "200"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_NE(outcome.err.find("no camera answered"), std::string::npos) << outcome.err;
}

}  // namespace
