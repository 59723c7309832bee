// rycam file get CAMERA NAME PATH and rycam file put CAMERA NAME PATH: files stored on the
// camera (the entries of its "FileSelector"), read and written whole. PATH "-" is standard
// output or input.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "camera_session.h"
#include "commands.h"
#include "feature_text.h"
#include "safe_text.h"

namespace rycam {
namespace {

constexpr const char* kUsage = "rycam file get|put CAMERA NAME PATH [--timeout MS]";

// The file's size as the camera reports it for the selected file.
RYSDK::RESULT FileSize(RYSDK::RyCamera& camera, const std::string& name, uint64_t& size) {
    RYSDK::RESULT result = camera.SetCustomCommand("FileSelector", name.c_str(), name.size());
    std::string text;
    if (result == RYSDK::RESULT_SUCCESS)
        result = ReadFeature(camera, "FileSize", text);
    if (result == RYSDK::RESULT_SUCCESS)
        size = std::strtoull(text.c_str(), nullptr, 10);
    return result;
}

bool WriteOut(const std::string& path, const std::vector<uint8_t>& data) {
    if (path == "-")
        return std::fwrite(data.data(), 1, data.size(), stdout) == data.size();
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(data.data()),
              static_cast<std::streamsize>(data.size()));
    return static_cast<bool>(out);
}

bool ReadIn(const std::string& path, std::vector<uint8_t>& data) {
    std::ifstream file;
    if (path != "-")
        file.open(path, std::ios::binary);
    std::istream& in = path == "-" ? std::cin : file;
    data.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad() && (path == "-" || file.is_open());
}

int Get(RYSDK::RyCamera& camera, const std::string& name, const std::string& path) {
    uint64_t size = 0;
    if (const RYSDK::RESULT result = FileSize(camera, name, size); result != RYSDK::RESULT_SUCCESS)
        return ReportFailure(("finding file " + SafeText(name)).c_str(), result);
    std::vector<uint8_t> data(size);
    if (size > 0) {
        if (const RYSDK::RESULT result = camera.ReadFileStream(name.c_str(), data.data(), size);
            result != RYSDK::RESULT_SUCCESS)
            return ReportFailure(("reading file " + SafeText(name)).c_str(), result);
        data.resize(size);
    }
    if (!WriteOut(path, data)) {
        std::fprintf(stderr, "rycam: cannot write %s: %s\n", path.c_str(), std::strerror(errno));
        return kExitFailure;
    }
    std::fprintf(stderr, "%s: %zu bytes\n", SafeText(name).c_str(), data.size());
    return kExitOk;
}

int Put(RYSDK::RyCamera& camera, const std::string& name, const std::string& path) {
    std::vector<uint8_t> data;
    if (!ReadIn(path, data)) {
        std::fprintf(stderr, "rycam: cannot read %s: %s\n", path.c_str(), std::strerror(errno));
        return kExitFailure;
    }
    const RYSDK::RESULT result = camera.WriteFileStream(name.c_str(), data.data(), data.size());
    if (result != RYSDK::RESULT_SUCCESS)
        return ReportFailure(("writing file " + SafeText(name)).c_str(), result);
    std::fprintf(stderr, "%s: %zu bytes written\n", SafeText(name).c_str(), data.size());
    return kExitOk;
}

}  // namespace

int FileCommand(int argc, char** argv) {
    if (argc < 1 || (std::strcmp(argv[0], "get") != 0 && std::strcmp(argv[0], "put") != 0)) {
        std::fprintf(stderr, "usage: %s\n", kUsage);
        return kExitUsage;
    }
    return RunOnCamera(
        argc, argv, kUsage, 4, 1, [](Session& session, const std::vector<std::string>& positional) {
            return positional[0] == "get" ? Get(session.Camera(), positional[2], positional[3])
                                          : Put(session.Camera(), positional[2], positional[3]);
        });
}

}  // namespace rycam
