// SPDX-License-Identifier: MIT
#include "t3fontbuilder.h"

#include "asiscompositeconnectionspacedelegate/asiscompositeconnectionspacedelegate.h"
#include "connectionspacedelegatefactory.h"
#include "fontbuilderfixture.h"
#include "gmock/gmock.h"
#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "psfontbuilderfactory.h"
#include "support/fakebaseconnectionspace.h"
#include "support/fakedictionary.h"
#include "support/fakefilterstack.h"
#include "support/fakefonts.h"
#include "support/fakekeyedproperties.h"
#include "support/fakeraster.h"
#include "support/fakestatestack.h"
#include "support/programpage.h"

namespace VANTIX::PS {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

/// A front object that hands on what glyphs draw with, and has a graphics state of its own.
class GlyphBase : public TEST::FakeBaseConnectionSpace {
public:
    GlyphBase() { state = own.Get(); }

    Status Init(GRAPHICS::IDelegateConnectionSpace* to) override {
        delegate = to;
        return FakeBaseConnectionSpace::Init(to);
    }

    TInterfacePtr<TEST::FakeTextState> own = MakeObject<TEST::FakeTextState>();
    GRAPHICS::IDelegateConnectionSpace* delegate = nullptr;
};

/// What a test tells it to draw.
class FakeGlyph : public GRAPHICS::IdleConnectionSpace<GRAPHICS::IConnectionSpace> {
public:
    using Draw = std::function<void(GRAPHICS::IDelegateConnectionSpace&)>;

    explicit FakeGlyph(Draw draw) : mDraw(std::move(draw)) {}

    void PlayTo(GRAPHICS::IConnectionSpace& space) const override {
        mDraw(*static_cast<GlyphBase&>(space).delegate);
    }

private:
    Draw mDraw;
};

class FakeType3 : public TObject<GRAPHICS::IT3Ancillary> {
public:
    struct Glyph {
        std::string name;
        bool isColoured = false;
        FakeGlyph::Draw draw;
    };

    std::vector<Glyph> glyphs;

    std::int32_t GetGlyphCount() const override { return static_cast<std::int32_t>(glyphs.size()); }

    void EnumerateGlyphs(GRAPHICS::IT3GlyphProcFunctor& functor) const override {
        const float box[] = {0, 0, 1, 1};
        for (const Glyph& glyph : glyphs) {
            const auto recording = MakeObject<FakeGlyph>(glyph.draw);
            functor(glyph.name.c_str(), static_cast<std::int32_t>(glyph.name.size()),
                    glyph.draw ? recording.Get() : nullptr, box, 1, glyph.isColoured);
        }
    }

    void EnumerateEncoding(GRAPHICS::IEncodingFunctor& functor) const override {
        std::int32_t code = 'a';
        for (const Glyph& glyph : glyphs) {
            functor(code++, glyph.name.c_str());
        }
    }
};

class AsIsFactory : public TObject<RENDERING::IConnectionSpaceDelegateFactory> {
public:
    RENDERING::IConnectionSpaceDelegate* CreateConnectionSpaceDelegate(
        IClassFactory& factory, RENDERING::TDelegateType /*type*/,
        const IO::IDictionary* /*options*/) const override {
        return new RENDERING::AsIsCompositeConnectionSpaceDelegate(factory, 0);
    }
};

void Box(GRAPHICS::IDelegateConnectionSpace& space) {
    const float corners[] = {1, 0, 1, 0.5, 0, 0.5};
    space.MoveTo(0, 0);
    space.LineTo(corners, 3);
    space.ClosePath();
    space.Fill();
    space.NewPath();
}

class T3FontBuilders : public TEST::FontBuilderFixture {
protected:
    T3FontBuilders() {
        factory.Offer<AsIsFactory>(RENDERING::CLSID_CONNECTIONSPACEDELEGATEFACTORY);
        factory.Offer<TEST::FakeFilterStack>(IO::IID_IOUTPUTFILTERSTACK);
        factory.Offer<TEST::FakeStateStack>(GRAPHICS::CLSID_MUTABLEGRAPHICSSTATESTACK);
        factory.Offer<TEST::FakeColorSpaceFactory>(COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
        factory.Offer<TEST::FakeKeyedProperties>(IO::CLSID_KEYEDPROPERTIES);
        factory.Offer<GlyphBase>(GRAPHICS::IID_IBASECONNECTIONSPACE);
        font->type = GRAPHICS::TFontType::kType3;
        font->Aggregate(program.Get(), GRAPHICS::IID_IT3ANCILLARY);
        maker->Aggregate(&factory, IID_CLASSFACTORY);
        maker->Aggregate(MakeObject<TEST::FakeDictionary>().Get(), IO::IID_IPOSTSCRIPTPOLICYDICT);
    }

    TInterfacePtr<GRAPHICS::IFontBuilder> Create() {
        return TInterfacePtr<GRAPHICS::IFontBuilder>::Adopt(
            maker->CreatePSFontBuilder(factory, font.Get(), packet, "Glyphs", TPSFontType::kType3));
    }

    std::string Build() {
        const auto builder = Create();
        EXPECT_TRUE(builder && builder->BuildFont());
        return packet.Take();
    }

    /// The page on which `text` is shown in the font, in red.
    static TEST::PageImage Show(const std::string& built, const std::string& text) {
        return TEST::DrawProgram(built +
                                 "1 0 0 setrgbcolor /Glyphs findfont 32 scalefont setfont "
                                 "0 32 moveto (" +
                                 text + ") show");
    }

    static void ExpectDrawn(const TEST::PageImage& page, const std::string& reference) {
        const auto difference = Compare(page, TEST::DrawProgram("1 0 0 setrgbcolor " + reference));
        EXPECT_TRUE(difference.IsMatch()) << difference.Describe();
    }

    TInterfacePtr<FakeType3> program = MakeObject<FakeType3>();
    TInterfacePtr<TEST::FakeFont> font = MakeObject<TEST::FakeFont>();
    TInterfacePtr<IPSFontBuilderFactory> maker = TInterfacePtr<IPSFontBuilderFactory>::Adopt(
        static_cast<IPSFontBuilderFactory*>(CreatePSFontBuilderFactory()));
};

TEST_F(T3FontBuilders, GlyphsAreProceduresInTheColourOfTheText) {
    program->glyphs = {{"plain", false, Box}, {"coloured", true, Box}, {"blank", false, nullptr}};
    const std::string text = Build();
    EXPECT_THAT(text, HasSubstr("/GlyphProcs 4 dict dup begin % Subsidiary dictionary for "
                                "individual glyph descriptions\n/.notdef {} def\n/plain {\n1 0 % "
                                "Width\n0 0 1 1 % Bounding box\nsetcachedevice\n0 0 moveto\n"));
    EXPECT_THAT(text, HasSubstr("/coloured {\n1 0 % Width\nsetcharwidth\n0 0 moveto\n"));
    EXPECT_THAT(text, HasSubstr("/blank {\n1 0 % Width\n0 0 1 1 % Bounding box\nsetcachedevice\n} "
                                "bind def\nend readonly def % End of GlyphProcs\n"));
    EXPECT_THAT(text, Not(HasSubstr("setgray")));
    ExpectDrawn(Show(text, "ba"), "0 32 64 16 rectfill");
    EXPECT_EQ(Messages(), "");
}

TEST_F(T3FontBuilders, LongProceduresAreCut) {
    program->glyphs = {{"long", false, [](GRAPHICS::IDelegateConnectionSpace& space) {
                            std::vector<float> zigzag;
                            for (int i = 0; i < 60000; ++i) {
                                zigzag.insert(zigzag.end(), {static_cast<float>(i % 2), 0.25F});
                            }
                            space.MoveTo(0, 0.5F);
                            space.LineTo(zigzag.data(), 60000);
                            Box(space);
                        }}};
    ExpectDrawn(Show(Build(), "a"), "0 32 32 16 rectfill");
}

TEST_F(T3FontBuilders, MasksAreArraysOfStrings) {
    // The left half of each line; lines are larger than a string together.
    const auto raster = MakeObject<TEST::FakeRaster>();
    raster->width = 2048;
    raster->height = 512;
    raster->bits = 1;
    TEST::Line line(256, 0);
    std::fill_n(line.begin(), 128, 0xFF);
    raster->Extra("LPHA"_cc, line).data->lines.assign(512, line);
    const FakeGlyph::Draw draw = [&](GRAPHICS::IDelegateConnectionSpace& space) {
        space.DrawImage(raster.Get(), 7, 7, 9, 9);
    };
    program->glyphs = {{"mask", false, draw}};
    const std::string text = Build();
    EXPECT_THAT(text, HasSubstr("/stringIndex 0 def\n<<\n/ImageType 1\n/Width 2048\n/Height 512\n"
                                "/BitsPerComponent 1\n/Decode [1 0]\n/ImageMatrix [2048 0 0 512 0 "
                                "0]\n/DataSource {SampleStringsArray stringIndex exch 1 index get "
                                "exch 1 add /stringIndex exch def} bind\n>>\nimagemask\n"));
    ExpectDrawn(Show(text, "a"), "0 32 16 32 rectfill");
    EXPECT_EQ(Messages(), "");
    raster->extras[0]->data = nullptr;
    EXPECT_THAT(Build(), Not(HasSubstr("imagemask")));
    EXPECT_EQ(Messages(), "No channel data for 1 bit image\n");
}

TEST_F(T3FontBuilders, FurtherFontsHaveEncodingsOfTheirOwn) {
    program->glyphs = {{"box", false, Box}};
    const auto builder = Create();
    ASSERT_TRUE(builder->BuildFont());
    const auto other = MakeObject<TEST::FakeFont>();
    other->type = GRAPHICS::TFontType::kType3;
    const auto shifted = MakeObject<FakeType3>();
    shifted->glyphs = {{"none", false, nullptr}, {"box", false, Box}};
    other->Aggregate(shifted.Get(), GRAPHICS::IID_IT3ANCILLARY);
    EXPECT_TRUE(builder->DefineFont(other.Get(), "Shifted"));
    const std::string text = packet.Take();
    ExpectDrawn(TEST::DrawProgram(text + "1 0 0 setrgbcolor /Shifted findfont 32 scalefont setfont "
                                         "0 32 moveto (b) show"),
                "0 32 32 16 rectfill");
    other->type = GRAPHICS::TFontType::kCFF;
    EXPECT_FALSE(builder->DefineFont(other.Get(), "Other"));
    EXPECT_EQ(Messages(), "Un-handled font type 2 to redefine in T3FontBuilder\n");
}

TEST_F(T3FontBuilders, WhatIsNotAggregatedFails) {
    const struct {
        GUID id;
        const char* message;
    } cases[] = {{IO::IID_IPOSTSCRIPTPOLICYDICT,
                  "IID_IPOSTSCRIPTPOLICYDICT must be aggregated into a T3FontBuilder\n"},
                 {IID_CLASSFACTORY,
                  "Factory is mandatory to Init a T3FontBuilder, missed IID_CLASSFACTORY "
                  "aggregation?\n"}};

    for (const auto& c : cases) {
        TEST::RecordingLogger::Get().Clear();
        maker->Disaggregate(c.id);
        EXPECT_FALSE(Create()->BuildFont());
        EXPECT_EQ(Messages(), c.message);
        EXPECT_EQ(packet.Take(), "");
    }
}

}  // namespace
}  // namespace VANTIX::PS
