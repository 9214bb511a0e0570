#include "files/file_format.h"

#include <cctype>
#include <string>
#include <string_view>

#include "files/file_error.h"
#include "files/file_view.h"
#include "files/tiff_chain.h"

namespace tool::files {
namespace {

using namespace std::string_view_literals;

bool is_pnm(std::string_view start) {
    return start.size() > 2 && start[0] == 'P' && start[1] >= '1' && start[1] <= '7' &&
           (start[2] == '#' || std::isspace(static_cast<unsigned char>(start[2])) != 0);
}

// Two letters are little to go by; the size of the second header tells it from text.
bool is_bmp(std::string_view start) {
    if (start.size() < 18 || start.substr(0, 2) != "BM" || start.substr(15, 3) != "\0\0\0"sv) {
        return false;
    }
    const int size = static_cast<unsigned char>(start[14]);
    return size == 12 || (size >= 40 && size <= 124);
}

// Empty for files that are known by nothing.
std::string advice_on(std::string_view start) {
    const std::string_view kind = start.substr(0, 4);
    const std::string_view brand = start.size() < 12 ? "" : start.substr(4, 8);
    if (start.find("%PDF-") != std::string_view::npos) {
        return "a PDF file; take its pages out first, for instance with pdftoppm -r 300 -gray "
               "-png, or its "
               "pictures with pdfimages -all";
    }
    for (const std::string_view heic : {"heic", "heix", "heim", "heis", "hevc", "mif1", "msf1"}) {
        if (brand == "ftyp" + std::string(heic)) {
            return "a HEIC file; make a PNG file of it first, for instance with heif-convert";
        }
    }
    if (brand == "ftypavif" || brand == "ftypavis") {
        return "an AVIF file; make a PNG file of it first, for instance with heif-convert";
    }
    if (kind == "AT&T") {
        return "a DjVu file; make a TIFF file of it first, for instance with ddjvu -format=tiff";
    }
    if (start.substr(0, 12) == "\0\0\0\x0CJXL \r\n\x87\n"sv || start.substr(0, 2) == "\xFF\x0A") {
        return "a JPEG XL file; make a PNG file of it first, for instance with djxl";
    }
    return {};
}

// Enough for what precedes the first line of some PDF files.
std::string first_bytes(const SeekableFile& file) {
    std::string bytes(1024, '\0');
    const ssize_t count = FileView(file).read(bytes.data(), bytes.size());
    if (count < 0) throw system_error_of(file.name());
    bytes.resize(static_cast<std::size_t>(count));
    return bytes;
}

}  // namespace

const char* name_of(FileFormat format) {
    switch (format) {
        case FileFormat::kTiff:
            return "TIFF";
        case FileFormat::kPng:
            return "PNG";
        case FileFormat::kJpeg:
            return "JPEG";
        case FileFormat::kJpeg2000:
            return "JPEG 2000";
        case FileFormat::kWebp:
            return "WebP";
        case FileFormat::kGif:
            return "GIF";
        case FileFormat::kBmp:
            return "BMP";
        case FileFormat::kPnm:
            break;
    }
    return "PNM";
}

FileFormat format_of(const SeekableFile& file) {
    const std::string bytes = first_bytes(file);
    const std::string_view start = bytes;
    if (start.empty()) throw FileError(file.name(), "is empty");
    const auto starts_with = [start](std::string_view known) {
        return start.substr(0, known.size()) == known;
    };
    if (starts_with("\x89PNG\r\n\x1A\n")) return FileFormat::kPng;
    if (starts_with("\xFF\xD8\xFF")) return FileFormat::kJpeg;
    if (starts_with("\0\0\0\x0CjP  \r\n\x87\n"sv) || starts_with("\xFF\x4F\xFF\x51")) {
        return FileFormat::kJpeg2000;
    }
    if (starts_with("RIFF") && start.size() > 12 && start.substr(8, 4) == "WEBP") {
        return FileFormat::kWebp;
    }
    if (starts_with("GIF87a") || starts_with("GIF89a")) return FileFormat::kGif;
    if (is_bmp(start)) return FileFormat::kBmp;
    if (is_pnm(start)) return FileFormat::kPnm;
    if (starts_as_tiff(file)) return FileFormat::kTiff;
    const std::string advice = advice_on(start);
    throw FileError(
        file.name(),
        advice.empty() ? "not a TIFF, PNG, JPEG, JPEG 2000, WebP, GIF, BMP or PNM file" : advice);
}

}  // namespace tool::files
