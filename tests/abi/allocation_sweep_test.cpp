// Every exported function with each of its allocations failing in turn, through the shared library
// as a host links it, so that the containers inside allocate through the library's own operators.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "support/allocation_limit.h"
#include "support/random_page.h"
#include "vemoprepro/prepro.h"

namespace {

constexpr int kHeight = 300;
constexpr int kWidth = 333;
constexpr int kStride = 44;

// The pages that all calls share; the calls own nothing, so what they keep is a leak.
struct Fixture {
    std::vector<std::uint8_t> text = support::random_text(kHeight, kWidth, kStride, 5);
    std::vector<std::uint8_t> colour = support::random_bytes(std::size_t{3} * kWidth * kHeight, 6);
    std::vector<std::uint8_t> out = std::vector<std::uint8_t>(std::size_t{1} << 20);
    std::string folder = std::filesystem::temp_directory_path() / "vemoprepro-sweep";
    int row = 0;
    int numbers[5] = {};
    double confidence = 0;
    unsigned int stride = 0;

    ~Fixture() { std::filesystem::remove_all(folder); }
};

Fixture& fixture() {
    static Fixture shared;
    return shared;
}

int read_row(void*, int mode, unsigned char* row) {
    Fixture& f = fixture();
    f.row = mode == 0 ? 0 : f.row + 1;
    std::memcpy(row, f.colour.data() + std::size_t{3} * kWidth * static_cast<std::size_t>(f.row),
                std::size_t{3} * kWidth);
    return 0;
}

int drop_dark_red(void*, const unsigned char* colour) {
    return colour[0] > 200 ? 1 : 0;
}

// A page that a call may change; it keeps its capacity, so that it allocates the first time only.
std::uint8_t* page_like(const std::vector<std::uint8_t>& original) {
    static std::vector<std::uint8_t> page;
    page.assign(original.begin(), original.end());
    return page.data();
}

using Call = std::function<int()>;

// Rotates the page by a function that gives back the source as it was.
template <class Rotation>
Call rotated(Rotation rotation, int skew) {
    return [=] {
        Fixture& f = fixture();
        std::uint8_t* const page = page_like(f.text);
        const int result =
            rotation(skew, 512, page, kHeight, kWidth, kStride, f.out.data(), kHeight + 200,
                     kWidth + 200, (kWidth + 200 + 31) / 32 * 4, nullptr);
        EXPECT_EQ(std::memcmp(page, f.text.data(), f.text.size()), 0)
            << "the source was not restored";
        return result;
    };
}

template <class Turn>
Call turned(Turn turn) {
    return [=] {
        Fixture& f = fixture();
        return turn(f.text.data(), kWidth, kHeight, kStride, f.out.data(), 1 << 20, &f.stride);
    };
}

Call estimated(int debug) {
    return [=] {
        Fixture& f = fixture();
        return estimate_skew_of_binary_image(debug, f.folder.c_str(), f.text.data(), kHeight,
                                             kWidth, kStride, &f.numbers[0], &f.numbers[1],
                                             &f.confidence, &f.numbers[2], &f.numbers[3]);
    };
}

Call greyed(int nb_threads, unsigned char undithering) {
    return [=] {
        Fixture& f = fixture();
        const void* const record[4] = {nullptr, nullptr, nullptr, f.colour.data()};
        return bi_color2greybuf(248, read_row, nullptr, record, PREPRO_SOURCE_RGB, kWidth, 300, 0,
                                kWidth, 0, kHeight, f.out.data(), kWidth * kHeight, nb_threads,
                                undithering);
    };
}

// The page stays as it is when the call fails.
Call cropped(int type, int height) {
    return [=] {
        Fixture& f = fixture();
        std::uint8_t* const page = page_like(f.colour);
        int* const box = f.numbers;
        const int stride = kWidth * (type == PREPRO_CROP_GREY ? 1 : 3);
        const int result = cropimg(page, type, height, kWidth, stride, 99, 200, 100, box, box + 1,
                                   box + 2, box + 3);
        if (result != 0) {
            EXPECT_EQ(std::memcmp(page, f.colour.data(), f.colour.size()), 0);
        }
        return result;
    };
}

void set_dropout(bi_settings* handle) {
    static int context;
    bi_set_dropout(handle, drop_dark_red, &context);
}

void set_threads(bi_settings* handle) {
    bi_set_nb_threads(handle, 4);
    bi_set_image_pointer(handle, fixture().colour.data());
}

template <class Work>
Call with_handle(Work work) {
    return [=] {
        bi_settings* const handle = bi_setup(read_row);
        if (handle == nullptr) return -1;
        const int result = work(handle);
        bi_upset(handle);
        return result;
    };
}

// Binarizes the page that the reader gives by a handle with these settings.
template <class Binarize, class... More>
Call binarized(Binarize binarize, void (*set)(bi_settings*), More... more) {
    return with_handle([=](bi_settings* handle) {
        set(handle);
        return binarize(handle, nullptr, PREPRO_SOURCE_RGB, kWidth, 0, kWidth, 0, kHeight,
                        fixture().out.data(), more...);
    });
}

// Cleans in place, on a copy of the page.
template <class Clean, class... More>
Call cleaned(Clean clean, More... more) {
    return [=] { return clean(page_like(fixture().text), kHeight, kWidth, kStride, more...); };
}

// The same for those that leave the page as it was when they fail.
template <class Clean, class... More>
Call cleaned_or_kept(Clean clean, More... more) {
    return [=] {
        const auto& text = fixture().text;
        std::uint8_t* const page = page_like(text);
        const int result = clean(page, kHeight, kWidth, kStride, more...);
        if (result != 0) {
            EXPECT_EQ(std::memcmp(page, text.data(), text.size()), 0);
        }
        return result;
    };
}

Call without_lines(int (*remove)(lrm_settings*)) {
    return [=] {
        lrm_settings* const handle =
            lrm_init_mem(page_like(fixture().text), kHeight, kWidth, kStride);
        if (handle == nullptr) return -1;
        const int result = remove(handle);
        lrm_exit(handle);
        return result;
    };
}

Call underlined(int vertical) {
    return [=] {
        Fixture& f = fixture();
        const int covered = extract_underline(0, vertical, 9, 4, 5, 1, f.text.data(), f.out.data(),
                                              kHeight, kStride, 3, kWidth);
        return covered > 0 ? 0 : covered;
    };
}

int erase_narrow(void*, int, int width, int) {
    return width < 6 ? 1 : 0;
}

struct Case {
    const char* name;
    bool allocates;
    Call call;
};

std::vector<Case> cases() {
    Fixture& f = fixture();
    auto* const out = f.out.data();
    auto* const text = f.text.data();
    auto* const colour = f.colour.data();
    const auto plain = [](bi_settings*) {};
    return {
        {"kyd_rotate_180", false, turned(kyd_rotate_180)},
        {"kyd_rotate_270", false, turned(kyd_rotate_270)},
        {"kyd_rotate_090", false, turned(kyd_rotate_090)},
        {"kyd_rotate_bitmap", false,
         [=, &f] {
             return kyd_rotate_bitmap(3, text, kHeight, kWidth, kStride, out, 1 << 20, &f.stride);
         }},
        {"kyd_rotate_color", false,
         [=, &f] {
             return kyd_rotate_color(1, 3, colour, kHeight, kWidth, out, &f.numbers[0],
                                     &f.numbers[1]);
         }},
        {"estimate_skew_of_binary_image", true, estimated(0)},
        {"estimate_skew_of_binary_image, traced", true, estimated(1)},
        {"skbitmap_mem", true,
         [=, &f] {
             return skbitmap_mem(text, kHeight, kWidth, kStride, &f.numbers[0], &f.numbers[1],
                                 &f.numbers[2], &f.numbers[3]);
         }},
        {"skrotbmp_mem, components", true, rotated(skrotbmp_mem, 20)},
        {"skrotbmp_mem, plain", true, rotated(skrotbmp_mem, -90)},
        {"skrotbmp_b_mem", true, rotated(skrotbmp_b_mem, -20)},
        {"aligned, two shears", true, rotated(skew_binary_image_aligned_with_skrotimg_mem, 20)},
        {"aligned, three shears", true, rotated(skew_binary_image_aligned_with_skrotimg_mem, -40)},
        {"aligned, black background", true,
         rotated(skew_binary_image_aligned_with_skrotimg_mem_black_background, 20)},
        {"bi_setup", true, with_handle([](bi_settings*) { return 0; })},
        {"bi_set_debug_folder", true, with_handle([](bi_settings* handle) {
             return bi_set_debug_folder(handle, "/tmp") |
                    bi_set_debug_folder(handle, "/a/folder/whose/path/is/longer/than/a/short/one");
         })},
        {"bi_thresh_do, Otsu, dropout", true,
         binarized(bi_thresh_do,
                   [](bi_settings* handle) {
                       bi_set_thresh(handle, 0);
                       set_dropout(handle);
                   })},
        {"bi_thresh_do, threads", true, binarized(bi_thresh_do, set_threads)},
        {"bi_thresh", true,
         [=] {
             return bi_thresh(2, 0, read_row, nullptr, PREPRO_SOURCE_RGB, kWidth, 0, kWidth, 0,
                              kHeight, out);
         }},
        {"bi_thresh_dropout", true,
         [=, &f] {
             return bi_thresh_dropout(1, 100, read_row, nullptr, drop_dark_red, &f,
                                      PREPRO_SOURCE_BGR, kWidth, 0, kWidth, 0, kHeight, out);
         }},
        {"bi_gradl_do, dropout", true,
         binarized(bi_gradl_do,
                   [](bi_settings* handle) {
                       set_dropout(handle);
                       bi_set_internal_gaussian_smoothing(handle, 1);
                   })},
        {"bi_gradl_do, threads, fill mean", true,
         binarized(bi_gradl_do,
                   [](bi_settings* handle) {
                       set_threads(handle);
                       bi_set_fill_mean(handle, 1);
                   })},
        {"bi_gradl_do_with_resolution", true, with_handle([=](bi_settings* handle) {
             return bi_gradl_do_with_resolution(handle, nullptr, PREPRO_SOURCE_RGB, kWidth, 150, 0,
                                                kWidth, 0, kHeight, out);
         })},
        {"bi_gradl_do_debug", true,
         binarized(bi_gradl_do_debug, plain, "/a/folder/longer/than/a/short/string")},
        {"bi_grey_gradl_do", true, with_handle([=](bi_settings* handle) {
             return bi_grey_gradl_do(handle, colour, kHeight, kWidth, out);
         })},
        {"bi_gradl_do_sobel", true, binarized(bi_gradl_do_sobel, plain)},
        {"bi_gradl", true,
         [=] {
             return bi_gradl(1, read_row, nullptr, PREPRO_SOURCE_RGB, kWidth, 0, kWidth, 0, kHeight,
                             out);
         }},
        {"bi_gradl_dropout", true,
         [=, &f] {
             return bi_gradl_dropout(2, read_row, nullptr, drop_dark_red, &f, PREPRO_SOURCE_BGR,
                                     kWidth, 0, kWidth, 0, kHeight, out);
         }},
        {"bi_color2greybuf", true, greyed(1, 0)},
        {"bi_color2greybuf, undithered", true, greyed(1, 1)},
        {"bi_color2greybuf, threads", true, greyed(4, 0)},
        {"cropbmp", true, [=] { return cropbmp(0, text, kHeight, kWidth, kStride, out); }},
        {"cropbmp, paper", true, [=] { return cropbmp(1, text, kHeight, kWidth, kStride, out); }},
        {"cropimg, grey", true, cropped(PREPRO_CROP_GREY, kHeight)},
        {"cropimg, colour", true, cropped(PREPRO_CROP_RGB, kHeight)},
        {"cropimg, small", true, cropped(PREPRO_CROP_BGR, 23)},
        {"cropgrey_get", false, [=] { return cropgrey_get(out, colour, kHeight, kWidth, kWidth); }},
        {"cropgrey_replace", false,
         [=] { return cropgrey_replace(255, 0, out, kHeight, kWidth, kWidth); }},
        {"cropcolor_get", false,
         [=] { return cropcolor_get(out, colour, kHeight, kWidth, kWidth); }},
        {"cropcolor_replace", false,
         [=] { return cropcolor_replace(colour, colour, out, kHeight, kWidth, kWidth); }},
        {"lrm_do_horz", true, without_lines(lrm_do_horz)},
        {"lrm_do_vert", true, without_lines(lrm_do_vert)},
        {"linerm_h", true, cleaned_or_kept(linerm_h, 5, 40, 3, 20, 3, 2)},
        {"linerm_v", true, cleaned_or_kept(linerm_v, 5, 40, 3, 20, 3, 2)},
        {"extract_underline, horizontal", true, underlined(0)},
        {"extract_underline, vertical", true, underlined(1)},
        {"despeckl_mem, no pixels", true, cleaned_or_kept(despeckl_mem, 0)},
        {"despeckl_mem, few pixels", true, cleaned_or_kept(despeckl_mem, 8)},
        {"despeckl_mem, many pixels", true, cleaned(despeckl_mem, 400)},
        {"despeckl_c_mem, no pixels", true, cleaned_or_kept(despeckl_c_mem, -1, 3)},
        {"despeckl_c_mem, not near", true, cleaned_or_kept(despeckl_c_mem, 8, 0)},
        {"despeckl_c_mem, few pixels", true, cleaned(despeckl_c_mem, 8, 3)},
        {"despeckl_c_mem, many pixels", true, cleaned(despeckl_c_mem, 400, 3)},
        {"despeckl_cb_mem", true, cleaned(despeckl_cb_mem, erase_narrow, nullptr)},
        {"despeckl_ccb_mem", true, cleaned(despeckl_ccb_mem, erase_narrow, nullptr, 2)},
        {"despeckl_selective", true, cleaned(despeckl_selective, 0, 100, 2)},
        {"pre_tva", true, cleaned(pre_tva, short{20}, short{2})},
    };
}

TEST(AllocationSweep, EveryAllocationOfEveryFunctionFails) {
    for (const Case& c : cases()) {
        SCOPED_TRACE(c.name);
        c.call();  // whatever the process allocates once is there from now on
        const int allocations = support::fail_each_allocation(c.call);
        EXPECT_EQ(allocations > 0, c.allocates) << allocations;
    }
}

#if !VEMOPREPRO_SANITIZED  // a sanitizer brings operators of its own
// With the library linked, the operators of the process are the library's: a container of the host
// counts.
TEST(AllocationSweep, TheOperatorsOfTheProcessAreTheLibrarys) {
    prepro_redefine_malloc(support::failing_malloc);
    prepro_redefine_free(support::counted_free);
    const long before = support::blocks_held;
    auto* block = new std::string;
    const long with_block = support::blocks_held;
    delete block;
    const long after = support::blocks_held;
    prepro_redefine_malloc(nullptr);
    prepro_redefine_free(nullptr);
    EXPECT_EQ(with_block, before + 1);
    EXPECT_EQ(after, before);
}
#endif

}  // namespace
