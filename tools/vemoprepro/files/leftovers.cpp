#include "files/leftovers.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <ctime>
#include <memory>
#include <set>
#include <string_view>

namespace tool::files {
namespace {

bool is_ours(std::string_view name) {
    constexpr std::string_view kAside = kAsideName;
    constexpr std::size_t kPrefix = kAside.find('X');
    return name.size() == kAside.size() && name.substr(0, kPrefix) == kAside.substr(0, kPrefix) &&
           std::all_of(name.begin() + kPrefix, name.end(),
                       [](unsigned char letter) { return std::isalnum(letter) != 0; });
}

bool is_left_over(const std::string& path) {
    constexpr std::time_t kDay = 24 * 60 * 60;
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           status.st_uid == geteuid() && std::time(nullptr) - status.st_mtime > kDay;
}

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

}  // namespace

void remove_leftovers(const std::string& folder) {
    static std::set<std::string> looked_through;
    if (!looked_through.insert(folder).second) return;
    const std::unique_ptr<DIR, CloseFolder> open(opendir(folder.c_str()));
    if (!open) return;
    while (const dirent* entry = readdir(open.get())) {
        if (!is_ours(entry->d_name)) continue;
        const std::string path = folder + "/" + entry->d_name;
        if (is_left_over(path)) unlink(path.c_str());
    }
}

}  // namespace tool::files
