// SPDX-License-Identifier: MIT
#include "host/color/shadingspaces.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "core/color/ipatterncolorspaces.h"
#include "host/color/functionbase.h"
#include "host/color/shadingfunctions.h"
#include "support/evaluate.h"

namespace VANTIX::TEST {
namespace {

using Bytes = std::vector<std::uint8_t>;
using HOST::FunctionPtr;
using HOST::MakeShadingFunction;
using testing::ElementsAre;
using testing::FloatNear;

constexpr auto kIntent = COLOR::TRenderingIntent::kRelativeColorimetric;

const COLOR::ISampledFunction* TableOf(const FunctionPtr& function) {
    return FindInterface<const COLOR::ISampledFunction>(function.Get(),
                                                        COLOR::IID_ISAMPLEDFUNCTION);
}

FunctionPtr Calculator(const char* program, std::vector<float> domain, std::vector<float> range) {
    std::string error;
    return HOST::MakeCalculatorFunction({std::move(domain), std::move(range)}, program, error);
}

FunctionPtr Table(HOST::SampledTable table, std::vector<float> range) {
    std::string error;
    FunctionPtr made =
        HOST::MakeSampledFunction({{0, 1}, std::move(range)}, std::move(table), error);
    EXPECT_TRUE(made) << error;
    return made;
}

TEST(ShadingFunctions, PlainOnesAreKept) {
    std::string error;
    const FunctionPtr power = Exponential({0, 1}, {0, 1, 0}, {1, 0, 0}, 1.5F);
    const FunctionPtr stitched =
        HOST::MakeStitchingFunction({{0, 1}, {}}, {power, power}, {0.5F}, {0, 1, 1, 0}, error);
    const FunctionPtr table = Table({.sizes = {2}, .encode = {1, 0}, .samples = {0, 255}}, {0, 1});
    const HOST::FunctionBounds colors{0, 1, 0, 1, 0, 1};
    EXPECT_EQ(MakeShadingFunction(power, {0, 1}, colors).Get(), power.Get());
    EXPECT_EQ(MakeShadingFunction(stitched, {0, 1}, colors).Get(), stitched.Get());
    EXPECT_EQ(MakeShadingFunction(table, {0, 1}, {0, 1}).Get(), table.Get());
}

struct Unwritable {
    const char* name;
    FunctionPtr function;
    HOST::FunctionBounds domain;
    HOST::FunctionBounds range;
};

class UnwritableFunctions : public testing::TestWithParam<Unwritable> {};

TEST_P(UnwritableFunctions, BecomeTablesOfTheSameValues) {
    const auto& [name, function, domain, range] = GetParam();
    const FunctionPtr made = MakeShadingFunction(function, domain, range);
    const auto* table = TableOf(made);
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->GetBitsPerSample(), 8);
    EXPECT_LE(table->GetSamples().size(), 65535U);
    for (std::size_t i = 0; i < domain.size(); ++i) {
        EXPECT_EQ(table->GetDomain()[i], domain[i]);
    }
    for (std::size_t k = 0; k < range.size(); ++k) {
        EXPECT_EQ(table->GetDecode()[k], std::round(table->GetDecode()[k]));
        EXPECT_EQ(table->GetRange()[k], range[k]);
    }
    for (int i = 0; i <= 100; ++i) {
        std::vector<float> in;
        for (std::size_t k = 0; k < domain.size(); k += 2) {
            in.push_back(domain[k] + (domain[k + 1] - domain[k]) * static_cast<float>(i) / 100.0F);
        }
        const auto wanted = Evaluate(*function, in);
        const auto got = Evaluate(*made, in);
        for (std::size_t k = 0; k < wanted.size(); ++k) {
            const float value = HOST::ClipTo(wanted[k], range[2 * k], range[2 * k + 1]);
            EXPECT_NEAR(got[k], value, 0.006F * (range[2 * k + 1] - range[2 * k])) << in[0];
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, UnwritableFunctions,
    testing::Values(
        Unwritable{"Calculator", Calculator("{dup mul}", {0, 1}, {0, 1}), {0, 1}, {0, 1}},
        Unwritable{"CalculatorOfTwoInputs",
                   Calculator("{mul dup 1 exch sub 0.5}", {0, 2, 0, 0.5}, {0, 1, 0, 1, 0, 1}),
                   {0, 2, 0, 0.5},
                   {0, 1, 0, 1, 0, 1}},
        Unwritable{"DomainTooNarrow", Exponential({0, 1}, {0}, {1}, 1), {-1, 2}, {0, 1}},
        Unwritable{
            "RootOfNegatives", Exponential({-1, 1}, {0}, {1}, 1.5F, {0, 1}), {-1, 1}, {0, 1}},
        Unwritable{"Deep",
                   Table({.sizes = {2}, .bitsPerSample = 16, .samples = {0, 0, 255, 255}}, {0, 1}),
                   {0, 1},
                   {0, 1}},
        Unwritable{"FractionalEncode",
                   Table({.sizes = {3}, .encode = {0.5F, 1.5F}, .samples = {0, 255, 0}}, {0, 1}),
                   {0, 1},
                   {0, 1}},
        Unwritable{"FractionalDecode",
                   Table({.sizes = {2}, .decode = {0.25F, 0.75F}, .samples = {0, 255}}, {0, 1}),
                   {0, 1},
                   {0, 1}},
        Unwritable{"LongerThanAString",
                   Table({.sizes = {70000}, .samples = Bytes(70000, 128)}, {0, 1}),
                   {0, 1},
                   {0, 1}},
        Unwritable{"RangeBeyondTheSpace",
                   Table({.sizes = {2}, .samples = {0, 255}}, {-1, 2}),
                   {0, 1},
                   {0, 1}},
        Unwritable{"Lab",
                   Calculator("{dup 100 mul exch dup -80.5 mul exch 90 mul}", {0, 1},
                              {0, 100, -100, 100, -100, 100}),
                   {0, 1},
                   {0, 100, -80.5F, 80.5F, -90, 90}}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(ShadingFunctions, MembersAreMadeReadyInTheirPlaces) {
    std::string error;
    const FunctionPtr power = Exponential({0, 1}, {0}, {1}, 1);
    const FunctionPtr program = Calculator("{1 exch sub}", {0, 1}, {0, 1});
    const FunctionPtr array = HOST::MakeFunctionArray({power, program}, error);
    const FunctionPtr ready = MakeShadingFunction(array, {0, 1}, {0, 1, 0, 1});
    const auto* members =
        FindInterface<COLOR::IFunctionArray>(ready.Get(), COLOR::IID_IFUNCTIONARRAY);
    ASSERT_NE(members, nullptr);
    EXPECT_EQ(members->GetFunction(0), power.Get());
    EXPECT_NE(members->GetFunction(1), program.Get());
    const FunctionPtr stitched =
        HOST::MakeStitchingFunction({{0, 1}, {}}, {power, program}, {0.25F}, {0, 1, 1, 1}, error);
    const FunctionPtr pieces = MakeShadingFunction(stitched, {0, 1}, {0, 1});
    EXPECT_THAT(Evaluate(*pieces, {0.125F}), ElementsAre(FloatNear(0.5F, 0.003F)));
    EXPECT_THAT(Evaluate(*pieces, {0.8F}), ElementsAre(FloatNear(0.0F, 0.003F)));
}

// Interpreters refuse a domain of no width.
TEST(ShadingFunctions, SingleInputHasADomainAllTheSame) {
    const FunctionPtr table =
        MakeShadingFunction(Exponential({3, 3}, {0}, {0.25F}, 1), {3, 3}, {0, 1});
    ASSERT_NE(TableOf(table), nullptr);
    EXPECT_LT(table->GetDomain()[0], table->GetDomain()[1]);
    EXPECT_THAT(Evaluate(*table, {3}), ElementsAre(FloatNear(0.75F, 0.003F)));
}

TEST(ShadingFunctions, WrongCountsAreRefused) {
    const FunctionPtr power = Exponential({0, 1}, {0}, {1}, 1);
    EXPECT_FALSE(MakeShadingFunction(nullptr, {0, 1}, {0, 1}));
    EXPECT_FALSE(MakeShadingFunction(power, {0, 1, 0, 1}, {0, 1}));
    EXPECT_FALSE(MakeShadingFunction(power, {0, 1}, {0, 1, 0, 1}));
    const FunctionPtr three = Calculator("{pop pop}", {0, 1, 0, 1, 0, 1}, {0, 1});
    EXPECT_FALSE(MakeShadingFunction(three, {0, 1, 0, 1, 0, 1}, {0, 1}));
}

// Sixteen bits a coordinate, one component of eight bits.
constexpr HOST::MeshLayout kTriangles{4, 8, 16, 8, 0, 1};

TEST(MeshData, IsCutToWhatIsWhole) {
    struct Case {
        HOST::MeshLayout layout;
        Bytes data;
        std::size_t whole;
    };

    const Bytes triangle(18, 0);
    Bytes cut = triangle;
    cut.resize(cut.size() + 5);
    Bytes unfinished = triangle;
    unfinished.resize(unfinished.size() + 12);
    Bytes goesOn = triangle;
    goesOn.insert(goesOn.end(), {2, 0, 0, 0, 0, 0, 3, 0, 0, 0, 0, 0});
    const HOST::MeshLayout rows{5, 0, 4, 1, 2, 3};
    const HOST::MeshLayout coons{6, 2, 8, 8, 0, 1};
    Bytes patches(29 + 19, 0);
    patches[29] = 0x40;
    const Bytes orphan(19, 0x40);
    const std::vector<Case> cases{
        {kTriangles, cut, 18},    {kTriangles, unfinished, 18},
        {kTriangles, goesOn, 24}, {kTriangles, Bytes(36, 1), 0},
        {rows, Bytes(13), 12},    {rows, Bytes(7), 0},
        {coons, patches, 48},     {coons, Bytes(patches.begin(), patches.end() - 1), 29},
        {coons, orphan, 0},       {kTriangles, {}, 0}};
    for (const Case& c : cases) {
        EXPECT_EQ(HOST::WholeMeshBytes(c.layout, c.data), c.whole) << c.data.size();
    }
}

TEST(MeshData, FieldsOfAnyWidthKeepTheirPlaces) {
    // 2 bits of flag, 12 of x and y, 3 x 4 of colour: 38 bits and two of padding.
    const HOST::MeshLayout layout{4, 2, 12, 4, 0, 3};
    const Bytes vertex{0x2A, 0xF1, 0x30, 0x48, 0xC4};
    const auto turn = [](const std::uint32_t* in, std::uint32_t* out) {
        out[0] = 0xFF0U | in[2];
        out[1] = in[0];
        return true;
    };
    EXPECT_THAT(HOST::RecodeMesh(layout, vertex, {2, 12}, turn),
                ElementsAre(0x2A, 0xF1, 0x30, 0x7F, 0xC4, 0x00, 0x80));
    EXPECT_EQ(HOST::RecodedMeshBytes(layout, vertex, {2, 12}), 7U);
}

class ShadingSpaces : public testing::Test {
protected:
    HOST::ColorSpacePtr Mesh(const HOST::ColorSpacePtr& space, HOST::MeshGeometry mesh) {
        HOST::ShadingDescription shading;
        shading.space = space;
        return HOST::MakeMeshShading(std::move(shading), std::move(mesh), error);
    }

    static bool Answers(const HOST::ColorSpacePtr& space, const GUID& id) {
        return FindInterface<IObject>(space.Get(), id) != nullptr;
    }

    HOST::ColorSpaceFactory factory;
    std::string error;
    HOST::ColorSpacePtr rgb = factory.DeviceSpace("rgb "_cc);
    HOST::ColorSpacePtr cmyk = factory.DeviceSpace("cmyk"_cc);
    HOST::ColorSpacePtr gray = factory.DeviceSpace("gray"_cc);
};

TEST_F(ShadingSpaces, AnswerOneKindEach) {
    HOST::ShadingDescription line;
    line.space = gray;
    line.function = Exponential({0, 1}, {0}, {1}, 1);
    HOST::ShadingDescription area = line;
    area.function = Calculator("{mul}", {0, 1, 0, 1}, {0, 1});
    const HOST::MeshGeometry mesh{kTriangles, {0, 1, 0, 1, 0, 1}, Bytes(18)};
    HOST::MeshGeometry rows = mesh;
    rows.layout.type = 5;
    rows.layout.verticesPerRow = 2;
    rows.data.resize(20);
    HOST::MeshGeometry coons = mesh;
    coons.layout.type = 6;
    coons.data.resize(53);
    HOST::MeshGeometry tensor = mesh;
    tensor.layout.type = 7;
    tensor.data.resize(69);
    const std::vector<std::pair<HOST::ColorSpacePtr, GUID>> spaces{
        {HOST::MakeFunctionShading(area, {}, error), COLOR::IID_IFUNCTIONSHADING},
        {HOST::MakeAxialShading(line, {}, error), COLOR::IID_IAXIALSHADING},
        {HOST::MakeRadialShading(line, {}, error), COLOR::IID_IRADIALSHADING},
        {Mesh(gray, mesh), COLOR::IID_IFREEFORMMESHSHADING},
        {Mesh(gray, rows), COLOR::IID_ILATTICEMESHSHADING},
        {Mesh(gray, coons), COLOR::IID_ITENSORSHADING},
        {Mesh(gray, tensor), COLOR::IID_ITENSORSHADING}};
    std::vector<GUID> identifiers;
    for (std::size_t i = 0; i < spaces.size(); ++i) {
        ASSERT_TRUE(spaces[i].first) << i << error;
        for (const auto& other : spaces) {
            EXPECT_EQ(Answers(spaces[i].first, other.second), other.second == spaces[i].second);
        }
        EXPECT_EQ(Answers(spaces[i].first, COLOR::IID_ICOONSPATCHMARKER), i == 5);
        EXPECT_THAT(identifiers, testing::Not(testing::Contains(spaces[i].first->GetIdentifier())));
        identifiers.push_back(spaces[i].first->GetIdentifier());
    }
}

TEST_F(ShadingSpaces, PartsThatDoNotFitAreRefused) {
    HOST::ShadingDescription shading;
    shading.space = rgb;
    shading.function = Exponential({0, 1}, {0}, {1}, 1);
    EXPECT_FALSE(HOST::MakeAxialShading(shading, {}, error));
    shading.space = gray;
    EXPECT_FALSE(HOST::MakeAxialShading(shading, {.domain = {1, 1}}, error));
    EXPECT_FALSE(HOST::MakeRadialShading(shading, {.coordinates = {0, 0, -1, 0, 0, 1}}, error));
    EXPECT_FALSE(HOST::MakeFunctionShading(shading, {}, error));
    shading.box = {0, 0, 0, 5};
    EXPECT_FALSE(HOST::MakeAxialShading(shading, {}, error));
    EXPECT_FALSE(Mesh(gray, {kTriangles, {0, 1, 0, 1}, Bytes(18)}));
    EXPECT_FALSE(Mesh(gray, {kTriangles, {0, 1, 0, 1, 0, 1}, Bytes(17)}));
    EXPECT_FALSE(Mesh(rgb, {kTriangles, {0, 1, 0, 1, 0, 1}, Bytes(18)}));
    EXPECT_FALSE(Mesh(gray, {{4, 3, 16, 8, 0, 1}, {0, 1, 0, 1, 0, 1}, Bytes(18)}));
}

// White and black of RGB become no ink and black ink; the mesh holds amounts of ink.
TEST_F(ShadingSpaces, ConvertedMeshKeepsAllButItsColours) {
    const HOST::MeshLayout layout{4, 8, 8, 8, 0, 3};
    const auto space =
        Mesh(rgb, {layout,
                   {0, 1, 0, 1, 0, 1, 0, 1, 0, 1},
                   {0, 1, 2, 255, 255, 255, 9, 3, 4, 0, 0, 0, 0, 5, 6, 255, 255, 255}});
    ASSERT_TRUE(space);
    const auto* mesh = FindInterface<COLOR::IFreeFormTriangleMeshesShadingColorSpace>(
        space.Get(), COLOR::IID_IFREEFORMMESHSHADING);
    std::int32_t size = 0;
    ASSERT_TRUE(mesh->ConvertMeshData(*cmyk, kIntent, kIntent, nullptr, &size));
    ASSERT_EQ(size, 3 * 7);
    Bytes out(static_cast<std::size_t>(size));
    ASSERT_TRUE(mesh->ConvertMeshData(*cmyk, kIntent, kIntent, out.data(), &size));
    EXPECT_THAT(Bytes(out.begin(), out.begin() + 10), ElementsAre(0, 1, 2, 0, 0, 0, 0, 9, 3, 4));
    EXPECT_THAT(Bytes(out.begin() + 13, out.end()), ElementsAre(255, 0, 5, 6, 0, 0, 0, 0));
    std::int32_t room = 5;
    out.assign(out.size(), 0xEE);
    ASSERT_TRUE(mesh->ConvertMeshData(*cmyk, kIntent, kIntent, out.data(), &room));
    EXPECT_EQ(room, 5);
    EXPECT_EQ(out[5], 0xEE);
}

TEST_F(ShadingSpaces, MeshColoursAreDecodedAndReadAsInk) {
    // 16 bits, cyan from full to none: the codes run backwards.
    const HOST::MeshLayout layout{5, 0, 8, 16, 2, 4};
    Bytes data;
    for (const std::uint8_t code : Bytes{0, 0, 255, 255}) {
        data.insert(data.end(), {7, 7, code, code, 0, 0, 0, 0, 0, 0});
    }
    const auto space = Mesh(cmyk, {layout, {0, 1, 0, 1, 1, 0, 0, 1, 0, 1, 0, 1}, data});
    const auto* mesh = FindInterface<COLOR::ILatticeFormTriangleMeshesShadingColorSpace>(
        space.Get(), COLOR::IID_ILATTICEMESHSHADING);
    Bytes out(32);
    auto size = static_cast<std::int32_t>(out.size());
    ASSERT_TRUE(mesh->ConvertMeshData(*rgb, kIntent, kIntent, out.data(), &size));
    EXPECT_LT(out[2], 0x20) << "cyan takes red away";
    EXPECT_GT(out[18], 0xFC) << "no ink is white";
    EXPECT_GT(out[20], 0xFC);
}

TEST_F(ShadingSpaces, ParametersOfAFunctionAreNoColours) {
    HOST::ShadingDescription shading;
    shading.space = gray;
    shading.function = Exponential({0, 1}, {0}, {1}, 1);
    const auto space =
        HOST::MakeMeshShading(shading, {kTriangles, {0, 1, 0, 1, 0, 1}, Bytes(18)}, error);
    const auto* mesh = FindInterface<COLOR::IFreeFormTriangleMeshesShadingColorSpace>(
        space.Get(), COLOR::IID_IFREEFORMMESHSHADING);
    std::int32_t size = 0;
    EXPECT_FALSE(mesh->ConvertMeshData(*rgb, kIntent, kIntent, nullptr, &size));
}

}  // namespace
}  // namespace VANTIX::TEST
