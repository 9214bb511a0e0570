// What the bitonal rotations have in common: refusals, pages without a skew, complements, the log.
#include "deskew/bitonal_rotation.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "deskew/bitonal_shears.h"
#include "deskew/shear_angles.h"

namespace deskew {
namespace {

// Steepest skew for which small pieces of ink move as a whole.
constexpr int kMaxComponentSkew = 32;

template <class Size>
bool has_room_for(common::BitonalView page, const Size& size) {
    return page.height >= size.height && page.width >= size.width;
}

bool same_geometry(common::BitonalView a, common::BitonalView b) {
    return a.height == b.height && a.width == b.width && a.stride == b.stride;
}

void copy_block(common::BitonalView source, common::MutableBitonalView destination,
                const Progress& progress) {
    progress(0, 1);
    std::memcpy(destination.data, source.data, source.size());
    progress(1, 1);
}

// Copies the bytes that hold the page, its last byte's padding included, and clears the rest of the
// destination.
void copy_page(common::BitonalView source, common::MutableBitonalView destination,
               const Progress& progress) {
    progress(0, 1);
    const auto used = static_cast<std::size_t>(common::bitonal_bytes(source.width));
    const auto stride = static_cast<std::size_t>(destination.stride);
    for (std::int32_t y = 0; y < destination.height; ++y) {
        std::uint8_t* row = destination.row(y);
        const std::size_t copied = y < source.height ? used : 0;
        if (copied != 0) std::memcpy(row, source.row(y), copied);
        std::memset(row + copied, 0, stride - copied);
    }
    progress(1, 1);
}

void log_failed_allocation(diag::LoggerSlot logger) {
    diag::report(logger, diag::kOwner, diag::kErrorLevel, diag::kNoMemoryCode, diag::kNoMemoryText);
    diag::report(logger, diag::kOwner, diag::kErrorLevel, diag::kGaveUpCode);
}

// Caught here, since the record is the rotation's; the failure goes on to the C boundary.
template <class Work>
void logged(diag::LoggerSlot logger, Work&& work) {
    try {
        work();
    } catch (const std::bad_alloc&) {
        log_failed_allocation(logger);
        throw;
    } catch (const std::string&) {  // a BasicImage without memory
        log_failed_allocation(logger);
        throw;
    }
}

// Complements a page for as long as it lives, whatever ends the call.
class Complemented {
  public:
    explicit Complemented(common::MutableBitonalView page) : page_(page) { complement(); }
    ~Complemented() { complement(); }
    Complemented(const Complemented&) = delete;
    Complemented& operator=(const Complemented&) = delete;

  private:
    void complement() const {
        const std::size_t size = page_.size();
        for (std::size_t i = 0; i < size; ++i)
            page_.data[i] = static_cast<std::uint8_t>(~page_.data[i]);
    }

    common::MutableBitonalView page_;
};

}  // namespace

bool straighten(common::BitonalView source, Skew skew, common::MutableBitonalView destination,
                const Progress& progress, diag::LoggerSlot logger) {
    const int yskew = skew_units(skew);
    if (!has_room_for(destination, deskewed_size(source.height, source.width, yskew))) return false;
    if (skew.numerator == 0 && same_geometry(source, destination)) {
        copy_block(source, destination, progress);
    } else if (yskew == 0) {
        copy_page(source, destination, progress);
    } else {
        std::memset(destination.data, 0, destination.size());
        const auto shear = std::abs(yskew) <= kMaxComponentSkew ? component_shear : plain_shear;
        logged(logger, [&] { shear(source, yskew, destination, progress); });
    }
    return true;
}

bool straighten_aligned(common::BitonalView source, Skew skew,
                        common::MutableBitonalView destination, const Progress& progress,
                        diag::LoggerSlot logger) {
    const int yskew = skew_units(skew);
    if (!has_room_for(destination, sheared_size(shear_plan(yskew), source.height, source.width)))
        return false;
    if (yskew == 0) {
        copy_page(source, destination, progress);
    } else {
        logged(logger, [&] { aligned_shear(source, yskew, destination.data, progress); });
    }
    return true;
}

bool straighten_complement(common::MutableBitonalView source, Skew skew,
                           common::MutableBitonalView destination, const Progress& progress) {
    const Complemented complemented(source);
    return straighten(source, skew, destination, progress);
}

bool straighten_complement_aligned(common::MutableBitonalView source, Skew skew,
                                   common::MutableBitonalView destination,
                                   const Progress& progress) {
    const Complemented complemented(source);
    return straighten_aligned(source, skew, destination, progress);
}

}  // namespace deskew
