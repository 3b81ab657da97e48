// SPDX-License-Identifier: MIT
#include "pdf/meshpictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "host/color/functions.h"
#include "host/color/shadingspaces.h"
#include "host/host.h"

namespace VANTIX::TESTS {
namespace {

constexpr int kClear = -1;

/// A picture in gray: the samples, or `kClear`.
struct Pixels {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<int> values;

    /// At a part of the picture from its left and from its top.
    [[nodiscard]] int At(double x, double y) const {
        return values.at(static_cast<std::size_t>(y * height) * static_cast<std::size_t>(width) +
                         static_cast<std::size_t>(x * width));
    }

    [[nodiscard]] std::size_t ClearCount() const {
        return static_cast<std::size_t>(std::count(values.begin(), values.end(), kClear));
    }
};

class MeshPictures : public testing::Test {
protected:
    /// A gray mesh of 8 bits in everything, from 0 to 255 in x and y.
    HOST::ColorSpacePtr Mesh(std::int32_t type, std::vector<std::uint8_t> data,
                             HOST::FunctionPtr function = {}, float reach = 255) {
        std::string error;
        HOST::ColorSpacePtr mesh = HOST::MakeMeshShading(
            {gray, std::move(function)},
            {{type, 8, 8, 8, type == 5 ? 2 : 0, 1}, {0, reach, 0, reach, 0, 1}, std::move(data)},
            error);
        EXPECT_TRUE(mesh) << error;
        return mesh;
    }

    /// What the mesh paints in the area; no pixels for nothing.
    static Pixels Picture(const HOST::ColorSpacePtr& mesh, const PDF::ShadingArea& area,
                          double resolution = 1) {
        auto pictures = PDF::PicturesOf(*mesh, area, resolution, {});
        Pixels pixels;
        if (pictures.empty()) {
            return pixels;
        }
        PDF::ShadingPicture& picture = pictures.front();
        pixels.width = picture.mask->width;
        pixels.height = picture.mask->height;
        std::vector<std::uint8_t> samples(static_cast<std::size_t>(pixels.width));
        std::vector<std::uint8_t> opacity(samples.size());
        std::uint8_t* const samplePlane = samples.data();
        std::uint8_t* const opacityPlane = opacity.data();
        for (std::int32_t y = 0; y < pixels.height; ++y) {
            picture.image.source->ReadLine(y, &samplePlane);
            picture.mask->opacity->ReadLine(y, &opacityPlane);
            for (std::size_t x = 0; x < samples.size(); ++x) {
                pixels.values.push_back(opacity[x] == 0 ? kClear : samples[x]);
            }
        }
        return pixels;
    }

    HOST::Host host;
    HOST::ColorSpacePtr gray = host.ColorSpaces().DeviceSpace("gray"_cc);
};

constexpr PDF::ShadingArea kPage{0, 0, 255, 255};

TEST_F(MeshPictures, TrianglesShareTheirEdges) {
    // A square of four triangles about a point that lies beside all middles of pixels.
    const Pixels pixels =
        Picture(Mesh(4, {0, 0,   0,   0,   0, 255, 0,   0,   0, 101, 97,  255, 0, 255, 0,   0,
                         0, 255, 255, 0,   0, 101, 97,  255, 0, 255, 255, 0,   0, 0,   255, 0,
                         0, 101, 97,  255, 0, 0,   255, 0,   0, 0,   0,   0,   0, 101, 97,  255}),
                kPage);
    EXPECT_EQ(pixels.width, 255);
    EXPECT_EQ(pixels.ClearCount(), 0U);
    EXPECT_NEAR(pixels.At(101.0 / 255, 1 - 98.0 / 255), 253, 4);
    EXPECT_NEAR(pixels.At(0, 0.5), 0, 4);
}

TEST_F(MeshPictures, WhatIsNotCoveredStaysClear) {
    const Pixels pixels = Picture(Mesh(4, {0, 0, 0, 9, 0, 100, 0, 9, 0, 0, 200, 9}), kPage);
    EXPECT_EQ(pixels.width, 100);
    EXPECT_EQ(pixels.height, 200);
    EXPECT_NEAR(static_cast<double>(pixels.ClearCount()), 10000, 100);
    EXPECT_EQ(pixels.At(0.2, 0.7), 9);
    EXPECT_EQ(pixels.At(0.8, 0.3), kClear);
}

TEST_F(MeshPictures, FunctionsAreAppliedToWhatIsInterpolated) {
    std::string error;
    const auto cube = HOST::MakeExponentialFunction({{0, 1}, {}}, {0}, {1}, 3, error);
    const Pixels pixels =
        Picture(Mesh(5, {0, 0, 0, 255, 0, 255, 0, 255, 0, 255, 255, 255}, cube), kPage);
    EXPECT_NEAR(pixels.At(0.5, 0.5), 255 / 8.0, 2);
}

// The patch goes up and comes back; what is painted last along v, and then along u, shows.
TEST_F(MeshPictures, PatchesFoldOverInTheirOrder) {
    const std::vector<std::uint8_t> alongV{0, 0,   0, 0,   200, 0,   200, 0,   0,   85,
                                           0, 170, 0, 255, 0,   255, 200, 255, 200, 255,
                                           0, 170, 0, 85,  0,   0,   255, 255, 0};
    const std::vector<std::uint8_t> alongU{0,   0,   0,   0,   85,  0, 170, 0,   255, 200,
                                           255, 200, 255, 0,   255, 0, 170, 0,   85,  0,
                                           0,   200, 0,   200, 0,   0, 0,   255, 255};
    EXPECT_GT(Picture(Mesh(6, alongV), kPage).At(0.5, 0.7), 128);
    EXPECT_GT(Picture(Mesh(6, alongU), kPage).At(0.3, 0.5), 128);
}

TEST_F(MeshPictures, OffTheAreaIsNothing) {
    EXPECT_EQ(Picture(Mesh(4, {0, 0, 0, 9, 0, 100, 0, 9, 0, 0, 200, 9}), {-9, -9, 0, 0}).width, 0);
}

// Each would take hours in full.
TEST_F(MeshPictures, HeapsOfLargeTrianglesAndPatchesComeToAnEnd) {
    std::vector<std::uint8_t> heap;
    for (int i = 0; i < 5000; ++i) {
        heap.insert(heap.end(), {0, 0, 0, 9, 0, 255, 0, 9, 0, 0, 255, 9});
    }
    const Pixels coarse = Picture(Mesh(4, heap), kPage, 8);
    EXPECT_GT(coarse.width, 10);
    EXPECT_LT(coarse.width, 255);
    std::vector<std::uint8_t> patches(std::size_t{37} * 500);
    for (std::size_t i = 0; i < patches.size(); ++i) {
        patches[i] = i % 37 == 0 || i % 3 == 0 ? 0 : 255;
    }
    Picture(Mesh(7, patches, {}, 1e30F), kPage, 8);
}

TEST_F(MeshPictures, MeanOfAllColoursStandsForTheMesh) {
    const auto mean = PDF::MiddleColor(*Mesh(4, {0, 0, 0, 0, 0, 9, 0, 51, 0, 0, 9, 255}));
    ASSERT_TRUE(mean);
    EXPECT_NEAR((*mean)[0], 0.4, 0.001);
}

}  // namespace
}  // namespace VANTIX::TESTS
