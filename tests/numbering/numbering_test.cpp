// SPDX-License-Identifier: MIT
// Names with numbers that count in a whole process: the single test of its program, so that they
// are the first.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/color/patternspaces.h"
#include "host/color/shadingspaces.h"
#include "host/graphics/baseconnectionspace.h"
#include "host/host.h"
#include "host/io/fileprovider.h"
#include "support/fakepatternspaces.h"
#include "support/ghostscriptpages.h"
#include "support/temporaryfolder.h"

namespace VANTIX::HOST {
namespace {

/// Makes the shadings of a test.
class Shadings {
public:
    explicit Shadings(Host& host) : mGray(host.ColorSpaces().DeviceSpace("gray"_cc)) {}

    /// A mesh of `records` vertices or patches of `bytes` each, which goes on from its beginning.
    [[nodiscard]] ColorSpacePtr Mesh(const MeshLayout& layout, std::size_t records,
                                     std::size_t bytes) const {
        MeshGeometry mesh{layout, {0, 1, 0, 1, 0, 1}, std::vector<std::uint8_t>(records * bytes)};
        for (std::size_t i = 3; layout.type == 4 && i < records; ++i) {
            mesh.data[i * bytes] = 1;
        }
        std::string error;
        ColorSpacePtr shading = MakeMeshShading({mGray, nullptr}, std::move(mesh), error);
        EXPECT_TRUE(shading) << error;
        return shading;
    }

private:
    ColorSpacePtr mGray;
};

/// The names behind the slashes before which `mark` stands, in their order.
std::vector<std::string> NamesBefore(const std::string& text, const std::string& mark) {
    std::vector<std::string> names;
    for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + 1)) {
        const std::size_t slash = text.rfind('/', at - 1);
        names.push_back(text.substr(slash + 1, at - slash - 1));
    }
    return names;
}

using Names = std::vector<std::string>;

/// Only distillers know the operator of the prolog.
constexpr std::string_view kPreamble =
    "%!PS-Adobe-3.0\n"
    "/setdistillerparams where {pop} {userdict /setdistillerparams {pop} put} ifelse\n";

TEST(Numbering, EachKindOfNameHasACounterOfItsOwn) {
    const TEST::TemporaryFolder folder;
    Host host;
    std::string error;
    ASSERT_TRUE(host.LoadPlugin(NORVANE_PLUGIN, error)) << error;
    const auto exporter = host.CreateExporter();
    const auto policy = host.CreatePolicy();
    const std::string path = folder.File("job.ps");
    const auto output =
        MakeObject<FileProvider>(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600));
    output->Write(kPreamble.data(), kPreamble.size());
    auto* space = BaseConnectionSpace::From(exporter->Begin(*output, policy.Get()));
    ASSERT_NE(space, nullptr);

    const Shadings shadings(host);
    const auto pattern =
        MakeShadingPattern(shadings.Mesh({4, 8, 8, 8, 0, 1}, 3, 4), {1, 0, 0, 1, 0, 0});
    const auto tile = MakeObject<TEST::FakeTilePattern>();
    tile->cell = MakeObject<TEST::FakeCell>();
    space->AddColorSpace(pattern.Get(), 40);
    space->AddColorSpace(pattern.Get(), 41);
    space->AddColorSpace(tile.Get(), 4000000000U);
    // 65,535 bytes and one more; both patch types count together.
    const std::vector<ColorSpacePtr> meshes{
        shadings.Mesh({4, 8, 8, 16, 0, 1}, 13107, 5), shadings.Mesh({4, 8, 8, 8, 0, 1}, 16384, 4),
        shadings.Mesh({5, 0, 12, 8, 2, 1}, 16384, 4), shadings.Mesh({6, 8, 8, 8, 0, 1}, 2260, 29),
        shadings.Mesh({7, 8, 8, 8, 0, 1}, 1772, 37),  shadings.Mesh({4, 8, 8, 8, 0, 1}, 16384, 4)};
    for (const ColorSpacePtr& mesh : meshes) {
        space->FillWithColorSpace(mesh.Get(), 50, 0, 0, 1, 1);
    }
    EXPECT_EQ(exporter->End(), STATUS::kOk);

    const std::string text = TEST::ReadFile(path);
    EXPECT_EQ(NamesBefore(text, " exch def\n/P"), (Names{"Sh1.40", "Sh2.41"}));
    EXPECT_EQ(NamesBefore(text, "<<\n\t/PatternType 2\n\t/Shading Sh"), (Names{"P1.40", "P2.41"}));
    EXPECT_EQ(NamesBefore(text, "<<\n/PatternType 1"), (Names{"P3.4000000000"}));
    EXPECT_EQ(NamesBefore(text, " currentfile << /Filter"),
              (Names{"T4DSArray1", "T5DSArray1", "T6T7DSArray1", "T6T7DSArray2", "T4DSArray2"}));
    EXPECT_EQ(NamesBefore(text, " fileobj => ---\n"), NamesBefore(text, " currentfile << /Filter"));
    EXPECT_EQ(TEST::DrawPages(path, {}).complaint, "");
}

}  // namespace
}  // namespace VANTIX::HOST
