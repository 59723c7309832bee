// A minimal application of the installed SDK: it must compile with the installed headers
// only and resolve every symbol it uses from libRyGigE.so.7.
#include <rysdk/RyEventLog.h>
#include <rysdk/RyResult.h>
#include <rysdk/RyVersion.h>

#include <cstdio>
#include <cstring>
#include <cwchar>

int main() {
    RYSDK::SetEventLogCallback(nullptr, nullptr);
    const wchar_t* text = RYSDK::GetResultText(RYSDK::RESULT_ERROR_TLOPEN);
    if (text == nullptr || std::wcscmp(text, L"ERROR_TLOPEN") != 0) return 1;
    std::printf("consumer linked against RyGigE %s\n", RYSDK::GetSdkVersion());
    return std::strncmp(RYSDK::GetSdkVersion(), "7.", 2) == 0 ? 0 : 1;
}
