// What the names of files say and what they name.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "files/page_writer.h"

namespace tool::run {

// The format that a file name's extension asks for.
std::optional<files::OutputFormat> format_by_name(const std::string& name);
// "tiff", "png", "pbm", "pnm" and the like.
std::optional<files::OutputFormat> format_named(const std::string& name);

// By its extension: an image that the program reads.
bool names_image(const std::string& name);
// By its extension: a picture or a document of any kind.
bool names_document(const std::string& name);

// Behind the last dot, in small letters; empty when there is none.
std::string extension_of(const std::string& name);

// Device and number, the same for all names of a file.
using FileIdentity = std::pair<unsigned long, unsigned long>;
// None when it is no folder.
std::optional<FileIdentity> folder_identity(const std::string& path);

std::string with_slash(const std::string& folder);

}  // namespace tool::run
