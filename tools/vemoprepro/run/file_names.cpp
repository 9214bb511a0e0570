#include "run/file_names.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <set>

namespace tool::run {
namespace {

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

}  // namespace

std::string extension_of(const std::string& name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || name.find('/', dot) != std::string::npos) return "";
    return lower(name.substr(dot + 1));
}

std::optional<files::OutputFormat> format_named(const std::string& name) {
    static const std::map<std::string, files::OutputFormat> kFormats = {
        {"tif", files::OutputFormat::kTiff}, {"tiff", files::OutputFormat::kTiff},
        {"png", files::OutputFormat::kPng},  {"pbm", files::OutputFormat::kPnm},
        {"pgm", files::OutputFormat::kPnm},  {"ppm", files::OutputFormat::kPnm},
        {"pnm", files::OutputFormat::kPnm}};
    const auto found = kFormats.find(lower(name));
    if (found == kFormats.end()) return std::nullopt;
    return found->second;
}

std::optional<files::OutputFormat> format_by_name(const std::string& name) {
    return format_named(extension_of(name));
}

bool names_image(const std::string& name) {
    static const std::set<std::string> kRead = {"jpg", "jpeg", "jpe", "jfif", "pam", "webp",
                                                "gif", "bmp",  "jp2", "j2k",  "jpx"};
    return format_by_name(name) || kRead.count(extension_of(name)) != 0;
}

bool names_document(const std::string& name) {
    static const std::set<std::string> kOthers = {"pdf", "heic", "heif", "avif", "djvu", "ps",
                                                  "svg", "txt",  "html", "json", "jxl"};
    return names_image(name) || kOthers.count(extension_of(name)) != 0;
}

std::optional<FileIdentity> folder_identity(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return std::nullopt;
    return FileIdentity{status.st_dev, status.st_ino};
}

std::string with_slash(const std::string& folder) {
    return folder.back() == '/' ? folder : folder + "/";
}

}  // namespace tool::run
