// Images from the bytes of files, good and bad.
#include "Platform/UIKit/UIImage.h"

#include "Tests/Platform/UIKit/MainQueueFixture.h"

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>

#include <zlib.h>

namespace veyra {

namespace {

/// A file of that type with an image whose left half is red and whose right half is half transparent blue.
std::string fileOfType(const char* type, int width = 16, int height = 8) {
    GdkPixbuf* const pixbuf = gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, width, height);
    gdk_pixbuf_fill(pixbuf, 0xff0000ff);
    GdkPixbuf* const right = gdk_pixbuf_new_subpixbuf(pixbuf, width / 2, 0, width - width / 2, height);
    gdk_pixbuf_fill(right, 0x0000ff80);
    gchar* bytes = nullptr;
    gsize size = 0;
    EXPECT_TRUE(gdk_pixbuf_save_to_buffer(pixbuf, &bytes, &size, type, nullptr, nullptr)) << type;
    const std::string file(bytes, size);
    g_free(bytes);
    g_object_unref(right);
    g_object_unref(pixbuf);
    return file;
}

void appendBigEndian(std::string& text, uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>(value >> shift & 0xff);
}

void appendChunk(std::string& png, const std::string& type, const std::string& data) {
    appendBigEndian(png, static_cast<uint32_t>(data.size()));
    const std::string body = type + data;
    png += body;
    appendBigEndian(png, static_cast<uint32_t>(
                             crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()))));
}

/// A PNG of one colour that is very small for its size.
std::string pngOfSize(uint32_t width, uint32_t height, bool withData) {
    std::string png = "\x89PNG\r\n\x1a\n";
    std::string header;
    appendBigEndian(header, width);
    appendBigEndian(header, height);
    header += std::string("\x01\x00\x00\x00\x00", 5); // one bit a pixel, grey
    appendChunk(png, "IHDR", header);
    if (withData) {
        const std::string rows((size_t{(width + 7) / 8} + 1) * height, '\0');
        uLongf size = compressBound(rows.size());
        std::string packed(size, '\0');
        compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(rows.data()),
                  rows.size(), 9);
        packed.resize(size);
        appendChunk(png, "IDAT", packed);
    }
    appendChunk(png, "IEND", "");
    return png;
}

std::string gifOfSize(unsigned width, unsigned height) {
    std::string gif = "GIF89a";
    for (const unsigned side : {width, height}) {
        gif += static_cast<char>(side & 0xff);
        gif += static_cast<char>(side >> 8);
    }
    gif += std::string("\x80\x00\x00\xff\x00\x00\x00\x00\x00", 9);           // two colours
    gif += std::string("\x2c\x00\x00\x00\x00", 5) + gif.substr(6, 4) + '\0'; // one frame as large as the whole
    return gif + std::string("\x02\x02\x44\x01\x00\x3b", 6);
}

std::string svgOfSize(const std::string& width, const std::string& height) {
    return "<svg xmlns='http://www.w3.org/2000/svg' width='" + width + "' height='" + height +
           "'><rect width='50%' height='100%' fill='#f00'/></svg>";
}

} // namespace

class UIImageDecoding : public MainQueueFixture {};

TEST_F(UIImageDecoding, KeepsPixelsPremultiplied) {
    const auto image = UIImage::imageWithData(fileOfType("png"));
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->pixelWidth(), 16);
    EXPECT_EQ(image->pixelHeight(), 8);
    EXPECT_EQ(image->scale(), 1);
    EXPECT_EQ(image->pixels()[0], 0xffff0000u);
    EXPECT_EQ(image->pixels()[8 * 16 - 1], 0x80000080u);
}

TEST_F(UIImageDecoding, ReadsEveryKindThatPagesUse) {
    for (const char* type : {"png", "jpeg", "webp"}) {
        const auto image = UIImage::imageWithData(fileOfType(type));
        ASSERT_NE(image, nullptr) << type;
        EXPECT_EQ(image->pixelWidth(), 16) << type;
        EXPECT_GT(image->pixels()[0] >> 16 & 0xff, 0xf0u) << type;
    }
    const auto gif = UIImage::imageWithData(gifOfSize(1, 1));
    ASSERT_NE(gif, nullptr);
    EXPECT_EQ(gif->pixels()[0], 0xffff0000u);
    for (const std::string& svg : {svgOfSize("24", "12"), " \n" + svgOfSize("24", "12"),
                                   "\xef\xbb\xbf<?xml version='1.0'?>" + svgOfSize("24", "12")}) {
        const auto image = UIImage::imageWithData(svg);
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(image->pixelWidth(), 24);
        EXPECT_EQ(image->pixels()[0], 0xffff0000u);
        EXPECT_EQ(image->pixels()[23], 0u);
    }
}

TEST_F(UIImageDecoding, GivesNothingForWhatIsNoImage) {
    for (const std::string& data :
         {std::string(), std::string("text"), std::string("<!doctype html><p>not found"), std::string("<svg"),
          std::string("GIF89a"), std::string("\xff\xd8\xff"), std::string("\x89PNG\r\n\x1a\n"),
          std::string("RIFF\0\0\0\0WEBP", 12), std::string("\x1f\x8b"), std::string(100000, '\0')})
        EXPECT_EQ(UIImage::imageWithData(data), nullptr) << data.substr(0, 20);
}

TEST_F(UIImageDecoding, GivesNothingForAnAnimatedWebP) {
    std::string file = fileOfType("webp");
    ASSERT_EQ(file.substr(12, 4), "VP8X");
    EXPECT_NE(UIImage::imageWithData(file), nullptr);
    file[20] = static_cast<char>(file[20] | 2);
    EXPECT_EQ(UIImage::imageWithData(file), nullptr);
}

TEST_F(UIImageDecoding, GivesNothingForAFileThatIsCutOff) {
    const std::string png = fileOfType("png");
    EXPECT_EQ(UIImage::imageWithData(std::string_view(png).substr(0, png.size() / 2)), nullptr);
}

TEST_F(UIImageDecoding, GivesNothingForAnyKindOfFileThatIsCutOffAnywhere) {
    const std::pair<const char*, std::string> files[] = {
        {"png", fileOfType("png")},
        {"jpeg", fileOfType("jpeg")},
        {"webp", fileOfType("webp")},
        {"gif", gifOfSize(1, 1)},
        {"svg", svgOfSize("16", "8")},
        {"large png", fileOfType("png", 300, 200)},
        {"large jpeg", fileOfType("jpeg", 300, 200)},
    };
    for (const auto& [type, whole] : files) {
        ASSERT_NE(UIImage::imageWithData(whole), nullptr) << type;
        for (size_t length = 0; length < whole.size(); ++length)
            EXPECT_EQ(UIImage::imageWithData(std::string_view(whole).substr(0, length)), nullptr)
                << type << " of " << whole.size() << " bytes cut off at " << length;
    }
}

TEST_F(UIImageDecoding, DoesNotLookAtWhatFollowsAFilesEnd) {
    for (const char* type : {"png", "jpeg", "webp"})
        EXPECT_NE(UIImage::imageWithData(fileOfType(type) + std::string(1000, '\0')), nullptr) << type;
}

TEST_F(UIImageDecoding, UsesNoOtherDecoders) {
    EXPECT_EQ(UIImage::imageWithData(fileOfType("bmp")), nullptr);
    EXPECT_EQ(UIImage::imageWithData("/* XPM */ static char *x[] = {\"1 1 1 1\", \"a c red\", \"a\"};"), nullptr);
}

TEST_F(UIImageDecoding, RefusesMorePixelsThanItsCeilingAndTakesAsManyAsThat) {
    EXPECT_EQ(UIImage::maximumDecodedPixels, 4194304);
    EXPECT_NE(UIImage::imageWithData(pngOfSize(2048, 2048, true)), nullptr);
    EXPECT_EQ(UIImage::imageWithData(pngOfSize(2048, 2049, true)), nullptr);
    EXPECT_EQ(UIImage::imageWithData(pngOfSize(65535, 65535, false)), nullptr);
    EXPECT_EQ(UIImage::imageWithData(pngOfSize(2000000000, 2000000000, false)), nullptr);
    EXPECT_EQ(UIImage::imageWithData(gifOfSize(65535, 65535)), nullptr);
    EXPECT_EQ(UIImage::imageWithData(svgOfSize("20000", "20000")), nullptr);
    EXPECT_EQ(UIImage::imageWithData(svgOfSize("1e30", "1e30")), nullptr);
    for (const char* type : {"jpeg", "webp"})
        EXPECT_EQ(UIImage::imageWithData(fileOfType(type, 2100, 2100)), nullptr) << type;
}

TEST_F(UIImageDecoding, NeverCrashesOnDamagedFiles) {
    unsigned state = 1;
    const auto random = [&] { return state = state * 1664525 + 1013904223, state >> 8; };
    for (const char* type : {"png", "jpeg", "webp", "gif", "svg"}) {
        const std::string name = type;
        const std::string good = name == "gif"   ? gifOfSize(16, 8)
                                 : name == "svg" ? svgOfSize("16", "8")
                                                 : fileOfType(type);
        for (int round = 0; round < 300; ++round) {
            std::string bad = good;
            for (unsigned count = 1 + random() % 8; count > 0; --count)
                bad[random() % bad.size()] = static_cast<char>(random());
            const auto image = UIImage::imageWithData(bad);
            EXPECT_TRUE(!image || image->pixelWidth() > 0);
        }
    }
}

TEST_F(UIImageDecoding, DecodesElsewhereAndAnswersOnTheMainQueue) {
    std::vector<std::shared_ptr<UIImage>> images;
    bool wasCurrent = true;
    for (const std::string& data : {fileOfType("png"), std::string("no image")})
        UIImage::decodeData(data, [&](const std::shared_ptr<UIImage>& image) {
            wasCurrent = wasCurrent && dispatch_get_main_queue().isCurrent();
            images.push_back(image);
        });
    EXPECT_TRUE(images.empty());
    EXPECT_TRUE(runMainQueueUntil([&] { return images.size() == 2; }));
    EXPECT_TRUE(wasCurrent);
    ASSERT_EQ(images.size(), 2u);
    EXPECT_NE(images[0] == nullptr, images[1] == nullptr);
}

TEST_F(UIImageDecoding, APictureThatIsGoneOverWithoutEndIsRefused) {
    const std::string jpeg = fileOfType("jpeg"), start = "\xff\xda";
    const size_t scan = jpeg.rfind(start);
    const std::string coded = jpeg.substr(scan, jpeg.size() - 2 - scan), end = "\xff\xd9";
    std::string again = jpeg.substr(0, scan), after = jpeg;
    for (int i = 0; i < 100; ++i) {
        again += coded;
        after += coded;
    }
    EXPECT_TRUE(UIImage::imageWithData(jpeg));
    EXPECT_FALSE(UIImage::imageWithData(again + end));
    EXPECT_TRUE(UIImage::imageWithData(after)) << "what comes after the picture does not count";
}

} // namespace veyra
