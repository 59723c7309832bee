// Control-channel privileges between two applications: this test process holds the camera
// and a second process tries to open it beside it.
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "camera_fixture.h"

extern char** environ;

namespace {

using namespace RYSDK;

// Runs the probe with a privilege and returns what it printed.
std::string SecondApplication(const char* privilege) {
    int out[2];
    if (::pipe(out) != 0)
        return "pipe failed";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, out[0]);
    char* const args[] = {const_cast<char*>(RY_OPEN_PROBE_PATH), const_cast<char*>(privilege),
                          nullptr};
    pid_t child = -1;
    const int spawned = ::posix_spawn(&child, RY_OPEN_PROBE_PATH, &actions, nullptr, args, environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(out[1]);
    std::string text;
    char chunk[256];
    ssize_t count = 0;
    while (spawned == 0 && (count = ::read(out[0], chunk, sizeof(chunk))) > 0)
        text.append(chunk, static_cast<size_t>(count));
    ::close(out[0]);
    if (child > 0)
        ::waitpid(child, nullptr, 0);
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}

class Privileges : public rytest::EmulatedCameraTest {};

TEST_F(Privileges, ControlRefusesASecondControllerButLetsAMonitorIn) {
    StartCamera();
    RyCamera* camera = nullptr;
    ASSERT_EQ(Open(&camera), RESULT_SUCCESS);
    EXPECT_EQ(SecondApplication("control"), "open=13 close=0");
    EXPECT_EQ(SecondApplication("exclusive"), "open=13 close=0");
    EXPECT_EQ(SecondApplication("monitor"), "open=0 close=0");
    // The monitor's close left the controller in charge.
    EXPECT_EQ(camera->SetWidth(320), RESULT_SUCCESS);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
    EXPECT_EQ(SecondApplication("control"), "open=0 close=0");
}

TEST_F(Privileges, ExclusiveKeepsEvenAMonitorOut) {
    StartCamera();
    ASSERT_EQ(gige_->SetCCPPrivilege(CCP_PRIVILEGE_EXCLUSIVE), RESULT_SUCCESS);
    RyCamera* camera = nullptr;
    ASSERT_EQ(Open(&camera), RESULT_SUCCESS);
    EXPECT_NE(SecondApplication("monitor").substr(0, 7), "open=0 ");
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
    EXPECT_EQ(SecondApplication("monitor"), "open=0 close=0");
}

TEST_F(Privileges, AMonitorLeavesControlToOthers) {
    StartCamera();
    ASSERT_EQ(gige_->SetCCPPrivilege(CCP_PRIVILEGE_MONITOR), RESULT_SUCCESS);
    RyCamera* camera = nullptr;
    ASSERT_EQ(Open(&camera), RESULT_SUCCESS);
    EXPECT_EQ(SecondApplication("control"), "open=0 close=0");
    unsigned int width = 0;
    EXPECT_EQ(camera->GetWidth(&width), RESULT_SUCCESS);
    EXPECT_EQ(gige_->CloseCamera(camera), RESULT_SUCCESS);
}

}  // namespace
