// The page before and after, one above the other, with what the steps removed: the part of a page's
// report that its script zooms and moves.
#pragma once

#include <string>

#include "report/page_pictures.h"

namespace tool::report {

// Names of the picture files of a page, beside the file that shows it.
struct PictureNames {
    std::string stem;  // "0012"

    std::string before(const PagePictures& pictures) const;
    std::string after(const PagePictures& pictures) const;
    std::string removed(const RemovedInk& removed) const;
    std::string thumbnail(const PagePictures& pictures) const;
};

std::string stage_markup(const std::string& page_name, const PictureNames& names,
                         const PagePictures& pictures);

}  // namespace tool::report
