// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/fakegraphicsstate.h"
#include "support/fakepatternspaces.h"
#include "support/outputcontextfixture.h"
#include "support/programpage.h"

namespace VANTIX::PS {
namespace {

using TEST::DrawProgram;
using TEST::FakeAxialShading;
using TEST::FakeDeviceSpace;
using TEST::FakeExponential;
using TEST::FakeFreeFormShading;
using TEST::FakeFunctionShading;
using TEST::FakeLatticeShading;
using TEST::FakeRadialShading;
using TEST::FakeSampled;
using TEST::FakeTensorShading;
using TEST::RecordingLogger;
using Bytes = std::vector<std::uint8_t>;
using FunctionPtr = TInterfacePtr<COLOR::IColorFunction>;

FunctionPtr Ramp(std::vector<float> from, std::vector<float> to) {
    const auto outputs = static_cast<std::int32_t>(from.size());
    return MakeObject<FakeExponential>(outputs, std::move(from), std::move(to), 1.0F);
}

class Shadings : public TEST::OutputContextFixture {
protected:
    Shadings() { context->SetGraphicsState(state.Get()); }

    template <class T>
    TInterfacePtr<T> Shading(const TInterfacePtr<FakeDeviceSpace>& space) {
        auto shading = MakeObject<T>();
        shading->colours = space;
        return shading;
    }

    TInterfacePtr<FakeAxialShading> Axial() {
        auto axial = Shading<FakeAxialShading>(rgb);
        axial->function = Ramp({1, 0, 0}, {0, 0, 1});
        axial->coordinates = {0, 0, 64, 0};
        return axial;
    }

    TInterfacePtr<FakeFunctionShading> Plane() {
        auto table = MakeObject<FakeSampled>(2, 1, nullptr);
        table->sizes = {2, 2};
        table->range = {0, 1};
        table->samples = {0, 255, 0, 255};
        auto plane = Shading<FakeFunctionShading>(gray);
        plane->function = table;
        plane->matrix = {64, 0, 0, 64, 0, 0};
        return plane;
    }

    /// A mesh over the page whose vertices are given as bytes.
    template <class T>
    TInterfacePtr<T> Mesh(const TInterfacePtr<FakeDeviceSpace>& space, const Bytes& data) {
        auto mesh = Shading<T>(space);
        mesh->data = data;
        mesh->decode = {0, 64, 0, 64};
        for (std::int32_t i = 0; i < space->components; ++i) {
            mesh->decode.insert(mesh->decode.end(), {0, 1});
        }
        return mesh;
    }

    /// Below the diagonal: black at the left, white at the right and at the top.
    TInterfacePtr<FakeFreeFormShading> Triangle() {
        return Mesh<FakeFreeFormShading>(gray, {0, 0, 0, 0, 0, 255, 0, 255, 0, 0, 255, 0});
    }

    /// More of the same triangle than a string holds, in the form that ASCII85Decode reads.
    TInterfacePtr<FakeFreeFormShading> Triangles() {
        std::string text;
        for (const std::uint32_t vertex : {0x00323214U, 0x00643214U, 0x00326414U}) {
            for (const std::uint32_t power : {52200625U, 614125U, 7225U, 85U, 1U}) {
                text += static_cast<char>('!' + vertex / power % 85);
            }
        }
        Bytes data;
        while (data.size() <= 65535) {
            data.insert(data.end(), text.begin(), text.end());
        }
        data.insert(data.end(), {'~', '>'});
        return Mesh<FakeFreeFormShading>(gray, data);
    }

    template <class T>
    bool Write(const TInterfacePtr<T>& shading, COLOR::IConnectionColorSpace* destination = nullptr,
               std::int32_t level = 3, bool paint = true, bool managed = false) {
        if constexpr (std::is_same_v<T, FakeFunctionShading>) {
            return context->WriteFunctionBasedShadingDictionary(shading.Get(), destination, level,
                                                                paint, managed);
        } else if constexpr (std::is_same_v<T, FakeAxialShading>) {
            return context->WriteAxialShadingDictionary(shading.Get(), destination, level, paint,
                                                        managed);
        } else if constexpr (std::is_same_v<T, FakeRadialShading>) {
            return context->WriteRadialShadingDictionary(shading.Get(), destination, level, paint,
                                                         managed);
        } else if constexpr (std::is_same_v<T, FakeFreeFormShading>) {
            return context->WriteType4BasedShadingDictionary(shading.Get(), destination, level,
                                                             paint, managed);
        } else if constexpr (std::is_same_v<T, FakeLatticeShading>) {
            return context->WriteType5BasedShadingDictionary(shading.Get(), destination, level,
                                                             paint, managed);
        } else {
            return context->WritePatchMeshesBasedShadingDictionary(
                shading.Get(), destination, level, shading->coons ? 6 : 7, paint, managed);
        }
    }

    /// What is written, which must be complete.
    template <class T>
    std::string Text(const TInterfacePtr<T>& shading,
                     COLOR::IConnectionColorSpace* destination = nullptr, bool paint = true,
                     bool managed = false) {
        EXPECT_TRUE(Write(shading, destination, 3, paint, managed)) << log.Messages();
        return Written();
    }

    RecordingLogger& log = RecordingLogger::Get();
    TInterfacePtr<TEST::FakeGraphicsState> state = MakeObject<TEST::FakeGraphicsState>();
    TInterfacePtr<FakeDeviceSpace> gray = MakeObject<FakeDeviceSpace>("gray"_cc);
    TInterfacePtr<FakeDeviceSpace> rgb = MakeObject<FakeDeviceSpace>("rgb "_cc);
    TInterfacePtr<FakeDeviceSpace> cmyk = MakeObject<FakeDeviceSpace>("cmyk"_cc);
};

constexpr const char* kRamp =
    "\n\t<<\n\t\t/Domain [0 1]\n\t\t/FunctionType 2\n/C0 [1 0 0 ]/C1 [0 0 1 ]/N 1\n\t>>\n";

TEST_F(Shadings, AxialAndRadialText) {
    const auto axial = Axial();
    axial->background = {0.5F, 0.25F, 1};
    axial->box = {1, 2, 30, 40};
    axial->extendEnd = true;
    const std::string head =
        "\n\t/ColorSpace /DeviceRGB\n\n\t/Background [0.5 0.25 1 ]\n\t/BBox [1 2 30 40]"
        "\n\t/Domain [0 1]\n\t/Extend [false true]\n\t/Function " +
        std::string(kRamp);
    EXPECT_EQ(Text(axial), "<<\n\t/ShadingType 2" + head + "\n\t/Coords [0 0 64 0]\n>> shfill\n");
    const auto radial = Shading<FakeRadialShading>(rgb);
    radial->function = axial->function;
    radial->background = axial->background;
    radial->box = axial->box;
    radial->extendEnd = true;
    radial->coordinates = {32, 32, 0, 32, 32, 1e-7F};
    EXPECT_EQ(Text(radial, nullptr, false),
              "<<\n\t/ShadingType 3" + head + "\n\t/Coords [32 32 0 32 32 1e-07]\n>> \n");
    axial->box = {1, 2, 1, 40};
    EXPECT_EQ(Text(axial).find("/BBox"), std::string::npos);
    axial->box = {1, 2, 30, 2};
    EXPECT_EQ(Text(axial).find("/BBox"), std::string::npos);
}

TEST_F(Shadings, FunctionBasedText) {
    const std::string text = Text(Plane());
    EXPECT_EQ(text.rfind("<<\n\t/ShadingType 1\n\t/ColorSpace /DeviceGray\n\n\t/Domain [0 1 0 1]"
                         "\n\t/Matrix [64 0 0 64 0 0]\n\t/Function \n\t<<\n\t\t/Domain [0 1 0 1]\n",
                         0),
              0U)
        << text;
    EXPECT_EQ(text.substr(text.size() - 15), "\t>>\n\n>> shfill\n");
}

TEST_F(Shadings, MeshText) {
    const auto lattice = Mesh<FakeLatticeShading>(gray, {0, 0, 9, 0, 1, 9, 1, 0, 9, 1, 1, 9});
    const std::string tail =
        "\n\t/BitsPerCoordinate 8\n\t/BitsPerComponent 8\n\t/Decode [0 64 0 64 0 1 ]\n"
        "\t\t/DataSource <";
    const std::string head = "\n\t/ColorSpace /DeviceGray\n\n\t/";
    EXPECT_EQ(Text(lattice), "<<\n\t/ShadingType 5" + head + "VerticesPerRow 2" + tail +
                                 "000009000109010009010109>\n\n>> shfill\n");
    const auto triangle = Triangle();
    EXPECT_EQ(Text(triangle, nullptr, false), "<<\n\t/ShadingType 4" + head + "BitsPerFlag 8" +
                                                  tail + "0000000000FF00FF0000FF00>\n\n>> \n");
    // With a function, vertices have its input and are never converted.
    triangle->colours = rgb;
    triangle->function = Ramp({1, 0, 0}, {0, 0, 1});
    EXPECT_EQ(Text(triangle, cmyk.Get()),
              "<<\n\t/ShadingType 4\n\t/ColorSpace /DeviceCMYK\n\n\t/BitsPerFlag 8" + tail +
                  "0000000000FF00FF0000FF00>\n\n\t/Function \n\t<<\n\t\t/Domain [0 1]\n"
                  "\t\t/FunctionType 2\n/C0 [0 1 1 1 ]/C1 [1 1 0 1 ]/N 1\n\t>>\n\n>> shfill\n");
}

TEST_F(Shadings, ConvertsWhatTheShadingSays) {
    const auto axial = Axial();
    axial->colours = cmyk;
    axial->function = Ramp({0, 1, 1, 0}, {1, 1, 0, 0});
    axial->background = {1, 0.25F, 0, 1};
    EXPECT_NE(Text(axial).find("/Background [0 0.75 1 0 ]"), std::string::npos);
    const std::string converted = Text(axial, rgb.Get());
    EXPECT_NE(converted.find("/DeviceRGB\n\n\t/Background [1 0.25 0 ]"), std::string::npos);
    EXPECT_NE(converted.find("/C0 [1 0 0 ]/C1 [0 0 1 ]"), std::string::npos);

    const auto mesh = Triangle();
    mesh->converted = {1, 2, 3};
    EXPECT_NE(Text(mesh, rgb.Get()).find("[0 64 0 64 0 1 0 1 0 1 ]\n\t\t/DataSource <010203>"),
              std::string::npos);
    // Its own space is no other space.
    EXPECT_NE(Text(mesh, gray.Get()).find("[0 64 0 64 0 1 ]\n\t\t/DataSource <0000"),
              std::string::npos);
}

TEST_F(Shadings, ManagedSpacesAreDefinedInTheDictionary) {
    const auto profile = MakeObject<TEST::FakeProfileSpace>("rgb "_cc, 77U);
    profile->array = "/DeviceRGB";
    const auto axial = Axial();
    axial->colours = profile;
    const std::string text = Text(axial, nullptr, true, true);
    EXPECT_NE(text.find("/ColorSpace  /GCSA77 /DeviceRGBdef\n GCSA77"), std::string::npos) << text;
}

TEST_F(Shadings, AreDrawnByAnInterpreter) {
    const auto axial = DrawProgram(Text(Axial()));
    EXPECT_NEAR(axial.At(1, 32, 0), 249, 8);
    EXPECT_NEAR(axial.At(62, 32, 2), 249, 8);
    const auto plane = DrawProgram(Text(Plane()));
    EXPECT_NEAR(plane.At(1, 32, 0), 6, 8);
    EXPECT_NEAR(plane.At(62, 32, 0), 249, 8);
    const auto radial = Shading<FakeRadialShading>(gray);
    radial->function = Ramp({0}, {1});
    radial->coordinates = {32, 32, 0, 32, 32, 30};
    const auto circles = DrawProgram(Text(radial));
    EXPECT_NEAR(circles.At(32, 32, 0), 0, 8);
    EXPECT_NEAR(circles.At(32, 47, 0), 128, 12);
    EXPECT_EQ(circles.At(1, 1, 0), 255);

    const auto triangle = DrawProgram(Text(Triangle()));
    EXPECT_NEAR(triangle.At(1, 62, 0), 6, 8);
    EXPECT_EQ(triangle.At(60, 4, 0), 255);
    const auto lattice =
        Mesh<FakeLatticeShading>(gray, {0, 0, 0, 255, 0, 0, 0, 255, 200, 255, 255, 200});
    EXPECT_NEAR(DrawProgram(Text(lattice)).At(32, 32, 0), 100, 8);
    // A square as a patch, its control points along the edges.
    Bytes coons{0, 0, 0, 0, 85, 0, 170, 0, 255, 85, 255, 170, 255, 255, 255};
    coons.insert(coons.end(), {255, 170, 255, 85, 255, 0, 170, 0, 85, 0});
    Bytes tensor = coons;
    coons.insert(coons.end(), {100, 100, 100, 100});
    tensor.insert(tensor.end(), {85, 85, 85, 170, 170, 170, 170, 85, 100, 100, 100, 100});
    const auto patch = Mesh<FakeTensorShading>(gray, tensor);
    EXPECT_NEAR(DrawProgram(Text(patch)).At(32, 32, 0), 100, 3);
    patch->coons = true;
    patch->data = coons;
    EXPECT_NEAR(DrawProgram(Text(patch)).At(32, 32, 0), 100, 3);
}

TEST_F(Shadings, LongMeshesAreStreamsThatAreReadAgain) {
    filters->filters = {IO::FILTER::kAscii85, IO::FILTER::kFlate};
    const auto mesh = Triangle();
    mesh->data.resize(65535);
    EXPECT_EQ(Text(mesh).rfind("<<", 0), 0U);
    mesh->data.resize(65536);
    filters->filteredWrites = filters->ends = 0;
    const std::string named = Text(mesh);
    const std::string name = "T4DSArray1";
    EXPECT_EQ(named.rfind("/" + name +
                              " currentfile << /Filter [/ASCII85Decode/FlateDecode] >> "
                              "/ReusableStreamDecode filter\n",
                          0),
              0U);
    EXPECT_NE(named.find("\ndef\t\t\t%Stack: /" + name + " fileobj => ---\n<<"), std::string::npos);
    EXPECT_NE(named.find("]\n\t/DataSource " + name + "\n\n>> shfill\n"), std::string::npos);
    EXPECT_EQ(filters->filteredWrites, 1);
    EXPECT_EQ(filters->ends, 1);
    EXPECT_TRUE(Write(mesh));
    EXPECT_LE(page->writes, 8);
    page->Take();

    filters->filters = {IO::FILTER::kAscii85};
    const std::string text = Text(Triangles(), nullptr, false);
    EXPECT_EQ(text.rfind("/T4DSArray3 ", 0), 0U);
    // A pattern paints more than once.
    const std::string paint = "P setpattern 0 0 64 64 rectfill ";
    const auto painted = DrawProgram(
        text + "/S exch def /P << /PatternType 2 /Shading S >> matrix makepattern def " + paint +
        "erasepage " + paint);
    EXPECT_NEAR(painted.At(15, 48, 0), 20, 3);

    filters->filters.clear();
    mesh->data.assign(65536, 'x');
    EXPECT_EQ(Text(mesh).substr(0, 65700).find(
                  "/T4DSArray4 currentfile << /Filter /SubFileDecode /DecodeParms << /EODCount 0 "
                  "/EODString (%%EndBinary) >> >> /ReusableStreamDecode filter\nxxx"),
              0U);
    const auto lattice = Mesh<FakeLatticeShading>(gray, Bytes(65538));
    EXPECT_EQ(Text(lattice).rfind("/T5DSArray1 ", 0), 0U);
    EXPECT_EQ(Text(Mesh<FakeTensorShading>(gray, Bytes(70000))).rfind("/T6T7DSArray1 ", 0), 0U);
}

TEST_F(Shadings, WhatCannotBePaintedWritesNothing) {
    const auto refuses = [this](const auto& shading, COLOR::IConnectionColorSpace* into,
                                std::int32_t level, const std::string& message) {
        log.Clear();
        EXPECT_FALSE(Write(shading, into, level)) << message;
        EXPECT_EQ(Written(), "") << message;
        EXPECT_EQ(log.Messages(), message.empty() ? "" : message + "\n");
    };
    refuses(Plane(), nullptr, 2, "");
    refuses(Triangle(), nullptr, 2, "");
    const auto without = [](auto shading, auto member) {
        (*shading).*member = nullptr;
        return shading;
    };
    refuses(without(Plane(), &FakeFunctionShading::function), nullptr, 3,
            "Required entry Function for Type 1 Shading Dictionary is missing!");
    refuses(without(Plane(), &FakeFunctionShading::colours), nullptr, 3,
            "Required entry ColorSpace for Type 1 Shading Dictionary is missing!");
    refuses(without(Axial(), &FakeAxialShading::function), nullptr, 3,
            "Required entry Function for Type 2 Shading Dictionary is missing!");
    const auto pattern = MakeObject<TEST::FakeTilePattern>();
    refuses(Axial(), pattern.Get(), 3, "Unhandled colorspace.");

    constexpr const char* kInputs =
        "The function of a Type 2 Shading Dictionary does not take its inputs.";
    const auto beyond = Axial();
    beyond->domain = {0, 1.5F};
    refuses(beyond, nullptr, 3, kInputs);
    const auto backwards = Axial();
    backwards->domain = {1, 0};
    refuses(backwards, nullptr, 3, kInputs);
    const auto flat = Plane();
    flat->matrix = {1, 2, 2, 4, 0, 0};
    refuses(flat, nullptr, 3, "The geometry of a Type 1 Shading Dictionary cannot be written.");
    const auto radial = Shading<FakeRadialShading>(rgb);
    radial->function = Ramp({1, 0, 0}, {0, 0, 1});
    radial->coordinates = {0, 0, -1, 0, 0, 5};
    refuses(radial, nullptr, 3, "The geometry of a Type 3 Shading Dictionary cannot be written.");

    constexpr const char* kMesh = "The mesh of a Type 4 Shading Dictionary cannot be written.";
    refuses(Triangle(), rgb.Get(), 3, kMesh);
    const auto odd = Triangle();
    odd->bitsPerCoordinate = 7;
    refuses(odd, nullptr, 3, kMesh);
    const auto undecoded = Triangle();
    undecoded->decode.pop_back();
    refuses(undecoded, nullptr, 3, kMesh);
    const auto narrow = Mesh<FakeLatticeShading>(gray, Bytes(6));
    narrow->verticesPerRow = 1;
    refuses(narrow, nullptr, 3, "The mesh of a Type 5 Shading Dictionary cannot be written.");
}

}  // namespace
}  // namespace VANTIX::PS
