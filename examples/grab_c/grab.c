/* Grabs frames from the first camera the SDK discovers, through the flat C interface, and
 * prints what arrived: the frames counted in an image callback, then the stream's counters.
 *
 *   grab [FRAMES]        (default 30)
 *
 * Build against the installed SDK with CMake (find_package(RyGigE)) or with
 *   cc -std=c99 grab.c $(pkg-config --cflags --libs RyGigE) -lpthread */
#define _POSIX_C_SOURCE 200112L

#include <pthread.h>
#include <rysdk/rysdk_c.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

/* What the image callback records; it runs on the camera's grab thread, main reads it. */
struct Tally {
    pthread_mutex_t lock;
    uint32_t frames;
    uint32_t width;
    uint32_t height;
    PIXEL_FORMAT format;
    uint32_t lastBlockId;
};

static void OnImage(OBJECT_INFO* object, IMAGE_INFO* image) {
    struct Tally* tally = (struct Tally*)object->pUserPointer;
    pthread_mutex_lock(&tally->lock);
    tally->frames++;
    tally->width = image->width;
    tally->height = image->height;
    tally->format = image->pixelFormat;
    tally->lastBlockId = image->blockId;
    pthread_mutex_unlock(&tally->lock);
}

static double Now(void) {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (double)now.tv_sec + (double)now.tv_nsec / 1e9;
}

static uint32_t FramesSoFar(struct Tally* tally) {
    uint32_t frames;
    pthread_mutex_lock(&tally->lock);
    frames = tally->frames;
    pthread_mutex_unlock(&tally->lock);
    return frames;
}

/* Waits until `wanted` frames arrived or `seconds` passed; returns the seconds taken. */
static double WaitForFrames(struct Tally* tally, uint32_t wanted, double seconds) {
    const double start = Now();
    const struct timespec pause = {0, 10 * 1000 * 1000};
    while (FramesSoFar(tally) < wanted && Now() - start < seconds)
        nanosleep(&pause, NULL);
    return Now() - start;
}

static void PrintStatistics(RYCAMERA_HANDLE camera, struct Tally* tally, double seconds) {
    uint32_t lost = 0;
    uint32_t missing = 0;
    CameraGetStreamInfo(camera, STREAM_INFO_LOST_FRAMES, &lost);
    CameraGetStreamInfo(camera, STREAM_INFO_MISSING_PACKETS, &missing);
    printf("frames received   %u\n", (unsigned)tally->frames);
    printf("image             %u x %u, pixel format 0x%08X\n", (unsigned)tally->width,
           (unsigned)tally->height, (unsigned)tally->format);
    printf("last block id     %u\n", (unsigned)tally->lastBlockId);
    printf("elapsed           %.2f s (%.1f frames/s)\n", seconds,
           seconds > 0 ? tally->frames / seconds : 0.0);
    printf("lost frames       %u\n", (unsigned)lost);
    printf("missing packets   %u\n", (unsigned)missing);
}

static int Fail(const char* what, RESULT result) {
    fprintf(stderr, "grab: %s failed with result %d\n", what, (int)result);
    return 1;
}

static int Grab(RYGIGE_HANDLE system, uint32_t wanted) {
    struct Tally tally = {PTHREAD_MUTEX_INITIALIZER, 0, 0, 0, 0, 0};
    OBJECT_INFO object = {&tally, NULL};
    RYCAMERA_HANDLE camera = NULL;
    RESULT result = RyOpenCameraByIndex(system, 0, &camera, 8, 0, 0, 0, &object, OnImage, NULL);
    double seconds;
    if (result != RESULT_SUCCESS)
        return Fail("RyOpenCameraByIndex", result);
    result = CameraSnap(camera, wanted);
    if (result != RESULT_SUCCESS) {
        CameraClose(camera);
        return Fail("CameraSnap", result);
    }
    seconds = WaitForFrames(&tally, wanted, 10.0);
    CameraAbort(camera);
    PrintStatistics(camera, &tally, seconds);
    CameraClose(camera);
    return tally.frames == wanted ? 0 : 1;
}

int main(int argc, char** argv) {
    const uint32_t wanted = argc > 1 ? (uint32_t)strtoul(argv[1], NULL, 10) : 30;
    RYGIGE_HANDLE system = NULL;
    uint32_t cameras = 0;
    int status;
    RESULT result = OpenRyGigE(&system);
    if (result != RESULT_SUCCESS)
        return Fail("OpenRyGigE", result);
    RySetDiscoveryTimeout(system, 500);
    RyDiscovery(system);
    RyGetNumCameras(system, &cameras);
    if (cameras == 0) {
        fprintf(stderr, "grab: no camera found\n");
        CloseRyGigE(&system);
        return 3;
    }
    status = Grab(system, wanted == 0 ? 1 : wanted);
    CloseRyGigE(&system);
    return status;
}
