// The event-log records the SDK writes while a test runs, for tests of what it logs. The
// camera's own threads log too, so records are taken under a lock.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "rysdk/RyEventLog.h"

namespace rytest {

class RecordedLog {
  public:
    RecordedLog() { RYSDK::SetEventLogCallback(&RecordedLog::Receive, this); }
    ~RecordedLog() { RYSDK::SetEventLogCallback(nullptr, nullptr); }
    RecordedLog(const RecordedLog&) = delete;
    RecordedLog& operator=(const RecordedLog&) = delete;

    bool Contains(const std::wstring& text) {
        const std::lock_guard<std::mutex> lock(mutex_);
        for (const std::wstring& record : records_)
            if (record.find(text) != std::wstring::npos)
                return true;
        return false;
    }

  private:
    static void Receive(void* context, uint16_t, uint32_t, const wchar_t* record) {
        auto* self = static_cast<RecordedLog*>(context);
        const std::lock_guard<std::mutex> lock(self->mutex_);
        self->records_.emplace_back(record);
    }

    std::mutex mutex_;
    std::vector<std::wstring> records_;
};

}  // namespace rytest
