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

using Rotation = int (*)(int, int, unsigned char*, int, int, int, unsigned char*, int, int, int,
                         prepro_progress);

int skrotbmp(int skew, int scale, unsigned char* src, int height, int width, int stride,
             unsigned char* dst, int out_height, int out_width, int out_stride,
             prepro_progress progress) {
    return skrotbmp_mem(skew, scale, src, height, width, stride, dst, out_height, out_width,
                        out_stride, progress);
}

int aligned(int skew, int scale, unsigned char* src, int height, int width, int stride,
            unsigned char* dst, int out_height, int out_width, int out_stride,
            prepro_progress progress) {
    return skew_binary_image_aligned_with_skrotimg_mem(skew, scale, src, height, width, stride, dst,
                                                       out_height, out_width, out_stride, progress);
}

int rotate(Rotation rotation, int skew) {
    Fixture& f = fixture();
    const std::vector<std::uint8_t>& before = f.text;
    static std::vector<std::uint8_t> page;
    page.assign(before.begin(), before.end());  // keeps its capacity: allocates the first time only
    const int result = rotation(skew, 512, page.data(), kHeight, kWidth, kStride, f.out.data(),
                                kHeight + 200, kWidth + 200, (kWidth + 200 + 31) / 32 * 4, nullptr);
    EXPECT_EQ(std::memcmp(page.data(), before.data(), page.size()), 0)
        << "the source was not restored";
    return result;
}

int estimate(int debug) {
    Fixture& f = fixture();
    return estimate_skew_of_binary_image(debug, f.folder.c_str(), f.text.data(), kHeight, kWidth,
                                         kStride, &f.numbers[0], &f.numbers[1], &f.confidence,
                                         &f.numbers[2], &f.numbers[3]);
}

int grey(int nb_threads, unsigned char undithering) {
    Fixture& f = fixture();
    const void* const record[4] = {nullptr, nullptr, nullptr, f.colour.data()};
    return bi_color2greybuf(248, read_row, nullptr, record, PREPRO_SOURCE_RGB, kWidth, 300, 0,
                            kWidth, 0, kHeight, f.out.data(), kWidth * kHeight, nb_threads,
                            undithering);
}

// The page stays as it is when the call fails.
int crop(int type, int height) {
    Fixture& f = fixture();
    static std::vector<std::uint8_t> page;
    page.assign(f.colour.begin(), f.colour.end());
    int* const box = f.numbers;
    const int stride = kWidth * (type == PREPRO_CROP_GREY ? 1 : 3);
    const int result = cropimg(page.data(), type, height, kWidth, stride, 99, 200, 100, box,
                               box + 1, box + 2, box + 3);
    if (result != 0) {
        EXPECT_EQ(std::memcmp(page.data(), f.colour.data(), page.size()), 0);
    }
    return result;
}

int with_handle(const std::function<int(bi_settings*)>& call) {
    bi_settings* handle = bi_setup(read_row);
    if (handle == nullptr) return -1;
    const int result = call(handle);
    bi_upset(handle);
    return result;
}

// Cleaning works in place: on a copy of the page.
int clean_copy(int (*call)(unsigned char* image)) {
    static std::vector<std::uint8_t> page;
    page = fixture().text;  // keeps its capacity: allocates the first time only
    return call(page.data());
}

int remove_lines_with_handle(int (*call)(lrm_settings*)) {
    static std::vector<std::uint8_t> page;
    page = fixture().text;
    lrm_settings* handle = lrm_init_mem(page.data(), kHeight, kWidth, kStride);
    if (handle == nullptr) return -1;
    const int result = call(handle);
    lrm_exit(handle);
    return result;
}

int erase_narrow(void*, int, int width, int) {
    return width < 6 ? 1 : 0;
}

int gradient(int (*binarize)(bi_settings*, void*, int, int, int, int, int, int, unsigned char*),
             bi_settings* handle) {
    return binarize(handle, nullptr, PREPRO_SOURCE_RGB, kWidth, 0, kWidth, 0, kHeight,
                    fixture().out.data());
}

struct Case {
    const char* name;
    bool allocates;
    std::function<int()> call;
};

std::vector<Case> cases() {
    Fixture& f = fixture();
    auto* const out = f.out.data();
    const auto* const text = f.text.data();
    const auto threshold = [](bi_settings* handle) {
        Fixture& shared = fixture();
        return bi_thresh_do(handle, nullptr, PREPRO_SOURCE_RGB, kWidth, 0, kWidth, 0, kHeight,
                            shared.out.data());
    };
    return {
        {"kyd_rotate_180", false,
         [=, &f] {
             return kyd_rotate_180(text, kWidth, kHeight, kStride, out, 1 << 20, &f.stride);
         }},
        {"kyd_rotate_270", false,
         [=, &f] {
             return kyd_rotate_270(text, kWidth, kHeight, kStride, out, 1 << 20, &f.stride);
         }},
        {"kyd_rotate_090", false,
         [=, &f] {
             return kyd_rotate_090(text, kWidth, kHeight, kStride, out, 1 << 20, &f.stride);
         }},
        {"kyd_rotate_bitmap", false,
         [=, &f] {
             return kyd_rotate_bitmap(3, text, kHeight, kWidth, kStride, out, 1 << 20, &f.stride);
         }},
        {"kyd_rotate_color", false,
         [=, &f] {
             return kyd_rotate_color(1, 3, f.colour.data(), kHeight, kWidth, out, &f.numbers[0],
                                     &f.numbers[1]);
         }},
        {"estimate_skew_of_binary_image", true, [] { return estimate(0); }},
        {"estimate_skew_of_binary_image, traced", true, [] { return estimate(1); }},
        {"skbitmap_mem", true,
         [=, &f] {
             return skbitmap_mem(text, kHeight, kWidth, kStride, &f.numbers[0], &f.numbers[1],
                                 &f.numbers[2], &f.numbers[3]);
         }},
        {"skrotbmp_mem, components", true, [] { return rotate(skrotbmp, 20); }},
        {"skrotbmp_mem, plain", true, [] { return rotate(skrotbmp, -90); }},
        {"skrotbmp_b_mem", true, [] { return rotate(skrotbmp_b_mem, -20); }},
        {"aligned, two shears", true, [] { return rotate(aligned, 20); }},
        {"aligned, three shears", true, [] { return rotate(aligned, -40); }},
        {"aligned, black background", true,
         [] { return rotate(skew_binary_image_aligned_with_skrotimg_mem_black_background, 20); }},
        {"bi_setup", true, [] { return with_handle([](bi_settings*) { return 0; }); }},
        {"bi_set_debug_folder", true,
         [] {
             return with_handle([](bi_settings* handle) {
                 const std::string_view longer =
                     "/a/folder/whose/path/is/longer/than/a/short/string";
                 return bi_set_debug_folder(handle, "/tmp") |
                        bi_set_debug_folder(handle, longer.data());
             });
         }},
        {"bi_thresh_do, Otsu, dropout", true,
         [=] {
             return with_handle([=](bi_settings* handle) {
                 static int context;
                 bi_set_thresh(handle, 0);
                 bi_set_dropout(handle, drop_dark_red, &context);
                 return threshold(handle);
             });
         }},
        {"bi_thresh_do, threads", true,
         [=] {
             return with_handle([=](bi_settings* handle) {
                 bi_set_nb_threads(handle, 4);
                 bi_set_image_pointer(handle, fixture().colour.data());
                 return threshold(handle);
             });
         }},
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
         [] {
             return with_handle([](bi_settings* handle) {
                 static int context;
                 bi_set_dropout(handle, drop_dark_red, &context);
                 bi_set_internal_gaussian_smoothing(handle, 1);
                 return gradient(bi_gradl_do, handle);
             });
         }},
        {"bi_gradl_do, threads, fill mean", true,
         [] {
             return with_handle([](bi_settings* handle) {
                 bi_set_nb_threads(handle, 4);
                 bi_set_fill_mean(handle, 1);
                 bi_set_image_pointer(handle, fixture().colour.data());
                 return gradient(bi_gradl_do, handle);
             });
         }},
        {"bi_gradl_do_with_resolution", true,
         [=] {
             return with_handle([=](bi_settings* handle) {
                 return bi_gradl_do_with_resolution(handle, nullptr, PREPRO_SOURCE_RGB, kWidth, 150,
                                                    0, kWidth, 0, kHeight, out);
             });
         }},
        {"bi_gradl_do_debug", true,
         [=] {
             return with_handle([=](bi_settings* handle) {
                 return bi_gradl_do_debug(handle, nullptr, PREPRO_SOURCE_RGB, kWidth, 0, kWidth, 0,
                                          kHeight, out, "/a/folder/longer/than/a/short/string");
             });
         }},
        {"bi_grey_gradl_do", true,
         [=, &f] {
             return with_handle([=, &f](bi_settings* handle) {
                 return bi_grey_gradl_do(handle, f.colour.data(), kHeight, kWidth, out);
             });
         }},
        {"bi_gradl_do_sobel", true,
         [] {
             return with_handle(
                 [](bi_settings* handle) { return gradient(bi_gradl_do_sobel, handle); });
         }},
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
        {"bi_color2greybuf", true, [] { return grey(1, 0); }},
        {"bi_color2greybuf, undithered", true, [] { return grey(1, 1); }},
        {"bi_color2greybuf, threads", true, [] { return grey(4, 0); }},
        {"cropbmp", true, [=] { return cropbmp(0, text, kHeight, kWidth, kStride, out); }},
        {"cropbmp, paper", true, [=] { return cropbmp(1, text, kHeight, kWidth, kStride, out); }},
        {"cropimg, grey", true, [] { return crop(PREPRO_CROP_GREY, kHeight); }},
        {"cropimg, colour", true, [] { return crop(PREPRO_CROP_RGB, kHeight); }},
        {"cropimg, small", true, [] { return crop(PREPRO_CROP_BGR, 23); }},
        {"cropgrey_get", false,
         [=, &f] { return cropgrey_get(out, f.colour.data(), kHeight, kWidth, kWidth); }},
        {"cropgrey_replace", false,
         [=] { return cropgrey_replace(255, 0, out, kHeight, kWidth, kWidth); }},
        {"cropcolor_get", false,
         [=, &f] { return cropcolor_get(out, f.colour.data(), kHeight, kWidth, kWidth); }},
        {"cropcolor_replace", false,
         [=, &f] {
             const auto* const row = f.colour.data();
             return cropcolor_replace(row, row, out, kHeight, kWidth, kWidth);
         }},
        {"lrm_do_horz", true, [] { return remove_lines_with_handle(lrm_do_horz); }},
        {"lrm_do_vert", true, [] { return remove_lines_with_handle(lrm_do_vert); }},
        {"linerm_h", true,
         [] {
             return clean_copy([](unsigned char* image) {
                 return linerm_h(image, kHeight, kWidth, kStride, 5, 40, 3, 20, 3, 2);
             });
         }},
        {"linerm_v", true,
         [] {
             return clean_copy([](unsigned char* image) {
                 return linerm_v(image, kHeight, kWidth, kStride, 5, 40, 3, 20, 3, 2);
             });
         }},
        {"extract_underline, horizontal", true,
         [=] {
             const int covered =
                 extract_underline(0, 0, 9, 4, 5, 1, text, out, kHeight, kStride, 3, kWidth);
             return covered > 0 ? 0 : covered;
         }},
        {"extract_underline, vertical", true,
         [=] {
             const int covered =
                 extract_underline(0, 1, 9, 4, 5, 1, text, out, kHeight, kStride, 3, kWidth);
             return covered > 0 ? 0 : covered;
         }},
        {"despeckl_mem, few pixels", false,
         [] {
             return clean_copy([](unsigned char* page) {
                 return despeckl_mem(page, kHeight, kWidth, kStride, 8);
             });
         }},
        {"despeckl_mem, many pixels", true,
         [] {
             return clean_copy([](unsigned char* page) {
                 return despeckl_mem(page, kHeight, kWidth, kStride, 400);
             });
         }},
        {"despeckl_c_mem, few pixels", true,
         [] {
             return clean_copy([](unsigned char* page) {
                 return despeckl_c_mem(page, kHeight, kWidth, kStride, 8, 3);
             });
         }},
        {"despeckl_c_mem, many pixels", true,
         [] {
             return clean_copy([](unsigned char* page) {
                 return despeckl_c_mem(page, kHeight, kWidth, kStride, 400, 3);
             });
         }},
        {"despeckl_cb_mem", true,
         [] {
             return clean_copy([](unsigned char* page) {
                 return despeckl_cb_mem(page, kHeight, kWidth, kStride, erase_narrow, nullptr);
             });
         }},
        {"despeckl_ccb_mem", true,
         [] {
             return clean_copy([](unsigned char* page) {
                 return despeckl_ccb_mem(page, kHeight, kWidth, kStride, erase_narrow, nullptr, 2);
             });
         }},
        {"despeckl_selective", true,
         [] {
             return clean_copy([](unsigned char* page) {
                 return despeckl_selective(page, kHeight, kWidth, kStride, 0, 100, 2);
             });
         }},
        {"pre_tva", true,
         [] {
             return clean_copy([](unsigned char* page) {
                 return pre_tva(page, kHeight, kWidth, kStride, 20, 2);
             });
         }},
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
