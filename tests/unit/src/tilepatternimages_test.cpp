// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "postscriptconnectionspace/tilepatternpsoutputcontext.h"
#include "support/ghostscriptpages.h"
#include "support/outputcontextfixture.h"

namespace VANTIX::PS {
namespace {

using TEST::FakeFilterStack;
using TEST::MemoryProvider;

/// Reads what an image would be painted with, and tells it.
constexpr const char* kReader =
    "%!PS\n"
    "/tell { /DataSource get dup xcheck {exec} {16384 string readstring pop} ifelse\n"
    "  dup length 20 gt {length =string cvs} if print (|) print } def\n"
    "/image {tell} def /imagemask {currentgray 10 string cvs print ( ) print tell} def\n"
    "/pdfmark {cleartomark (mark|) print} def\n";

/// A procedure and, outside, the document that takes its images' data.
class TilePatternImages : public TEST::OutputContextFixture {
protected:
    TilePatternImages() {
        outerFilters->Attach(outerPage.Get());
        outer->Aggregate(outerFilters.Get(), IO::IID_IOUTPUTFILTERSTACK);
    }

    void Begin(std::int32_t level, const std::vector<std::int32_t>& codes) {
        outerFilters->filters = codes;
        pattern = MakeObject<TilePatternPSOutputContext>(streams, *outer, level, lastImage);
        pattern->Init(factory.Get());
    }

    void Describe(const std::string& colour, bool imageMask) {
        pattern->WriteImageDictionary(2, 2, 8, colour.data(),
                                      static_cast<std::int32_t>(colour.size()), "[0 1]", imageMask);
    }

    void Data(const std::string& data) {
        pattern->WriteStreamData(data.data(), static_cast<std::int32_t>(data.size()));
        pattern->FlushStreamData();
    }

    void Image(const std::string& colour, bool imageMask, const std::string& data) {
        pattern->BeginImageData();
        Describe(colour, imageMask);
        Data(data);
        pattern->EndImageData();
    }

    /// What the images of the procedure, executed twice, are painted with.
    std::string Painted() {
        const std::string resources = outerPage->Take();
        const auto run = TEST::RunPostScript(kReader + resources + "/paint {\n" + Written() +
                                             "} bind def\npaint paint\n");
        EXPECT_EQ(run.complaint, "") << resources;
        return run.text;
    }

    TInterfacePtr<MemoryProvider> outerPage = MakeObject<MemoryProvider>();
    TInterfacePtr<FakeFilterStack> outerFilters = MakeObject<FakeFilterStack>();
    TInterfacePtr<IPostScriptDataStream> outer =
        TInterfacePtr<IPostScriptDataStream>::Adopt(CreatePostscriptDataStream(outerPage.Get()));
    std::uint32_t lastImage = 6;
    TInterfacePtr<TilePatternPSOutputContext> pattern;
};

TEST_F(TilePatternImages, StreamsAreRewoundEachTimeThePatternIsPainted) {
    Begin(3, {});
    Image("/DeviceGray", false, "AAAA");
    Image("1", true, "BB");
    EXPECT_EQ(lastImage, 8U);
    EXPECT_EQ(Painted(), "AAAA\n|1.0 BB\n|AAAA\n|1.0 BB\n|");
}

TEST_F(TilePatternImages, StreamsUndoTheFiltersOfTheDocument) {
    Begin(3, {IO::FILTER::kAscii85, IO::FILTER::kRunLength});
    Image("", false, "r]u&~>");  // a run of three "A"
    EXPECT_EQ(outerFilters->ends, 1);
    EXPECT_EQ(filters->filteredWrites, 0);
    EXPECT_EQ(Painted(), "AAA|AAA|");
}

TEST_F(TilePatternImages, Level2HandsOutStringsAgainAndAgain) {
    Begin(2, {IO::FILTER::kAscii85});
    const std::string zeros(5000, 'z');  // 20000 bytes
    Image("/DeviceGray", false, zeros + "~>");
    Image("1", true, "5sdq,~>");
    EXPECT_EQ(Painted(), "16384|1.0 ABCD|16384|1.0 ABCD|");
}

TEST_F(TilePatternImages, MasksOfImagesAreResourcesOfTheirOwn) {
    for (const std::int32_t level : {2, 3}) {
        Begin(level, {IO::FILTER::kAscii85});
        pattern->BeginImageData();
        Describe("/DeviceGray", false);
        Data("5sdq,~>");
        pattern->AssociateSoftMaskImage(1);
        Describe("", false);
        Data("5sdq-~>");
        pattern->EndImageData();
        EXPECT_EQ(Painted(), "ABCD|mark|ABCE|ABCD|mark|ABCE|") << level;
    }
}

TEST_F(TilePatternImages, DataOutsideOfImagesStayInTheProcedure) {
    Begin(3, {});
    Data("text");
    pattern->EndImageData();
    EXPECT_EQ(Written(), "text");
    EXPECT_EQ(outerPage->Take(), "");
}

}  // namespace
}  // namespace VANTIX::PS
