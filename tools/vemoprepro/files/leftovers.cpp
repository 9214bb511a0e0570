#include "files/leftovers.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <ctime>
#include <memory>
#include <set>
#include <utility>

namespace tool::files {
namespace {

bool is_ours(const std::string& name, const std::string& prefix) {
    return name.size() == prefix.size() + std::strlen(kSixCharacters) &&
           name.compare(0, prefix.size(), prefix) == 0 &&
           std::all_of(name.begin() + static_cast<std::ptrdiff_t>(prefix.size()), name.end(),
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

void remove_leftovers(const std::string& folder, const char* prefix) {
    static std::set<std::pair<std::string, std::string>> looked_through;
    if (!looked_through.emplace(folder, prefix).second) return;
    const std::unique_ptr<DIR, CloseFolder> open(opendir(folder.c_str()));
    if (!open) return;
    while (const dirent* entry = readdir(open.get())) {
        const std::string path = folder + "/" + entry->d_name;
        if (is_ours(entry->d_name, prefix) && is_left_over(path)) unlink(path.c_str());
    }
}

}  // namespace tool::files
