// SPDX-License-Identifier: MIT
// Smooth shadings, painted with the operator sh.
#include <gtest/gtest.h>

#include <cmath>
#include <ostream>
#include <utility>

#include "e2e/imagesheets.h"
#include "e2e/tool.h"
#include "support/ghostscriptpages.h"
#include "support/iccprofiles.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

/// A space for shadings, and colours in it as an exponential function has them.
struct ShadingSpace {
    const char* name;
    std::string (*text)(Sheet& sheet);
    std::vector<double> first;
    std::vector<double> last;
    bool hasPlates = false;
    bool isManaged = false;  ///< shows as in the PDF with its profile
};

void PrintTo(const ShadingSpace& space, std::ostream* out) {
    *out << space.name;
}

std::string Numbers(const std::vector<double>& values) {
    std::string text;
    for (const double value : values) {
        text += std::to_string(value) + " ";
    }
    return text;
}

/// From the first to the last colour of a space.
std::string Exponential(const ShadingSpace& space, const char* exponent) {
    return "<< /FunctionType 2 /Domain [0 1] /C0 [" + Numbers(space.first) + "] /C1 [" +
           Numbers(space.last) + "] /N " + exponent + " >>";
}

/// Numbers packed into bits.
class BitWriter {
public:
    void Put(std::uint32_t value, unsigned bits) {
        for (unsigned i = bits; i-- > 0; ++mCount) {
            if (mCount % 8 == 0) {
                mBytes += '\0';
            }
            const unsigned bit = (value >> i & 1U) << (7 - mCount % 8);
            mBytes.back() = static_cast<char>(static_cast<unsigned char>(mBytes.back()) | bit);
        }
    }

    void Part(double part, unsigned bits) {
        const double most = std::pow(2.0, bits) - 1;
        Put(static_cast<std::uint32_t>(std::llround(part * most)), bits);
    }

    void Align() { mCount = (mCount + 7) / 8 * 8; }

    [[nodiscard]] const std::string& Bytes() const { return mBytes; }

private:
    std::string mBytes;
    std::size_t mCount = 0;
};

/// Bits of flags, coordinates and components.
struct MeshBits {
    unsigned flag = 8;
    unsigned coordinate = 16;
    unsigned component = 8;
};

/// The data of a mesh over the unit square, its colours between two.
class MeshData {
public:
    MeshData(const MeshBits& bits, const ShadingSpace& space, bool hasFunction)
        : mBits(bits), mSpace(space), mHasFunction(hasFunction) {}

    void Flag(unsigned flag) { mData.Put(flag, mBits.flag); }

    void Point(double x, double y) {
        mData.Part(x, mBits.coordinate);
        mData.Part(y, mBits.coordinate);
    }

    void Color(double part) {
        if (mHasFunction) {
            mData.Part(part, mBits.component);
            return;
        }
        for (std::size_t i = 0; i < mSpace.first.size(); ++i) {
            mData.Part(part, mBits.component);
        }
    }

    void Align() { mData.Align(); }

    [[nodiscard]] const std::string& Bytes() const { return mData.Bytes(); }

    /// A stream of ShadingType `type`; its Decode array takes each colour from the first to the
    /// last.
    [[nodiscard]] std::string Stream(int type, const std::string& space, const std::string& more) {
        std::string decode = "0 1 0 1 ";
        if (mHasFunction) {
            decode += "0 1";
        } else {
            for (std::size_t i = 0; i < mSpace.first.size(); ++i) {
                decode += Numbers({mSpace.first[i], mSpace.last[i]});
            }
        }
        const std::string function =
            mHasFunction ? " /Function " + Exponential(mSpace, "1") : std::string();
        const bool isPacked = more.find("/FlateDecode") != std::string::npos;
        const std::string flags = type == 5 ? "" : " /BitsPerFlag " + std::to_string(mBits.flag);
        return StreamOf(isPacked ? Deflated(mData.Bytes()) : mData.Bytes(),
                        "/ShadingType " + std::to_string(type) + " /ColorSpace " + space + flags +
                            " /BitsPerCoordinate " + std::to_string(mBits.coordinate) +
                            " /BitsPerComponent " + std::to_string(mBits.component) + " /Decode [" +
                            decode + "] " + more + function);
    }

private:
    MeshBits mBits;
    const ShadingSpace& mSpace;
    bool mHasFunction;
    BitWriter mData;
};

std::string Triangles(const MeshBits& bits, const ShadingSpace& space, const std::string& text,
                      bool hasFunction) {
    MeshData mesh(bits, space, hasFunction);

    const struct {
        unsigned flag;
        double x;
        double y;
        double color;
    } kVertices[] = {
        {0, 0.1, 0.1, 0.0}, {0, 0.9, 0.2, 0.5}, {0, 0.2, 0.9, 1.0}, {1, 0.9, 0.9, 0.2}};

    for (const auto& vertex : kVertices) {
        mesh.Flag(vertex.flag);
        mesh.Point(vertex.x, vertex.y);
        mesh.Color(vertex.color);
        mesh.Align();
    }
    return mesh.Stream(4, text, "");
}

std::string Lattice(const MeshBits& bits, const ShadingSpace& space, const std::string& text,
                    bool hasFunction) {
    MeshData mesh(bits, space, hasFunction);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 3; ++x) {
            mesh.Point(0.1 + 0.4 * x, 0.1 + 0.4 * y - 0.05 * x);
            mesh.Color((x + 2 * y) / 6.0);
            mesh.Align();
        }
    }
    return mesh.Stream(5, text, "/VerticesPerRow 3");
}

std::string Patch(const MeshBits& bits, const ShadingSpace& space, const std::string& text,
                  bool hasFunction, int type) {
    static constexpr double kEdge[12][2] = {{0.1, 0.1}, {0.0, 0.4}, {0.2, 0.6}, {0.1, 0.9},
                                            {0.4, 1.0}, {0.6, 0.8}, {0.9, 0.9}, {1.0, 0.6},
                                            {0.8, 0.4}, {0.9, 0.1}, {0.6, 0.0}, {0.4, 0.2}};
    static constexpr double kInner[4][2] = {{0.3, 0.3}, {0.4, 0.7}, {0.7, 0.7}, {0.6, 0.3}};
    MeshData mesh(bits, space, hasFunction);
    mesh.Flag(0);
    for (const auto& point : kEdge) {
        mesh.Point(point[0], point[1]);
    }
    for (std::size_t i = 0; type == 7 && i < 4; ++i) {
        mesh.Point(kInner[i][0], kInner[i][1]);
    }
    for (const double color : {0.0, 0.4, 1.0, 0.6}) {
        mesh.Color(color);
    }
    mesh.Align();
    return mesh.Stream(type, text, "");
}

/// Patches of which each goes on from another edge of the one before.
std::string ChainOfPatches(const ShadingSpace& space, const std::string& text, int type) {
    static constexpr struct {
        unsigned flag;
        double x, y;  // of the start of the shared edge
        double edgeX, edgeY;
        double sideX, sideY;
    } kPatches[] = {{0, 0.1, 0.1, 0.0, 0.3, 0.3, 0.0},
                    {1, 0.1, 0.4, 0.3, 0.0, 0.0, 0.3},
                    {2, 0.4, 0.7, -0.3, 0.0, 0.1, 0.2},
                    {3, 0.5, 0.9, -0.1, -0.2, 0.3, -0.1}};

    // Parts of edge and side, behind one another around a patch.
    static constexpr double kPoints[16][2] = {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {3, 1}, {3, 2},
                                              {3, 3}, {2, 3}, {1, 3}, {0, 3}, {0, 2}, {0, 1},
                                              {1, 1}, {2, 1}, {2, 2}, {1, 2}};
    MeshData mesh({8, 16, 8}, space, false);
    for (const auto& patch : kPatches) {
        mesh.Flag(patch.flag);
        for (std::size_t i = patch.flag == 0 ? 0 : 4; i < (type == 6 ? 12 : 16); ++i) {
            const double along = kPoints[i][0] / 3;
            const double across = kPoints[i][1] / 3;
            mesh.Point(patch.x + along * patch.edgeX + across * patch.sideX,
                       patch.y + along * patch.edgeY + across * patch.sideY);
        }
        if (patch.flag == 0) {
            mesh.Color(0.0);
            mesh.Color(0.2);
        }
        mesh.Color(0.9);
        mesh.Color(0.3 * patch.flag);
        mesh.Align();
    }
    return mesh.Stream(type, text, "");
}

/// A function of two inputs, whose outputs go from the first to the last colour of a space with
/// their product.
std::string Product(const ShadingSpace& space) {
    std::string program = "{ mul ";
    std::string range;
    for (std::size_t i = 0; i < space.first.size(); ++i) {
        const bool isLast = i + 1 == space.first.size();
        program += isLast ? "" : "dup ";
        program += Numbers({space.last[i] - space.first[i]}) + "mul " + Numbers({space.first[i]});
        program += isLast ? "add " : "add exch ";
        range += "0 1 ";
    }
    return StreamOf(program + "}", "/FunctionType 4 /Domain [0 1 0 1] /Range [" + range + "]");
}

/// One shading of each type from 1 on, and each mesh that has no function once more by one.
/// `more` goes into each dictionary.
std::vector<std::string> AllTypes(Sheet& sheet, const ShadingSpace& space, const std::string& text,
                                  const std::string& more = {}) {
    const auto common = [&](int type) {
        return "/ShadingType " + std::to_string(type) + " /ColorSpace " + text + " " + more + " ";
    };
    const std::string function = " /Function " + Exponential(space, "1") + " >>";
    std::vector<std::string> shadings{
        "<< " + common(1) + "/Matrix [0.8 0.1 -0.1 0.8 0.15 0.1] /Function " +
            sheet.Add(Product(space)) + " >>",
        "<< " + common(2) + "/Coords [0.2 0.1 0.8 0.5]" + function,
        "<< " + common(3) + "/Coords [0.5 0.5 0.1 0.5 0.5 0.4]" + function};
    const std::string end = text + " " + more;
    for (const bool hasFunction : {false, true}) {
        for (const std::string& mesh :
             {Triangles({}, space, end, hasFunction), Lattice({}, space, end, hasFunction),
              Patch({}, space, end, hasFunction, 6), Patch({}, space, end, hasFunction, 7)}) {
            shadings.push_back(sheet.Add(mesh));
        }
    }
    return shadings;
}

/// All kinds of shadings in a space: first gradients, then meshes.
void DrawShadings(Sheet& sheet, const ShadingSpace& space) {
    const std::string text = space.text(sheet);
    const auto draw = [&](const std::string& name, const std::string& shading) {
        sheet.Shading(name, shading);
    };
    const auto entries = [&text](int type) {
        return "/ShadingType " + std::to_string(type) + " /ColorSpace " + text + " ";
    };
    const std::string linear = Exponential(space, "1");
    const std::string ends = " /Function " + linear;
    draw("axial", "<< " + entries(2) + "/Coords [0.2 0.3 0.8 0.6]" + ends + " >>");
    draw("axial, extended",
         "<< " + entries(2) + "/Coords [0.3 0.3 0.7 0.5] /Extend [true true]" + ends + " >>");
    draw("axial, of another domain",
         "<< " + entries(2) + "/Coords [0 0 1 0] /Domain [0.25 0.5]" + ends + " >>");
    // Rounded to six digits, the domain would leave that of the function.
    draw("axial, of many digits",
         "<< " + entries(2) +
             "/Coords [0 0 1 0] /Domain [0.1000006 0.7654321] /Function << /FunctionType 2 /N 1 "
             "/Domain [0.1000006 0.7654321] /C0 [" +
             Numbers(space.first) + "] /C1 [" + Numbers(space.last) + "] >> >>");
    draw("axial, in a box",
         "<< " + entries(2) + "/Coords [0 0 0 1] /BBox [0.2 0.1 0.7 0.9]" + ends + " >>");
    draw("axial, curved",
         "<< " + entries(2) + "/Coords [0 0 1 1] /Function " + Exponential(space, "2.5") + " >>");
    draw("axial, stitched",
         "<< " + entries(2) +
             "/Coords [0 1 1 0] /Function << /FunctionType 3 /Domain [0 1] /Bounds [0.3] "
             "/Encode [0 1 1 0] /Functions [" +
             linear + Exponential(space, "3") + "] >> >>");
    draw("radial", "<< " + entries(3) + "/Coords [0.5 0.5 0.1 0.5 0.5 0.45]" + ends + " >>");
    draw("radial, extended", "<< " + entries(3) +
                                 "/Coords [0.3 0.5 0.05 0.6 0.5 0.3] /Extend [true true]" + ends +
                                 " >>");
    draw("a cone", "<< " + entries(3) + "/Coords [0.2 0.5 0.1 0.8 0.5 0.02] /Extend [true false]" +
                       ends + " >>");
    draw("by function of two inputs", AllTypes(sheet, space, text).front());
    if (space.first.size() == 3) {
        draw("by an array",
             "<< " + entries(2) +
                 "/Coords [0 0 1 0] /Function [<< /FunctionType 2 /Domain [0 1] /N 1 /C0 [0] /C1 "
                 "[1] "
                 ">> << /FunctionType 2 /Domain [0 1] /N 2 /C0 [1] /C1 [0] >> << /FunctionType 2 "
                 "/Domain [0 1] /N 1 /C0 [0.2] /C1 [0.6] >>] >>");
        std::string samples;
        for (const int value : {255, 0, 0, 255, 255, 0, 0, 128, 255}) {
            samples += static_cast<char>(value);
        }
        draw("by samples",
             "<< " + entries(2) + "/Coords [0 0 1 0] /Function " +
                 sheet.Add(StreamOf(samples,
                                    "/FunctionType 0 /Domain [0 1] /Range [0 1 0 1 0 1] /Size [3] "
                                    "/BitsPerSample 8")) +
                 " >>");
    }
    for (const bool hasFunction : {false, true}) {
        const std::string how = hasFunction ? " by function" : "";
        const auto mesh = [&](const std::string& name, const std::string& stream) {
            draw(name + how, sheet.Add(stream));
        };
        mesh("triangles", Triangles({}, space, text, hasFunction));
        mesh("triangles of odd bits", Triangles({2, 24, 16}, space, text, hasFunction));
        mesh("lattice", Lattice({}, space, text, hasFunction));
        mesh("lattice of odd bits", Lattice({8, 12, 4}, space, text, hasFunction));
        mesh("Coons patch", Patch({}, space, text, hasFunction, 6));
        mesh("tensor patch", Patch({4, 32, 12}, space, text, hasFunction, 7));
    }
    draw("chain of Coons patches", sheet.Add(ChainOfPatches(space, text, 6)));
    draw("chain of tensor patches", sheet.Add(ChainOfPatches(space, text, 7)));
}

const ShadingSpace kSpaces[] = {
    {"DeviceGray", [](Sheet&) { return std::string("/DeviceGray"); }, {0.1}, {0.9}},
    {"DeviceRgb", [](Sheet&) { return std::string("/DeviceRGB"); }, {1, 0.2, 0}, {0, 0.4, 1}},
    {"DeviceCmyk",
     [](Sheet&) { return std::string("/DeviceCMYK"); },
     {0, 0.8, 0.4, 0.1},
     {1, 0, 0.2, 0},
     true},
    {"IccRgb",
     [](Sheet& sheet) {
         const auto profile = GammaRGBProfile(1.8);
         return "[/ICCBased " +
                sheet.Add(StreamOf(std::string(profile.begin(), profile.end()), "/N 3")) + "]";
     },
     {1, 0.2, 0},
     {0, 0.4, 1},
     false,
     true},
    {"CalRgb",
     [](Sheet&) {
         return std::string(
             "[/CalRGB << /WhitePoint [0.9505 1 1.089] /Gamma [2.2 2.2 2.2] /Matrix [0.4124 0.2126 "
             "0.0193 0.3576 0.7152 0.1192 0.1805 0.0722 0.9505] >>]");
     },
     {1, 0.6, 0.4},
     {0.4, 0.6, 1}},
    {"Separation",
     [](Sheet&) {
         return std::string(
             "[/Separation /Orange /DeviceCMYK << /FunctionType 2 /Domain [0 1] /N 1 /C0 [0 0 0 0] "
             "/C1 [0 0.5 1 0] >>]");
     },
     {0.1},
     {1},
     true},
};

std::string Gradient(const ShadingSpace& space, const std::string& text,
                     const std::string& entries) {
    return "<< " + entries + " /ColorSpace " + text + " /Function " + Exponential(space, "1") +
           " >>";
}

class Shadings : public testing::TestWithParam<ShadingSpace> {
protected:
    /// Converts a sheet with the options.
    void Convert(const Sheet& sheet, std::vector<std::string> options) {
        mInput = mFolder.File("sheet.pdf");
        mOutput = mFolder.File("sheet.ps");
        WriteFile(mInput, sheet.Pdf());
        options.insert(options.end(), {mInput, mOutput});
        const ChildResult run = RunTool(options);
        ASSERT_EQ(run.exitStatus, kDone) << run.errors;
    }

    /// Expects a sheet to look as in the PDF at a level. Level 2 has coarser profiles, and pictures
    /// whose clips cover every pixel that they touch.
    void Check(const Sheet& sheet, const char* level) {
        const bool isLevel3 = *level == '3';
        std::vector<std::string> options{"--level", level};
        if (GetParam().isManaged) {
            options.emplace_back("--embed-profiles");
        }
        ASSERT_NO_FATAL_FAILURE(Convert(sheet, options));
        const auto reference = DrawPages(mInput, {});
        const auto drawn = DrawPages(mOutput, {});
        EXPECT_EQ(drawn.complaint, "");
        ASSERT_EQ(reference.pages.size(), 1U);
        ASSERT_EQ(drawn.pages.size(), 1U);
        if (isLevel3 || !GetParam().isManaged) {
            CompareCells(sheet, drawn.pages.front(), reference.pages.front(), isLevel3);
        }
    }

    TemporaryFolder mFolder;
    std::string mInput;
    std::string mOutput;
};

TEST_P(Shadings, LookAsInThePdf) {
    for (const char* level : {"3", "2"}) {
        SCOPED_TRACE(level);
        Sheet sheet;
        DrawShadings(sheet, GetParam());
        Check(sheet, level);
    }
}

TEST_P(Shadings, PaintAsPatterns) {
    for (const char* level : {"3", "2"}) {
        SCOPED_TRACE(level);
        Sheet sheet;
        const std::string space = GetParam().text(sheet);
        const std::string axial =
            Gradient(GetParam(), space, "/ShadingType 2 /Coords [0.2 0 0.9 0.3]");
        const std::string radial =
            Gradient(GetParam(), space,
                     "/ShadingType 3 /Coords [0.5 0.5 0.1 0.5 0.5 0.4] /Extend [true true]");
        sheet.Pattern("fill by even and odd", radial, "0.1 0.1 0.8 0.8 re 0.3 0.3 0.4 0.4 re f*");
        sheet.Pattern("fill under another matrix", axial,
                      "q 0.5 0.2 -0.2 0.5 0.3 0.2 cm 0 0 1 1 re f Q 0.8 0.8 0.2 0.2 re f");
        const std::string background = "/Background [" + Numbers(GetParam().last) + "]";
        for (const std::string& more :
             {std::string(), background, std::string("/BBox [0.2 0.3 0.7 0.9]")}) {
            int count = 0;
            for (const std::string& shading : AllTypes(sheet, GetParam(), space, more)) {
                sheet.Pattern(std::to_string(++count) + " " + more, shading,
                              "0.05 0.05 0.9 0.9 re f");
            }
        }
        sheet.Space("Plain", space);
        std::string middle;
        for (std::size_t i = 0; i < GetParam().first.size(); ++i) {
            middle += Numbers({(GetParam().first[i] + GetParam().last[i]) / 2});
        }
        constexpr const char* kFrame = "0.1 w 0.2 0.2 0.6 0.6 re S";
        const std::size_t plain = sheet.Cells().size();
        sheet.Draw("stroke of one colour", "/Plain CS " + middle + "SCN " + kFrame);
        auto& stroke = sheet.Pattern("stroke", radial, kFrame);
        if (*level == '2') {
            stroke.like = plain;
            stroke.isDrawnRight = false;
        }
        Check(sheet, level);
    }
}

TEST_P(Shadings, KeepTheirPlates) {
    if (!GetParam().hasPlates) {
        return;
    }
    Sheet sheet;
    DrawShadings(sheet, GetParam());
    const std::string space = GetParam().text(sheet);
    for (const std::string& shading : AllTypes(sheet, GetParam(), space)) {
        sheet.Pattern("pattern", shading, "0.05 0.05 0.9 0.9 re f");
    }
    for (const auto& [model, level] : {std::pair{"as-is", "3"}, {"devicen", "3"}, {"as-is", "2"}}) {
        SCOPED_TRACE(std::string(model) + level);
        ASSERT_NO_FATAL_FAILURE(Convert(sheet, {"--color", model, "--level", level}));
        const auto reference = DrawPlates(mInput, {});
        const auto drawn = DrawPlates(mOutput, {});
        EXPECT_EQ(drawn.complaint, "");
        ASSERT_EQ(drawn.pages.size(), 1U);
        ASSERT_EQ(drawn.pages.front().size(), reference.pages.front().size());
        for (const auto& [ink, plate] : reference.pages.front()) {
            SCOPED_TRACE(ink);
            CompareCells(sheet, drawn.pages.front().at(ink), plate, *level == '3');
        }
    }
}

TEST(LongMeshes, StayAsSmallAsInThePdf) {
    const ShadingSpace rgb = kSpaces[1];
    MeshData mesh({8, 16, 8}, rgb, false);
    constexpr int kSide = 120;
    for (int row = 0; row <= kSide; ++row) {
        for (int column = 0; column <= kSide; ++column) {
            const double x = static_cast<double>(column) / kSide;
            const double y = static_cast<double>(row) / kSide;
            mesh.Point(x * (0.9 + 0.1 * std::sin(9 * y)), y * (0.9 + 0.1 * std::sin(7 * x)));
            mesh.Color(0.5 + 0.5 * std::sin(8 * x * y));
        }
    }
    ASSERT_GT(mesh.Bytes().size(), 65535U);
    Sheet sheet;
    sheet.Shading("mesh", sheet.Add(mesh.Stream(5, "/DeviceRGB",
                                                "/Filter /FlateDecode /VerticesPerRow " +
                                                    std::to_string(kSide + 1))));
    const TemporaryFolder folder;
    const std::string input = folder.File("mesh.pdf");
    const std::string output = folder.File("mesh.ps");
    WriteFile(input, sheet.Pdf());
    ASSERT_EQ(RunTool({"--encode", "flate", input, output}).exitStatus, kDone);
    const std::string program = ReadFile(output);
    EXPECT_NE(program.find("/T5DSArray1 currentfile"), std::string::npos);
    const auto size = static_cast<double>(sheet.Pdf().size());
    EXPECT_NEAR(static_cast<double>(program.size()), size, size / 4);
    const auto drawn = DrawPages(output, {});
    EXPECT_EQ(drawn.complaint, "");
    ASSERT_EQ(drawn.pages.size(), 1U);
    CompareCells(sheet, drawn.pages.front(), DrawPages(input, {}).pages.front());
}

// One warning tells of them all.
TEST(DamagedShadings, LeaveTheRestOfThePageIntact) {
    const ShadingSpace rgb = kSpaces[1];
    const std::string function = Exponential(rgb, "1");
    const std::string gray = Exponential({"", nullptr, {0}, {1}}, "1");
    const std::string axial = "<< /ShadingType 2 /ColorSpace /DeviceRGB /Coords [0 0 1 0] ";
    const std::string mesh =
        "/ShadingType 4 /ColorSpace /DeviceRGB /BitsPerFlag 8 "
        "/BitsPerCoordinate 8 /BitsPerComponent 8 ";
    const std::string triangle("\0\0\0\1\2\3\0\xFF\0\1\2\3\0\0\xFF\1\2\3", 18);
    const std::string decode = "/Decode [0 1 0 1 0 1 0 1 0 1]";
    const std::vector<std::string> gradients = {
        axial + "/Function " + gray + " >>", axial + "/Domain [1 1] /Function " + function + " >>",
        axial + ">>"};
    const std::string sound = axial + "/Function " + function + " >>";
    const std::vector<std::string> meshes = {StreamOf(triangle, mesh + "/Decode [0 1 0 1 0 1 0 1]"),
                                             StreamOf(triangle.substr(0, 11), mesh + decode),
                                             StreamOf(triangle + "\1\2", mesh + decode)};
    for (const char* level : {"3", "2"}) {
        SCOPED_TRACE(level);
        Sheet sheet;
        std::vector<std::string> damaged = gradients;
        for (const std::string& stream : meshes) {
            damaged.push_back(sheet.Add(stream));
        }
        for (const std::string& shading : damaged) {
            sheet.Shading("damaged", shading).isJudged = false;
            sheet.Pattern("damaged", shading, "0 0 1 1 re f").isJudged = false;
        }
        sheet.Shading("sound", sound);
        const TemporaryFolder folder;
        const std::string input = folder.File("sheet.pdf");
        const std::string output = folder.File("sheet.ps");
        WriteFile(input, sheet.Pdf());
        const ChildResult run = RunTool({"--level", level, input, output});
        EXPECT_EQ(run.exitStatus, kDone);
        const std::size_t warning = run.errors.find("warning");
        EXPECT_NE(warning, std::string::npos);
        EXPECT_EQ(run.errors.find("warning", warning + 1), std::string::npos) << run.errors;
        const auto drawn = DrawPages(output, {});
        EXPECT_EQ(drawn.complaint, "");
        ASSERT_EQ(drawn.pages.size(), 1U);
        CompareCells(sheet, drawn.pages.front(), DrawPages(input, {}).pages.front());
    }
}

INSTANTIATE_TEST_SUITE_P(Spaces, Shadings, testing::ValuesIn(kSpaces),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace VANTIX::TEST
