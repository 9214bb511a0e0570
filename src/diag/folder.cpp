#include "diag/folder.h"

#include <boost/filesystem/operations.hpp>
#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>
#include <stdexcept>
#include <string>

namespace diag {
namespace {

namespace fs = boost::filesystem;

boost::mutex& folder_lock() {
    static boost::mutex lock;
    return lock;
}

void create_parent(const fs::path& folder) {
    try {
        create_folder(folder.parent_path());
    } catch (const std::string& inner) {
        throw "while creating: \"" + folder.string() + "\"\n" + inner;
    } catch (const std::wstring& inner) {
        throw L"while creating: \"" + folder.wstring() + L"\"\n" + inner;
    }
}

void create_single(const fs::path& folder) {
    const boost::lock_guard<boost::mutex> guard(folder_lock());
    if (entry_exists(folder)) return;
    try {
        fs::create_directory(folder);
    } catch (const std::runtime_error& error) {
        throw "error while creating directory " + folder.string() + error.what();
    }
}

}  // namespace

bool entry_exists(const fs::path& path) {
    boost::system::error_code error;
    const fs::file_type type = fs::status(path, error).type();
    return type != fs::status_error && type != fs::file_not_found;
}

void create_folder(const fs::path& folder) {
    if (folder.has_parent_path()) {
        if (!entry_exists(folder.parent_path())) create_parent(folder);
    } else if (!entry_exists(folder)) {
        throw "could not create: \"" + folder.string() + "\" root does not exist";
    }
    create_single(folder);
}

}  // namespace diag
