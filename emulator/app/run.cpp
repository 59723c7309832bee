// Serves one or more virtual GigE Vision cameras until SIGINT/SIGTERM.
#include "run.h"

#include <signal.h>

#include <cstdio>
#include <memory>
#include <stdexcept>

#include "options.h"
#include "ry/emulator/camera.h"

namespace ry::emulator {

int run_emulator_program(const char* program, const std::vector<std::string>& args) {
    ProgramOptions options;
    try {
        options = parse_options(args);
    } catch (const std::invalid_argument& error) {
        std::fprintf(stderr, "%s: %s\n%s", program, error.what(), usage_text());
        return 2;
    }
    if (options.help) {
        std::fputs(usage_text(), stdout);
        return 0;
    }
    // Block the stop signals before any camera thread starts, so that only sigwait sees them.
    sigset_t stop_signals;
    sigemptyset(&stop_signals);
    sigaddset(&stop_signals, SIGINT);
    sigaddset(&stop_signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stop_signals, nullptr);

    std::vector<std::unique_ptr<Camera>> cameras;
    try {
        for (const CameraConfig& config : camera_configs(options)) {
            cameras.push_back(std::make_unique<Camera>(config));
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", program, error.what());
        return 1;
    }
    for (const auto& camera : cameras) {
        std::printf("%s %s %s\n", camera->address().c_str(), camera->config().model.c_str(),
                    camera->config().serial.c_str());
    }
    std::fflush(stdout);
    int signal_number = 0;
    sigwait(&stop_signals, &signal_number);
    cameras.clear();
    return 0;
}

}  // namespace ry::emulator
