#include "proc_readings.h"

#include <dirent.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

namespace ry::bench {
namespace {

double TicksToSeconds(unsigned long long ticks) {
    return static_cast<double>(ticks) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

}  // namespace

std::vector<std::string> ProcessStatFields(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const size_t close = text.rfind(')');
    std::vector<std::string> fields;
    if (close == std::string::npos) {
        return fields;
    }
    fields.push_back(text.substr(text.find('(') + 1, close - text.find('(') - 1));
    std::istringstream rest(text.substr(close + 2));
    for (std::string field; rest >> field;) {
        fields.push_back(field);
    }
    return fields;
}

double ProcessCpuSecondsOf(pid_t pid) {
    const auto fields = ProcessStatFields(pid);
    if (fields.size() <= 13) {
        return 0;
    }
    return TicksToSeconds(std::stoull(fields[12]) + std::stoull(fields[13]));
}

MachineCpu ReadMachineCpu() {
    std::ifstream uptimeFile("/proc/uptime");
    std::ifstream stat("/proc/stat");
    double uptime = 0;
    uptimeFile >> uptime;
    std::string label;
    unsigned long long user = 0, nice = 0, system = 0, idle = 0, iowait = 0, irq = 0, softirq = 0;
    stat >> label >> user >> nice >> system >> idle >> iowait >> irq >> softirq;
    const double cpus = static_cast<double>(::sysconf(_SC_NPROCESSORS_ONLN));
    return {cpus * uptime - TicksToSeconds(idle + iowait), TicksToSeconds(softirq)};
}

int OwnedPacketSockets() {
    std::ifstream table("/proc/net/packet");
    std::set<std::string> inodes;
    std::string line;
    std::getline(table, line);  // heading
    while (std::getline(table, line)) {
        std::istringstream columns(line);
        std::string inode;
        for (std::string column; columns >> column;) {
            inode = column;  // the last column
        }
        inodes.insert(inode);
    }
    DIR* fds = ::opendir("/proc/self/fd");
    int owned = 0;
    for (dirent* entry = fds ? ::readdir(fds) : nullptr; entry; entry = ::readdir(fds)) {
        char target[64] = {};
        const std::string path = std::string("/proc/self/fd/") + entry->d_name;
        if (::readlink(path.c_str(), target, sizeof target - 1) > 0 &&
            std::strncmp(target, "socket:[", 8) == 0) {
            std::string inode(target + 8);
            inode.pop_back();
            owned += inodes.count(inode) != 0 ? 1 : 0;
        }
    }
    if (fds) {
        ::closedir(fds);
    }
    return owned;
}

}  // namespace ry::bench
