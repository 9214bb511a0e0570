// The four bitonal deskew rotations beside their models, for tests and fuzz targets.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "aligned_deskew_model.h"
#include "deskew_model.h"
#include "support/bitonal_page.h"
#include "vemoprepro/deskew.h"

namespace model {

using Rotation = int (*)(int, int, unsigned char*, int, int, int, unsigned char*, int, int, int,
                         prepro_progress);

// A rotation that takes a constant source, by the type of those that write to it for a while.
template <auto rotation>
int constant(int skew, int scale, unsigned char* src, int height, int width, int stride,
             unsigned char* dst, int out_height, int out_width, int out_stride,
             prepro_progress progress) {
    return rotation(skew, scale, src, height, width, stride, dst, out_height, out_width, out_stride,
                    progress);
}

inline constexpr struct RotationKind {
    const char* name;
    bool aligned;
    Rotation rotation;
    Rotation model;
} kRotationKinds[] = {
    {"own", false, constant<::skrotbmp_mem>, constant<model::skrotbmp_mem>},
    {"own, complement", false, ::skrotbmp_b_mem, on_complement<model::skrotbmp_mem>},
    {"aligned", true, constant<::skew_binary_image_aligned_with_skrotimg_mem>,
     constant<model::skew_binary_image_aligned_with_skrotimg_mem>},
    {"aligned, complement", true, ::skew_binary_image_aligned_with_skrotimg_mem_black_background,
     on_complement<model::skew_binary_image_aligned_with_skrotimg_mem>}};

struct RotationTarget {
    int height = 0;
    int width = 0;
    int stride = 0;
};

// What a rotation returned, wrote and reported. Before and behind the destination are kGuard bytes
// that it should leave alone.
struct RotationOutcome {
    static constexpr std::size_t kGuard = 64;
    static constexpr std::uint8_t kUntouched = 0x5C;

    int status = 0;
    std::vector<std::uint8_t> bytes;
    std::vector<std::pair<unsigned, unsigned>> reports;
    bool source_kept = true;

    std::vector<std::uint8_t> page() const {
        return {bytes.begin() + kGuard, bytes.end() - kGuard};
    }
    bool without_a_trace() const {
        return source_kept && reports.empty() &&
               std::all_of(bytes.begin(), bytes.end(), [](auto b) { return b == kUntouched; });
    }
    friend bool operator==(const RotationOutcome&, const RotationOutcome&) = default;
};

inline RotationOutcome rotate(Rotation rotation, int skew, int scale,
                              const support::BitonalPage& page, const RotationTarget& target) {
    static std::vector<std::pair<unsigned, unsigned>> reports;
    reports.clear();
    const bool has_bytes = target.height > 0 && target.stride > 0;
    RotationOutcome outcome;
    outcome.bytes.assign(
        (has_bytes ? offset(target.height, target.stride, 0) : 0) + 2 * RotationOutcome::kGuard,
        RotationOutcome::kUntouched);
    std::vector<std::uint8_t> source = page.bytes;
    outcome.status = rotation(
        skew, scale, source.data(), page.height, page.width, page.stride,
        outcome.bytes.data() + RotationOutcome::kGuard, target.height, target.width, target.stride,
        [](unsigned done, unsigned total) { reports.emplace_back(done, total); });
    outcome.reports = reports;
    outcome.source_kept = source == page.bytes;
    return outcome;
}

// Whether the rotation does what its model does, or refuses and leaves no trace.
inline bool rotations_agree(const RotationKind& kind, int skew, int scale,
                            const support::BitonalPage& page, const RotationTarget& target) {
    const RotationOutcome outcome = rotate(kind.rotation, skew, scale, page, target);
    if (outcome.status != 0) return outcome.without_a_trace();
    return outcome.source_kept && outcome == rotate(kind.model, skew, scale, page, target);
}

}  // namespace model
